#include "convert/convert_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/repack_rows.cc"
#include "hwy/foreach_target.h"  // must come before highway.h
#include "hwy/highway.h"
#include "surface/moved_fields-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pincel {
namespace HWY_NAMESPACE {

template <class Formula>
struct RepackKernel {
  static constexpr size_t kDstBytes = Formula::Dst::kBytes, kSrcBytes = Formula::Src::kBytes;
  static constexpr bool kHalfWords = kDstBytes == 2 && kSrcBytes == 2;
  using Lane = std::conditional_t<kHalfWords, uint16_t, uint8_t>;

  template <class D>
  HWY_INLINE void Vector(D d, uint8_t* dst, const uint8_t* src) const {
    if constexpr (kHalfWords) {
      const auto words = hn::LoadU(d, reinterpret_cast<const uint16_t*>(src));
      hn::StoreU(MovedFieldsOf<Formula>(d, words), d, reinterpret_cast<uint16_t*>(dst));
    } else {
      const auto words = LoadWords<kSrcBytes, Formula::kReadsFollowingByte>(d, src);
      const auto moved = ForEachVector(
          d, words, [](auto v) HWY_ATTR { return MovedFieldsOf<Formula>(WordTag<D>(), v); });
      StoreWords<kDstBytes>(d, moved, dst);
    }
  }
  HWY_INLINE void Pixel(uint8_t* dst, const uint8_t* src) const { Formula::Pixel(dst, src); }
};

template <class Formula>
void RepackAll(const SourceRows& rows) {
  RepeatableRows(RepackKernel<Formula>(), rows);
}

template <class... Formulas>
HWY_INLINE void RepackOneOf(FormulaList<Formulas...>, size_t formula, const SourceRows& rows) {
  static constexpr void (*kRepack[])(const SourceRows&) = {&RepackAll<Formulas>...};
  kRepack[formula](rows);
}

void RepackRows(size_t formula, const SourceRows& rows) {
  RepackOneOf(Repackings{}, formula, rows);
}

}  // namespace HWY_NAMESPACE
}  // namespace pincel
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pincel {

HWY_EXPORT(RepackRows);

void RepackRows(size_t formula, const SourceRows& rows) {
  HWY_DYNAMIC_DISPATCH(RepackRows)(formula, rows);
}

}  // namespace pincel
#endif  // HWY_ONCE
