// What all benchmarks share: memory, random contents and the names that scripts/bench-table reads.
//
// A benchmark is called operation/format/size/contender. "pincel" is the library, "pincel:<target>"
// the library held to one instruction set, "memcpy" and "memset" move the same number of bytes (each
// surface byte that the operation reads or writes counts once; a memcpy of n bytes moves 2n), any
// other name is a peer. Contents are random anew in each repetition.
#ifndef BENCH_BENCH_H_
#define BENCH_BENCH_H_

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "include/pincel.h"

namespace bench {

inline constexpr int kSizes[] = {16, 256, 2048};

enum class Format { k8, k565, k555, k1555, k4444, k24, k32 };

inline int Bytes(Format f) {
  return f == Format::k8 ? 1 : f == Format::k24 ? 3 : f == Format::k32 ? 4 : 2;
}

inline const char* Name(Format f) {
  constexpr const char* kNames[] = {"8", "565", "555", "1555", "4444", "24", "32"};
  return kNames[int(f)];
}

using Random = std::mt19937;

// Pixels that start on a cache line, with a few readable bytes behind them.
class Buffer {
 public:
  explicit Buffer(size_t size)
      : size_(size),
        data_(static_cast<uint8_t*>(::operator new (size + 64, std::align_val_t{64}))) {
    std::memset(data_.get(), 0, size + 64);
  }
  uint8_t* data() const { return data_.get(); }
  size_t size() const { return size_; }
  void Fill(Random& random) {
    for (size_t i = 0; i < size_; i += 4) {
      const uint32_t word = random();
      std::memcpy(data() + i, &word, 4);
    }
  }

 private:
  struct Delete {
    void operator()(uint8_t* p) const { ::operator delete (p, std::align_val_t{64}); }
  };
  size_t size_;
  std::unique_ptr<uint8_t, Delete> data_;
};

struct Surface {
  Surface(Format f, int width, int height);
  uint8_t* pixels() const { return buffer.data(); }
  Surface& FillRandom(Random& random) {
    buffer.Fill(random);
    return *this;
  }

  Format format;
  int width, height;
  Buffer buffer;
  std::unique_ptr<TRGBA[]> palette;  // the model palette with its last entries black
  TSurfDesc desc;
};

// A sprite: opaque and transparent runs of 1 to 24 pixels. The key is 0.
void FillSprite(Surface& s, Random& random);

// A photograph tiled over the surface (24 or 32 bits), each tile with its own brightness.
void FillPhoto(Surface& s, Random& random);

// Instruction sets to measure besides the one that the library chooses (--targets).
const std::vector<int64_t>& ExtraTargets();
void UseTarget(int64_t target);  // 0: the library's choice
std::string TargetName(int64_t target);

// `make(random)` prepares fresh contents and returns the call to time. `count` is what times are
// divided by in the end: pixels, steps.
template <class Make>
void Add(const std::string& operation, const std::string& format, int size, const char* contender,
         double count, Make make, int64_t target = 0) {
  const std::string edge = std::to_string(size);
  const std::string name = operation + "/" + format + "/" + edge + "x" + edge + "/" + contender;
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    static unsigned seed = 0;
    Random random(++seed);
    UseTarget(target);
    auto call = make(random);
    for (auto _ : state) {
      call();
      benchmark::ClobberMemory();
    }
    UseTarget(0);
    state.counters["count"] = count;
  });
}

// The library, and the library on each extra target.
template <class Make>
void AddPincel(const std::string& operation, const std::string& format, int size, double count,
               Make make) {
  Add(operation, format, size, "pincel", count, make);
  for (int64_t target : ExtraTargets()) {
    Add(operation, format, size, ("pincel:" + TargetName(target)).c_str(), count, make, target);
  }
}

// `moved` bytes in all, read and written.
inline void AddMemcpy(const std::string& operation, const std::string& format, int size,
                      double count, size_t moved) {
  Add(operation, format, size, "memcpy", count, [=](Random& random) {
    auto dst = std::make_shared<Buffer>(moved / 2), src = std::make_shared<Buffer>(moved / 2);
    src->Fill(random);
    return [=] { std::memcpy(dst->data(), src->data(), src->size()); };
  });
}

// Each file of benchmarks registers its own; called by main once the flags are known.
void AddBlits();
void AddConversions();
void AddConvolutions();
void AddFills();
void AddLines();
void AddFloods();
void AddMixes();
void AddBlends();
void AddLoads();
void AddEffects();
void AddStretches();
void AddTransforms();

}  // namespace bench

#endif  // BENCH_BENCH_H_
