// A host as a compiler for MSVC builds it: every export under its MSVC name, and those whose arguments
// or results compilers pass in different ways. Run where examples/ is.
#include "freestanding.h"
#include "pincel.h"

static int g_failures = 0;

static void Check(bool right, const char* what) {
  if (right) return;
  ++g_failures;
  Print("wrong: ");
  Print(what);
  Print("\n");
}

template <class Function>
static const void* AddressOf(Function function) {
  static_assert(sizeof(function) == sizeof(void*), "methods of a record without bases");
  union {
    Function function;
    const void* address;
  } both = {function};
  return both.address;
}

template <class Cpp, class Plain>
static bool Listed(int, const char*, const char* plain_name, const char* itanium_name,
                   const char* msvc_name, Cpp cpp, Plain plain) {
  void* const dll = GetModuleHandleA("pincel.dll");
  Check(GetProcAddress(dll, itanium_name) != nullptr, itanium_name);
  Check(AddressOf(cpp) == GetProcAddress(dll, msvc_name), msvc_name);
  Check(AddressOf(plain) == GetProcAddress(dll, plain_name), plain_name);
  return true;
}

static void EveryNameIsImported() {
  const bool listed[] = {
#include "tests/exports/export_list.inc"
  };
  Check(sizeof(listed) > 100, "the list");
}

static uint32_t g_screen[20 * 16], g_sprite[8 * 8];
static uint8_t g_mask[8 * 8], g_bytes[1 << 16];
static unsigned char g_table[2][65536];

static TSurfDesc Surface(void* pixels, int width, int height, unsigned bpp) {
  TSurfDesc surface = {};
  surface.width = width;
  surface.height = height;
  surface.bpp = bpp;
  surface.colorKey = 0xFFFFFFFF;
  surface.pitch = width * static_cast<int>(bpp / 8);
  surface.pixels = static_cast<uint8_t*>(pixels);
  return surface;
}

static void RecordsByValue() {
  TSurfDesc screen = Surface(g_screen, 20, 16, 32), sprite = Surface(g_sprite, 8, 8, 32);
  const CSize size = Size(screen);
  Check(size.width == 20 && size.height == 16, "a record returned");
  Check(IdxFillRect(screen, CRectangulo{0, 0, 20, 16}, 0x00102030), "a rectangle by value");
  IdxFillRect(sprite, CRectangulo{0, 0, 8, 8}, 0x00445566);
  IdxFillRect(sprite, CRectangulo{0, 0, 1, 8}, 0x00FF00FF);
  sprite.colorKey = 0x00FF00FF;
  Check(DrawBitmap(screen, CRectangulo{4, 5, 12, 13}, sprite, CPunto{0, 0}), "a blit");
  Check(g_screen[5 * 20 + 4] == 0x00102030 && g_screen[5 * 20 + 5] == 0x00445566, "blitted pixels");
  Check(GetPixel(screen, CPunto{5, 5}) == 0x00445566, "a point by value");
  Check(GetPixel(screen, 4, 5) == 0x00102030, "coordinates");
  uint8_t indices[4] = {};
  TSurfDesc small = Surface(indices, 4, 1, 8);
  SetPixel(small, CPunto{2, 0}, 77);
  SetPixel(small, 3, 0, 78);
  Check(indices[1] == 0 && indices[2] == 77 && indices[3] == 78, "pixels written");
}

static void Bools() {
  TSurfDesc surface = Surface(g_screen, 20, 16, 32);
  Check(!Transp(surface), "false");
  surface.colorKey = 0;
  Check(Transp(surface), "true");
  surface.bpp = 12;
  Check(!IdxFillRect(surface, CRectangulo{0, 0, 1, 1}, 0), "false for an unsupported format");
  TSurfDesc sprite = Surface(g_sprite, 8, 8, 32), screen = Surface(g_screen, 20, 16, 32);
  IdxFillRect(sprite, CRectangulo{0, 0, 8, 8}, 0xFFFFFFFF);
  const CRectangulo all = {0, 0, 20, 16}, whole = {0, 0, 8, 8};
  Check(BltStrech(screen, all, sprite, whole, false), "a stretch");
  Check((g_screen[85] & 0xFFFFFF) == 0xFFFFFF, "a bool argument: false");
  BltStrech(screen, all, sprite, whole, true);
  Check((g_screen[85] & 0xFFFFFF) == 0xFEFEFE, "a bool argument: true");
}

static void NarrowAndFloatingArguments() {
  TSurfDesc screen = Surface(g_screen, 20, 16, 32), sprite = Surface(g_sprite, 8, 8, 32);
  const CRectangulo area = {0, 0, 8, 8};
  const CPunto origin = {0, 0};
  IdxFillRect(screen, CRectangulo{0, 0, 20, 16}, 0);
  Check(DrawMix(screen, area, 128, sprite, origin, nullptr), "a mix");
  Check(g_screen[0] == 0x7F7F7F7F, "an unsigned short");
  Check(TranslateRect(screen, area, 1.0f, nullptr), "a brightness shift");
  Check(g_screen[0] == 0xFFFFFFFF, "a float");
  const unsigned long from = 0, to = 0x00140000;
  Check(DoGradient(screen, from, to) && g_screen[5] == 0x00050000, "references to numbers");
  int weights[] = {2};
  long offsets[] = {0};
  uint32_t scratch[20 * 16];
  TSurfDesc room = Surface(scratch, 20, 16, 32);
  Check(DoConvolucion(screen, room, 1, weights, offsets, 1, 3), "a convolution");
  Check(g_screen[5] == 0x000D0303, "arrays of numbers");
}

static void Palettes() {
  Check(lu_gPaleta[251].red == 255 && lu_gPaleta[6].green == 42, "the palette is imported");
  uint8_t index[] = {9};
  uint32_t pixel = 0;
  TSurfDesc indexed = Surface(index, 1, 1, 8), deep = Surface(&pixel, 1, 1, 32);
  lu_gPaleta[9] = {1, 2, 3, 4};
  DrawBitmap(deep, indexed);
  Check(pixel == 0x04030201, "the palette is the library's");
  TRGBA grey[256] = {};
  CreateGreyPal(grey);
  Check(grey[200].green == 200, "an array by reference");
  pincel_build_mix_table(g_table, lu_gPaleta, 0);
  InitializeDLL();
  Check(lu_gPaleta[9].blue == 153, "the palette is made again");
}

static void Gif() {
  const unsigned long length =
      ReadWhole("examples/assets/gif/gifconf-static_4x4_red.gif", g_bytes, sizeof(g_bytes));
  Check(length > 0, "the GIF file is read");
  static RAW frame;
  CQXGIF gif = {};
  Check(gif.ReadHeader(g_bytes, &frame) == 0 && frame.width == 4, "CQXGIF::ReadHeader");
  Check(gif.NextImage() == 0, "CQXGIF::NextImage");
  frame.output = g_mask;
  g_mask[15] = 99;
  Check(gif.DecodeImage(&frame) == 0 && g_mask[15] != 99, "CQXGIF::DecodeImage");
  Check(gif.NextImage() == 3, "CQXGIF::NextImage at the end");
  uint8_t codes[] = {2, 0xA5, 0x3C, 0};
  CQXGIF reader = {};
  reader.cursor = codes;
  reader.codeSize = 4;
  Check(reader.ReadCode() == 5 && reader.ReadCode() == 10, "CQXGIF::ReadCode");
  TSurfDesc surface = Surface(g_screen, 4, 4, 32);
  Check(LoadInfoGIF(surface, g_bytes, gif, frame), "LoadInfoGIF");
  surface.bpp = 32;
  Check(LoadGIFNext(surface, g_bytes, gif, frame), "LoadGIFNext");
  Check(LoadGIF(surface, g_bytes, gif, frame) && (g_screen[0] & 0xFF0000) != 0, "LoadGIF");
}

static void Jpeg() {
  TSurfDesc surface = Surface(g_screen, 4, 4, 32);
  for (int i = 0; i < 100; ++i) g_bytes[i] = 0;
  for (int i = 0; i < 100; ++i) {
    Check(!LoadJPG(surface, g_bytes, 100), "an exception became false");
    Check(pincel_load_jpg_trusted(&surface, g_bytes, 100) == 0, "an exception became 0");
  }
  const unsigned long length =
      ReadWhole("examples/assets/jpg/jpegdec-jpg-size-4x4.jpg", g_bytes, sizeof(g_bytes));
  Check(LoadInfoJPG(surface, g_bytes, static_cast<long>(length)) && surface.width == 4,
        "LoadInfoJPG");
  surface.bpp = 32;
  Check(LoadJPG(surface, g_bytes, static_cast<long>(length)), "LoadJPG");
  Check(pincel_load_jpg(surface, g_bytes, 10) == PINCEL_TRUNCATED, "an addition");
}

// In msvc_host_c.c.
extern "C" const char* WrongInPlainC(void);

static int Main() {
  EveryNameIsImported();
  RecordsByValue();
  Bools();
  NarrowAndFloatingArguments();
  Palettes();
  Gif();
  Jpeg();
  const char* const wrong = WrongInPlainC();
  Check(wrong == nullptr, wrong);
  Print(g_failures == 0 ? "msvc host: right\n" : "msvc host: WRONG\n");
  return g_failures != 0;
}
