#include "tests/model/fader_model.h"

#include "tests/model/core_model.h"
#include "tests/model/mix_model.h"

namespace model {
namespace {

constexpr int64_t kWord = int64_t{1} << 32;

int64_t ByteOf(int64_t word, int i) { return word / (int64_t{1} << (8 * i)) % 256; }

// A number and its copies one, two and three bytes higher, ORed together in 32 bits.
int64_t Replicated(int64_t value) {
  int64_t word = 0;
  for (int i = 0; i < 4; ++i) word |= Mod(Mod(value, kWord) * (int64_t{1} << (8 * i)), kWord);
  return word;
}

}  // namespace

int64_t FaderLevels(int64_t start, int64_t step, int64_t hold, int64_t pixel) {
  const int64_t first = start > 0 ? 0 : 256 + start * step;  // start is minus its magnitude
  int64_t levels = Replicated(first);
  int64_t counter = hold;
  for (int64_t i = 0; i < pixel; ++i) {
    --counter;
    if (counter < 0) levels = Mod(levels - Replicated(step), kWord);
  }
  return levels;
}

bool OpenFader(Picture& dst, const CRectangulo& rect, const Picture& src, CPunto at, int start,
               int step, int hold) {
  if (dst.format == 8) return false;
  const Clipped area = Clip(dst.width, dst.height, rect);
  if (!area.visible) return true;
  const int bytes = dst.BytesPerPixel();
  for (int64_t x = area.box.left; x < area.box.right; ++x) {
    const int64_t levels = FaderLevels(start, step, hold, x - area.box.left);
    for (int64_t y = area.box.top; y < area.box.bottom; ++y) {
      const int64_t s = ReadAs(src, at.x + (x - rect.left), at.y + (y - rect.top), bytes);
      const int64_t d = dst.Get(x, y);
      if (bytes == 2) {
        const Fields from = SplitFields(dst.format, s);
        Fields mixed = SplitFields(dst.format, d);
        for (int i = 0; i < 3; ++i) {
          mixed[size_t(i)] = Weighted(mixed[size_t(i)], from[size_t(i)], ByteOf(levels, i));
        }
        dst.Put(x, y, JoinFields(dst.format, mixed));
        continue;
      }
      int64_t mixed = 0;
      for (int i = bytes - 1; i >= 0; --i) {
        mixed = mixed * 256 + Weighted(ByteOf(d, i), ByteOf(s, i), ByteOf(levels, i));
      }
      dst.Put(x, y, uint32_t(mixed));
    }
  }
  return true;
}

}  // namespace model
