// Every function of the list of exports, callable with one set of arguments that suits them all.
#ifndef TESTS_EXPORTS_EXPORTED_FUNCTIONS_H_
#define TESTS_EXPORTS_EXPORTED_FUNCTIONS_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "pincel.h"

namespace exported {

struct Format {
  uint32_t bpp, red, alpha;
};
inline constexpr Format kFormats[] = {
    {8, 0, 0},  {16, 0xF800, 0},    {16, 0x7C00, 0}, {16, 0x7C00, 0x8000}, {16, 0x0F00, 0xF000},
    {24, 0, 0}, {32, 0, 0xFF000000}};

// The arguments of one call, in the order in which they are asked for: the first surface asked for is
// the destination. Nothing but the addresses differs between two sets made alike.
class Arguments {
 public:
  static constexpr int kWidth = 67, kHeight = 19;

  // `function` decides about the few arguments that not every function can take.
  Arguments(const std::string& function, const Format& dst, const Format& others);
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;

  // The first surface; looking at it does not count as asking for it.
  const TSurfDesc& Destination() const { return surfaces_[0].desc; }
  // Makes all other surfaces but one the first one, or copies of it, and has the areas begin at one
  // place.
  void UseDestinationAsSource(bool in_place, size_t except);
  void TakePalettesAway();
  // Everything that a call may have changed, addresses excepted.
  std::vector<uint8_t> State() const;

  // The next argument of a type.
  TSurfDesc& Surface() { return surfaces_.at(size_t(next_surface_++)).desc; }
  CRectangulo& Rectangle() { return rectangles_.at(size_t(next_rectangle_++)); }
  CPunto& Point() { return points_.at(size_t(next_point_++)); }
  unsigned long& Colour() { return colours_.at(size_t(next_colour_++)); }

  CQXGIF gif{};
  RAW frame{};
  TGifFrame gif_frame{};
  CSize size{};
  TRGBA palette[256] = {};
  int number = 5;
  unsigned char (*table)[65536];  // of colours at 8 bits
  unsigned short level = 200;
  unsigned char byte = 100;
  float fraction = 0.6f;
  bool flag = true;
  std::vector<uint8_t> file;
  long length() const { return long(file.size()); }
  int weights[8] = {1, 2, 3, 2, 1, 0, 0, 0};
  long offsets[8] = {-4, -1, 0, 1, 4, 0, 0, 0};

 private:
  struct Picture {
    TSurfDesc desc{};
    TRGBA palette[256] = {};
    std::vector<uint8_t> bytes;
  };
  static void Fill(Picture& picture, const Format& format, uint32_t seed);

  std::array<Picture, 4> surfaces_;
  std::array<CRectangulo, 2> rectangles_ = {{{2, 1, 42, 9}, {0, 0, 30, 6}}};
  std::array<CPunto, 3> points_ = {{{3, 4}, {20, 9}, {5, 6}}};
  std::array<unsigned long, 3> colours_ = {0x80123456, 0x00FFFFFF, 0x00102030};
  std::vector<uint8_t> decoded_, built_;
  int next_surface_ = 0, next_rectangle_ = 0, next_point_ = 0, next_colour_ = 0;
};

template <class T>
struct Type {};

inline TSurfDesc& NextOf(Arguments& a, Type<TSurfDesc>) { return a.Surface(); }
inline CRectangulo& NextOf(Arguments& a, Type<CRectangulo>) { return a.Rectangle(); }
inline CPunto& NextOf(Arguments& a, Type<CPunto>) { return a.Point(); }
inline CSize& NextOf(Arguments& a, Type<CSize>) { return a.size; }
inline CQXGIF& NextOf(Arguments& a, Type<CQXGIF>) { return a.gif; }
inline RAW& NextOf(Arguments& a, Type<RAW>) { return a.frame; }
inline TGifFrame& NextOf(Arguments& a, Type<TGifFrame>) { return a.gif_frame; }
inline auto NextOf(Arguments& a, Type<TRGBA>) -> TRGBA (&)[256] { return a.palette; }
inline auto NextOf(Arguments& a, Type<TRGBA[256]>) -> TRGBA (&)[256] { return a.palette; }
inline bool NextOf(Arguments& a, Type<bool>) { return a.flag; }
inline int NextOf(Arguments& a, Type<int>) { return a.number; }
inline unsigned long& NextOf(Arguments& a, Type<unsigned long>) { return a.Colour(); }
inline uint32_t NextOf(Arguments& a, Type<uint32_t>) { return uint32_t(a.Colour()); }
inline unsigned short NextOf(Arguments& a, Type<unsigned short>) { return a.level; }
inline unsigned char NextOf(Arguments& a, Type<unsigned char>) { return a.byte; }
inline float NextOf(Arguments& a, Type<float>) { return a.fraction; }
inline long NextOf(Arguments& a, Type<long>) { return a.length(); }
inline unsigned char* NextOf(Arguments& a, Type<unsigned char*>) { return a.file.data(); }
inline int* NextOf(Arguments& a, Type<int*>) { return a.weights; }
inline long* NextOf(Arguments& a, Type<long*>) { return a.offsets; }
inline auto NextOf(Arguments& a, Type<unsigned char (*)[65536]>) { return a.table; }

// The next argument for a parameter of type T. Pointers to records stand for the records.
template <class T>
T Next(Arguments& arguments) {
  using Pointed = std::remove_cv_t<std::remove_pointer_t<T>>;
  if constexpr (std::is_pointer_v<T> && std::is_same_v<Pointed, TRGBA>) {
    return NextOf(arguments, Type<TRGBA>());
  } else if constexpr (std::is_pointer_v<T> && std::is_class_v<Pointed>) {
    return &NextOf(arguments, Type<Pointed>());
  } else if constexpr (std::is_pointer_v<T>) {
    return NextOf(arguments, Type<Pointed*>());
  } else {
    return NextOf(arguments, Type<std::remove_cv_t<std::remove_reference_t<T>>>());
  }
}

// A result as one number; a record goes where plain C puts it.
template <class Result>
uint64_t AsNumber(Result result, Arguments& arguments) {
  if constexpr (std::is_same_v<Result, CSize>) {
    arguments.size = result;
    return 0;
  } else {
    return uint32_t(result);
  }
}

// The same from the registers of a 32-bit call. The upper bits of a bool are undefined.
template <class Result>
uint64_t FromRegisters(uint64_t registers, Arguments& arguments) {
  if constexpr (std::is_void_v<Result>) {
    return 0;
  } else if constexpr (std::is_same_v<Result, CSize>) {
    std::memcpy(&arguments.size, &registers, sizeof(arguments.size));
    return 0;
  } else if constexpr (std::is_same_v<Result, bool>) {
    return (registers & 0xFF) != 0;
  } else {
    return uint32_t(registers);
  }
}

// Words of the stack as a 32-bit caller fills them: pointers for references, whatever was there in the
// upper bytes of narrow arguments.
template <class T>
void Push(std::vector<uint32_t>& words, Arguments& arguments) {
  if constexpr (std::is_reference_v<T>) {
    T argument = Next<T>(arguments);
    const void* const address = &argument;
    words.resize(words.size() + sizeof(address) / 4);
    std::memcpy(&words.back() + 1 - sizeof(address) / 4, &address, sizeof(address));
  } else {
    const T argument = Next<T>(arguments);
    const size_t at = words.size();
    words.resize(at + (sizeof(T) + 3) / 4, 0xCDCDCDCD);
    std::memcpy(&words[at], &argument, sizeof(T));
  }
}

// One way to call a function.
struct Callable {
  std::function<uint64_t(Arguments&)> call;
  std::function<std::vector<uint32_t>(Arguments&)> words;
  std::function<uint64_t(uint64_t registers, Arguments&)> result;
  bool method = false;
};

template <class Result, class Call, class... Types>
Callable MakeCallable(Call call) {
  Callable made;
  made.call = [call](Arguments& arguments) -> uint64_t {
    // Braces, so that arguments are asked for from left to right.
    std::tuple<Types...> all{Next<Types>(arguments)...};
    if constexpr (std::is_void_v<Result>) {
      call(arguments, all);
      return 0;
    } else {
      return AsNumber(call(arguments, all), arguments);
    }
  };
  made.words = [](Arguments& arguments) {
    std::vector<uint32_t> words;
    (Push<Types>(words, arguments), ...);
    return words;
  };
  made.result = &FromRegisters<Result>;
  return made;
}

template <class Result, class... Types>
Callable MakeCallable(Result (*function)(Types...)) {
  const auto call = [function](Arguments&, std::tuple<Types...>& all) {
    return std::apply(function, all);
  };
  return MakeCallable<Result, decltype(call), Types...>(call);
}

template <class Result, class... Types>
Callable MakeCallable(Result (CQXGIF::*method)(Types...)) {
  const auto call = [method](Arguments& arguments, std::tuple<Types...>& all) {
    return std::apply([&](Types... each) { return (arguments.gif.*method)(each...); }, all);
  };
  Callable made = MakeCallable<Result, decltype(call), Types...>(call);
  made.method = true;
  return made;
}

struct Function {
  int ordinal;
  std::string name, plain_name, itanium_name, msvc_name;
  Callable cpp, plain;
};

const std::vector<Function>& AllFunctions();

}  // namespace exported

#endif  // TESTS_EXPORTS_EXPORTED_FUNCTIONS_H_
