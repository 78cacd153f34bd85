/* The smallest host in C: loads a BMP file, fills and tints a corner of it, looks at the result. */
#include <pincel.h>
#include <stdio.h>
#include <stdlib.h>

int main(int count, char** arguments) {
  static unsigned char file[1 << 20];
  FILE* const stream = count == 2 ? fopen(arguments[1], "rb") : NULL;
  if (stream == NULL) return puts("usage: c_host picture.bmp"), 2;
  const size_t length = fread(file, 1, sizeof(file), stream);
  fclose(stream);

  TSurfDesc picture = {0};
  if (pincel_load_info_bmp(&picture, file, length) != PINCEL_OK) return puts("no BMP file"), 1;
  picture.bpp = 32; /* whatever the file has */
  picture.colorKey = 0xFFFFFFFF;
  picture.pitch = 4 * picture.width;
  picture.pixels = calloc((size_t)picture.height, (size_t)picture.pitch);
  if (picture.pixels == NULL) return puts("no memory"), 1;
  const pincel_status loaded = pincel_load_bmp(&picture, file, length);

  const CRectangulo corner = {0, 0, 16, 16}; /* clipped to the picture */
  pincel_idx_fill_rect(&picture, &corner, 0x00204060);
  pincel_mask_fill_rect(&picture, &corner, 0x00FFFFFF, 127); /* half white */
  const uint32_t colour = pincel_get_pixel(&picture, 0, 0);
  free(picture.pixels);

  printf("%d x %d pixels, the first is now %08X\n", (int)picture.width, (int)picture.height,
         (unsigned)colour);
  return loaded == PINCEL_OK && colour == 0x008F9FAF ? 0 : 1;
}
