// The example that plays animations shows what another program does.
#include "examples/gif_animation.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/checksum.h"
#include "tests/support/files.h"

namespace {

// What ImageMagick 6.9.11 composes: convert FILE -coalesce -set colorspace sRGB -depth 8 bgra:-
// with transparent pixels made all 0. Not listed are four files whose first frame is opaque and does
// not fill the screen: that program fills up with the file's background colour, which viewers ignore.
struct Reference {
  const char* file;
  int frames;
  uint32_t crc;  // every byte of every frame
};
constexpr Reference kReferences[] = {
#include "tests/checksums/gif_animation.inc"
};

TEST(GifAnimation, ShowsWhatAnotherProgramDoes) {
  for (const Reference& reference : kReferences) {
    GifAnimation animation(
        support::BytesOf(PINCEL_SOURCE_DIR "/examples/assets/gif/" + std::string(reference.file)));
    int frames = 0;
    uint32_t sum = 0;
    for (; animation.Next(); ++frames) {
      const HostSurface& screen = animation.Screen();
      sum = support::Crc32({screen.pixels, screen.pixels + screen.pitch * screen.height}, sum);
    }
    EXPECT_EQ(frames, reference.frames) << reference.file;
    EXPECT_EQ(sum, reference.crc) << support::ChecksumLine(reference.file, {sum});
  }
}

TEST(GifAnimation, RefusesOtherFiles) {
  EXPECT_THROW(GifAnimation({'B', 'M', 0, 0}), std::runtime_error);
}

}  // namespace
