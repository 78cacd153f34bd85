// Draws a sprite over a picture, both from BMP files: hello background.bmp sprite.bmp out.ppm
#include <pincel.h>

#include <fstream>
#include <iterator>
#include <vector>

struct Image : TSurfDesc {  // the library describes memory, the host owns it
  std::vector<uint8_t> memory;
};

Image Load(const char* path) {
  Image image{};
  std::ifstream in(path, std::ios::binary);
  std::vector<uint8_t> file(std::istreambuf_iterator<char>(in), {});
  LoadInfoBMP(image, file.data());
  image.bpp = 32, image.pitch = image.width * 4, image.colorKey = 0xFFFFFFFF;
  image.memory.resize(size_t(image.pitch) * size_t(image.height));
  image.pixels = image.memory.data();
  LoadBMP(image, file.data());
  return image;
}

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  Image picture = Load(argv[1]), sprite = Load(argv[2]);

  sprite.colorKey = 0xFF00FF;  // magenta is transparent
  DrawBitmap(picture, {20, 2, 20 + sprite.width, 2 + sprite.height}, sprite, {0, 0});
  IdxFillRect(picture, {60, 50, 90, 65}, 0xFFF0B020);
  DrawRectShadow(picture, {60, 50, 90, 65}, 1, 1);

  std::ofstream out(argv[3], std::ios::binary);
  out << "P6 " << picture.width << " " << picture.height << " 255\n";
  for (size_t i = 0; i < picture.memory.size(); i += 4) {
    for (size_t channel : {2U, 1U, 0U}) out.put(char(picture.memory[i + channel]));
  }
}
