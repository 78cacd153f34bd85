#include "tests/model/bmp_model.h"

#include <algorithm>
#include <array>
#include <functional>

namespace model {
namespace {

uint32_t Little(const uint8_t* at, int bytes) {
  uint32_t value = 0;
  for (int i = 0; i < bytes; ++i) value |= uint32_t{at[i]} << (8 * i);
  return value;
}

struct Header {
  bool info = false;  // the 40-byte header; everything else is read as the 12-byte one
  int64_t width = 0, height = 0;
  int bits = 0;
  bool run_length = false;
  int colours = 256;
  const uint8_t* data = nullptr;
};

Header ReadHeader(const uint8_t* file) {
  Header h;
  h.info = Little(file + 14, 4) == 40;
  if (h.info) {
    h.width = int32_t(Little(file + 18, 4));
    h.height = int32_t(Little(file + 22, 4));
    h.bits = int(Little(file + 28, 2));
    h.run_length = Little(file + 30, 4) == 1;
    const uint32_t used = Little(file + 46, 4);
    h.colours = used == 0 || used > 256 ? 256 : int(used);
  } else {
    h.width = Little(file + 18, 2);
    h.height = Little(file + 20, 2);
    h.bits = int(Little(file + 24, 2));
  }
  const bool fixed_offset = file[0] == 'Q' && file[1] == 'X';
  h.data = file + (fixed_offset ? 54 : Little(file + 10, 4));
  return h;
}

// The value stored for a colour with an alpha byte.
uint32_t Packed(int format, uint32_t blue, uint32_t green, uint32_t red, uint32_t alpha) {
  switch (format) {
    case 16:
      return (red & 0xF8) << 8 | (green & 0xFC) << 3 | blue >> 3;
    case 17:
    case 18:
      return (alpha & 0x80) << 8 | (red & 0xF8) << 7 | (green & 0xF8) << 2 | blue >> 3;
    case 19:
      return (alpha & 0xF0) << 8 | (red & 0xF0) << 4 | (green & 0xF0) | blue >> 4;
    case 24:
      return red << 16 | green << 8 | blue;
    default:
      return alpha << 24 | red << 16 | green << 8 | blue;
  }
}

int64_t RowFor(const Picture& p, bool top_down, int64_t stored_row) {
  return top_down ? stored_row : p.height - 1 - stored_row;
}

struct RunLengthRules {
  bool top_down = false;
  bool round_address = false;  // else one byte is skipped behind an odd literal run
  std::function<void(int64_t x, int64_t stored_row, uint8_t index)> paint;
  std::function<void(int64_t x, int64_t stored_row)> skip;  // background; may be empty
};

void DecodeRunLength(const Picture& p, const uint8_t* at, const RunLengthRules& rules) {
  int64_t x = 0, row = 0;
  const auto skip_until = [&](int64_t end_x, int64_t end_row) {
    while (row < end_row || x < end_x) {
      if (x < p.width) {
        if (rules.skip) rules.skip(x, row);
        ++x;
      } else {
        x = 0, ++row;
      }
    }
  };
  const auto paint = [&](uint8_t index) {
    if (x < p.width) rules.paint(x++, row, index);
  };
  while (row < p.height) {
    const int count = at[0], code = at[1];
    at += 2;
    if (count > 0) {
      for (int i = 0; i < count; ++i) paint(uint8_t(code));
    } else if (code == 0) {
      if (!rules.top_down) skip_until(p.width, row);
      x = 0, ++row;
    } else if (code == 1) {
      if (!rules.top_down) skip_until(p.width, p.height - 1);
      return;
    } else if (code == 2) {
      const int64_t to_x = x + at[0], to_row = row + at[1];
      at += 2;
      if (to_x > p.width || to_row >= p.height) return;
      skip_until(to_x, to_row);
    } else {
      for (int i = 0; i < code; ++i) paint(*at++);
      if (rules.round_address) {
        at += reinterpret_cast<uintptr_t>(at) & 1;
      } else {
        at += code & 1;
      }
    }
  }
}

}  // namespace

BmpInfo ReadBmpInfo(const uint8_t* file) {
  const Header h = ReadHeader(file);
  return {h.width, h.height < 0 ? -h.height : h.height, h.bits};
}

void LoadBmp(Picture& p, const uint8_t* file, const TRGBA* fallback) {
  const Header h = ReadHeader(file);
  const bool top_down = h.height < 0;
  const bool has_table = h.info && h.bits == 8;

  std::array<TRGBA, 256> colours;
  if (has_table) {
    colours.fill({0, 0, 0, 255});
    for (int i = 0; i < h.colours; ++i) {
      const uint8_t* entry = file + 54 + 4 * i;
      colours[size_t(i)] = {entry[0], entry[1], entry[2], 255};
    }
  } else {
    std::copy(fallback, fallback + 256, colours.begin());
  }

  if (p.format == 8 && p.has_palette) {
    for (int i = 0; i < (has_table ? h.colours : 256); ++i) {
      TRGBA& entry = p.palette[size_t(i)];
      const TRGBA& from = colours[size_t(i)];
      entry.blue = from.blue, entry.green = from.green, entry.red = from.red;
    }
    for (int i = 255; i >= 1; --i) {
      TRGBA& entry = p.palette[size_t(i)];
      if (entry.blue == 0 && entry.green == 0 && entry.red == 0) entry.blue = 1;
    }
  }

  const auto store_entry = [&](int64_t x, int64_t y, uint8_t index) {
    const TRGBA c = colours[index];
    p.Put(x, y, p.format == 8 ? index : Packed(p.format, c.blue, c.green, c.red, c.alpha));
  };

  if (h.bits == 8 && h.info && h.run_length) {
    RunLengthRules rules;
    rules.top_down = top_down;
    rules.round_address = true;
    rules.paint = [&](int64_t x, int64_t row, uint8_t index) {
      if (p.format == 24 && top_down) {  // red, green, blue: unlike everything else
        const TRGBA c = colours[index];
        p.Put(x, row, Packed(24, c.red, c.green, c.blue, 0));
      } else {
        store_entry(x, RowFor(p, top_down, row), index);
      }
    };
    const TRGBA zero = colours[0];
    if (p.format != 8 && Packed(p.format, zero.blue, zero.green, zero.red, zero.alpha) != 0) {
      rules.skip = [&](int64_t x, int64_t row) { store_entry(x, RowFor(p, top_down, row), 0); };
    }
    DecodeRunLength(p, h.data, rules);
  } else if (h.bits == 8) {
    const int64_t stride = (p.width + 3) / 4 * 4;
    for (int64_t row = 0; row < p.height; ++row) {
      for (int64_t x = 0; x < p.width; ++x) {
        store_entry(x, RowFor(p, top_down, row), h.data[row * stride + x]);
      }
    }
  } else if (h.bits >= 17 && p.format != 8) {
    const int64_t stride = (3 * p.width + 3) / 4 * 4;
    for (int64_t row = 0; row < p.height; ++row) {
      for (int64_t x = 0; x < p.width; ++x) {
        const int64_t y = RowFor(p, top_down, row);
        const uint8_t* pixel = h.data + row * stride + 3 * x;
        const uint32_t alpha = p.format == 32 ? p.Get(x, y) >> 24 : pixel[3];
        p.Put(x, y, Packed(p.format, pixel[0], pixel[1], pixel[2], alpha));
      }
    }
  }
}

void LoadBmpAlpha(Picture& p, const uint8_t* file) {
  const Header h = ReadHeader(file);
  const bool top_down = h.height < 0;
  if (h.info && h.run_length) {
    RunLengthRules rules;
    rules.top_down = top_down;
    rules.paint = [&](int64_t x, int64_t row, uint8_t index) {
      p.Put(x, RowFor(p, top_down, row), index);
    };
    DecodeRunLength(p, h.data, rules);
    return;
  }
  const int64_t stride = (p.width + 3) / 4 * 4;
  for (int64_t row = 0; row < p.height; ++row) {
    for (int64_t x = 0; x < p.width; ++x) {
      p.Put(x, RowFor(p, top_down, row), h.data[row * stride + x]);
    }
  }
}

}  // namespace model
