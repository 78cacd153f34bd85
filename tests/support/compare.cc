#include "tests/support/compare.h"

#include <cstring>
#include <string>

namespace support {
namespace {

// Where a byte of a picture's memory lies, in words.
std::string Place(const model::Picture& p, int64_t index) {
  const int64_t row_bytes = int64_t{p.width} * p.BytesPerPixel();
  for (int64_t y = 0; y < p.height; ++y) {
    const int64_t at = index - (p.origin + y * p.pitch);
    if (at >= 0 && at < row_bytes) {
      return "pixel (" + std::to_string(at / p.BytesPerPixel()) + ", " + std::to_string(y) +
             ") byte " + std::to_string(at % p.BytesPerPixel());
    }
  }
  return "outside the pixels, byte " + std::to_string(index - p.origin) + " from pixel (0, 0)";
}

}  // namespace

testing::AssertionResult Same(const model::Picture& expected, model::Picture& actual,
                              const TSurfDesc& after) {
  auto failure = testing::AssertionFailure();
  failure << "code " << actual.format << ", " << actual.width << " x " << actual.height
          << ", pitch " << actual.pitch << ": ";
  for (size_t i = 0; i < expected.bytes.size(); ++i) {
    if (expected.bytes[i] != actual.bytes[i]) {
      return failure << Place(actual, int64_t(i)) << " is " << int{actual.bytes[i]} << ", expected "
                     << int{expected.bytes[i]};
    }
  }
  if (after.colorKey != expected.key) {
    return failure << "key is " << std::hex << after.colorKey << ", expected " << expected.key;
  }
  if (std::memcmp(expected.palette.data(), actual.palette.data(), sizeof(expected.palette)) != 0) {
    return failure << "palette changed";
  }
  TSurfDesc before = model::Describe(actual);
  before.colorKey = after.colorKey;
  if (before.width != after.width || before.height != after.height || before.bpp != after.bpp ||
      before.rMask != after.rMask || before.gMask != after.gMask || before.bMask != after.bMask ||
      before.aMask != after.aMask || before.pitch != after.pitch || before.pixels != after.pixels ||
      before.palette != after.palette) {
    return failure << "descriptor changed";
  }
  return testing::AssertionSuccess();
}

}  // namespace support
