#include "tests/support/defect_files.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "tests/support/bmp_writer.h"
#include "tests/support/gif_writer.h"
#include "tests/support/libjpeg.h"
#include "tests/support/random.h"

namespace support {
namespace {

class Files {
 public:
  explicit Files(FileKind kind) : kind_(kind) {}
  void Add(std::string defect, ByteVector bytes, pincel_status status) {
    files_.push_back({kind_, std::move(defect), std::move(bytes), status});
  }
  void MoveTo(std::vector<DefectFile>& all) {
    for (DefectFile& file : files_) all.push_back(std::move(file));
  }

 private:
  FileKind kind_;
  std::vector<DefectFile> files_;
};

void Put(ByteVector& bytes, size_t at, uint32_t value, int count) {
  for (int i = 0; i < count; ++i) bytes[at + size_t(i)] = uint8_t(value >> 8 * i);
}

std::string Number(int64_t number) { return std::to_string(number); }

// --- GIF ---

const GifTable kTable{1, {0, 0, 0, 0x40, 0x20, 0x10, 0x90, 0xFF, 0x80, 0xF0, 0xA0, 0xFF}};

GifImage Image(int width, int height, const CodeStream& stream, int root_bits = 2) {
  GifImage image;
  image.width = width;
  image.height = height;
  image.root_bits = root_bits;
  image.data = SubBlocks(stream.Bytes(), 100);
  return image;
}
GifImage Image(int width, int height) {
  ByteVector indices;
  for (int i = 0; i < width * height; ++i) indices.push_back(uint8_t(i * i / 3 % 4));
  return Image(width, height, Compressed(indices, 2));
}
GifFile File(const GifImage& image) {
  GifFile file;
  file.width = file.height = 16;
  file.table = kTable;
  file.images = {image};
  return file;
}
ByteVector Bytes(const GifImage& image) { return File(image).Bytes(); }

// Each code is the one that it adds.
CodeStream Growing(int first, int count) {
  CodeStream stream(2);
  stream.Clear().Code(first);
  for (int i = 0; i < count; ++i) stream.Code(stream.NextFree());
  return stream;
}

void AddGifs(std::vector<DefectFile>& all) {
  Files gif(FileKind::kGif);
  gif.Add("code above the next free one",
          Bytes(Image(4, 4, CodeStream(2).Clear().Codes({1, 7, 2, 15, 3}).End())), PINCEL_CORRUPT);
  gif.Add("first code is no index", Bytes(Image(4, 4, CodeStream(2).Clear().Codes({6, 6}).End())),
          PINCEL_CORRUPT);
  gif.Add("entry that is its own prefix", Bytes(Image(4, 4, CodeStream(2).Codes({6, 6, 7}).End())),
          PINCEL_CORRUPT);
  CodeStream stale = Growing(1, 4);
  stale.Clear().Codes({2, 7, 6, 7});
  gif.Add("codes of a table that was cleared", Bytes(Image(30, 4, stale.End())), PINCEL_CORRUPT);
  gif.Add("clear codes only",
          Bytes(Image(4, 4, CodeStream(2).Clear().Clear().Clear().Clear().End())),
          PINCEL_TRUNCATED);
  gif.Add("string longer than the pixels left", Bytes(Image(3, 1, Growing(1, 60).End())),
          PINCEL_OK);
  gif.Add("string as long as the table", Bytes(Image(60, 60, Growing(1, 4090).End())), PINCEL_OK);
  for (int bits : {0, 9, 10, 12, 255}) {
    GifImage image = Image(4, 4);
    image.root_bits = bits;
    gif.Add("minimum code size " + Number(bits), Bytes(image), PINCEL_CORRUPT);
  }
  GifImage one_bit = Image(4, 4);
  one_bit.root_bits = 1;
  one_bit.data = SubBlocks(ByteVector(20));
  gif.Add("minimum code size 1", Bytes(one_bit), PINCEL_OK);

  Random random(1);
  ByteVector noise(64 * 64);
  for (uint8_t& index : noise) index = uint8_t(random.Next());
  gif.Add("full table whose clear code comes late",
          Bytes(Image(64, 64, Compressed(noise, 8, 150), 8)), PINCEL_OK);
  gif.Add("full table without another clear code",
          Bytes(Image(64, 64, Compressed(noise, 8, 9999), 8)), PINCEL_OK);

  for (int height = 0; height < 8; ++height) {
    GifImage image = Image(3, height);
    image.interlaced = true;
    gif.Add("interlaced, height " + Number(height), Bytes(image), PINCEL_OK);
  }
  gif.Add("frame larger than the screen", Bytes(Image(65, 20)), PINCEL_SURFACE_TOO_SMALL);
  GifImage outside = Image(4, 4);
  outside.left = outside.top = 65535;
  gif.Add("frame outside the screen", Bytes(outside), PINCEL_OK);
  gif.Add("frame without width", Bytes(Image(0, 4)), PINCEL_OK);
  gif.Add("frame without height", Bytes(Image(4, 0)), PINCEL_OK);
  GifImage huge = Image(4, 4);
  huge.width = huge.height = 65535;
  for (bool interlaced : {false, true}) {
    huge.interlaced = interlaced;
    gif.Add("huge frame", Bytes(huge), PINCEL_SURFACE_TOO_SMALL);
  }

  GifFile open = File(Image(4, 4));
  open.images[0].data.pop_back();
  open.end = ByteVector(4 * 256, 255);
  gif.Add("sub-blocks without an end", open.Bytes(), PINCEL_OK);
  open.images[0].data.resize(2);
  open.images[0].data[0] = 1;
  open.end = {255, 1, 2, 3};
  gif.Add("sub-block past the end of the file", open.Bytes(), PINCEL_TRUNCATED);
  GifImage commented = Image(4, 4);
  commented.before = {'!', 0xFE};
  commented.before.insert(commented.before.end(), 300, 255);
  gif.Add("extension past the end of the file", Bytes(commented), PINCEL_TRUNCATED);
  GifImage bad_control = Image(4, 4);
  bad_control.before = {'!', 0xF9, 1, 0xFF, 0, '!', 0xFF, 2, 'N', 'E', 1, 1, 0, '!', 0xFF, 0};
  gif.Add("extensions that are too short", Bytes(bad_control), PINCEL_OK);

  GifFile bare = File(Image(4, 4));
  bare.table.exponent = -1;
  gif.Add("no colour table", bare.Bytes(), PINCEL_OK);
  GifFile cut = File(Image(4, 4));
  cut.images.clear();
  cut.table.exponent = 7;
  ByteVector table_cut = cut.Bytes();
  table_cut.resize(100);
  gif.Add("colour table past the end of the file", table_cut, PINCEL_TRUNCATED);
  gif.MoveTo(all);
}

// --- BMP ---

BmpFile Bitmap(int width, int height, int bits) {
  BmpFile file;
  file.width = width;
  file.height = height;
  file.bits = uint16_t(bits);
  if (bits <= 8) {
    file.table = {{0x30, 0, 0, 1}, {0x10, 0x20, 0x40, 2}, {0x80, 0xFF, 0x90, 3}, {0, 0, 0, 4}};
    if (bits == 1) file.table.resize(2);
    file.colours_used = uint32_t(file.table.size());
  }
  file.pixels.resize(size_t(BmpStride(width, bits) * std::abs(height)));
  for (size_t i = 0; i < file.pixels.size(); ++i) file.pixels[i] = uint8_t(i * i / 3 % 4);
  return file;
}
// `bits` is 4 or 8.
ByteVector RunLengthFile(int width, int height, const RunLengthStream& stream, int bits = 8) {
  BmpFile file = Bitmap(width, 1, bits);
  file.height = height;
  file.compression = bits == 8 ? 1 : 2;
  file.pixels = stream.Bytes();
  return file.Bytes();
}
ByteVector Changed(ByteVector bytes, size_t at, uint32_t value, int count = 4) {
  Put(bytes, at, value, count);
  return bytes;
}

void AddBmps(std::vector<DefectFile>& all) {
  Files bmp(FileKind::kBmp);
  for (int height : {4, -4}) {
    const std::string way = height > 0 ? ", from below" : ", from the top";
    const auto stream = [] { return RunLengthStream().Run(3, 1); };
    bmp.Add("move past the row end" + way,
            RunLengthFile(7, height, stream().Delta(5, 0).Run(9, 2).EndOfBitmap()), PINCEL_CORRUPT);
    bmp.Add("move past the last row" + way,
            RunLengthFile(7, height, stream().Delta(0, 4).Run(9, 2).EndOfBitmap()), PINCEL_CORRUPT);
    bmp.Add("far moves" + way,
            RunLengthFile(7, height, stream().Delta(255, 255).Delta(255, 255).Run(255, 2)),
            PINCEL_CORRUPT);
    RunLengthStream lines = stream();
    for (int i = 0; i < 40; ++i) lines.EndOfLine();
    bmp.Add("rows past the last one" + way, RunLengthFile(7, height, lines.Run(255, 2)), PINCEL_OK);
    const auto last_row = [&] { return stream().EndOfLine().EndOfLine().EndOfLine(); };
    bmp.Add("run past the end of the last row" + way,
            RunLengthFile(7, height, last_row().Run(255, 2).Run(255, 3).EndOfBitmap()), PINCEL_OK);
    bmp.Add("literals past the end of the last row" + way,
            RunLengthFile(7, height, last_row().Literal(ByteVector(255, 2)).EndOfBitmap()),
            PINCEL_OK);
    bmp.Add("literals past the end of the file" + way,
            RunLengthFile(7, height, stream().Raw({0, 255, 1, 2})), PINCEL_TRUNCATED);
    bmp.Add("4-bit run past the end of the last row" + way,
            RunLengthFile(7, height, last_row().Run(255, 0x12).EndOfBitmap(), 4), PINCEL_OK);
    bmp.Add("4-bit move past the last row" + way,
            RunLengthFile(7, height, stream().Delta(0, 200).EndOfBitmap(), 4), PINCEL_CORRUPT);
  }
  for (int bits : {8, 24}) {
    const ByteVector sound = Bitmap(5, 3, bits).Bytes();
    const std::string depth = ", " + Number(bits) + " bits";
    for (uint32_t height : {0x80000000u, 0u}) {
      bmp.Add("height " + Number(int32_t(height)) + depth, Changed(sound, 22, height),
              PINCEL_CORRUPT);
    }
    for (uint32_t width : {0x80000000u, 0xFFFFFFFFu, 0u}) {
      bmp.Add("width " + Number(int32_t(width)) + depth, Changed(sound, 18, width), PINCEL_CORRUPT);
    }
    // Times the bits of a pixel: 5 x bits and a power of two from 2^32 on.
    for (int shift : {32, 33, 34}) {
      const uint64_t width = (uint64_t{1} << shift) / 8 + 5;
      if (width > INT32_MAX) continue;
      bmp.Add("width times depth above 2^32" + depth, Changed(sound, 18, uint32_t(width)),
              PINCEL_SURFACE_TOO_SMALL);
    }
    bmp.Add("width times three above 2^32" + depth, Changed(sound, 18, 0x55555556),
            PINCEL_SURFACE_TOO_SMALL);
    bmp.Add("huge size" + depth, Changed(Changed(sound, 18, INT32_MAX), 22, INT32_MAX),
            PINCEL_SURFACE_TOO_SMALL);
    for (uint32_t offset : {0u, 10u, 14u, 53u}) {
      bmp.Add("pixels inside the header, at " + Number(offset) + depth, Changed(sound, 10, offset),
              PINCEL_CORRUPT);
    }
    for (uint32_t offset :
         {uint32_t(sound.size()), uint32_t(sound.size()) + 999, 0x7FFFFFFFu, 0xFFFFFFF0u}) {
      bmp.Add("pixels past the end of the file, at " + Number(offset) + depth,
              Changed(sound, 10, offset), PINCEL_TRUNCATED);
    }
    for (uint32_t header : {0u, 13u, 41u, 0xFFFFFFFFu}) {
      bmp.Add("header of " + Number(header) + " bytes" + depth, Changed(sound, 14, header),
              PINCEL_UNSUPPORTED);
    }
  }
  BmpFile file = Bitmap(5, 3, 8);
  file.table.resize(256);
  for (uint32_t colours : {257u, 300u, 0x40000001u, 0xFFFFFFFFu}) {
    file.colours_used = colours;
    bmp.Add(Number(colours) + " colours", file.Bytes(), PINCEL_OK);
  }
  BmpFile few = Bitmap(5, 3, 8);
  few.colours_used = 0xFFFFFFFF;
  bmp.Add("more colours than the file has", few.Bytes(), PINCEL_TRUNCATED);
  bmp.Add("depth 0", Changed(Bitmap(5, 3, 24).Bytes(), 28, 0, 2), PINCEL_UNSUPPORTED);
  bmp.Add("depth 65535", Changed(Bitmap(5, 3, 24).Bytes(), 28, 65535, 2), PINCEL_UNSUPPORTED);
  bmp.MoveTo(all);
}

// --- JPEG ---

ByteVector Jpeg(bool progressive) {
  ByteVector samples;
  for (int i = 0; i < 11 * 9; ++i) {
    samples.insert(samples.end(), {uint8_t(i * 2), uint8_t(i * i), uint8_t(255 - i)});
  }
  JpegOptions options;
  options.progressive = progressive;
  return JpegFile(11, 9, samples, options);
}

size_t Find(const ByteVector& file, uint8_t marker) {
  const ByteVector bytes = {0xFF, marker};
  return size_t(std::search(file.begin(), file.end(), bytes.begin(), bytes.end()) - file.begin());
}

void AddJpegs(std::vector<DefectFile>& all) {
  Files jpeg(FileKind::kJpeg);
  const ByteVector sound = Jpeg(false), progressive = Jpeg(true);
  // In a segment of the file itself, and in one that stands before the others.
  for (uint8_t marker : {0xDB, 0xC4, 0xC0, 0xDA}) {
    for (uint8_t length : {0, 1}) {
      ByteVector file = sound;
      const size_t at = Find(file, marker);
      file[at + 2] = 0;
      file[at + 3] = length;
      jpeg.Add("length " + Number(length) + " of marker " + Number(marker), file, PINCEL_CORRUPT);
    }
  }
  for (uint8_t marker : {0xE0, 0xE1, 0xEE, 0xFE, 0xDD, 0xCC, 0xDC, 0xC8}) {
    for (uint8_t length : {0, 1}) {
      ByteVector file = sound;
      const ByteVector segment = {0xFF, marker, 0, length};
      file.insert(file.begin() + 2, segment.begin(), segment.end());
      const bool skipped = marker >= 0xE0 || marker == 0xDC;
      jpeg.Add("length " + Number(length) + " of added marker " + Number(marker), file,
               skipped          ? PINCEL_OK
               : marker == 0xC8 ? PINCEL_UNSUPPORTED
                                : PINCEL_CORRUPT);
    }
  }
  for (uint8_t marker : {0xC4, 0xDB, 0xE1, 0xFE, 0xC0, 0xDA}) {
    jpeg.Add("segment past the end of the file, marker " + Number(marker),
             {0xFF, 0xD8, 0xFF, marker, 0xFF, 0xFF, 0x10, 0xFF, 0xFF, 0xFF},
             marker == 0xDA ? PINCEL_CORRUPT : PINCEL_TRUNCATED);  // a scan without a frame
  }
  ByteVector file = sound;
  std::fill_n(file.begin() + int(Find(file, 0xC4)) + 5, 16, uint8_t{0xFF});
  jpeg.Add("more Huffman codes than there are", file, PINCEL_CORRUPT);
  jpeg.Add("no start of image", {sound.begin() + 2, sound.end()}, PINCEL_NOT_THIS_FORMAT);
  jpeg.Add("no image", {0xFF, 0xD8, 0xFF, 0xD9}, PINCEL_CORRUPT);
  for (const ByteVector* whole : {&sound, &progressive}) {
    const size_t frame = Find(*whole, whole == &sound ? 0xC0 : 0xC2), scan = Find(*whole, 0xDA);
    const auto changed = [&](size_t at, uint32_t value, int count = 1) {
      return Changed(*whole, at, value, count);
    };
    jpeg.Add("huge size", changed(frame + 5, 0xDCFFDCFF, 4), PINCEL_SURFACE_TOO_SMALL);
    jpeg.Add("size above the largest", changed(frame + 5, 0xFFFFFFFF, 4), PINCEL_UNSUPPORTED);
    jpeg.Add("no rows", changed(frame + 5, 0, 2), PINCEL_CORRUPT);
    jpeg.Add("no columns", changed(frame + 7, 0, 2), PINCEL_CORRUPT);
    jpeg.Add("no components", changed(frame + 9, 0), PINCEL_CORRUPT);
    jpeg.Add("sampling of 0", changed(frame + 11, 0), PINCEL_CORRUPT);
    jpeg.Add("quantization table that is not there", changed(frame + 12, 3), PINCEL_CORRUPT);
    jpeg.Add("component that is not there", changed(scan + 5, 77), PINCEL_CORRUPT);
    jpeg.Add("Huffman table that is not there", changed(scan + 6, 0x33), PINCEL_CORRUPT);
    ByteVector twice = *whole;
    twice.insert(twice.end() - 2, whole->begin() + int(frame), whole->end());
    jpeg.Add("two frames", twice, PINCEL_CORRUPT);
  }
  file = progressive;
  const size_t scan = Find(file, 0xDA);
  file[scan + 4 + 1 + 2 * 3] = 9;  // starts behind its end
  jpeg.Add("scan of no coefficients", file, PINCEL_CORRUPT);
  jpeg.MoveTo(all);
}

}  // namespace

std::vector<DefectFile> DefectFiles() {
  std::vector<DefectFile> all;
  AddGifs(all);
  AddBmps(all);
  AddJpegs(all);
  return all;
}

std::vector<DefectFile> SoundFiles() {
  std::vector<DefectFile> all;
  Files gif(FileKind::kGif), bmp(FileKind::kBmp), jpeg(FileKind::kJpeg);
  GifImage image = Image(9, 7);
  gif.Add("plain", Bytes(image), PINCEL_OK);
  image.interlaced = true;
  image.table = kTable;
  image.before = GraphicControl(2, 10, 3);
  GifFile animation = File(image);
  animation.images.push_back(Image(3, 2));
  gif.Add("interlaced, own table, two frames", animation.Bytes(), PINCEL_OK);
  for (int bits : {1, 4, 8, 16, 24, 32}) {
    bmp.Add(Number(bits) + " bits", Bitmap(9, bits == 4 ? -7 : 7, bits).Bytes(), PINCEL_OK);
  }
  const auto coded = [](uint8_t index) {
    return RunLengthStream()
        .Run(9, index)
        .EndOfLine()
        .Raw({0, 4, index, 1, 2, 3})
        .Delta(2, 1)
        .Run(1, index)
        .EndOfBitmap();
  };
  bmp.Add("run-length, 8 bits", RunLengthFile(9, 7, coded(2)), PINCEL_OK);
  bmp.Add("run-length from the top", RunLengthFile(9, -7, coded(3)), PINCEL_OK);
  RunLengthStream four_bits;
  four_bits.Run(9, 0x21).EndOfLine().Raw({0, 4, 0x21, 0x30}).Delta(2, 1).Run(1, 0x22).EndOfBitmap();
  bmp.Add("run-length, 4 bits", RunLengthFile(9, 7, four_bits, 4), PINCEL_OK);
  jpeg.Add("baseline", Jpeg(false), PINCEL_OK);
  jpeg.Add("progressive", Jpeg(true), PINCEL_OK);
  gif.MoveTo(all);
  bmp.MoveTo(all);
  jpeg.MoveTo(all);
  return all;
}

}  // namespace support
