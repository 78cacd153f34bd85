// Hosts on 32-bit Windows keep the stack aligned to four bytes only. Functions with vector code are
// called here at all four offsets, in every format; every_export_test.cc calls all there are.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "pincel.h"
#include "tests/support/files.h"
#include "tests/windows/call_at_offset.h"

namespace {

template <class Argument>
void Push(std::vector<uint32_t>& words, const Argument& argument) {
  const size_t at = words.size();
  words.resize(at + (sizeof(Argument) + 3) / 4);
  std::memcpy(&words[at], &argument, sizeof(Argument));
}

// What a function called that way finds: esp mod 16 at its first instruction.
extern "C" uint32_t StackProbe();
asm(".globl _StackProbe\n"
    "_StackProbe:\n\t"
    "movl %esp, %eax\n\t"
    "andl $15, %eax\n\t"
    "ret");

TEST(StackAlignment, TrampolineReachesEachOffset) {
  const void* probe = reinterpret_cast<const void*>(&StackProbe);
  for (uint32_t offset = 0; offset < 16; offset += 4) {
    // The call itself has pushed four bytes.
    EXPECT_EQ(uint32_t(CallAtOffset(offset, probe, {1, 2, 3})), (offset + 12) % 16);
  }
}

uint32_t g_offset;

// Arguments as the callee finds them on the stack: pointers in place of references.
template <class Function, class... Arguments>
bool Call(Function* function, const Arguments&... arguments) {
  std::vector<uint32_t> words;
  (Push(words, arguments), ...);
  return (CallAtOffset(g_offset, reinterpret_cast<const void*>(function), words) & 0xFF) != 0;
}

struct Format {
  uint32_t bpp, red, alpha;
};
constexpr Format kFormats[] = {
    {8, 0, 0},  {16, 0xF800, 0},    {16, 0x7C00, 0}, {16, 0x7C00, 0x8000}, {16, 0x0F00, 0xF000},
    {24, 0, 0}, {32, 0, 0xFF000000}};

class Picture {
 public:
  Picture(const Format& format, int width, int height, uint32_t seed) {
    surface.width = width;
    surface.height = height;
    surface.bpp = format.bpp;
    surface.rMask = format.red;
    surface.aMask = format.alpha;
    surface.colorKey = 0xFFFFFFFF;
    surface.pitch = (width * int(format.bpp / 8) + 3) & ~3;
    // One word more: some conversions read the byte behind the last pixel.
    bytes.resize(size_t(surface.pitch) * size_t(height) + 4);
    for (uint8_t& byte : bytes) {
      seed = seed * 1664525 + 1013904223;
      byte = uint8_t(seed >> 24);
    }
    surface.pixels = bytes.data();
    surface.palette = palette;
    CreateTruncPal(palette);
  }
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  TSurfDesc surface{};
  TRGBA palette[256] = {};
  std::vector<uint8_t> bytes;
};

// The operation must survive, and give the same bytes, at every offset.
void ExpectSameAtEveryOffset(const Format& dst_format, const Format& src_format,
                             const std::function<void(TSurfDesc&, TSurfDesc&)>& operation) {
  std::vector<uint8_t> expected;
  for (g_offset = 0; g_offset < 16; g_offset += 4) {
    SCOPED_TRACE(testing::Message() << dst_format.bpp << " from " << src_format.bpp
                                    << " bits, stack offset " << g_offset);
    Picture dst(dst_format, 67, 19, 1);
    Picture src(src_format, 67, 19, 2);
    operation(dst.surface, src.surface);
    if (g_offset == 0) expected = dst.bytes;
    EXPECT_EQ(dst.bytes, expected);
  }
}

TEST(StackAlignment, Fills) {
  for (const Format& format : kFormats) {
    ExpectSameAtEveryOffset(format, format, [](TSurfDesc& dst, TSurfDesc&) {
      EXPECT_TRUE(Call(&IdxFillRect, &dst, CRectangulo{1, 1, 66, 18}, 0x80123456ul));
    });
  }
}

TEST(StackAlignment, LinesAndFrames) {
  for (const Format& format : kFormats) {
    ExpectSameAtEveryOffset(format, format, [](TSurfDesc& dst, TSurfDesc&) {
      const CPunto from{3, 4}, to{60, 12};
      EXPECT_FALSE(Call(&Line, &dst, &from, &to, 0x00FF8040ul, uint16_t{130}, true, 3));
      EXPECT_FALSE(Call(&FrameBR, &dst, CRectangulo{2, 2, 50, 15}, 0x00AABBCCul));
      EXPECT_TRUE(Call(&IdxLineHI, &dst, &to, -30, 0x00112233ul));
    });
  }
}

TEST(StackAlignment, OpaqueBlits) {
  bool (*const draw)(TSurfDesc&, CRectangulo, TSurfDesc&, CPunto) = &DrawBitmap;
  for (const Format& format : kFormats) {
    ExpectSameAtEveryOffset(format, format, [draw](TSurfDesc& dst, TSurfDesc& src) {
      EXPECT_TRUE(Call(draw, &dst, CRectangulo{1, 1, 66, 18}, &src, CPunto{0, 0}));
    });
    ExpectSameAtEveryOffset(format, kFormats[0], [draw](TSurfDesc& dst, TSurfDesc& src) {
      EXPECT_TRUE(Call(draw, &dst, CRectangulo{1, 1, 66, 18}, &src, CPunto{0, 0}));
    });
  }
}

TEST(StackAlignment, KeyedBlits) {
  bool (*const draw)(TSurfDesc&, CRectangulo, TSurfDesc&, CPunto) = &DrawBitmap;
  for (const Format& format : kFormats) {
    for (const Format& from : {format, kFormats[0]}) {
      ExpectSameAtEveryOffset(format, from, [draw](TSurfDesc& dst, TSurfDesc& src) {
        std::memset(src.pixels + src.pitch, 0, 64);
        src.colorKey = 0;
        EXPECT_TRUE(Call(draw, &dst, CRectangulo{1, 1, 66, 18}, &src, CPunto{0, 0}));
      });
    }
  }
}

TEST(StackAlignment, Conversions) {
  for (const Format& dst_format : kFormats) {
    for (const Format& src_format : kFormats) {
      for (unsigned long mode = 2; mode <= 4; ++mode) {
        ExpectSameAtEveryOffset(dst_format, src_format, [mode](TSurfDesc& dst, TSurfDesc& src) {
          src.colorKey = 0x1234;
          EXPECT_FALSE(Call(&Convert, &dst, &src, mode));
        });
      }
    }
  }
}

TEST(StackAlignment, FloodFill) {
  for (const Format& format : kFormats) {
    ExpectSameAtEveryOffset(format, kFormats[0], [](TSurfDesc& dst, TSurfDesc& work) {
      std::memset(work.pixels, 0, size_t(work.pitch) * size_t(work.height));
      EXPECT_TRUE(Call(&Rellena, &dst, &work, 30, 9, 600ul, 0x00FFFFFFul, 0x00102030ul));
    });
  }
}

// The decoder brings its own assembly code, and throws and catches inside the call.
TEST(StackAlignment, Jpeg) {
  const char* const kFiles[] = {"wuffs-hippopotamus.jpg", "wuffs-peacock.progressive.jpg",
                                "jpegdec-jpg-gray.jpg"};
  for (const char* name : kFiles) {
    std::vector<uint8_t> file =
        support::BytesOf(PINCEL_SOURCE_DIR "/examples/assets/jpg/" + std::string(name));
    ASSERT_FALSE(file.empty());
    for (const Format& format : kFormats) {
      ExpectSameAtEveryOffset(format, format, [&](TSurfDesc& dst, TSurfDesc&) {
        dst.palette = nullptr;
        EXPECT_TRUE(Call(&LoadJPG, &dst, file.data(), long(file.size())));
        EXPECT_FALSE(Call(&LoadJPG, &dst, file.data(), long(file.size() / 2)));
        EXPECT_TRUE(Call(&pincel_load_jpg, &dst, file.data(), size_t{60}));  // truncated
      });
    }
  }
}

}  // namespace
