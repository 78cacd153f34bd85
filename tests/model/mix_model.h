// Models of mixing a source onto a destination: at one level, and through an alpha picture.
#ifndef TESTS_MODEL_MIX_MODEL_H_
#define TESTS_MODEL_MIX_MODEL_H_

#include <array>
#include <cstdint>

#include "tests/model/picture.h"

namespace model {

// Two planes of palette indices; the colour packed as 565 is the place in a plane.
using MixPlanes = const unsigned char (*)[65536];

// Shared by the models of this family.

int64_t FloorDiv(int64_t value, int64_t divisor);  // divisor above 0
int64_t Mod(int64_t value, int64_t modulus);       // 0 to modulus - 1

// to + (from - to) x factor / 256, rounded towards minus infinity.
int64_t Weighted(int64_t to, int64_t from, int64_t factor);

// The blue, green and red field of a 16-bit word as plain numbers; alpha bits are dropped, and
// joined words have none. Joining reduces every number to the size of its field.
using Fields = std::array<int64_t, 3>;
int FieldBits(int format, int channel);
Fields SplitFields(int format, int64_t word);
uint32_t JoinFields(int format, const Fields& fields);
Fields EntryFields(int format, const TRGBA& entry);

// The pixel at (x, y) when the picture is read with this many bytes a pixel.
int64_t ReadAs(const Picture& p, int64_t x, int64_t y, int bytes);

int64_t EntryWord(const TRGBA& entry);                     // blue in the lowest byte
int64_t Key565(int64_t red, int64_t green, int64_t blue);  // each 0 to 255
uint8_t Dithered(MixPlanes table, int64_t x, int64_t y, int64_t key);

// The operations. `global` stands for lu_gPaleta. Each gives the documented result.

bool DrawMix(Picture& dst, const CRectangulo& rect, int64_t level, const Picture& src, CPunto at,
             MixPlanes table, const TRGBA* global);
bool DrawMix8Bits(Picture& dst, const CRectangulo& rect, int64_t level, const Picture& src,
                  CPunto at, MixPlanes table, const TRGBA* global);

bool DrawMixAlpha(Picture& dst, const CRectangulo& rect, const Picture& alpha, CPunto alpha_at,
                  const Picture& src, CPunto src_at, MixPlanes table, const TRGBA* global);
bool DrawMixAlpha8Bits(Picture& dst, const CRectangulo& rect, const Picture& alpha, CPunto alpha_at,
                       const Picture& src, CPunto src_at, MixPlanes table, const TRGBA* global);
bool DrawMixScaledAlpha(Picture& dst, const CRectangulo& rect, const Picture& alpha,
                        CPunto alpha_at, const Picture& src, CPunto src_at, int64_t level,
                        const TRGBA* global);

bool DrawMixAlphaOver(Picture& dst, const CRectangulo& rect, const Picture& alpha, CPunto alpha_at,
                      const Picture& src, CPunto src_at, const Picture& back, CPunto back_at,
                      MixPlanes table, const TRGBA* global);
bool DrawMixOver(Picture& dst, const CRectangulo& rect, int64_t level, const Picture& src,
                 CPunto src_at, const Picture& back, CPunto back_at, MixPlanes table,
                 const TRGBA* global);

// The nearest palette entries of every 565 colour; `dither` makes two planes that average to it.
void BuildMixTable(unsigned char (*table)[65536], const TRGBA* palette, bool dither);

}  // namespace model

#endif  // TESTS_MODEL_MIX_MODEL_H_
