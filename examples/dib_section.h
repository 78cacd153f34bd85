// A Win32 bitmap with a surface of 8, 555, 565, 24 or 32 bits to draw into.
#ifndef EXAMPLES_DIB_SECTION_H_
#define EXAMPLES_DIB_SECTION_H_

#include <windows.h>

#include <stdexcept>

#include "formats.h"

class DibSection {
 public:
  // `palette` has 256 entries for 8 bits and is not read for others.
  DibSection(int width, int height, Format format, const TRGBA* palette)
      : device_(CreateCompatibleDC(nullptr)) {
    const FormatFacts& facts = FactsOf(format);
    // Behind the header GDI wants a palette at 8 bits, masks at 16, nothing at others.
    struct {
      BITMAPINFOHEADER header;
      union {
        RGBQUAD palette[256];
        DWORD masks[3];
      };
    } info = {};
    info.header.biSize = sizeof info.header;
    info.header.biWidth = width;
    info.header.biHeight = -height;  // negative: row 0 is the top one, as it is in a TSurfDesc
    info.header.biPlanes = 1;
    info.header.biBitCount = WORD(facts.bpp);
    info.header.biCompression = BI_RGB;
    if (facts.bpp == 16) {  // plain 16 bits are 555; masks, in the order red, green, blue, say 565
      info.header.biCompression = BI_BITFIELDS;
      info.masks[0] = facts.red, info.masks[1] = facts.green, info.masks[2] = facts.blue;
    }
    for (int i = 0; facts.bpp == 8 && i < 256; ++i) {  // an RGBQUAD starts with blue, as TRGBA does
      info.palette[i] = {palette[i].blue, palette[i].green, palette[i].red, 0};
    }
    void* pixels = nullptr;
    bitmap_ = CreateDIBSection(device_, reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS,
                               &pixels, nullptr, 0);
    if (bitmap_ == nullptr) throw std::runtime_error("there is no DIB section");
    SelectObject(device_, bitmap_);
    const int pitch = (width * int(facts.bpp) + 31) / 32 * 4;  // GDI pads rows to four bytes
    surface_ = Described(format, width, height, pitch, pixels);
  }
  DibSection(const DibSection&) = delete;
  DibSection& operator=(const DibSection&) = delete;
  ~DibSection() {
    DeleteDC(device_);  // first: while it is there, the bitmap is in use
    DeleteObject(bitmap_);
  }

  // To be asked for whenever something is to be drawn: GDI works off its calls when it likes, and
  // has to finish with the pixels first.
  TSurfDesc& Surface() {
    GdiFlush();
    return surface_;
  }

  void Show(HDC window) const {
    BitBlt(window, 0, 0, surface_.width, surface_.height, device_, 0, 0, SRCCOPY);
  }

 private:
  HDC device_;
  HBITMAP bitmap_ = nullptr;
  TSurfDesc surface_ = {};
};

#endif  // EXAMPLES_DIB_SECTION_H_
