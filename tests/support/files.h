// Files of the test folders.
#ifndef TESTS_SUPPORT_FILES_H_
#define TESTS_SUPPORT_FILES_H_

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace support {

// The files of a folder, by name; `extension` with its dot.
inline std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder,
                                                  const std::string& extension) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == extension) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

inline std::vector<uint8_t> BytesOf(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace support

#endif  // TESTS_SUPPORT_FILES_H_
