// Small files with one defect each that could hurt a loader: for tests, and as seeds for the fuzz
// harnesses.
#ifndef TESTS_SUPPORT_DEFECT_FILES_H_
#define TESTS_SUPPORT_DEFECT_FILES_H_

#include <cstdint>
#include <string>
#include <vector>

#include "include/pincel.h"

namespace support {

enum class FileKind { kBmp, kGif, kJpeg };

struct DefectFile {
  FileKind kind;
  std::string defect;
  std::vector<uint8_t> bytes;
  // What the loader that knows the file's length reports of the first picture, with a 24-bit surface
  // of kDefectSurface x kDefectSurface pixels.
  pincel_status status;
};
inline constexpr int kDefectSurface = 64;

// One or more per class of defects.
std::vector<DefectFile> DefectFiles();

// A few hundred bytes each, one for every way of coding, to be cut off or changed.
std::vector<DefectFile> SoundFiles();

}  // namespace support

#endif  // TESTS_SUPPORT_DEFECT_FILES_H_
