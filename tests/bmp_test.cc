#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "include/pincel.h"
#include "tests/model/bmp_model.h"
#include "tests/support/bmp_writer.h"
#include "tests/support/cases.h"
#include "tests/support/compare.h"
#include "tests/support/random.h"
#include "tests/support/targets.h"

namespace {

using model::Describe;
using model::Picture;
using support::BmpFile;
using support::FileInMemory;
using support::ForEachCase;
using support::ForEachTarget;
using support::Random;
using support::RunLengthStream;
using support::Same;

constexpr uint32_t kOld = 0x11;  // every byte of a surface before it is loaded

Picture Blank(int format, int width, int height) {
  Picture p;
  p.format = format;
  p.width = width;
  p.height = height;
  p.pitch = width * p.BytesPerPixel() + 3;
  p.alpha_mask = format == 18 ? 0x8000u : format == 19 ? 0xF000u : 0u;
  p.bytes.assign(size_t(p.pitch * height), kOld);
  p.has_palette = format == 8;
  p.palette.fill({kOld, kOld, kOld, kOld});
  return p;
}

bool Load(Picture& p, const std::vector<uint8_t>& file, bool odd_address = false) {
  FileInMemory memory(file, odd_address);
  TSurfDesc surface = Describe(p);
  return LoadBMP(surface, memory.Data());
}

bool LoadAlpha(Picture& p, const std::vector<uint8_t>& file, bool odd_address = false) {
  FileInMemory memory(file, odd_address);
  TSurfDesc surface = Describe(p);
  return LoadBMPAlpha(surface, memory.Data());
}

// Rows of pixel values from the top.
using Rows = std::vector<std::vector<uint32_t>>;

Rows RowsOf(const Picture& p) {
  Rows rows(size_t(p.height));
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) rows[size_t(y)].push_back(p.Get(x, y));
  }
  return rows;
}

// Entries 0 to 3: black, and three colours that every format tells apart.
const std::vector<TRGBA> kTable = {
    {0, 0, 0, 1}, {0x10, 0x20, 0x40, 2}, {0x80, 0xFF, 0x90, 3}, {0xFF, 0xA0, 0xF0, 4}};

BmpFile IndexedFile(int width, int height, const std::vector<uint8_t>& pixels) {
  BmpFile file;
  file.width = width;
  file.height = height;
  file.colours_used = 4;
  file.table = kTable;
  file.pixels = pixels;
  return file;
}

BmpFile RunLengthFile(int width, int height, const RunLengthStream& stream) {
  BmpFile file = IndexedFile(width, height, stream.Bytes());
  file.compression = 1;
  return file;
}

BmpFile TrueColourFile(int width, int height, const std::vector<uint8_t>& pixels) {
  BmpFile file;
  file.width = width;
  file.height = height;
  file.bits = 24;
  file.pixels = pixels;
  return file;
}

TEST(LoadInfoBMP, WritesSizeAndDepthOnly) {
  BmpFile file = IndexedFile(300, -200, {});
  FileInMemory memory(file.Bytes());
  TRGBA palette[256] = {};
  uint8_t pixel = 0;
  TSurfDesc surface{1, 2, 3, 4, 5, 6, 7, 8, 9, &pixel, palette};
  EXPECT_TRUE(LoadInfoBMP(surface, memory.Data()));
  EXPECT_EQ(surface.width, 300);
  EXPECT_EQ(surface.height, 200);
  EXPECT_EQ(surface.bpp, 8u);
  EXPECT_EQ(surface.rMask, 4u);
  EXPECT_EQ(surface.gMask, 5u);
  EXPECT_EQ(surface.bMask, 6u);
  EXPECT_EQ(surface.aMask, 7u);
  EXPECT_EQ(surface.colorKey, 8u);
  EXPECT_EQ(surface.pitch, 9);
  EXPECT_EQ(surface.pixels, &pixel);
  EXPECT_EQ(surface.palette, palette);
}

TEST(LoadInfoBMP, ReadsTheShortHeader) {
  BmpFile file;
  file.header = 12;
  file.width = 0xFFFE;
  file.height = 0xFFFF;  // never negative
  file.bits = 24;
  FileInMemory memory(file.Bytes());
  TSurfDesc surface{};
  EXPECT_TRUE(LoadInfoBMP(surface, memory.Data()));
  EXPECT_EQ(surface.width, 0xFFFE);
  EXPECT_EQ(surface.height, 0xFFFF);
  EXPECT_EQ(surface.bpp, 24u);
}

TEST(LoadInfoBMP, ReadsOtherHeaderSizesAsTheShortOne) {
  for (uint32_t header : {16u, 39u, 41u, 64u, 108u, 124u}) {
    BmpFile file;
    file.header = header;
    file.width = 0x00050123;
    file.height = 7 << 16;
    FileInMemory memory(file.Bytes());
    TSurfDesc surface{};
    EXPECT_TRUE(LoadInfoBMP(surface, memory.Data()));
    EXPECT_EQ(surface.width, 0x123);
    EXPECT_EQ(surface.height, 5);
    EXPECT_EQ(surface.bpp, 7u);
  }
}

TEST(LoadInfoBMP, ReadsEveryDepth) {
  for (int bits : {0, 1, 4, 8, 16, 24, 32, 0xFFFF}) {
    BmpFile file;
    file.bits = uint16_t(bits);
    FileInMemory memory(file.Bytes());
    TSurfDesc surface{};
    EXPECT_TRUE(LoadInfoBMP(surface, memory.Data()));
    EXPECT_EQ(surface.bpp, uint32_t(bits));
  }
}

TEST(LoadInfoBMPAlpha, Reports8BitsWhateverTheFileHolds) {
  FileInMemory memory(TrueColourFile(5, -6, {}).Bytes());
  TSurfDesc surface{};
  EXPECT_TRUE(LoadInfoBMPAlpha(surface, memory.Data()));
  EXPECT_EQ(surface.width, 5);
  EXPECT_EQ(surface.height, 6);
  EXPECT_EQ(surface.bpp, 8u);
}

TEST(LoadPGF, IsAlwaysFalse) {
  for (int format : model::kFormats) {
    Picture p = Blank(format, 2, 2);
    const Picture before = p;
    TSurfDesc surface = Describe(p);
    FileInMemory memory(IndexedFile(2, 2, {1, 1, 0, 0, 1, 1, 0, 0}).Bytes());
    EXPECT_FALSE(LoadPGF(surface, memory.Data()));
    EXPECT_FALSE(LoadInfoPGF(surface, memory.Data()));
    EXPECT_TRUE(Same(before, p, surface));
  }
}

TEST(LoadBMP, PositiveHeightIsBottomUp) {
  Picture p = Blank(8, 1, 5);
  EXPECT_TRUE(
      Load(p, IndexedFile(1, 5, {0, 9, 9, 9, 1, 9, 9, 9, 2, 9, 9, 9, 3, 9, 9, 9, 4}).Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{4}, {3}, {2}, {1}, {0}}));
}

TEST(LoadBMP, NegativeHeightIsTopDown) {
  Picture p = Blank(8, 1, 5);
  EXPECT_TRUE(
      Load(p, IndexedFile(1, -5, {0, 9, 9, 9, 1, 9, 9, 9, 2, 9, 9, 9, 3, 9, 9, 9, 4}).Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{0}, {1}, {2}, {3}, {4}}));
}

TEST(LoadBMP, PacksPaletteEntries) {
  const struct {
    int format;
    std::vector<uint32_t> row;
  } cases[] = {
      {8, {0, 1, 2, 3}},
      {16, {0, 0x4102, 0x97F0, 0xF51F}},
      {17, {0x8000, 0xA082, 0xCBF0, 0xFA9F}},
      {18, {0x8000, 0xA082, 0xCBF0, 0xFA9F}},
      {19, {0xF000, 0xF421, 0xF9F8, 0xFFAF}},
      {24, {0, 0x402010, 0x90FF80, 0xF0A0FF}},
      {32, {0xFF000000, 0xFF402010, 0xFF90FF80, 0xFFF0A0FF}},
  };
  for (const auto& c : cases) {
    Picture p = Blank(c.format, 4, 1);
    EXPECT_TRUE(Load(p, IndexedFile(4, 1, {0, 1, 2, 3}).Bytes()));
    EXPECT_EQ(RowsOf(p), (Rows{c.row})) << c.format;
    p = Blank(c.format, 4, 1);
    EXPECT_TRUE(Load(
        p, RunLengthFile(4, 1, RunLengthStream().Literal({0, 1, 2, 3}).EndOfBitmap()).Bytes()));
    EXPECT_EQ(RowsOf(p), (Rows{c.row})) << c.format << " run-length coded";
  }
}

TEST(LoadBMP, ByteBehindA24BitPixelGivesItsAlpha) {
  // Two pixels a row; the second is followed by the row's padding.
  const std::vector<uint8_t> pixels = {0x10, 0x20, 0x40, 0x80, 0xFF, 0x90, 0x7F, 0};
  const struct {
    int format;
    std::vector<uint32_t> row;
  } cases[] = {
      {16, {0x4102, 0x97F0}},     {17, {0xA082, 0x4BF0}},
      {18, {0xA082, 0x4BF0}},     {19, {0x8421, 0x79F8}},
      {24, {0x402010, 0x90FF80}}, {32, {0x11402010, 0x1190FF80}},  // the fourth byte stays
  };
  for (const auto& c : cases) {
    Picture p = Blank(c.format, 2, 1);
    EXPECT_TRUE(Load(p, TrueColourFile(2, 1, pixels).Bytes()));
    EXPECT_EQ(RowsOf(p), (Rows{c.row})) << c.format;
  }
}

TEST(LoadBMP, ReadsDepthsAbove24As24) {
  for (int bits : {17, 25, 32, 64}) {
    BmpFile file = TrueColourFile(2, 1, {1, 2, 3, 4, 5, 6, 7, 8});
    file.bits = uint16_t(bits);
    Picture p = Blank(24, 2, 1);
    EXPECT_TRUE(Load(p, file.Bytes()));
    EXPECT_EQ(RowsOf(p), (Rows{{0x030201, 0x060504}})) << bits;
  }
}

TEST(LoadBMP, OtherDepthsWriteNoPixels) {
  for (int format : model::kFormats) {
    for (int bits : {0, 1, 4, 7, 9, 16}) {
      BmpFile file = IndexedFile(4, 2, std::vector<uint8_t>(16, 0x5A));
      file.bits = uint16_t(bits);
      Picture p = Blank(format, 4, 2);
      const Picture before = p;
      EXPECT_TRUE(Load(p, file.Bytes()));
      EXPECT_EQ(p.bytes, before.bytes) << format << " from " << bits;
    }
  }
}

TEST(LoadBMP, TrueColourWritesNoIndices) {
  Picture p = Blank(8, 4, 2);
  const Picture before = p;
  EXPECT_TRUE(Load(p, TrueColourFile(4, 2, std::vector<uint8_t>(24, 0x5A)).Bytes()));
  EXPECT_EQ(p.bytes, before.bytes);
}

TEST(LoadBMP, UnsupportedSurfaceIsFalse) {
  Picture p = Blank(32, 2, 2);
  const Picture before = p;
  TSurfDesc surface = Describe(p);
  surface.bpp = 15;
  FileInMemory memory(IndexedFile(2, 2, {1, 1, 0, 0, 1, 1, 0, 0}).Bytes());
  EXPECT_FALSE(LoadBMP(surface, memory.Data()));
  EXPECT_EQ(p.bytes, before.bytes);
}

TEST(LoadBMP, ColoursUsed0Means256) {
  BmpFile file = IndexedFile(2, 1, {255, 254, 0, 0});
  file.colours_used = 0;
  file.table.resize(256);
  file.table[255] = {1, 2, 3, 0};
  file.table[254] = {4, 5, 6, 0};
  Picture p = Blank(24, 2, 1);
  EXPECT_TRUE(Load(p, file.Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{0x030201, 0x060504}}));
}

TEST(LoadBMP, ColoursUsedAbove256Means256) {
  for (uint32_t used : {257u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    BmpFile file = IndexedFile(1, 1, {255, 0, 0, 0});
    file.colours_used = used;
    file.table.resize(256);
    file.table[255] = {1, 2, 3, 0};
    Picture p = Blank(24, 1, 1);
    EXPECT_TRUE(Load(p, file.Bytes()));
    EXPECT_EQ(RowsOf(p), (Rows{{0x030201}}));
  }
}

TEST(LoadBMP, IndexBeyondTheTableIsOpaqueBlack) {
  Picture p = Blank(32, 1, 1);
  EXPECT_TRUE(Load(p, IndexedFile(1, 1, {9, 0, 0, 0}).Bytes()));
  EXPECT_EQ(p.Get(0, 0), 0xFF000000u);
}

TEST(LoadBMP, QxFileIsReadFromOffset54) {
  BmpFile file = IndexedFile(4, 1, {3, 3, 3, 3});
  file.qx = true;
  Picture p = Blank(8, 4, 1);
  EXPECT_TRUE(Load(p, file.Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{0, 0, 0, 1}}));  // the first entry of the colour table
}

TEST(LoadBMP, OtherSignaturesUseTheOffsetOfTheHeader) {
  for (const auto& [first, second] : {std::pair{'Q', 'M'}, {'B', 'X'}, {'q', 'x'}, {0, 0}}) {
    std::vector<uint8_t> bytes = IndexedFile(4, 1, {3, 2, 1, 0}).Bytes();
    bytes[0] = uint8_t(first);
    bytes[1] = uint8_t(second);
    Picture p = Blank(8, 4, 1);
    EXPECT_TRUE(Load(p, bytes));
    EXPECT_EQ(RowsOf(p), (Rows{{3, 2, 1, 0}}));
  }
}

TEST(LoadBMP, HeightOf0IsBottomUp) {
  Picture p = Blank(8, 1, 2);
  EXPECT_TRUE(Load(p, IndexedFile(1, 0, {1, 0, 0, 0, 2, 0, 0, 0}).Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{2}, {1}}));
}

TEST(LoadBMP, ShortHeaderUsesTheLibrarysPalette) {
  BmpFile file;
  file.header = 12;
  file.width = 2;
  file.height = 1;
  file.table = kTable;  // not read
  file.pixels = {251, 6, 0, 0};
  Picture p = Blank(32, 2, 1);
  EXPECT_TRUE(Load(p, file.Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{0x00FFFFFF, 0x00002A00}}));  // fourth bytes of the palette: 0
}

TEST(LoadBMP, IndexedSurfaceGetsThePaletteWithIndex0TheOnlyBlack) {
  BmpFile file = IndexedFile(1, 1, {7, 0, 0, 0});
  file.colours_used = 8;
  file.table = {{0, 0, 0, 1}, {1, 2, 3, 4}, {9, 9, 9, 9}, {9, 9, 9, 9},
                {9, 9, 9, 9}, {9, 9, 9, 9}, {9, 9, 9, 9}, {0, 0, 0, 9}};
  Picture p = Blank(8, 1, 1);
  EXPECT_TRUE(Load(p, file.Bytes()));
  const auto entry = [&](int i) {
    const TRGBA c = p.palette[size_t(i)];
    return std::array<int, 4>{c.blue, c.green, c.red, c.alpha};
  };
  EXPECT_EQ(entry(0), (std::array<int, 4>{0, 0, 0, kOld}));  // fourth bytes stay
  EXPECT_EQ(entry(1), (std::array<int, 4>{1, 2, 3, kOld}));
  EXPECT_EQ(entry(7), (std::array<int, 4>{1, 0, 0, kOld}));
  EXPECT_EQ(p.Get(0, 0), 7u);
}

TEST(LoadBMP, IndexedSurfaceWithoutPaletteGetsTheIndices) {
  Picture p = Blank(8, 4, 1);
  p.has_palette = false;
  EXPECT_TRUE(Load(p, IndexedFile(4, 1, {0, 1, 2, 3}).Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{0, 1, 2, 3}}));
}

TEST(LoadBMP, RowsAreDrivenByTheSurface) {
  // Row bytes follow from the surface's width: 5 pixels lie in 8 bytes, whatever the file says.
  Picture p = Blank(8, 5, 2);
  EXPECT_TRUE(Load(p, IndexedFile(200, -100, {1, 2, 3, 4, 5, 0, 0, 0, 6, 7, 8, 9, 10}).Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{1, 2, 3, 4, 5}, {6, 7, 8, 9, 10}}));
}

TEST(LoadBMP, CompressionOfOtherKindsIsNotLookedAt) {
  for (uint32_t compression : {2u, 3u, 0x101u}) {
    BmpFile file = IndexedFile(4, 1, {0, 1, 2, 3});
    file.compression = compression;
    Picture p = Blank(8, 4, 1);
    EXPECT_TRUE(Load(p, file.Bytes()));
    EXPECT_EQ(RowsOf(p), (Rows{{0, 1, 2, 3}}));
  }
  BmpFile file = TrueColourFile(1, 1, {1, 2, 3, 0});
  file.compression = 1;
  Picture p = Blank(24, 1, 1);
  EXPECT_TRUE(Load(p, file.Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{0x030201}}));
}

// Run-length data. Entry 0 is a colour in these files unless a test says otherwise.
BmpFile ColouredBackground(BmpFile file) {
  file.table[0] = {0x30, 0x20, 0x10, 0};
  return file;
}
constexpr uint32_t kBack = 0x102030, kRed = 0x402010, kOldPixel = 0x111111;

TEST(LoadBMP, RunLengthRunsLiteralsAndLines) {
  const RunLengthStream stream = RunLengthStream()
                                     .Run(3, 1)
                                     .Literal({2, 3, 2})
                                     .EndOfLine()
                                     .Literal({3, 2, 1, 0})
                                     .Run(2, 3)
                                     .EndOfBitmap();
  Picture p = Blank(8, 6, 2);
  EXPECT_TRUE(Load(p, RunLengthFile(6, -2, stream).Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{1, 1, 1, 2, 3, 2}, {3, 2, 1, 0, 3, 3}}));
  EXPECT_TRUE(Load(p, RunLengthFile(6, 2, stream).Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{3, 2, 1, 0, 3, 3}, {1, 1, 1, 2, 3, 2}}));
}

TEST(LoadBMP, SkippedPixelsOfABottomUpFileTakeTheColourOfEntry0) {
  const RunLengthStream stream =
      RunLengthStream().Run(1, 1).EndOfLine().Run(1, 1).Delta(1, 1).Run(1, 1).EndOfBitmap();
  Picture p = Blank(24, 3, 4);
  EXPECT_TRUE(Load(p, ColouredBackground(RunLengthFile(3, 4, stream)).Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{kBack, kBack, kBack},   // not reached before the end
                             {kBack, kBack, kRed},    // skipped by the move
                             {kRed, kBack, kBack},    // skipped by the move
                             {kRed, kBack, kBack}}))  // ended early
      << "rows from the top";
}

TEST(LoadBMP, SkippedPixelsOfATopDownFileTakeItInMovesOnly) {
  const RunLengthStream stream =
      RunLengthStream().Run(1, 2).EndOfLine().Run(1, 2).Delta(1, 1).Run(1, 2).EndOfBitmap();
  Picture p = Blank(16, 3, 4);
  EXPECT_TRUE(Load(p, ColouredBackground(RunLengthFile(3, -4, stream)).Bytes()));
  constexpr uint32_t kBack16 = 0x1106, kGreen16 = 0x97F0;
  EXPECT_EQ(RowsOf(p), (Rows{{kGreen16, 0x1111, 0x1111},
                             {kGreen16, kBack16, kBack16},
                             {kBack16, kBack16, kGreen16},
                             {0x1111, 0x1111, 0x1111}}));
}

TEST(LoadBMP, SkippedPixelsStayWhereEntry0PacksTo0) {
  const RunLengthStream stream = RunLengthStream().Run(1, 1).EndOfLine().Delta(1, 0).EndOfBitmap();
  for (int format : {16, 24}) {
    Picture p = Blank(format, 2, 2);
    EXPECT_TRUE(Load(p, RunLengthFile(2, 2, stream).Bytes()));
    const uint32_t old = format == 16 ? 0x1111 : kOldPixel;
    EXPECT_EQ(RowsOf(p), (Rows{{old, old}, {format == 16 ? 0x4102 : kRed, old}}));
  }
  // The alpha bits of a packed black entry are not 0.
  const struct {
    int format;
    uint32_t black;
  } cases[] = {{17, 0x8000}, {18, 0x8000}, {19, 0xF000}, {32, 0xFF000000}};
  for (const auto& c : cases) {
    Picture p = Blank(c.format, 2, 2);
    EXPECT_TRUE(Load(p, RunLengthFile(2, 2, stream).Bytes()));
    EXPECT_EQ(p.Get(0, 0), c.black) << c.format;
    EXPECT_EQ(p.Get(1, 1), c.black) << c.format;
  }
}

TEST(LoadBMP, SkippedPixelsOfAnIndexedSurfaceStay) {
  const RunLengthStream stream = RunLengthStream().Run(1, 1).EndOfLine().Delta(1, 0).EndOfBitmap();
  Picture p = Blank(8, 2, 2);
  EXPECT_TRUE(Load(p, ColouredBackground(RunLengthFile(2, 2, stream)).Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{kOld, kOld}, {1, kOld}}));
}

TEST(LoadBMP, TopDownRunLengthAt24BitsExchangesRedAndBlue) {
  const RunLengthStream stream =
      RunLengthStream().Run(1, 1).Delta(1, 0).Literal({1, 2, 3}).EndOfBitmap();
  Picture p = Blank(24, 5, 1);
  EXPECT_TRUE(Load(p, ColouredBackground(RunLengthFile(5, -1, stream)).Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{0x102040, kBack, 0x102040, 0x80FF90, 0xFFA0F0}}));
  p = Blank(24, 5, 1);
  EXPECT_TRUE(Load(p, ColouredBackground(RunLengthFile(5, 1, stream)).Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{kRed, kBack, kRed, 0x90FF80, 0xF0A0FF}}));
}

TEST(LoadBMP, RunsAndLiteralsAreClippedAtTheRowEnd) {
  const RunLengthStream stream = RunLengthStream()
                                     .Run(200, 1)
                                     .Run(5, 2)
                                     .EndOfLine()
                                     .Run(1, 2)
                                     .Literal({3, 3, 3, 3, 3})
                                     .EndOfLine()
                                     .Run(2, 1)
                                     .EndOfBitmap();
  for (int height : {3, -3}) {
    Picture p = Blank(8, 3, 3);
    EXPECT_TRUE(Load(p, RunLengthFile(3, height, stream).Bytes()));
    Rows rows = {{1, 1, 1}, {2, 3, 3}, {1, 1, kOld}};
    if (height > 0) std::reverse(rows.begin(), rows.end());
    EXPECT_EQ(RowsOf(p), rows);
  }
}

TEST(LoadBMP, MoveOutsideTheSurfaceEndsTheDecoding) {
  for (const RunLengthStream& stream :
       {RunLengthStream().Run(1, 1).Delta(3, 0).EndOfLine().Run(3, 2),
        RunLengthStream().Run(1, 1).Delta(0, 2).Run(3, 2),
        RunLengthStream().Run(1, 1).Delta(255, 255).Run(3, 2)}) {
    Picture p = Blank(8, 3, 2);
    EXPECT_TRUE(Load(p, RunLengthFile(3, -2, stream).Bytes()));
    EXPECT_EQ(RowsOf(p), (Rows{{1, kOld, kOld}, {kOld, kOld, kOld}}));
  }
}

TEST(LoadBMP, RowsBeyondTheSurfaceEndTheDecoding) {
  const RunLengthStream stream = RunLengthStream().EndOfLine().EndOfLine().Run(3, 1).Run(3, 1);
  for (int height : {2, -2}) {
    Picture p = Blank(8, 3, 2);
    EXPECT_TRUE(Load(p, RunLengthFile(3, height, stream).Bytes()));
    EXPECT_EQ(RowsOf(p), (Rows{{kOld, kOld, kOld}, {kOld, kOld, kOld}}));
  }
}

// Behind 3 literals, LoadBMP goes on at an even address and LoadBMPAlpha leaves out one byte. In a
// file at an odd address (its pixel data starts at an even offset) the two differ.
TEST(LoadBMP, LiteralsEndAtAnEvenAddress) {
  const std::vector<uint8_t> codes = {0, 3, 1, 2, 3, 2, 3, 0, 1, 0};
  BmpFile file = RunLengthFile(6, 1, RunLengthStream().Raw(codes));
  Picture p = Blank(8, 6, 1);
  EXPECT_TRUE(Load(p, file.Bytes(), /*odd_address=*/false));  // one byte left out: 3 0, 1 0
  EXPECT_EQ(RowsOf(p), (Rows{{1, 2, 3, 0, 0, 0}}));
  p = Blank(8, 6, 1);
  EXPECT_TRUE(Load(p, file.Bytes(), /*odd_address=*/true));  // none left out: 2 3, end of bitmap
  EXPECT_EQ(RowsOf(p), (Rows{{1, 2, 3, 3, 3, kOld}}));
}

TEST(LoadBMPAlpha, LeavesOutOneByteBehindAnOddLiteralRun) {
  const std::vector<uint8_t> codes = {0, 3, 1, 2, 3, 2, 3, 0, 1, 0};
  BmpFile file = RunLengthFile(6, 1, RunLengthStream().Raw(codes));
  for (bool odd_address : {false, true}) {
    Picture p = Blank(8, 6, 1);
    EXPECT_TRUE(LoadAlpha(p, file.Bytes(), odd_address));
    EXPECT_EQ(RowsOf(p), (Rows{{1, 2, 3, 0, 0, 0}}));
  }
}

TEST(LoadBMPAlpha, CopiesBytesWhateverTheDepthOfTheFile) {
  for (int bits : {1, 4, 8, 24}) {
    BmpFile file = IndexedFile(5, 2, {1, 2, 3, 4, 5, 0, 0, 0, 6, 7, 8, 9, 10});
    file.bits = uint16_t(bits);
    Picture p = Blank(8, 5, 2);
    EXPECT_TRUE(LoadAlpha(p, file.Bytes()));
    EXPECT_EQ(RowsOf(p), (Rows{{6, 7, 8, 9, 10}, {1, 2, 3, 4, 5}}));
    EXPECT_EQ(p.palette[0].blue, kOld);
  }
}

TEST(LoadBMPAlpha, KeepsSkippedPixels) {
  const RunLengthStream stream = RunLengthStream().Run(1, 1).EndOfLine().Delta(1, 0).EndOfBitmap();
  Picture p = Blank(8, 2, 2);
  EXPECT_TRUE(LoadAlpha(p, ColouredBackground(RunLengthFile(2, 2, stream)).Bytes()));
  EXPECT_EQ(RowsOf(p), (Rows{{kOld, kOld}, {1, kOld}}));
}

TEST(LoadBMP, AbsurdSizesDoNoHarm) {
  for (int format : model::kFormats) {
    for (int bits : {8, 24}) {
      for (uint32_t compression : {0u, 1u}) {
        for (int32_t height : {INT32_MIN, INT32_MAX, 0}) {
          BmpFile file = IndexedFile(INT32_MIN, height, std::vector<uint8_t>(64, 0x5A));
          file.bits = uint16_t(bits);
          file.compression = compression;
          FileInMemory memory(file.Bytes());
          TSurfDesc info{};
          EXPECT_TRUE(LoadInfoBMP(info, memory.Data()));
          EXPECT_TRUE(LoadInfoBMPAlpha(info, memory.Data()));
          for (const auto& [width, rows] : {std::pair{0, 0}, {0, 3}, {3, 0}, {-4, 3}, {3, -4}}) {
            Picture p = Blank(format, 4, 4);
            const Picture before = p;
            TSurfDesc surface = Describe(p);
            surface.width = width;
            surface.height = rows;
            EXPECT_TRUE(LoadBMP(surface, memory.Data()));
            EXPECT_TRUE(LoadBMPAlpha(surface, memory.Data()));
            EXPECT_EQ(p.bytes, before.bytes);
          }
        }
      }
    }
  }
}

RunLengthStream RandomStream(Random& random, int width, int height) {
  RunLengthStream stream;
  const int codes = random.Between(0, 6 * height);
  for (int i = 0; i < codes; ++i) {
    switch (random.Below(12)) {
      case 0:
      case 1:
      case 2:
        stream.Run(random.Between(1, random.OneIn(8) ? 255 : width + 1), random.Below(256));
        break;
      case 3:
      case 4:
      case 5: {
        std::vector<uint8_t> indices(size_t(random.Between(3, random.OneIn(8) ? 255 : 3 + width)));
        for (uint8_t& index : indices) index = random.Byte();
        stream.Literal(indices);
        break;
      }
      case 6:
      case 7:
      case 8:
        stream.EndOfLine();
        break;
      case 9: {
        const int right = random.Below(random.OneIn(8) ? 256 : width / 2 + 2);
        stream.Delta(right, random.Below(random.OneIn(8) ? 256 : 3));
        break;
      }
      case 10:
        if (random.OneIn(4)) stream.EndOfBitmap();
        break;
      default:
        if (random.OneIn(6)) {
          std::vector<uint8_t> garbage(size_t(random.Between(1, 9)));
          for (uint8_t& byte : garbage) byte = random.Byte();
          stream.Raw(garbage);
        }
        break;
    }
  }
  if (random.OneIn(2)) stream.EndOfBitmap();
  return stream;
}

BmpFile RandomFile(Random& random, int width, int height) {
  BmpFile file;
  file.qx = random.OneIn(10);
  const uint32_t headers[] = {12, 12, 64, 124};
  if (random.OneIn(5)) file.header = headers[random.Below(4)];
  file.width = random.OneIn(10) ? random.Between(0, 99) : width;
  file.height = random.OneIn(2) ? -height : height;
  if (random.OneIn(20)) file.height = INT32_MIN;
  const uint16_t depths[] = {8, 8, 8, 8, 24, 24, 24, 32, 16, 4, 1};
  file.bits = depths[random.Below(11)];
  const uint32_t counts[] = {0, 1, 2, 16, 255, 256, 257, 0xFFFFFFFF};
  file.colours_used = counts[random.Below(8)];
  const size_t counted =
      file.colours_used == 0 || file.colours_used > 256 ? 256 : file.colours_used;
  file.table.resize(random.OneIn(8) ? counted / 2 : counted);
  for (TRGBA& entry : file.table) {
    entry = {random.Byte(), random.Byte(), random.Byte(), random.Byte()};
  }
  if (!file.table.empty() && random.OneIn(3)) file.table[0] = {0, 0, 0, 0};
  file.gap = random.OneIn(3) ? random.Below(5) : 0;
  if (file.bits == 8 && random.OneIn(2)) {
    file.compression = 1;
    file.pixels = RandomStream(random, width, height).Bytes();
  } else {
    file.compression = random.OneIn(10) ? random.Next() : 0;
    file.pixels.resize(size_t(support::BmpStride(width, file.bits) * height + random.Below(3)));
    for (uint8_t& byte : file.pixels) byte = random.Byte();
  }
  return file;
}

TEST(LoadBMP, MatchesTheModel) {
  ForEachTarget([] {
    ForEachCase(1500, [](Random& random, int) {
      const int width = support::WidthOf(random.Below(support::kWidths));
      const int height = random.Between(0, 12);
      FileInMemory file(RandomFile(random, width, height).Bytes(), random.OneIn(3));
      for (int format : model::kFormats) {
        Picture expected =
            support::RandomPicture(random, format, width, height, support::AnyOptions(random));
        if (random.OneIn(8)) expected.has_palette = false;
        Picture actual = expected;
        model::LoadBmp(expected, file.Data(), lu_gPaleta);
        TSurfDesc surface = Describe(actual);
        ASSERT_TRUE(LoadBMP(surface, file.Data()));
        ASSERT_TRUE(Same(expected, actual, surface));
      }
    });
  });
}

TEST(LoadBMPAlpha, MatchesTheModel) {
  ForEachCase(3000, [](Random& random, int) {
    const int width = random.Between(1, 70), height = random.Between(0, 12);
    FileInMemory file(RandomFile(random, width, height).Bytes(), random.OneIn(3));
    Picture expected =
        support::RandomPicture(random, 8, width, height, support::AnyOptions(random));
    Picture actual = expected;
    model::LoadBmpAlpha(expected, file.Data());
    TSurfDesc surface = Describe(actual);
    ASSERT_TRUE(LoadBMPAlpha(surface, file.Data()));
    ASSERT_TRUE(Same(expected, actual, surface));
  });
}

TEST(LoadInfoBMP, MatchesTheModel) {
  ForEachCase(2000, [](Random& random, int) {
    BmpFile file = RandomFile(random, random.Between(1, 20), random.Between(0, 5));
    file.width = int32_t(random.Next());
    file.height = int32_t(random.Next());
    FileInMemory memory(file.Bytes(), random.OneIn(2));
    const model::BmpInfo info = model::ReadBmpInfo(memory.Data());
    TSurfDesc surface{};
    ASSERT_TRUE(LoadInfoBMP(surface, memory.Data()));
    ASSERT_EQ(surface.width, info.width);
    ASSERT_EQ(surface.height, info.height);
    ASSERT_EQ(surface.bpp, uint32_t(info.bits));
    ASSERT_TRUE(LoadInfoBMPAlpha(surface, memory.Data()));
    ASSERT_EQ(surface.width, info.width);
    ASSERT_EQ(surface.height, info.height);
    ASSERT_EQ(surface.bpp, 8u);
  });
}

}  // namespace
