#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <type_traits>
#include <vector>

#include "include/pincel.h"
#include "tests/model/gif_model.h"
#include "tests/support/cases.h"
#include "tests/support/compare.h"
#include "tests/support/gif_writer.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using model::Describe;
using model::Picture;
using support::ByteVector;
using support::CodeStream;
using support::Compressed;
using support::ForEachCase;
using support::GifFile;
using support::GifImage;
using support::GifInMemory;
using support::GifTable;
using support::Random;
using support::Same;
using support::SubBlocks;

static_assert(std::is_standard_layout_v<CQXGIF> && std::is_trivial_v<CQXGIF>);

constexpr uint8_t kOld = 0x11;  // every byte of a surface before it is loaded

Picture Blank(int format, int width, int height, int padding = 3) {
  Picture p;
  p.format = format;
  p.width = width;
  p.height = height;
  p.pitch = width * p.BytesPerPixel() + padding;
  p.alpha_mask = format == 18 ? 0x8000u : format == 19 ? 0xF000u : 0u;
  p.bytes.assign(size_t(p.pitch * height), kOld);
  p.has_palette = format == 8;
  p.palette.fill({kOld, kOld, kOld, kOld});
  return p;
}

// Entries 0 to 3: black, and three colours that every format tells apart.
const GifTable kTable{1, {0, 0, 0, 0x40, 0x20, 0x10, 0x90, 0xFF, 0x80, 0xF0, 0xA0, 0xFF}};

GifImage Image(int width, int height, const ByteVector& indices) {
  GifImage image;
  image.width = width;
  image.height = height;
  image.data = SubBlocks(Compressed(indices, 2).Bytes());
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

// A walk over a file.
struct Walk {
  explicit Walk(const GifFile& file, bool alpha = false) : Walk(file.Bytes(), alpha) {}
  explicit Walk(const ByteVector& bytes, bool alpha = false) : memory(bytes) {
    started = (alpha ? LoadInfoGIFAlpha : LoadInfoGIF)(info, memory.Data(), gif, frame);
  }
  bool Next() { return LoadGIFNext(info, nullptr, gif, frame); }
  bool Load(Picture& p) {
    TSurfDesc surface = Describe(p);
    return LoadGIF(surface, nullptr, gif, frame);
  }
  bool LoadAlpha(Picture& p) {
    TSurfDesc surface = Describe(p);
    return LoadGIFAlpha(surface, nullptr, gif, frame);
  }

  GifInMemory memory;
  TSurfDesc info{};
  CQXGIF gif{};
  RAW frame{};
  bool started = false;
};

// Loads the first frame.
bool Load(Picture& p, const GifFile& file) {
  Walk walk(file);
  return walk.started && walk.Next() && walk.Load(p);
}

// The indices that the first frame has, as DecodeImage gives them, in `size` bytes.
ByteVector Decoded(const GifImage& image, size_t size) {
  Walk walk(File({image}));
  EXPECT_TRUE(walk.Next());
  ByteVector indices(size, kOld);
  walk.frame.output = indices.data();
  EXPECT_EQ(walk.gif.DecodeImage(&walk.frame), 0u);
  return indices;
}

TEST(LoadInfoGIF, ReadsScreenSizeAndColourTable) {
  Walk walk(File({}));
  EXPECT_TRUE(walk.started);
  EXPECT_EQ(walk.info.width, 30);
  EXPECT_EQ(walk.info.height, 20);
  EXPECT_EQ(walk.info.bpp, 8u);
  EXPECT_EQ(walk.info.rMask, 0u);
  EXPECT_EQ(walk.info.pitch, 0);
  EXPECT_EQ(walk.info.pixels, nullptr);
  EXPECT_EQ(walk.frame.width, 30u);
  EXPECT_EQ(walk.frame.height, 20u);
  EXPECT_EQ(walk.frame.readPalette, 1u);
  EXPECT_EQ(walk.frame.palette[1][0], 0x40);
  EXPECT_EQ(walk.frame.palette[1][1], 0x20);
  EXPECT_EQ(walk.frame.palette[1][2], 0x10);
  EXPECT_EQ(walk.frame.palette[1][3], 0);
  EXPECT_EQ(walk.gif.cursor, walk.memory.Data() + 13 + 4 * 3);
  EXPECT_EQ(walk.gif.blockPos, nullptr);
}

TEST(LoadInfoGIF, RefusesOtherFiles) {
  GifFile file = File({});
  file.signature = "GIE89a";
  Walk walk(file);
  EXPECT_FALSE(walk.started);
  EXPECT_FALSE(walk.Next());
  EXPECT_EQ(walk.gif.cursor, nullptr);
  EXPECT_FALSE(LoadInfoGIF(walk.info, nullptr, walk.gif, walk.frame));
  // The version is not looked at.
  file.signature = "GIF11b";
  EXPECT_TRUE(Walk(file).started);
}

TEST(LoadInfoGIF, PaletteIsBlackWhereNoTableWasRead) {
  for (bool alpha : {false, true}) {
    for (int exponent : {-1, 0}) {
      GifFile file = File({Image(4, 1, ByteVector{0, 1, 2, 3})});
      file.table.exponent = exponent;
      file.table.rgb = exponent < 0 ? ByteVector() : ByteVector{1, 2, 3, 4, 5, 6};
      GifInMemory memory(file.Bytes());
      TSurfDesc info{};
      CQXGIF gif{};
      RAW frame;
      std::fill_n(&frame.palette[0][0], sizeof(frame.palette), uint8_t{0x77});
      ASSERT_TRUE((alpha ? LoadInfoGIFAlpha : LoadInfoGIF)(info, memory.Data(), gif, frame));
      for (int i = 0; i < 256; ++i) {
        for (int c = 0; c < 4; ++c) {
          const bool read = !alpha && exponent == 0 && i < 2 && c < 3;
          ASSERT_EQ(frame.palette[i][c], read ? 3 * i + c + 1 : 0) << i;
        }
      }
    }
  }
}

TEST(LoadInfoGIFAlpha, SkipsColourTables) {
  GifImage image = Image(4, 1, ByteVector{0, 1, 2, 3});
  image.table = {0, {9, 9, 9, 9, 9, 9}};
  Walk walk(File({image}), /*alpha=*/true);
  EXPECT_TRUE(walk.started);
  EXPECT_EQ(walk.frame.readPalette, 0u);
  EXPECT_EQ(walk.gif.cursor, walk.memory.Data() + 13 + 4 * 3);
  EXPECT_TRUE(LoadGIFAlphaNext(walk.info, nullptr, walk.gif, walk.frame));
  Picture p = Blank(8, 4, 1);
  EXPECT_TRUE(walk.LoadAlpha(p));
  EXPECT_EQ(p.bytes, (ByteVector{0, 1, 2, 3, kOld, kOld, kOld}));
  for (const auto& entry : walk.frame.palette) EXPECT_EQ(entry[0], 0);
  EXPECT_TRUE(LoadGIFAlphaEnd(walk.info, nullptr, walk.gif, walk.frame));
  EXPECT_EQ(walk.gif.cursor, nullptr);
}

TEST(LoadGIFNext, EndsAtTheTrailer) {
  GifImage second = Image(1, 1, ByteVector{2});
  second.before = support::GraphicControl(2, 100, 3);
  const ByteVector comment = {'!', 0xFE, 3, ';', ',', '!', 1, ';', 0};
  second.before.insert(second.before.end(), comment.begin(), comment.end());
  Walk walk(File({Image(1, 1, ByteVector{1}), second}));
  Picture p = Blank(8, 1, 1);
  EXPECT_TRUE(walk.Next());
  EXPECT_TRUE(walk.Load(p));
  EXPECT_EQ(p.bytes[0], 1);
  EXPECT_TRUE(walk.Next());
  EXPECT_TRUE(walk.Load(p));
  EXPECT_EQ(p.bytes[0], 2);
  EXPECT_FALSE(walk.Next());
  EXPECT_TRUE(LoadGIFEnd(walk.info, nullptr, walk.gif, walk.frame));
  EXPECT_EQ(walk.gif.cursor, nullptr);
  EXPECT_EQ(walk.gif.blockPos, nullptr);
  EXPECT_FALSE(walk.Next());
  EXPECT_FALSE(walk.Load(p));
  EXPECT_FALSE(walk.LoadAlpha(p));
}

TEST(LoadGIFNext, SearchesWhatAnEarlyEndCodeLeaves) {
  GifImage image = Image(1, 1, ByteVector{1});
  image.data = SubBlocks(Compressed({1}, 2).Bytes());
  image.data.back() = 4;  // a further sub-block instead of the end
  image.data.insert(image.data.end(), {7, ';', 7, 7, 0});
  Walk walk(File({image, Image(1, 1, ByteVector{2})}));
  Picture p = Blank(8, 1, 1);
  EXPECT_TRUE(walk.Next());
  EXPECT_TRUE(walk.Load(p));
  EXPECT_FALSE(walk.Next());  // the ";" in it
  EXPECT_TRUE(walk.Next());   // behind that, the frame
  EXPECT_TRUE(walk.Load(p));
  EXPECT_EQ(p.bytes[0], 2);
}

TEST(CQXGIF, ResultsOfTheMethods) {
  CQXGIF gif{};
  RAW frame{};
  EXPECT_EQ(gif.ReadHeader(nullptr, &frame), 7u);
  EXPECT_EQ(gif.NextImage(), 7u);
  EXPECT_EQ(gif.DecodeImage(&frame), 7u);
  GifInMemory other({'G', 'I', 'E', 0});
  gif.cursor = gif.blockPos = other.Data();
  EXPECT_EQ(gif.ReadHeader(other.Data(), &frame), 6u);
  EXPECT_EQ(gif.cursor, nullptr);
  EXPECT_EQ(gif.blockPos, nullptr);
  GifInMemory file(File({Image(2, 1, ByteVector{1, 2})}).Bytes());
  EXPECT_EQ(gif.ReadHeader(file.Data(), nullptr), 7u);
  EXPECT_EQ(gif.ReadHeader(file.Data(), &frame), 0u);
  EXPECT_EQ(gif.NextImage(), 0u);
  EXPECT_EQ(gif.cursor[-1], ',');
  EXPECT_EQ(gif.DecodeImage(nullptr), 7u);
  EXPECT_EQ(gif.DecodeImage(&frame), 7u);  // no output
  uint8_t indices[3] = {kOld, kOld, kOld};
  frame.output = indices;
  EXPECT_EQ(gif.DecodeImage(&frame), 0u);
  EXPECT_EQ(indices[0], 1);
  EXPECT_EQ(indices[1], 2);
  EXPECT_EQ(indices[2], kOld);
  EXPECT_EQ(frame.width, 2u);
  EXPECT_EQ(frame.height, 1u);
  EXPECT_EQ(gif.NextImage(), 3u);
}

TEST(CQXGIF, ReadCodeTakesBitsFromTheLowEndAcrossSubBlocks) {
  GifInMemory memory({1, 0xA5, 2, 0x3C, 0xFF, 0, 99});
  CQXGIF gif{};
  gif.cursor = memory.Data();
  gif.endCode = 77;
  gif.codeSize = 3;
  EXPECT_EQ(gif.ReadCode(), 5u);
  EXPECT_EQ(gif.bitCount, 5u);
  EXPECT_EQ(gif.blockLeft, 0);
  EXPECT_EQ(gif.cursor, memory.Data() + 2);
  gif.codeSize = 12;
  EXPECT_EQ(gif.ReadCode(), 0x794u);  // 0xA5 >> 3 below seven bits of 0x3C
  EXPECT_EQ(gif.bitCount, 1u);
  EXPECT_EQ(gif.blockLeft, 1);
  EXPECT_EQ(gif.bitByte, 0x3Cu);
  EXPECT_EQ(gif.blockPos, memory.Data() + 4);
  EXPECT_EQ(gif.ReadCode(), 77u);
  EXPECT_EQ(gif.bitCount, 9u);
  EXPECT_EQ(gif.cursor, memory.Data() + 6);
}

TEST(CQXGIF, DecodeImageWritesTheFrameAndNothingElse) {
  EXPECT_EQ(Decoded(Image(2, 2, ByteVector{1, 2, 3, 1, 2, 3, 1}), 6),
            (ByteVector{1, 2, 3, 1, kOld, kOld}));
  EXPECT_EQ(Decoded(Image(2, 2, ByteVector{1, 2, 3}), 6), (ByteVector{1, 2, 3, kOld, kOld, kOld}));
}

TEST(LoadGIF, InterlacedRows) {
  for (int height = 0; height <= 7; ++height) {
    const std::vector<int> orders[] = {{},
                                       {0},
                                       {0, 1},
                                       {0, 2, 1},
                                       {0, 2, 1, 3},
                                       {0, 4, 2, 1, 3},
                                       {0, 4, 2, 1, 3, 5},
                                       {0, 4, 2, 6, 1, 3, 5}};
    ByteVector indices, expected(size_t(2 * height + 2), kOld);
    for (int i = 0; i < height; ++i) {
      const uint8_t pair[] = {uint8_t(i & 3), uint8_t(i >> 2)};
      indices.insert(indices.end(), {pair[0], pair[1]});
      const size_t row = size_t(orders[height][size_t(i)]);
      expected[2 * row] = pair[0];
      expected[2 * row + 1] = pair[1];
    }
    indices.push_back(3);  // behind the last row
    GifImage image = Image(2, height, indices);
    image.interlaced = true;
    EXPECT_EQ(Decoded(image, expected.size()), expected) << height;
  }
}

TEST(LoadGIF, MinimumCodeSize) {
  for (int root_bits = 0; root_bits < 256; ++root_bits) {
    GifImage image = Image(1, 1, ByteVector{});
    image.root_bits = root_bits;
    if (root_bits >= 2 && root_bits <= 9) {
      image.data = SubBlocks(CodeStream(root_bits).Clear().Codes({3}).End().Bytes());
    }
    Picture p = Blank(8, 1, 1);
    EXPECT_EQ(Load(p, File({image})), root_bits >= 2 && root_bits <= 9) << root_bits;
    EXPECT_EQ(p.bytes[0], root_bits >= 2 && root_bits <= 9 ? 3 : kOld) << root_bits;
  }
}

TEST(LoadGIF, CodesOfTenBitsLoseTheirTopBit) {
  GifImage image = Image(2, 1, CodeStream(9).Clear().Codes({300, 511}).End());
  image.root_bits = 9;
  EXPECT_EQ(Decoded(image, 3), (ByteVector{300 & 0xFF, 0xFF, kOld}));
}

TEST(LoadGIF, PacksEachFormat) {
  const GifFile file = File({Image(2, 2, ByteVector{1, 2, 3, 0})});
  const struct {
    int format;
    std::vector<uint32_t> pixels;
  } cases[] = {{16, {0x4102, 0x97F0, 0xF51F, 0x0000}},
               {17, {0xA082, 0xCBF0, 0xFA9F, 0x8000}},
               {18, {0xA082, 0xCBF0, 0xFA9F, 0x8000}},
               {19, {0xF421, 0xF9F8, 0xFFAF, 0xF000}},
               {24, {0x402010, 0x90FF80, 0xF0A0FF, 0x000000}}};
  for (const auto& c : cases) {
    Picture p = Blank(c.format, 2, 2, 5);
    EXPECT_TRUE(Load(p, file));
    std::vector<uint32_t> pixels;
    for (int i = 0; i < 4; ++i) pixels.push_back(p.Get(i % 2, i / 2));
    EXPECT_EQ(pixels, c.pixels) << c.format;
  }
}

TEST(LoadGIF, IndicesRemainInFourthBytesAndPadding) {
  Picture p = Blank(32, 2, 2, 1);
  EXPECT_TRUE(Load(p, File({Image(2, 2, ByteVector{1, 2, 3, 0})})));
  EXPECT_EQ(p.bytes, (ByteVector{0x10, 0x20, 0x40, 0, 0x80, 0xFF, 0x90, kOld, kOld,  //
                                 0xFF, 0xA0, 0xF0, kOld, 0, 0, 0, kOld, kOld}));
  p = Blank(8, 2, 2, 1);
  EXPECT_TRUE(Load(p, File({Image(2, 2, ByteVector{1, 2, 3, 0})})));
  EXPECT_EQ(p.bytes, (ByteVector{1, 2, 3, 3, 0, kOld}));
}

TEST(LoadGIF, AfterLoadInfoGIFAlphaIndicesStayPacked) {
  for (int format : {16, 17, 18, 19, 24, 32}) {
    Walk walk(File({Image(3, 2, ByteVector{1, 2, 3, 3, 2, 0})}), /*alpha=*/true);
    Picture p = Blank(format, 3, 2);
    ByteVector expected = p.bytes;
    std::copy_n(ByteVector{1, 2, 3, 3, 2, 0}.begin(), 6, expected.begin());
    EXPECT_TRUE(walk.Next());
    EXPECT_TRUE(walk.Load(p));
    EXPECT_EQ(p.bytes, expected) << format;
  }
}

TEST(LoadGIF, WidthEqualToThePitchStaysPacked) {
  Picture p = Blank(8, 3, 2, 0);
  EXPECT_TRUE(Load(p, File({Image(3, 2, ByteVector{1, 2, 3, 3, 2, 0})})));
  EXPECT_EQ(p.bytes, (ByteVector{1, 2, 3, 3, 2, 0}));
  EXPECT_EQ(p.palette[1].red, 0x40);
  p = Blank(16, 3, 2);
  p.pitch = 3;
  EXPECT_TRUE(Load(p, File({Image(3, 2, ByteVector{1, 2, 3, 3, 2, 0})})));
  EXPECT_EQ(ByteVector(p.bytes.begin(), p.bytes.begin() + 7), (ByteVector{1, 2, 3, 3, 2, 0, kOld}));
}

TEST(LoadGIF, IndexedSurfaceGetsThePaletteWithIndex0TheOnlyBlack) {
  Picture p = Blank(8, 4, 1);
  EXPECT_TRUE(Load(p, File({Image(4, 1, ByteVector{0, 1, 2, 3})})));
  const auto entry = [&](size_t i) {
    const TRGBA c = p.palette[i];
    return std::array<int, 4>{c.blue, c.green, c.red, c.alpha};
  };
  EXPECT_EQ(entry(0), (std::array<int, 4>{0, 0, 0, kOld}));
  EXPECT_EQ(entry(1), (std::array<int, 4>{0x10, 0x20, 0x40, kOld}));
  EXPECT_EQ(entry(3), (std::array<int, 4>{0xFF, 0xA0, 0xF0, kOld}));
  for (size_t i = 4; i < 256; ++i) EXPECT_EQ(entry(i), (std::array<int, 4>{1, 0, 0, kOld}));

  p = Blank(8, 4, 1);
  p.has_palette = false;
  EXPECT_TRUE(Load(p, File({Image(4, 1, ByteVector{0, 1, 2, 3})})));
  EXPECT_EQ(p.bytes, (ByteVector{0, 1, 2, 3, kOld, kOld, kOld}));
  EXPECT_EQ(p.palette[0].blue, kOld);
}

// The palette is copied even if the file's tables were skipped.
TEST(LoadGIF, PaletteOfSkippedTablesIsBlack) {
  Walk walk(File({Image(1, 1, ByteVector{1})}), /*alpha=*/true);
  Picture p = Blank(8, 1, 1);
  EXPECT_TRUE(walk.Next());
  EXPECT_TRUE(walk.Load(p));
  EXPECT_EQ(p.palette[1].blue, 1);
  EXPECT_EQ(p.palette[1].red, 0);
}

TEST(LoadGIF, OwnTableReplacesEntriesOfTheOneBefore) {
  GifImage first = Image(4, 1, ByteVector{0, 1, 2, 3});
  first.table = {0, {1, 2, 3, 4, 5, 6}};
  Walk walk(File({first, Image(4, 1, ByteVector{0, 1, 2, 3})}));
  for (int i = 0; i < 2; ++i) {  // it stays for the frames behind
    Picture p = Blank(24, 4, 1);
    EXPECT_TRUE(walk.Next());
    EXPECT_TRUE(walk.Load(p));
    EXPECT_EQ(p.Get(0, 0), 0x010203u);
    EXPECT_EQ(p.Get(1, 0), 0x040506u);
    EXPECT_EQ(p.Get(2, 0), 0x90FF80u);
  }
}

TEST(LoadGIF, RowsAreDrivenByTheSurface) {
  Picture p = Blank(8, 2, 3, 1);
  EXPECT_TRUE(Load(p, File({Image(3, 2, ByteVector{1, 2, 3, 3, 2, 0})})));
  EXPECT_EQ(p.bytes, (ByteVector{1, 2, 3, 3, 3, 0, 2, 0, kOld}));
}

TEST(LoadGIF, NothingIsWrittenOutsideTheSurface) {
  const ByteVector indices(400, 1);
  for (int format : model::kFormats) {
    for (bool interlaced : {false, true}) {
      GifImage image = Image(20, 20, indices);
      image.interlaced = interlaced;
      Picture p = Blank(format, 3, 3);
      TSurfDesc surface = Describe(p);
      for (const auto& [width, height, pitch] : {std::array{3, 3, p.pitch},
                                                 {3, 3, 5},
                                                 {3, 3, 2},
                                                 {3, 0, 8},
                                                 {-3, 3, 8},
                                                 {3, -3, 8},
                                                 {0, 3, 8},
                                                 {3, 3, 0},
                                                 {3, 3, -8},
                                                 {3, INT32_MIN, INT32_MIN}}) {
        p = Blank(format, 3, 3);
        const size_t room = size_t(std::max(pitch, 0) * std::max(height, 0));
        p.bytes.resize(room);
        surface = Describe(p);
        surface.width = width;
        surface.height = height;
        surface.pitch = pitch;
        uint8_t none = kOld;
        if (room == 0) surface.pixels = &none;
        Walk walk(File({image}));
        EXPECT_TRUE(walk.Next());
        EXPECT_TRUE(LoadGIF(surface, nullptr, walk.gif, walk.frame));
        EXPECT_EQ(none, kOld);
        EXPECT_FALSE(walk.Next()) << "the frame is read to its end";
      }
    }
  }
}

TEST(LoadGIF, RefusesSurfacesWithoutPixelsOrFormat) {
  Walk walk(File({Image(1, 1, ByteVector{1})}));
  EXPECT_TRUE(walk.Next());
  const uint8_t* const cursor = walk.gif.cursor;
  Picture p = Blank(8, 1, 1);
  TSurfDesc surface = Describe(p);
  surface.pixels = nullptr;
  EXPECT_FALSE(LoadGIF(surface, nullptr, walk.gif, walk.frame));
  EXPECT_FALSE(LoadGIFAlpha(surface, nullptr, walk.gif, walk.frame));
  surface = Describe(p);
  surface.bpp = 15;
  EXPECT_FALSE(LoadGIF(surface, nullptr, walk.gif, walk.frame));
  EXPECT_EQ(walk.gif.cursor, cursor);
  EXPECT_EQ(p.bytes[0], kOld);
  EXPECT_TRUE(walk.Load(p));
}

TEST(LoadGIF, WithoutClearCodeTheFirstIndexFollowsA0) {
  // Entry 6 is (0, 1): the first index adds it, where it adds none behind a clear code.
  EXPECT_EQ(Decoded(Image(4, 1, CodeStream(2).Codes({1, 6}).End()), 4),
            (ByteVector{1, 0, 1, kOld}));
  EXPECT_EQ(Decoded(Image(4, 1, CodeStream(2).Clear().Codes({1, 6}).End()), 4),
            (ByteVector{1, 1, 1, kOld}));
  EXPECT_EQ(Decoded(Image(4, 1, CodeStream(2).Codes({6}).End()), 4),
            (ByteVector{0, 0, kOld, kOld}));
}

// What a writer meant that left out the clear code. Without it codes grow one code earlier than the
// writer's, here into an end code: half of the frame is missing, and the next one too, for the walk
// meets a trailer in the data that is left. The loader that knows the length gets both.
TEST(LoadGIF, FrameWithoutClearCodeMayEndEarly) {
  const CodeStream written = CodeStream(2).Clear().Codes({1, 2, 3, 6, 7, 10, 0, 3, 1}).End();
  ByteVector codes(written.Bytes().size());  // the same without its first three bits
  for (size_t bit = 3; bit < 8 * codes.size(); ++bit) {
    codes[(bit - 3) / 8] |= uint8_t((written.Bytes()[bit / 8] >> bit % 8 & 1) << (bit - 3) % 8);
  }
  GifImage image = Image(13, 1, ByteVector{});
  image.data = SubBlocks(codes, 4);
  image.data.back() = 1;
  image.data.insert(image.data.end(), {';', 0});
  const GifFile file = File({image, Image(1, 1, ByteVector{2})});
  Walk walk(file);
  EXPECT_TRUE(walk.Next());
  Picture p = Blank(8, 13, 1);
  EXPECT_TRUE(walk.Load(p));
  ByteVector expected = {1, 2, 3, 3, 3, 3};
  expected.resize(16, kOld);
  EXPECT_EQ(p.bytes, expected);
  EXPECT_FALSE(walk.Next());

  const ByteVector bytes = file.Bytes();
  TGifFrame frame{};
  ASSERT_EQ(pincel_gif_frame(frame, bytes.data(), bytes.size()), PINCEL_OK);
  p = Blank(8, 13, 1);
  TSurfDesc surface = Describe(p);
  EXPECT_EQ(pincel_load_gif(surface, bytes.data(), bytes.size(), frame), PINCEL_OK);
  EXPECT_EQ(p.bytes, (ByteVector{1, 2, 3, 1, 2, 2, 3, 2, 3, 2, 0, 3, 1, kOld, kOld, kOld}));
  ASSERT_EQ(pincel_gif_frame(frame, bytes.data(), bytes.size()), PINCEL_OK);
  EXPECT_EQ(pincel_load_gif(surface, bytes.data(), bytes.size(), frame), PINCEL_OK);
  EXPECT_EQ(p.bytes[0], 2);
}

TEST(LoadGIF, CodesAboveTheNextFreeOneCountAsIt) {
  EXPECT_EQ(Decoded(Image(9, 1, CodeStream(2).Clear().Codes({1, 7, 2, 6, 7}).End()), 9),
            (ByteVector{1, 1, 1, 2, 1, 1, 1, 1, 2}));
}

TEST(LoadGIF, CodesBehindAClearCodeThatAreNoIndexCountAs0) {
  EXPECT_EQ(Decoded(Image(4, 1, CodeStream(2).Clear().Clear().Code(7).Code(6).End()), 4),
            (ByteVector{0, 0, 0, kOld}));
}

TEST(LoadGIF, EmptySubBlockEndsAFrame) {
  GifImage image = Image(4, 1, ByteVector{});
  image.data = {1, 0x0C, 0, 99};  // clear code, index 1, three bits of another code
  Walk walk(File({image}));
  EXPECT_TRUE(walk.Next());
  Picture p = Blank(8, 4, 1);
  EXPECT_TRUE(walk.Load(p));
  EXPECT_EQ(p.bytes[0], 1);
  EXPECT_EQ(p.bytes[1], kOld);
  EXPECT_EQ(*walk.gif.cursor, 99);
  // So does one at the start.
  image.data = {0};
  p = Blank(8, 4, 1);
  EXPECT_TRUE(Load(p, File({image})));
  EXPECT_EQ(p.bytes[0], kOld);
}

TEST(LoadGIF, FullTableServesUntilTheClearCode) {
  Random random(5);
  ByteVector indices(60000);
  for (uint8_t& index : indices) index = random.Byte();
  for (int codes_when_full : {0, 1, 5000, 1000000}) {
    GifImage image = Image(300, 200, ByteVector{});
    image.root_bits = 8;
    image.data = SubBlocks(Compressed(indices, 8, codes_when_full).Bytes());
    EXPECT_EQ(Decoded(image, indices.size()), indices) << codes_when_full;
  }
}

TEST(LoadGIF, LongStrings) {
  for (int root_bits : {2, 8}) {
    GifImage image = Image(1500, 1500, ByteVector{});
    image.root_bits = root_bits;
    const ByteVector indices(1500 * 1500, 3);
    image.data = SubBlocks(Compressed(indices, root_bits, 100000).Bytes());
    EXPECT_EQ(Decoded(image, indices.size()), indices);
  }
}

// --- against the model ---

ByteVector RandomData(Random& random, int root_bits, size_t pixels) {
  const size_t longest = random.OneIn(3) ? size_t(random.Between(1, 9)) : 255;
  if (random.OneIn(6)) {  // no codes at all
    ByteVector bytes(size_t(random.Below(300)));
    for (uint8_t& byte : bytes) byte = random.Byte();
    return SubBlocks(bytes, longest);
  }
  if (random.OneIn(2)) {
    ByteVector indices(random.OneIn(4) ? size_t(random.Below(600)) : pixels);
    const int values = random.OneIn(2) ? 2 : 1 << std::min(root_bits, 8);
    for (uint8_t& index : indices) index = uint8_t(random.Below(values));
    ByteVector bytes = Compressed(indices, root_bits, random.Below(20)).Bytes();
    if (random.OneIn(4)) bytes.resize(bytes.size() / 2);
    if (!bytes.empty() && random.OneIn(4)) {
      bytes[size_t(random.Below(int(bytes.size())))] = random.Byte();
    }
    return SubBlocks(bytes, longest);
  }
  CodeStream stream(root_bits);
  if (!random.OneIn(4)) stream.Clear();
  const int codes = random.Below(random.OneIn(5) ? 6000 : 400);
  for (int i = 0; i < codes; ++i) {
    const int most = 1 << stream.Width();
    const int kind = random.Below(400);
    int code = kind < 100 ? stream.NextFree() - random.Below(3) : random.Below(stream.NextFree());
    if (kind > 390) code = random.Below(most);
    if (kind == 390) stream.Clear();
    if (code >= most || code == stream.ClearCode() || code == stream.EndCode()) code = 0;
    stream.Code(code);
  }
  if (!random.OneIn(4)) stream.End();
  return SubBlocks(stream.Bytes(), longest);
}

GifTable RandomTable(Random& random) {
  GifTable table;
  table.exponent = random.OneIn(3) ? -1 : random.Below(8);
  table.rgb.resize(768);
  for (uint8_t& byte : table.rgb) byte = random.OneIn(3) ? 0 : random.Byte();
  return table;
}

GifImage RandomImage(Random& random, int width, int height) {
  GifImage image;
  if (random.OneIn(3)) image.before = support::GraphicControl(1, 2, 3);
  if (random.OneIn(8)) image.before.push_back(random.Byte());
  image.left = random.Below(65536);
  image.top = random.Below(65536);
  image.width = width;
  image.height = height;
  if (random.OneIn(8)) image.width = random.OneIn(4) ? 65535 : random.Below(2 * width + 1);
  if (random.OneIn(8)) image.height = random.OneIn(4) ? 65535 : random.Below(2 * height + 1);
  image.interlaced = random.OneIn(3);
  image.table = RandomTable(random);
  image.root_bits = random.OneIn(20) ? random.Below(13) : random.Between(2, 9);
  image.data = RandomData(random, std::clamp(image.root_bits, 2, 9), size_t(width * height));
  if (random.OneIn(10)) image.data.back() = random.Byte();
  return image;
}

void ExpectSameState(const CQXGIF& expected, const CQXGIF& actual) {
  ASSERT_EQ(actual.cursor, expected.cursor);
  ASSERT_EQ(actual.blockPos, expected.blockPos);
  ASSERT_EQ(actual.codeSize, expected.codeSize);
  ASSERT_EQ(actual.endCode, expected.endCode);
  ASSERT_EQ(actual.blockLeft, expected.blockLeft);
  ASSERT_EQ(actual.bitCount, expected.bitCount);
  ASSERT_EQ(actual.bitByte, expected.bitByte);
}

void ExpectSameRecord(const RAW& expected, const RAW& actual) {
  ASSERT_EQ(actual.width, expected.width);
  ASSERT_EQ(actual.height, expected.height);
  ASSERT_EQ(actual.readPalette, expected.readPalette);
  ASSERT_EQ(actual.reserved, expected.reserved);
  ASSERT_TRUE(
      std::equal(&actual.palette[0][0], &actual.palette[0][0] + 1024, &expected.palette[0][0]));
}

// Memory for the whole of height x pitch, which indices may fill.
Picture RandomSurface(Random& random, int format, int width, int height) {
  support::PictureOptions options = support::AnyOptions(random);
  options.negative_pitch = random.OneIn(20);
  options.exact = false;
  if (random.OneIn(4)) options.max_padding = 400;
  Picture p = support::RandomPicture(random, format, width, height, options);
  if (format == 8 && random.OneIn(8)) p.has_palette = false;
  return p;
}

TEST(LoadGIF, MatchesTheModel) {
  support::ForEachTarget([] {
    ForEachCase(500, [](Random& random, int) {
      const int width = support::WidthOf(random.Below(support::kWidths));
      const int height = random.Between(0, 20);
      GifFile file;
      file.signature = random.OneIn(50) ? "GIX" : "GIF89a";
      file.width = random.Below(65536);
      file.height = random.Below(65536);
      file.table = RandomTable(random);
      for (int i = random.Between(1, 2); i > 0; --i) {
        file.images.push_back(RandomImage(random, width, height));
      }
      GifInMemory memory(file.Bytes());
      for (int format : model::kFormats) {
        const bool read_palette = !random.OneIn(6), alpha = random.OneIn(8);
        RAW expected_frame, frame;
        CQXGIF expected_gif{}, gif{};
        std::fill_n(&frame.palette[0][0], sizeof(frame.palette), uint8_t{0x77});
        frame.width = frame.height = 5;
        expected_frame = frame;
        TSurfDesc info{};
        const bool known =
            model::GifInfo(expected_gif, memory.Data(), expected_frame, read_palette);
        ASSERT_EQ((read_palette ? LoadInfoGIF : LoadInfoGIFAlpha)(info, memory.Data(), gif, frame),
                  known);
        ASSERT_EQ(info.width, int32_t(expected_frame.width));
        ASSERT_EQ(info.height, int32_t(expected_frame.height));
        ASSERT_EQ(info.bpp, 8u);
        ASSERT_EQ(frame.output, nullptr);
        for (bool more = true; more;) {
          more = model::GifNextImage(expected_gif) == 0;
          ASSERT_EQ(LoadGIFNext(info, memory.Data(), gif, frame), more);
          ExpectSameState(expected_gif, gif);
          if (!more) break;
          Picture expected = RandomSurface(random, format, width, height);
          Picture actual = expected;
          if (alpha) expected.format = 8;
          const bool decoded = alpha ? model::LoadGifAlpha(expected, expected_gif, expected_frame)
                                     : model::LoadGif(expected, expected_gif, expected_frame);
          expected.format = format;
          TSurfDesc surface = Describe(actual);
          ASSERT_EQ((alpha ? LoadGIFAlpha : LoadGIF)(surface, nullptr, gif, frame), decoded);
          ASSERT_TRUE(Same(expected, actual, surface));
          ASSERT_EQ(frame.output, surface.pixels);
          ExpectSameState(expected_gif, gif);
          ExpectSameRecord(expected_frame, frame);
          // Random data may contain anything: stop behind the last real frame.
          more = gif.cursor < memory.Data() + file.Bytes().size();
        }
      }
    });
  });
}

TEST(CQXGIF, ReadCodeMatchesTheModel) {
  ForEachCase(500, [](Random& random, int) {
    ByteVector bytes(size_t(random.Below(60)));
    for (uint8_t& byte : bytes) byte = random.Byte();
    GifInMemory memory(SubBlocks(bytes, size_t(random.Between(1, 20))));
    CQXGIF expected{}, actual{};
    expected.cursor = actual.cursor = memory.Data();
    expected.endCode = actual.endCode = 0x12345;
    for (uint32_t code = 0; code != 0x12345;) {
      expected.codeSize = actual.codeSize = uint32_t(random.Between(1, 12));
      code = model::GifReadCode(expected);
      ASSERT_EQ(actual.ReadCode(), code);
      ExpectSameState(expected, actual);
    }
  });
}

}  // namespace
