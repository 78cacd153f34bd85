// The loaders that know the file's length: they agree with the others on good files and say what is
// wrong with the rest. Every file stands in a block of exactly its size, so that the address
// sanitizer sees a read outside.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "include/pincel.h"
#include "tests/model/picture.h"
#include "tests/support/bmp_writer.h"
#include "tests/support/cases.h"
#include "tests/support/checksum.h"
#include "tests/support/compare.h"
#include "tests/support/files.h"
#include "tests/support/gif_writer.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using model::Describe;
using model::Picture;
using support::BmpFile;
using support::BmpStride;
using support::ByteVector;
using support::CodeStream;
using support::Compressed;
using support::ForEachCase;
using support::GifFile;
using support::GifImage;
using support::Random;
using support::RunLengthStream;
using support::Same;
using support::SubBlocks;

constexpr uint8_t kOld = 0x11;

Picture Blank(int format, int width, int height, int padding = 3) {
  Picture p;
  p.format = format;
  p.width = width;
  p.height = height;
  p.pitch = width * p.BytesPerPixel() + padding;
  p.alpha_mask = format == 18 ? 0x8000u : format == 19 ? 0xF000u : 0u;
  const int64_t bytes = int64_t{p.pitch} * height - (height > 0 ? padding : 0);
  p.bytes.assign(size_t(std::max<int64_t>(bytes, 0)), kOld);
  p.has_palette = format == 8;
  p.palette.fill({kOld, kOld, kOld, kOld});
  return p;
}

std::vector<uint32_t> Pixels(const Picture& p) {
  std::vector<uint32_t> pixels;
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) pixels.push_back(p.Get(x, y));
  }
  return pixels;
}

// The first `length` bytes of a file, and no byte more.
class Exact {
 public:
  Exact(const ByteVector& file, size_t length) : length_(length), bytes_(new uint8_t[length]) {
    std::copy_n(file.begin(), length, bytes_.get());
  }
  explicit Exact(const ByteVector& file) : Exact(file, file.size()) {}
  const uint8_t* data() const { return bytes_.get(); }
  size_t size() const { return length_; }

 private:
  size_t length_;
  std::unique_ptr<uint8_t[]> bytes_;
};

pincel_status LoadBmp(Picture& p, const Exact& file) {
  TSurfDesc surface = Describe(p);
  return pincel_load_bmp(surface, file.data(), file.size());
}
pincel_status LoadBmp(Picture& p, const ByteVector& file) { return LoadBmp(p, Exact(file)); }

pincel_status InfoOf(const ByteVector& file, bool gif, TSurfDesc& surface) {
  const Exact exact(file);
  return (gif ? pincel_load_info_gif : pincel_load_info_bmp)(surface, exact.data(), exact.size());
}

// The first frame of a GIF file.
pincel_status LoadGif(Picture& p, const Exact& file) {
  TGifFrame frame{};
  const pincel_status found = pincel_gif_frame(frame, file.data(), file.size());
  if (found != PINCEL_OK) return found;
  TSurfDesc surface = Describe(p);
  return pincel_load_gif(surface, file.data(), file.size(), frame);
}
pincel_status LoadGif(Picture& p, const ByteVector& file) { return LoadGif(p, Exact(file)); }

const support::GifTable kTable{1, {0, 0, 0, 0x40, 0x20, 0x10, 0x90, 0xFF, 0x80, 0xF0, 0xA0, 0xFF}};

GifImage Image(int width, int height, const ByteVector& indices) {
  GifImage image;
  image.width = width;
  image.height = height;
  image.data = SubBlocks(Compressed(indices, 2).Bytes(), 7);
  return image;
}
GifImage Image(int width, int height, const CodeStream& stream) {
  GifImage image = Image(width, height, ByteVector{});
  image.data = SubBlocks(stream.Bytes());
  return image;
}
GifFile File(const std::vector<GifImage>& images) {
  GifFile file;
  file.width = 30;
  file.height = 20;
  file.table = kTable;
  file.images = images;
  return file;
}

// --- GIF ---

TEST(BoundedGif, ReportsTheScreen) {
  TSurfDesc info{};
  EXPECT_EQ(InfoOf(File({}).Bytes(), true, info), PINCEL_OK);
  EXPECT_EQ(info.width, 30);
  EXPECT_EQ(info.height, 20);
  EXPECT_EQ(info.bpp, 8u);
  const ByteVector file = File({}).Bytes();
  const size_t header = 13 + 4 * 3;
  for (size_t length = 0; length < file.size(); ++length) {
    info = {};
    EXPECT_EQ(InfoOf({file.begin(), file.begin() + int(length)}, true, info),
              length < 3        ? PINCEL_NOT_THIS_FORMAT
              : length < header ? PINCEL_TRUNCATED
                                : PINCEL_OK)
        << length;
    EXPECT_EQ(info.width, length < header ? 0 : 30);
  }
  EXPECT_EQ(pincel_load_info_gif(info, nullptr, 0), PINCEL_NOT_THIS_FORMAT);
  EXPECT_EQ(pincel_load_info_gif(info, nullptr, 100), PINCEL_NOT_THIS_FORMAT);
  EXPECT_EQ(InfoOf({'B', 'M', 0, 0}, true, info), PINCEL_NOT_THIS_FORMAT);
}

TEST(BoundedGif, WalkTellsWhatIsSaidAboutEachFrame) {
  GifImage first = Image(3, 2, ByteVector{0}), second = Image(5, 4, ByteVector{0}),
           third = Image(1, 1, ByteVector{0});
  first.left = 7;
  first.top = 65535;
  first.before = support::GraphicControl(2, 0x1234, 200);
  second.before = support::LoopCount(300);
  // An application of another name, then a plain text, to which the control before it belongs.
  second.before.insert(second.before.end(), {'!', 0xFF, 2, 'N', 'E', 3, 1, 9, 9, 0});
  third.before = support::GraphicControl(7, 1, 0);
  third.before.insert(third.before.end(), {'!', 1, 1, 0, 0});
  const GifFile contents = File({first, second, third});
  const Exact file(contents.Bytes());
  TGifFrame frame{};
  ASSERT_EQ(pincel_gif_frame(frame, file.data(), file.size()), PINCEL_OK);
  EXPECT_EQ(file.data()[frame.offset], ',');
  EXPECT_EQ(frame.area.left, 7);
  EXPECT_EQ(frame.area.top, 65535);
  EXPECT_EQ(frame.area.right, 10);
  EXPECT_EQ(frame.area.bottom, 65537);
  EXPECT_EQ(frame.delay, 0x1234);
  EXPECT_EQ(frame.disposal, 2);
  EXPECT_EQ(frame.transparent, 200);
  EXPECT_EQ(frame.loops, -1);
  ASSERT_EQ(pincel_gif_frame(frame, file.data(), file.size()), PINCEL_OK);
  EXPECT_EQ(frame.area.right, 5);
  EXPECT_EQ(frame.delay, 0);
  EXPECT_EQ(frame.disposal, 0);
  EXPECT_EQ(frame.transparent, -1);
  EXPECT_EQ(frame.loops, 300);
  ASSERT_EQ(pincel_gif_frame(frame, file.data(), file.size()), PINCEL_OK);
  EXPECT_EQ(frame.area.right, 1);
  EXPECT_EQ(frame.disposal, 0);
  EXPECT_EQ(frame.transparent, -1);
  EXPECT_EQ(frame.loops, 300);
  const TGifFrame last = frame;
  EXPECT_EQ(pincel_gif_frame(frame, file.data(), file.size()), PINCEL_NO_FRAME);
  EXPECT_EQ(frame.offset, last.offset);
  EXPECT_EQ(frame.area.right, 1);
  // Without a trailer the walk ends the same way.
  const Exact open(contents.Bytes(), contents.Bytes().size() - 1);
  EXPECT_EQ(pincel_gif_frame(frame, open.data(), open.size()), PINCEL_NO_FRAME);
}

TEST(BoundedGif, SubBlocksOfTheFrameBeforeAreNotSearchedForFrames) {
  GifImage image = Image(1, 1, ByteVector{1});
  image.data.back() = 4;
  image.data.insert(image.data.end(), {',', ';', ',', ',', 0});
  const Exact file(File({image, Image(2, 1, ByteVector{2, 3})}).Bytes());
  TGifFrame frame{};
  EXPECT_EQ(pincel_gif_frame(frame, file.data(), file.size()), PINCEL_OK);
  EXPECT_EQ(pincel_gif_frame(frame, file.data(), file.size()), PINCEL_OK);
  EXPECT_EQ(frame.area.right, 2);
  EXPECT_EQ(pincel_gif_frame(frame, file.data(), file.size()), PINCEL_NO_FRAME);
}

TEST(BoundedGif, FillsOnlyItsRectangleInEachFormat) {
  GifImage image = Image(2, 2, ByteVector{1, 2, 3, 0});
  image.before = support::GraphicControl(0, 0, 2);
  const ByteVector file = File({image}).Bytes();
  const struct {
    int format;
    std::vector<uint32_t> pixels;
  } cases[] = {{8, {1, 2, 3, 0}},
               {16, {0x4102, 0x97F0, 0xF51F, 0x0000}},
               {17, {0xA082, 0x4BF0, 0xFA9F, 0x8000}},
               {18, {0xA082, 0x4BF0, 0xFA9F, 0x8000}},
               {19, {0xF421, 0x09F8, 0xFFAF, 0xF000}},
               {24, {0x402010, 0x90FF80, 0xF0A0FF, 0x000000}},
               {32, {0xFF402010, 0x0090FF80, 0xFFF0A0FF, 0xFF000000}}};
  for (const auto& c : cases) {
    Picture expected = Blank(c.format, 3, 3), p = expected;
    for (int i = 0; i < 4; ++i) expected.Put(i % 2, i / 2, c.pixels[size_t(i)]);
    EXPECT_EQ(LoadGif(p, file), PINCEL_OK);
    for (size_t i = 0; c.format == 8 && i < 256; ++i) {
      const uint8_t* const rgb = &kTable.rgb[3 * i];
      expected.palette[i] = i < 4 ? TRGBA{rgb[2], rgb[1], rgb[0], kOld} : TRGBA{1, 0, 0, kOld};
    }
    TSurfDesc surface = Describe(p);
    EXPECT_TRUE(Same(expected, p, surface));
    // Rows upwards.
    p = Blank(c.format, 2, 2, 0);
    p.origin = p.pitch;
    p.pitch = -p.pitch;
    EXPECT_EQ(LoadGif(p, file), PINCEL_OK);
    EXPECT_EQ(Pixels(p), c.pixels) << c.format;
  }
  Picture p = Blank(8, 2, 2);
  p.has_palette = false;
  EXPECT_EQ(LoadGif(p, file), PINCEL_OK);
  EXPECT_EQ(Pixels(p), (std::vector<uint32_t>{1, 2, 3, 0}));
}

TEST(BoundedGif, MissingClearCodeIsSupplied) {
  Picture p = Blank(8, 3, 1);
  EXPECT_EQ(LoadGif(p, File({Image(3, 1, CodeStream(2).Clear().Codes({1, 6}).End())}).Bytes()),
            PINCEL_OK);
  const std::vector<uint32_t> meant = Pixels(p);
  EXPECT_EQ(meant, (std::vector<uint32_t>{1, 1, 1}));
  p = Blank(8, 3, 1);
  EXPECT_EQ(LoadGif(p, File({Image(3, 1, CodeStream(2).Codes({1, 6}).End())}).Bytes()), PINCEL_OK);
  EXPECT_EQ(Pixels(p), meant);
}

TEST(BoundedGif, CodesOfOneBitWorkThough2IsTheLeast) {
  // Behind the clear code: 0 in two bits; then three bits each: 1, 4 (0 1), 5 (1 0).
  CodeStream stream(1);
  GifImage image = Image(6, 1, ByteVector{});
  image.root_bits = 1;
  const int codes[][2] = {{2, 2}, {0, 2}, {1, 3}, {4, 3}, {5, 3}, {3, 3}};
  ByteVector bytes(2);
  int at = 0;
  for (const auto& [code, width] : codes) {
    for (int i = 0; i < width; ++i, ++at)
      bytes[size_t(at / 8)] |= uint8_t((code >> i & 1) << at % 8);
  }
  image.data = SubBlocks(bytes);
  Picture p = Blank(8, 6, 1);
  EXPECT_EQ(LoadGif(p, File({image}).Bytes()), PINCEL_OK);
  EXPECT_EQ(Pixels(p), (std::vector<uint32_t>{0, 1, 0, 1, 1, 0}));
}

TEST(BoundedGif, Statuses) {
  const auto load = [](const GifFile& file, int width = 2, int height = 2) {
    Picture p = Blank(24, width, height);
    return LoadGif(p, file.Bytes());
  };
  const GifImage good = Image(2, 2, ByteVector{1, 2, 3, 0});
  EXPECT_EQ(load(File({good})), PINCEL_OK);
  EXPECT_EQ(load(File({})), PINCEL_NO_FRAME);
  EXPECT_EQ(load(File({good}), 1, 2), PINCEL_SURFACE_TOO_SMALL);
  EXPECT_EQ(load(File({good}), 2, 1), PINCEL_SURFACE_TOO_SMALL);
  // Ends early, once with an end code and once without.
  EXPECT_EQ(load(File({Image(2, 2, ByteVector{1, 2, 3})})), PINCEL_TRUNCATED);
  GifImage image = good;
  image.data = {1, image.data[1], 0};
  EXPECT_EQ(load(File({image})), PINCEL_TRUNCATED);
  image.data = {0};
  EXPECT_EQ(load(File({image})), PINCEL_TRUNCATED);
  // Codes that do not exist yet.
  EXPECT_EQ(load(File({Image(2, 2, CodeStream(2).Clear().Codes({1, 7, 0, 0}).End())})),
            PINCEL_CORRUPT);
  EXPECT_EQ(load(File({Image(2, 2, CodeStream(2).Clear().Codes({6, 0, 0}).End())})),
            PINCEL_CORRUPT);
  // What follows the last pixel does not count.
  EXPECT_EQ(load(File({Image(2, 2, CodeStream(2).Clear().Codes({1, 2, 3, 0, 2, 15}).End())})),
            PINCEL_OK);
  for (int root_bits : {0, 9, 12, 255}) {
    image = good;
    image.root_bits = root_bits;
    EXPECT_EQ(load(File({image})), PINCEL_CORRUPT) << root_bits;
  }
  EXPECT_EQ(load(File({Image(0, 2, ByteVector{})})), PINCEL_OK);
  EXPECT_EQ(load(File({Image(2, 0, ByteVector{})})), PINCEL_OK);

  const Exact file(File({good}).Bytes());
  TGifFrame frame{};
  EXPECT_EQ(pincel_gif_frame(frame, file.data(), file.size()), PINCEL_OK);
  Picture p = Blank(32, 2, 2);
  TSurfDesc surface = Describe(p);
  surface.bpp = 15;
  EXPECT_EQ(pincel_load_gif(surface, file.data(), file.size(), frame), PINCEL_UNSUPPORTED);
  surface = Describe(p);
  surface.pixels = nullptr;
  EXPECT_EQ(pincel_load_gif(surface, file.data(), file.size(), frame), PINCEL_SURFACE_TOO_SMALL);
  surface = Describe(p);
  surface.pitch = 7;
  EXPECT_EQ(pincel_load_gif(surface, file.data(), file.size(), frame), PINCEL_SURFACE_TOO_SMALL);
  // Records that belong to no frame.
  surface = Describe(p);
  for (size_t offset : {size_t{0}, size_t{1}, frame.offset + 1, file.size(), SIZE_MAX}) {
    TGifFrame wrong = frame;
    wrong.offset = offset;
    EXPECT_EQ(pincel_load_gif(surface, file.data(), file.size(), wrong), PINCEL_NO_FRAME);
    if (offset != 0) {
      EXPECT_EQ(pincel_gif_frame(wrong, file.data(), file.size()), PINCEL_NO_FRAME);
    }
  }
  frame.transparent = INT32_MAX;
  EXPECT_EQ(pincel_load_gif(surface, file.data(), file.size(), frame), PINCEL_OK);
  EXPECT_EQ(pincel_gif_frame(frame, nullptr, 0), PINCEL_NO_FRAME);
  frame = {};
  EXPECT_EQ(pincel_gif_frame(frame, nullptr, 0), PINCEL_NOT_THIS_FORMAT);
  EXPECT_EQ(pincel_load_gif(surface, nullptr, 0, frame), PINCEL_NOT_THIS_FORMAT);
}

// Loads every beginning of a file: pixels are those of the whole file or untouched.
TEST(BoundedGif, EveryTruncation) {
  Random random(3);
  for (bool interlaced : {false, true}) {
    ByteVector indices(40 * 9);
    for (uint8_t& index : indices) index = uint8_t(random.Below(4));
    GifImage image = Image(40, 9, indices);
    image.interlaced = interlaced;
    image.before = support::GraphicControl(1, 5, 3);
    image.table = kTable;
    const ByteVector file = File({image}).Bytes();
    for (int format : {8, 16, 24, 32}) {
      Picture whole = Blank(format, 40, 9);
      ASSERT_EQ(LoadGif(whole, file), PINCEL_OK);
      bool had_pixels = false;
      for (size_t length = 0; length < file.size(); ++length) {
        Picture p = Blank(format, 40, 9);
        const Picture before = p;
        const pincel_status status = LoadGif(p, Exact(file, length));
        // Between the global table and the extension the walk sees a file without frames; the end
        // code and what follows are not needed.
        if (length < 3) {
          ASSERT_EQ(status, PINCEL_NOT_THIS_FORMAT);
        } else if (length == 13 + 12 || length == 13 + 12 + 8) {
          ASSERT_EQ(status, PINCEL_NO_FRAME);
        } else if (length < file.size() - 4) {
          ASSERT_EQ(status, PINCEL_TRUNCATED) << length;
        }
        for (int y = 0; y < 9; ++y) {
          for (int x = 0; x < 40; ++x) {
            const uint32_t pixel = p.Get(x, y);
            ASSERT_TRUE(pixel == whole.Get(x, y) || pixel == before.Get(x, y));
            had_pixels = had_pixels || pixel != before.Get(x, y);
          }
        }
      }
      EXPECT_TRUE(had_pixels);
    }
  }
}

TEST(BoundedGif, AgreesWithTheOtherLoader) {
  support::ForEachTarget([] {
    ForEachCase(100, [](Random& random, int) {
      const int width = random.Between(1, 60), height = random.Between(1, 20);
      const int root_bits = random.Between(2, 8);
      ByteVector indices(size_t(width * height));
      const int values = random.OneIn(2) ? 3 : 1 << root_bits;
      for (uint8_t& index : indices) index = uint8_t(random.Below(values));
      GifImage image = Image(width, height, ByteVector{});
      image.interlaced = random.OneIn(2);
      image.root_bits = root_bits;
      image.data = SubBlocks(Compressed(indices, root_bits, random.Below(9)).Bytes(),
                             size_t(random.Between(1, 255)));
      image.table = {root_bits - 1, ByteVector(768)};
      for (uint8_t& byte : image.table.rgb) byte = random.Byte();
      const ByteVector file = File({image}).Bytes();
      for (int format : model::kFormats) {
        Picture expected = Blank(format, width, height, 0), actual = expected;
        support::GifInMemory memory(file);
        TSurfDesc info{}, surface = Describe(expected);
        CQXGIF gif{};
        RAW frame;
        ASSERT_TRUE(LoadInfoGIF(info, memory.Data(), gif, frame));
        ASSERT_TRUE(LoadGIFNext(info, memory.Data(), gif, frame));
        ASSERT_TRUE(LoadGIF(surface, memory.Data(), gif, frame));
        ASSERT_EQ(LoadGif(actual, file), PINCEL_OK);
        for (size_t i = 3; format == 32 && i < expected.bytes.size(); i += 4) {
          expected.bytes[i] = 0xFF;  // where the other one leaves indices
        }
        ASSERT_TRUE(Same(expected, actual, Describe(actual)));
      }
    });
  });
}

// --- BMP ---

const std::vector<TRGBA> kColours = {
    {0, 0, 0, 1}, {0x10, 0x20, 0x40, 2}, {0x80, 0xFF, 0x90, 3}, {0xFF, 0xA0, 0xF0, 4}};
constexpr uint32_t kRgb[] = {0x000000, 0x402010, 0x90FF80, 0xF0A0FF};

BmpFile Bmp(int width, int height, int bits, const ByteVector& pixels) {
  BmpFile file;
  file.width = width;
  file.height = height;
  file.bits = uint16_t(bits);
  if (bits <= 8) {
    file.table = kColours;
    file.colours_used = 4;
    if (bits == 1) file.table.resize(2), file.colours_used = 2;
  }
  file.pixels = pixels;
  return file;
}

TEST(BoundedBmp, IndicesOfEveryWidth) {
  const struct {
    int bits;
    ByteVector row;  // 0, 1, 1, 0, 1, 0, 0, 0, 1 with 1 bit; 1, 2, 3, 0, 1, 2, 3, 1, 2 with more
  } cases[] = {{1, {0x68, 0x80, 0, 0}},
               {2, {0x6C, 0x6D, 0x80, 0}},
               {4, {0x12, 0x30, 0x12, 0x31, 0x20, 0, 0, 0}},
               {8, {1, 2, 3, 0, 1, 2, 3, 1, 2, 0, 0, 0}}};
  for (const auto& c : cases) {
    const std::vector<uint32_t> indices = c.bits == 1
                                              ? std::vector<uint32_t>{0, 1, 1, 0, 1, 0, 0, 0, 1}
                                              : std::vector<uint32_t>{1, 2, 3, 0, 1, 2, 3, 1, 2};
    for (int height : {1, -1}) {
      const ByteVector file = Bmp(9, height, c.bits, c.row).Bytes();
      Picture p = Blank(8, 9, 1);
      EXPECT_EQ(LoadBmp(p, file), PINCEL_OK);
      EXPECT_EQ(Pixels(p), indices) << c.bits;
      EXPECT_EQ(p.palette[1].red, 0x40);
      EXPECT_EQ(p.palette[0].blue, 0);
      EXPECT_EQ(p.palette[255].blue, 1);
      EXPECT_EQ(p.palette[1].alpha, kOld);
      p = Blank(32, 9, 1);
      EXPECT_EQ(LoadBmp(p, file), PINCEL_OK);
      std::vector<uint32_t> colours;
      for (uint32_t index : indices) colours.push_back(0xFF000000 | kRgb[index]);
      EXPECT_EQ(Pixels(p), colours) << c.bits;
    }
  }
}

TEST(BoundedBmp, RowsLongerThanTheScratchSpace) {
  for (int bits : {1, 2, 4, 8}) {
    const int width = 1000;
    ByteVector row(size_t(BmpStride(width, bits)));
    Random random(uint64_t(bits) + 1);
    for (uint8_t& byte : row) byte = random.Byte();
    Picture p = Blank(8, width, 1);
    ASSERT_EQ(LoadBmp(p, Bmp(width, 1, bits, row).Bytes()), PINCEL_OK);
    for (int x = 0; x < width; ++x) {
      const int from_top = 8 - bits - x * bits % 8;
      ASSERT_EQ(p.Get(x, 0), uint32_t(row[size_t(x * bits / 8)] >> from_top & ((1 << bits) - 1)));
    }
  }
}

TEST(BoundedBmp, HeadersOfEverySize) {
  for (uint32_t header : {12u, 16u, 40u, 52u, 56u, 64u, 108u, 124u}) {
    BmpFile file = Bmp(3, 2, 8, {1, 2, 3, 0, 3, 2, 1, 0});
    file.header = 124;  // the fields that follow the first sixteen bytes
    ByteVector bytes = file.Bytes();
    if (header == 12) {
      file.header = 12;
      bytes = file.Bytes();
    } else {
      bytes[14] = uint8_t(header);
      bytes.erase(bytes.begin() + 14 + int(header), bytes.begin() + 14 + 124);
      bytes[10] = uint8_t(bytes[10] - (124 - header));
      bytes[11] = 0;
    }
    TSurfDesc info{};
    EXPECT_EQ(InfoOf(bytes, false, info), PINCEL_OK) << header;
    EXPECT_EQ(info.width, 3);
    EXPECT_EQ(info.height, 2);
    EXPECT_EQ(info.bpp, 8u);
    Picture p = Blank(24, 3, 2);
    // Where the count of colours is not said, the table would go on into the pixels.
    if (header < 40) bytes.resize(bytes.size() + 1024);
    EXPECT_EQ(LoadBmp(p, bytes), PINCEL_OK) << header;
    EXPECT_EQ(Pixels(p), (std::vector<uint32_t>{kRgb[3], kRgb[2], kRgb[1],  //
                                                kRgb[1], kRgb[2], kRgb[3]}))
        << header;
  }
  for (uint32_t header : {0u, 11u, 41u, 48u, 128u, 0xFFFFFFFFu}) {
    ByteVector bytes = Bmp(3, 2, 8, ByteVector(8)).Bytes();
    for (int i = 0; i < 4; ++i) bytes[size_t(14 + i)] = uint8_t(header >> 8 * i);
    Picture p = Blank(24, 3, 2);
    EXPECT_EQ(LoadBmp(p, bytes), PINCEL_UNSUPPORTED) << header;
  }
}

// A 40-byte header with masks behind it, or a larger one with masks inside.
ByteVector MaskedFile(uint32_t header, int bits, const std::array<uint32_t, 4>& masks,
                      const ByteVector& pixels, uint32_t compression = 3) {
  BmpFile file = Bmp(int(pixels.size()) / (bits / 8), -1, bits, pixels);
  file.header = header;
  file.compression = compression;
  file.gap = header == 40 ? 16 : 0;
  ByteVector bytes = file.Bytes();
  for (size_t i = 0; i < (header == 52 ? 12u : 16u); ++i) {
    bytes[54 + i] = uint8_t(masks[i / 4] >> 8 * (i % 4));
  }
  return bytes;
}

TEST(BoundedBmp, SixteenBits) {
  // 555 without masks: full, half and lowest steps, spread over 0..255.
  Picture p = Blank(32, 4, 1);
  EXPECT_EQ(LoadBmp(p, Bmp(4, 1, 16, {0xFF, 0xFF, 0x10, 0x42, 1, 0, 0, 0x80}).Bytes()), PINCEL_OK);
  EXPECT_EQ(Pixels(p), (std::vector<uint32_t>{0xFFFFFFFF, 0xFF848484, 0xFF000008, 0xFF000000}));
  // 565 with masks behind the header and inside.
  for (uint32_t header : {40u, 52u, 56u, 108u, 124u}) {
    p = Blank(24, 2, 1);
    EXPECT_EQ(
        LoadBmp(p, MaskedFile(header, 16, {0xF800, 0x07E0, 0x001F, 0}, {0xE0, 0x07, 0x00, 0x80})),
        PINCEL_OK);
    EXPECT_EQ(Pixels(p), (std::vector<uint32_t>{0x00FF00, 0x840000})) << header;
  }
  p = Blank(19, 2, 1);
  EXPECT_EQ(
      LoadBmp(p, MaskedFile(56, 16, {0x0F00, 0x00F0, 0x000F, 0xF000}, {0x34, 0x12, 0xCD, 0xAB})),
      PINCEL_OK);
  EXPECT_EQ(Pixels(p), (std::vector<uint32_t>{0x1234, 0xABCD}));
}

TEST(BoundedBmp, ThirtyTwoBits) {
  const ByteVector pixels = {1, 2, 3, 4, 0xFE, 0xDC, 0xBA, 0x98};
  Picture p = Blank(32, 2, 1);
  EXPECT_EQ(LoadBmp(p, Bmp(2, 1, 32, pixels).Bytes()), PINCEL_OK);
  EXPECT_EQ(Pixels(p), (std::vector<uint32_t>{0xFF030201, 0xFFBADCFE}));
  const std::array<uint32_t, 4> abgr = {0x0000FF00, 0x00FF0000, 0xFF000000, 0x000000FF};
  p = Blank(32, 2, 1);
  EXPECT_EQ(LoadBmp(p, MaskedFile(108, 32, abgr, pixels)), PINCEL_OK);
  EXPECT_EQ(Pixels(p), (std::vector<uint32_t>{0x01020304, 0xFEDCBA98}));
  // The same behind a header of 40 bytes.
  EXPECT_EQ(LoadBmp(p, MaskedFile(40, 32, abgr, pixels, 6)), PINCEL_OK);
  EXPECT_EQ(Pixels(p), (std::vector<uint32_t>{0x01020304, 0xFEDCBA98}));
  EXPECT_EQ(LoadBmp(p, MaskedFile(40, 32, abgr, pixels, 3)), PINCEL_OK);  // three masks
  EXPECT_EQ(Pixels(p), (std::vector<uint32_t>{0xFF020304, 0xFFDCBA98}));
  // Ten bits keep the upper eight; no mask is a channel of zeros; one bit is 0 or 255.
  p = Blank(32, 1, 1);
  EXPECT_EQ(LoadBmp(p, MaskedFile(56, 32, {0x3FF00000, 0, 0x1, 0x80000000}, {1, 0, 0xC0, 0x9F})),
            PINCEL_OK);
  EXPECT_EQ(Pixels(p), (std::vector<uint32_t>{0xFF7F00FF}));
}

TEST(BoundedBmp, TwentyFourBitsAreOpaque) {
  const ByteVector file =
      Bmp(2, 2, 24, {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0}).Bytes();
  Picture p = Blank(32, 2, 2);
  EXPECT_EQ(LoadBmp(p, file), PINCEL_OK);
  EXPECT_EQ(Pixels(p), (std::vector<uint32_t>{0xFF090807, 0xFF0C0B0A, 0xFF030201, 0xFF060504}));
  p = Blank(19, 2, 2);
  EXPECT_EQ(LoadBmp(p, file), PINCEL_OK);
  EXPECT_EQ(p.Get(0, 0), 0xF000u);
}

TEST(BoundedBmp, RunLengthOf4And8Bits) {
  BmpFile file = Bmp(9, 4, 8,
                     RunLengthStream()
                         .Run(2, 1)
                         .Literal({2, 3, 1})
                         .EndOfLine()
                         .Delta(8, 1)
                         .Run(200, 3)
                         .EndOfLine()
                         .Run(1, 2)
                         .EndOfBitmap()
                         .Bytes());
  file.compression = 1;
  const std::vector<uint32_t> expected = {2, 0, 0, 0, 0, 0, 0, 0, 0,  //
                                          0, 0, 0, 0, 0, 0, 0, 0, 3,  //
                                          0, 0, 0, 0, 0, 0, 0, 0, 0,  //
                                          1, 1, 2, 3, 1, 0, 0, 0, 0};
  Picture p = Blank(8, 9, 4);
  EXPECT_EQ(LoadBmp(p, file.Bytes()), PINCEL_OK);
  EXPECT_EQ(Pixels(p), expected);

  file.bits = 4;
  file.compression = 2;
  file.pixels = RunLengthStream()
                    .Run(2, 0x11)
                    .Raw({0, 3, 0x23, 0x10})
                    .EndOfLine()
                    .Delta(8, 1)
                    .Run(200, 0x31)
                    .EndOfLine()
                    .Run(1, 0x20)
                    .EndOfBitmap()
                    .Bytes();
  p = Blank(8, 9, 4);
  EXPECT_EQ(LoadBmp(p, file.Bytes()), PINCEL_OK);
  EXPECT_EQ(Pixels(p), expected);

  // Runs alternate; five and nine literals take four and six bytes.
  file.width = 20;
  file.height = 1;
  file.pixels = RunLengthStream()
                    .Run(5, 0x12)
                    .Raw({0, 5, 0x01, 0x23, 0x10, 0})
                    .Raw({0, 9, 0x32, 0x10, 0x32, 0x10, 0x30, 0})
                    .Run(255, 0x32)
                    .EndOfBitmap()
                    .Bytes();
  p = Blank(8, 20, 1);
  EXPECT_EQ(LoadBmp(p, file.Bytes()), PINCEL_OK);
  EXPECT_EQ(Pixels(p),
            (std::vector<uint32_t>{1, 2, 1, 2, 1, 0, 1, 2, 3, 1, 3, 2, 1, 0, 3, 2, 1, 0, 3, 3}));
}

TEST(BoundedBmp, Statuses) {
  const ByteVector pixels(4 * 2 * 3);
  const auto load = [](const ByteVector& file, int format = 24, int width = 3, int height = 2) {
    Picture p = Blank(format, width, height);
    return LoadBmp(p, file);
  };
  const auto changed = [&](size_t at, uint32_t value, int bits = 24) {
    ByteVector bytes = Bmp(3, 2, bits, ByteVector(24)).Bytes();
    for (size_t i = 0; i < 4; ++i) bytes[at + i] = uint8_t(value >> 8 * i);
    return bytes;
  };
  EXPECT_EQ(load(Bmp(3, 2, 24, pixels).Bytes()), PINCEL_OK);
  EXPECT_EQ(load(Bmp(3, 2, 24, pixels).Bytes(), 8), PINCEL_UNSUPPORTED);
  EXPECT_EQ(load(Bmp(3, 2, 24, pixels).Bytes(), 24, 2, 2), PINCEL_SURFACE_TOO_SMALL);
  EXPECT_EQ(load(Bmp(3, 2, 24, pixels).Bytes(), 24, 3, 1), PINCEL_SURFACE_TOO_SMALL);
  EXPECT_EQ(load({}), PINCEL_NOT_THIS_FORMAT);
  EXPECT_EQ(load({'B'}), PINCEL_NOT_THIS_FORMAT);
  EXPECT_EQ(load({'G', 'I', 'F'}), PINCEL_NOT_THIS_FORMAT);
  TSurfDesc surface{};
  EXPECT_EQ(pincel_load_bmp(surface, nullptr, 0), PINCEL_NOT_THIS_FORMAT);
  EXPECT_EQ(pincel_load_bmp(surface, nullptr, 99), PINCEL_NOT_THIS_FORMAT);
  const ByteVector good = Bmp(3, 2, 24, pixels).Bytes();
  EXPECT_EQ(pincel_load_bmp(surface, good.data(), good.size()), PINCEL_UNSUPPORTED);
  surface.bpp = 24;
  EXPECT_EQ(pincel_load_bmp(surface, good.data(), good.size()), PINCEL_SURFACE_TOO_SMALL);

  for (uint32_t width : {0u, 0xFFFFFFFFu, 0x80000000u}) {
    EXPECT_EQ(load(changed(18, width)), PINCEL_CORRUPT);
  }
  for (uint32_t height : {0u, 0x80000000u}) EXPECT_EQ(load(changed(22, height)), PINCEL_CORRUPT);
  EXPECT_EQ(load(changed(18, 0x7FFFFFFF)), PINCEL_SURFACE_TOO_SMALL);
  EXPECT_EQ(load(changed(22, 0x80000001)), PINCEL_SURFACE_TOO_SMALL);
  for (uint32_t bits : {0u, 3u, 12u, 48u, 64u, 0xFFFFu}) {
    EXPECT_EQ(load(changed(28, bits)), PINCEL_UNSUPPORTED) << bits;
  }
  for (uint32_t compression : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 0xFFFFFFFFu}) {
    EXPECT_EQ(load(changed(30, compression)), PINCEL_UNSUPPORTED) << compression;
  }
  for (uint32_t at : {0u, 14u, 53u}) EXPECT_EQ(load(changed(10, at)), PINCEL_CORRUPT) << at;
  for (uint32_t at : {58u, 79u, 200u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    EXPECT_EQ(load(changed(10, at)), PINCEL_TRUNCATED) << at;
  }
  // More colours than there are indices count as all; a table past the end of the file does not.
  EXPECT_EQ(load(changed(46, 0xFFFFFFFF, 4)), PINCEL_TRUNCATED);
  EXPECT_EQ(load(MaskedFile(56, 16, {0x0F0F, 0, 0, 0}, ByteVector(2)), 24, 1, 1),
            PINCEL_UNSUPPORTED);  // a mask with a hole

  BmpFile file = Bmp(3, 2, 8, RunLengthStream().Run(1, 1).Delta(3, 0).EndOfBitmap().Bytes());
  file.compression = 1;
  EXPECT_EQ(load(file.Bytes()), PINCEL_CORRUPT);
  file.pixels = RunLengthStream().Run(3, 1).EndOfLine().Run(2, 1).Bytes();
  EXPECT_EQ(load(file.Bytes()), PINCEL_TRUNCATED);
  file.pixels = RunLengthStream().Run(3, 1).EndOfLine().Run(3, 1).Bytes();
  EXPECT_EQ(load(file.Bytes()), PINCEL_OK);  // nothing is missing but the end code
}

TEST(BoundedBmp, QxFileIsReadFromOffset54) {
  BmpFile file = Bmp(2, 1, 8, {2, 3, 0, 0});
  file.qx = true;
  Picture p = Blank(8, 2, 1);
  EXPECT_EQ(LoadBmp(p, file.Bytes()), PINCEL_OK);
  EXPECT_EQ(Pixels(p), (std::vector<uint32_t>{0, 0}));  // the first entry's bytes
}

TEST(BoundedBmp, EveryTruncation) {
  Random random(4);
  ByteVector noise(4096);
  for (uint8_t& byte : noise) byte = uint8_t(random.Below(4));
  std::vector<ByteVector> files;
  for (int bits : {1, 4, 8, 16, 24, 32}) {
    for (int height : {5, -5}) {
      files.push_back(
          Bmp(7, height, bits, {noise.begin(), noise.begin() + 5 * BmpStride(7, bits)}).Bytes());
    }
  }
  files.push_back(MaskedFile(40, 16, {0xF800, 0x07E0, 0x001F, 0}, ByteVector(14)));
  for (int bits : {4, 8}) {
    BmpFile file =
        Bmp(7, 5, bits,
            RunLengthStream()
                .Run(7, 0x11)
                .EndOfLine()
                .Raw(bits == 8 ? ByteVector{0, 4, 1, 2, 3, 1} : ByteVector{0, 4, 0x12, 0x31})
                .Delta(2, 1)
                .Run(1, 0x22)
                .EndOfBitmap()
                .Bytes());
    file.compression = bits == 8 ? 1 : 2;
    files.push_back(file.Bytes());
  }
  for (const ByteVector& file : files) {
    for (int format : {8, 16, 24, 32}) {
      Picture whole = Blank(format, 7, 5);
      const pincel_status complete = LoadBmp(whole, file);
      if (complete == PINCEL_UNSUPPORTED) continue;
      ASSERT_EQ(complete, PINCEL_OK);
      for (size_t length = 0; length < file.size(); ++length) {
        Picture p = Blank(format, 7, 5);
        const Picture before = p;
        const pincel_status status = LoadBmp(p, Exact(file, length));
        ASSERT_TRUE(status == PINCEL_TRUNCATED ||
                    (length < 2 && status == PINCEL_NOT_THIS_FORMAT) ||
                    (length + 4 > file.size() && status == PINCEL_OK))  // padding of the last row
            << length << ": " << status;
        for (int y = 0; y < 5; ++y) {
          for (int x = 0; x < 7; ++x) {
            const uint32_t pixel = p.Get(x, y);
            ASSERT_TRUE(pixel == whole.Get(x, y) || pixel == before.Get(x, y));
          }
        }
      }
    }
  }
}

TEST(BoundedBmp, AgreesWithTheOtherLoader) {
  support::ForEachTarget([] {
    ForEachCase(150, [](Random& random, int) {
      const int width = random.Between(1, 60), height = random.Between(1, 20);
      const int bits = random.OneIn(2) ? 8 : 24;
      BmpFile contents = Bmp(width, random.OneIn(2) ? height : -height, bits,
                             ByteVector(size_t(BmpStride(width, bits) * height)));
      for (uint8_t& byte : contents.pixels) byte = random.Byte();
      const ByteVector file = contents.Bytes();
      for (int format : model::kFormats) {
        if (format == 8 && bits == 24) continue;
        Picture expected = Blank(format, width, height), actual = expected;
        support::FileInMemory memory(file);
        TSurfDesc surface = Describe(expected);
        ASSERT_TRUE(LoadBMP(surface, memory.Data()));
        ASSERT_EQ(LoadBmp(actual, file), PINCEL_OK);
        if (format == 8) {  // the other one keeps the entries that the file lacks
          for (size_t i = 4; i < 256; ++i) expected.palette[i] = {1, 0, 0, kOld};
        }
        for (int i = 0; bits == 24 && i < width * height; ++i) {  // alpha from elsewhere
          const uint32_t alpha = format == 32                   ? 0xFF000000
                                 : format == 19                 ? 0xF000
                                 : format == 17 || format == 18 ? 0x8000
                                                                : 0;
          const int x = i % width, y = i / width;
          expected.Put(x, y, expected.Get(x, y) | alpha);
        }
        ASSERT_TRUE(Same(expected, actual, Describe(actual)));
      }
    });
  });
}

// --- real files ---

// What ImageMagick 6.9.11 decodes: convert FILE -set colorspace sRGB -depth 8 rgb:-
// Not listed are fields of 3, 4 and 10 bits, whose largest value it does not make 255, and
// bmpsuite-rgba32abf, whose compression it does not know.
// bmpsuite-pal8os2v2-sz, whose size it disputes, is the picture of bmpsuite-pal8.
struct Reference {
  const char* file;
  uint32_t crc;  // red, green and blue of every pixel
};
constexpr Reference kReferences[] = {
#include "tests/checksums/bmp_reference.inc"
};

TEST(BoundedBmp, AgreesWithAnotherDecoder) {
  for (const Reference& reference : kReferences) {
    const Exact file(support::BytesOf(PINCEL_SOURCE_DIR "/" + std::string(reference.file)));
    TSurfDesc info{};
    ASSERT_EQ(pincel_load_info_bmp(info, file.data(), file.size()), PINCEL_OK) << reference.file;
    Picture p = Blank(24, info.width, info.height);
    EXPECT_EQ(LoadBmp(p, file), PINCEL_OK) << reference.file;
    ByteVector rgb;
    for (uint32_t pixel : Pixels(p)) {
      rgb.insert(rgb.end(), {uint8_t(pixel >> 16), uint8_t(pixel >> 8), uint8_t(pixel)});
    }
    EXPECT_EQ(support::Crc32(rgb), reference.crc) << reference.file;
  }
}

}  // namespace
