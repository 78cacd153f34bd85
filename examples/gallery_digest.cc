// One line per result of the gallery: a checksum of its bytes, key and palette, then its name. The
// lines are the same on every machine: gallery_digest <examples folder> <file to write>
#include <cstdio>
#include <exception>

#include "gallery.h"

namespace {

uint32_t Crc32(uint32_t crc, const void* bytes, size_t size) {
  const auto* at = static_cast<const uint8_t*>(bytes);
  crc = ~crc;
  for (size_t i = 0; i < size; ++i) {
    crc ^= at[i];
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

uint32_t Crc32(const Shown& shown) {
  if (!shown.picture) return Crc32(0, shown.text.data(), shown.text.size());
  const HostSurface& picture = *shown.picture;
  uint32_t crc = Crc32(0, picture.memory().data(), picture.memory().size());
  crc = Crc32(crc, &picture.colorKey, sizeof picture.colorKey);
  if (picture.palette != nullptr) crc = Crc32(crc, picture.palette, 256 * sizeof(TRGBA));
  return crc;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: gallery_digest <examples folder> <file to write>\n");
    return 2;
  }
  try {
    const Assets assets(argv[1]);
    std::string lines;
    for (const Operation& operation : Operations()) {
      for (const Shown& shown : operation.render(assets).results) {
        char crc[9];
        std::snprintf(crc, sizeof crc, "%08x", unsigned{Crc32(shown)});
        lines += std::string(crc) + " " + operation.title + " / " + shown.caption + "\n";
      }
    }
    WriteFile(argv[2], lines.data(), lines.size());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "gallery_digest: %s\n", error.what());
    return 1;
  }
  return 0;
}
