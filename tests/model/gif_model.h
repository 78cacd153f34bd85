// What the GIF entry points read from a file in memory, one code and one pixel at a time.
#ifndef TESTS_MODEL_GIF_MODEL_H_
#define TESTS_MODEL_GIF_MODEL_H_

#include <cstdint>

#include "tests/model/picture.h"

namespace model {

// The methods of CQXGIF. The image goes to `memory`, of which `limit` bytes may be written.
uint32_t GifReadHeader(CQXGIF& gif, uint8_t* data, RAW& frame);
uint32_t GifNextImage(CQXGIF& gif);
uint32_t GifReadCode(CQXGIF& gif);
uint32_t GifDecodeImage(CQXGIF& gif, RAW& frame, uint8_t* memory, int64_t limit);

// LoadInfoGIF, LoadInfoGIFAlpha; the size is in `frame`.
bool GifInfo(CQXGIF& gif, uint8_t* data, RAW& frame, bool read_palette);

// LoadGIF, LoadGIFAlpha: the frame at the cursor into the picture; its palette too at 8 bits.
bool LoadGif(Picture& p, CQXGIF& gif, RAW& frame);
bool LoadGifAlpha(Picture& p, CQXGIF& gif, RAW& frame);

}  // namespace model

#endif  // TESTS_MODEL_GIF_MODEL_H_
