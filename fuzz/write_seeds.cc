// Writes inputs to start fuzzing from: write_seeds <folder>. Each harness gets a folder of its own.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/defect_files.h"
#include "tests/support/random.h"

namespace {

using support::DefectFile;
using support::FileKind;
using Bytes = std::vector<uint8_t>;

class Folder {
 public:
  explicit Folder(const std::filesystem::path& path) : path_(path) {
    std::filesystem::create_directories(path);
  }
  void Add(Bytes first, const Bytes& rest) {
    first.insert(first.end(), rest.begin(), rest.end());
    std::ofstream out(path_ / std::to_string(count_++), std::ios::binary);
    out.write(reinterpret_cast<const char*>(first.data()), std::streamsize(first.size()));
    good_ = out.flush() && good_;
  }
  uint8_t Next() const { return uint8_t(count_); }
  bool Good() const { return good_; }

 private:
  std::filesystem::path path_;
  int count_ = 0;
  bool good_ = true;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: write_seeds <folder>\n");
    return 2;
  }
  const std::filesystem::path root(argv[1]);
  Folder bmp(root / "bmp"), gif(root / "gif"), jpeg(root / "jpeg"), bounded(root / "bounded"),
      draw(root / "draw");
  std::vector<DefectFile> files = support::DefectFiles();
  for (DefectFile& file : support::SoundFiles()) files.push_back(std::move(file));
  for (const DefectFile& file : files) {
    // Surfaces of 64 x 64 and 5 x 3, one format after the other.
    for (const auto& [width, height] : {std::pair<uint8_t, uint8_t>{64, 64}, {5, 3}}) {
      Folder& own = file.kind == FileKind::kBmp ? bmp : file.kind == FileKind::kGif ? gif : jpeg;
      Bytes surface = {width, height, uint8_t(own.Next() % 7)};
      if (file.kind == FileKind::kBmp) surface.push_back(uint8_t(own.Next() / 7 % 2));
      own.Add(surface, file.bytes);
      if (file.kind != FileKind::kJpeg) {
        bounded.Add({width, height, uint8_t(bounded.Next() % 7)}, file.bytes);
      }
    }
  }
  for (int seed = 0; seed < 200; ++seed) {
    support::Random random{uint64_t(seed)};
    Bytes decisions(200);
    for (uint8_t& byte : decisions) byte = uint8_t(random.Next());
    draw.Add({}, decisions);
  }
  return bmp.Good() && gif.Good() && jpeg.Good() && bounded.Good() && draw.Good() ? 0 : 1;
}
