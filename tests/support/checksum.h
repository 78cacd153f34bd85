// CRC-32 (the one of PNG and zip) for results that are committed and must not change on any build.
#ifndef TESTS_SUPPORT_CHECKSUM_H_
#define TESTS_SUPPORT_CHECKSUM_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace support {

// Pass the sum of the bytes before to go on with more bytes.
inline uint32_t Crc32(const std::vector<uint8_t>& bytes, uint32_t sum = 0) {
  sum = ~sum;
  for (uint8_t byte : bytes) {
    sum ^= byte;
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ (sum & 1 ? 0xEDB88320 : 0);
  }
  return ~sum;
}

// The line of a committed list, as a failing test prints it.
inline std::string ChecksumLine(const std::string& name, const std::vector<uint32_t>& sums) {
  std::string line = "{\"" + name + "\", {";
  for (size_t i = 0; i < sums.size(); ++i) {
    char number[16];
    std::snprintf(number, sizeof(number), "%s0x%08X", i == 0 ? "" : ", ", unsigned{sums[i]});
    line += number;
  }
  return line + "}},";
}

}  // namespace support

#endif  // TESTS_SUPPORT_CHECKSUM_H_
