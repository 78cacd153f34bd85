// What the BMP entry points read from a file in memory.
#ifndef TESTS_MODEL_BMP_MODEL_H_
#define TESTS_MODEL_BMP_MODEL_H_

#include <cstdint>

#include "tests/model/picture.h"

namespace model {

struct BmpInfo {
  int64_t width = 0, height = 0;
  int bits = 0;
};

BmpInfo ReadBmpInfo(const uint8_t* file);

// Decodes into the picture; its palette too at 8 bits. `fallback` stands for a file's missing
// colour table. The file is read where it lies: run-length padding depends on the address.
void LoadBmp(Picture& p, const uint8_t* file, const TRGBA* fallback);
void LoadBmpAlpha(Picture& p, const uint8_t* file);

}  // namespace model

#endif  // TESTS_MODEL_BMP_MODEL_H_
