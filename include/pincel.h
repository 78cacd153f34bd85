/** @file pincel.h
 * Pincel: 2D software rendering into surfaces that the host owns.
 *
 * Every function works on plain memory described by a #TSurfDesc. The library allocates no surface,
 * touches no display and opens no file; it starts no thread and takes no lock. Calls on different
 * surfaces may run at the same time; the only shared data are the start-up tables and #lu_gPaleta.
 *
 * Rules that hold for every function, unless its own text says otherwise:
 *
 * - **Formats.** The destination (first #TSurfDesc) is classified by `bpp` and, at 16 bits, by
 *   `rMask` and `aMask`:
 *
 *   | code | name     | when                                    | stored pixel                       |
 *   |------|----------|-----------------------------------------|------------------------------------|
 *   | 8    | indexed  | bpp 8                                   | palette index                      |
 *   | 16   | RGB565   | bpp 16, any rMask not listed below      | red 11-15, green 5-10, blue 0-4    |
 *   | 17   | RGB555   | bpp 16, rMask 0x7C00, aMask 0           | red 10-14, green 5-9, blue 0-4     |
 *   | 18   | ARGB1555 | bpp 16, rMask 0x7C00, aMask not 0       | alpha 15, then as RGB555           |
 *   | 19   | ARGB4444 | bpp 16, rMask 0x0F00                    | alpha 12-15, red, green, blue 0-3  |
 *   | 24   | RGB888   | bpp 24                                  | bytes blue, green, red             |
 *   | 32   | ARGB8888 | bpp 32                                  | bytes blue, green, red, alpha      |
 *
 *   Any other depth is unsupported: the function does nothing and returns false (0 for a colour).
 *   Multi-byte pixels are little-endian and need no alignment.
 * - **Colours** passed as `unsigned long` are either *packed* (the bits exactly as stored in the
 *   surface) or *true colour* (0x00RRGGBB; some functions read the top byte too). Only the low 32
 *   bits are read. Packing to 16 bits keeps the top bits of each channel and never rounds;
 *   unpacking leaves the low bits zero.
 * - **Rectangles** are clipped to the destination, and points that go with them move along. Sources
 *   are never clipped: keep the source area inside the source surface. Clipping is defined for every
 *   value of every coordinate.
 * - **Memory** is not validated: `width`, `height`, `pitch` and the pointers must describe real
 *   memory. Source and destination must not overlap unless they are the same area of the same
 *   surface.
 * - **Results** are not uniformly meaningful; several functions always return the same value. Each
 *   text says what its result means. Nothing is logged, and nothing is thrown but by #LoadJPG.
 *
 * For C the same functions have names of their own, at the end of this file.
 */
#ifndef PINCEL_H_
#define PINCEL_H_

#include <stddef.h>
#include <stdint.h>

#if defined(PINCEL_STATIC)
#define PINCEL_API
#elif defined(_WIN32)
#define PINCEL_API __declspec(dllimport)
#elif defined(__GNUC__)
#define PINCEL_API __attribute__((visibility("default")))
#else
#define PINCEL_API
#endif

/** @defgroup types Types
 * Plain records that the host fills in and owns. @{ */

#ifndef __cplusplus
typedef struct TRGBA TRGBA;
typedef struct TSurfDesc TSurfDesc;
typedef struct CRectangulo CRectangulo;
typedef struct CPunto CPunto;
typedef struct CSize CSize;
typedef struct RAW RAW;
typedef struct CQXGIF CQXGIF;
typedef struct TGifFrame TGifFrame;
#endif

/** One palette entry; the same byte order as a 32-bit pixel. */
struct TRGBA {
  uint8_t blue;  /**< 0..255 */
  uint8_t green; /**< 0..255 */
  uint8_t red;   /**< 0..255 */
  uint8_t alpha; /**< fourth byte; the palette builders leave it as it is */
};

/** A surface: caller-owned pixels and how to read them. 44 bytes in 32-bit builds. */
struct TSurfDesc {
  int32_t width;     /**< pixels per row */
  int32_t height;    /**< number of rows */
  uint32_t bpp;      /**< bits per pixel: 8, 16, 24 or 32 */
  uint32_t rMask;    /**< red bits of a 16-bit pixel; selects the 16-bit format */
  uint32_t gMask;    /**< green bits; informational */
  uint32_t bMask;    /**< blue bits; informational */
  uint32_t aMask;    /**< alpha bits, 0 when the format has none */
  uint32_t colorKey; /**< transparent colour, packed; 0xFFFFFFFF: no colour key */
  int32_t pitch;     /**< bytes from the start of one row to the start of the next */
  uint8_t* pixels;   /**< first byte of row 0, the top row */
  TRGBA* palette;    /**< 256 entries of an 8-bit surface, or null; ignored for other depths */
};

/** A rectangle: columns left to right - 1, rows top to bottom - 1 (right, bottom exclusive). */
struct CRectangulo {
  int32_t left;   /**< first column */
  int32_t top;    /**< first row */
  int32_t right;  /**< one past the last column */
  int32_t bottom; /**< one past the last row */
};

/** A position in pixels. */
struct CPunto {
  int32_t x; /**< column, rightwards from 0 */
  int32_t y; /**< row, downwards from 0 */
};

/** A size in pixels. */
struct CSize {
  int32_t width;  /**< columns */
  int32_t height; /**< rows */
};

/** Frame record of the GIF entry points; caller-owned. */
struct RAW {
  uint32_t width;          /**< screen width, then the width of the decoded frame */
  uint32_t height;         /**< screen height, then the height of the decoded frame */
  uint32_t readPalette;    /**< not 0: colour tables of the file go to `palette` */
  uint32_t reserved;       /**< 0 */
  uint8_t palette[256][4]; /**< entries of red, green, blue and a fourth byte */
  uint8_t* output;         /**< receives the frame's indices */
};

/** Decoder state of the GIF entry points; caller-owned.
 *
 * The methods are the steps that the entry points are made of. Their results: 0 done; 3 the file's
 * trailer; 5 minimum code size outside 2 to 9; 6 no GIF file; 7 something is missing. */
struct CQXGIF {
  uint8_t* cursor;   /**< next block or sub-block length byte */
  uint8_t* blockPos; /**< next unread byte of the current sub-block */
  uint32_t codeSize; /**< code width in bits */
  uint32_t endCode;  /**< end-of-information code */
  int32_t blockLeft; /**< bytes left in the current sub-block */
  uint32_t bitCount; /**< unused high bits of `bitByte` */
  uint32_t bitByte;  /**< last byte fetched */

#ifdef __cplusplus
  /** Reads the screen's size and the global colour table, and moves to the first block.
   * @param data the file's first byte.
   * @param frame receives the size and, if its `readPalette` is set, as many palette entries as the
   *        file has.
   * @return 0; 6; 7 without data or record. After 6 and 7 there is no cursor. */
  PINCEL_API uint32_t ReadHeader(unsigned char* data, RAW* frame);

  /** Moves behind the introducer of the next image. Extensions are skipped unread, bytes that start
   * no block are passed over.
   * @return 0; 3; 7 without a cursor. */
  PINCEL_API uint32_t NextImage();

  /** Decodes the image that NextImage has found.
   * @param frame `output` receives width x height indices, packed, and nothing behind them; `width`,
   *        `height` and, if `readPalette` is set, the image's colour table are stored.
   * @return 0, also for a stream that ends early; 5; 7 without cursor, record or output. */
  PINCEL_API uint32_t DecodeImage(RAW* frame);

  /** Reads one code of the image's data, `codeSize` bits wide (at most 12).
   * @return the code; `endCode` at the end of the data. */
  PINCEL_API uint32_t ReadCode();
#endif
};

#ifdef __cplusplus
static_assert(sizeof(TRGBA) == 4 && sizeof(CRectangulo) == 16, "plain records without padding");
static_assert(sizeof(void*) != 4 || sizeof(TSurfDesc) == 44, "eleven words in 32-bit builds");
static_assert(sizeof(void*) != 4 || (sizeof(RAW) == 1044 && sizeof(CQXGIF) == 28),
              "261 and 7 words in 32-bit builds");
#endif

/** @} */

/** @defgroup core Surfaces, pixels and palettes
 * @{ */

/** Palette used for 8-bit surfaces that carry none (blits, lines, BMP loading).
 *
 * Filled with the model palette (CreateModelPal) when the library is loaded: entries 0 to 251;
 * entries 252 to 255 and every fourth byte are 0. The host may overwrite it at any time between
 * calls; later calls see the change. The conversions do not use it: there a missing source palette
 * means a grey ramp. */
extern PINCEL_API TRGBA lu_gPaleta[256];

#ifdef __cplusplus

/** Width in pixels.
 * @param surface any surface; only the field is read.
 * @return `surface.width`. */
PINCEL_API int Width(TSurfDesc& surface);

/** Height in rows.
 * @param surface any surface; only the field is read.
 * @return `surface.height`. */
PINCEL_API int Height(TSurfDesc& surface);

/** Bytes from one row to the next.
 * @param surface any surface; only the field is read.
 * @return `surface.pitch`. */
PINCEL_API int ScanWidth(TSurfDesc& surface);

/** Width and height in pixels.
 * @param surface any surface; only the fields are read.
 * @return (`surface.width`, `surface.height`), whatever the pitch. */
PINCEL_API CSize Size(TSurfDesc& surface);

/** Tells whether a surface has a colour key.
 * @param surface any surface; only the field is read.
 * @return true when `colorKey` is not 0xFFFFFFFF; a key of 0 counts. */
PINCEL_API bool Transp(TSurfDesc& surface);

/** Reads one pixel as a colour.
 *
 * | format   | result                                                                        |
 * |----------|-------------------------------------------------------------------------------|
 * | 8        | the stored index; 0 for a point outside the surface                           |
 * | 565, 555, 1555, 4444 | **not the pixel**: the low 16 bits of `surface.width`, unpacked   |
 * | 24       | always 0                                                                      |
 * | 32       | the stored word, alpha included; the point is not checked                     |
 *
 * The 16-bit results are 0xGGRRGGBB: the top byte repeats the green byte. The 16- and 24-bit
 * results are irregular and stay so; read the memory yourself for those formats.
 * @param surface surface to read.
 * @param point position in pixels. Only 8-bit surfaces check it; at 32 bits it must lie inside.
 * @return the colour as above; 0 for an unsupported depth. */
PINCEL_API unsigned long GetPixel(TSurfDesc& surface, CPunto point);

/** Reads one pixel as a colour: GetPixel(surface, {x, y}).
 * @param surface surface to read.
 * @param x column in pixels. @param y row in pixels.
 * @return see GetPixel(TSurfDesc &, CPunto). */
PINCEL_API unsigned long GetPixel(TSurfDesc& surface, int x, int y);

/** Writes one pixel.
 *
 * 565, 555, 1555 and 4444 take the true colour 0x00RRGGBB, truncate it and write alpha bits as 0;
 * 24-bit surfaces store bits 0-7, 8-15 and 16-23; 8-bit surfaces store the low byte as the index.
 * **32-bit surfaces are left unchanged**; this is irregular and stays so (use IdxFillRect with a
 * rectangle of one pixel).
 * @param surface surface to write.
 * @param point position in pixels. 8-bit surfaces ignore a point outside; every other depth needs a
 *        point inside, unchecked.
 * @param colour true colour, or the palette index on 8-bit surfaces. */
PINCEL_API void SetPixel(TSurfDesc& surface, CPunto point, unsigned long colour);

/** Writes one pixel: SetPixel(surface, {x, y}, colour).
 * @param surface surface to write.
 * @param x column in pixels. @param y row in pixels.
 * @param colour see SetPixel(TSurfDesc &, CPunto, unsigned long). */
PINCEL_API void SetPixel(TSurfDesc& surface, int x, int y, unsigned long colour);

/** Builds the start-up tables and fills #lu_gPaleta with the model palette.
 *
 * Runs by itself when the library is loaded. Calling it again rebuilds both: entries 0 to 251 of
 * #lu_gPaleta are overwritten, the others and the fourth bytes are kept. Not to be called while
 * another call of the library is running. */
PINCEL_API void InitializeDLL(void);

/** Writes the model palette: a cube of 6 reds, 7 greens and 6 blues.
 *
 * Entry 42 r + 6 g + b has red 51 r, green 255 g / 6 (truncated) and blue 51 b. Entries 252 to 255
 * and every fourth byte are left as they are.
 * @param palette receives entries 0 to 251. */
PINCEL_API void CreateModelPal(TRGBA (&palette)[256]);

/** Writes a grey ramp: entry i has red, green and blue i; fourth bytes are left as they are.
 * @param palette receives all 256 entries. */
PINCEL_API void CreateGreyPal(TRGBA (&palette)[256]);

/** Writes the 3-3-2 palette: an index read as RRRGGGBB names its colour.
 *
 * Low bits are 0, so white is index 255 = (224, 224, 192). Fourth bytes are left as they are.
 * @param palette receives all 256 entries. */
PINCEL_API void CreateTruncPal(TRGBA (&palette)[256]);

/** @} */

/** @defgroup convert Conversion between formats
 * Whole surfaces: the walk follows the *source's* width and height; the destination must be at
 * least as large and its own size is not read. @{ */

/** Converts a whole surface into the format of another, pixels and colour key.
 *
 * Every pair of the seven formats is supported. Equal formats are copied with CopyImage (mind its
 * row rule) and the key is copied along; 8 bits to 8 bits is a palette remap (Convert8_8). Channels
 * are truncated, nothing is rounded or dithered.
 *
 * *To 16 bits and up from 16 bits and up*: see the converters below; 16-bit pixels widen with zero
 * low bits, alpha becomes 255 at 32 bits except from 1555 (0) and 4444 (the nibble, at the top).
 * 24- and 32-bit pixels become 555, 1555 or 4444 with the alpha bits taken from **the byte behind
 * the three colour bytes**: the pixel's own alpha at 32 bits, but at 24 bits the next pixel's blue
 * byte (behind the last pixel of a row, the byte that follows it in memory, which must be
 * readable).
 *
 * *From 8 bits* the source's palette gives the colours, a grey ramp when it is null. A keyed source
 * makes palette entry 0 the destination's key; at 32 bits the key is written only when there is
 * one, as entry 0 with alpha 255 when `dst.aMask` is set, else as the source's key value unchanged.
 *
 * *To 8 bits* the mode decides:
 *
 * | mode  | each pixel becomes                                                             |
 * |-------|--------------------------------------------------------------------------------|
 * | 1     | nothing is written, only the key is set                                        |
 * | 2     | the entry of `dst.palette` with the smallest sum of (colour - entry) mod 256 per channel; the highest index among equals |
 * | 3     | its 3-3-2 index (palette of CreateTruncPal)                                    |
 * | 4     | its index in the model cube (palette of CreateModelPal)                        |
 * | other | nothing happens                                                                |
 *
 * The distance of mode 2 wraps per channel: an entry one step brighter than the colour costs 255.
 * 24- and 32-bit sources enter modes 2 to 4 with **red and blue exchanged**; 16-bit sources do not.
 * The destination's key becomes 0 when the source has one, else 0xFFFFFFFF; keyed pixels become
 * index 0. A 24- or 32-bit pixel is keyed when its low 24 bits equal the whole key, so a key with a
 * top byte never matches; a 16-bit pixel is keyed when its unpacked form 0xGGRRGGBB, exclusive-or
 * 0x00FFFFFF, equals the key, which real keys do not.
 *
 * A 555 or 4444 surface made from 8 bits gets bit 15 from bit 7 of the entry's fourth byte (555,
 * 1555) or an alpha nibble of 15 (4444).
 * @param dst destination; its `colorKey` is set. An 8-bit destination needs a palette in mode 2.
 * @param src source; at least one pixel for 24/32-bit pairs.
 * @param mode reduction mode, read only when `dst` has 8 bits and `src` has not.
 * @return **always false**, also after a successful conversion. Unsupported formats and modes write
 *         nothing. */
PINCEL_API bool Convert(TSurfDesc& dst, TSurfDesc& src, unsigned long mode);

/** Raw copy of a surface's bytes; the key and the palette are not copied.
 *
 * With equal pitches, `height` x pitch bytes are copied in one run, rounded **down** to a multiple
 * of four. With different pitches, each row copies `width` **bytes** rounded up to a multiple of
 * four, whatever the depth, and then each pointer moves on, from the end of the copied run, by its
 * pitch minus width x bytes per pixel. That is exact for 8-bit surfaces whose width is a multiple
 * of four only; deeper surfaces drift. Intended: give both surfaces the same pitch.
 * @param dst destination. @param src source; at least one row (with different pitches a height of 0
 *        or less still copies one row).
 * @return always true. */
PINCEL_API bool CopyImage(TSurfDesc& dst, TSurfDesc& src);

/** @name Repacking between 16-bit formats
 * Source format first in the name, destination first in the arguments. The formats of the surfaces
 * are not checked. Fields are truncated or widened with zero low bits, alpha and key as follows:
 *
 * | function               | bit 15 / alpha of the result                  | key ORed with |
 * |------------------------|-----------------------------------------------|---------------|
 * | Convert16_565_16_555   | 0                                             |               |
 * | Convert16_555_16_565   | (bit 15 is dropped)                           |               |
 * | Convert16_565_16_5551  | 1                                             | 0x8000        |
 * | Convert16_555_16_5551  | 1 (the rest is copied)                        | 0x8000        |
 * | Convert16_5551_16_555  | **pixels become 4444 values with alpha 0**    |               |
 * | Convert16_555_16_4444  | alpha 0                                       | 0xF000        |
 * | Convert16_565_16_4444  | alpha 15                                      | 0xF000        |
 * | Convert16_4444_16_565  | (alpha is dropped)                            |               |
 * | Convert16_4444_16_555  | the top alpha bit                             |               |
 * | Convert16_4444_16_5551 | the top alpha bit                             | 0x8000        |
 *
 * The key's low 16 bits are unpacked and packed alike, and the result is always stored: **a source
 * without a key leaves a key behind** (0xFFFFFFFF becomes 0x7FFF from 565 to 555).
 *
 * Each takes the destination (at least as large as the source; `colorKey` is set) and the source (an
 * empty one converts the key only), and returns true, always.
 * @{ */
/** 565 to 555. */
PINCEL_API bool Convert16_565_16_555(TSurfDesc& dst, TSurfDesc& src);
/** 4444 to 555. */
PINCEL_API bool Convert16_4444_16_555(TSurfDesc& dst, TSurfDesc& src);
/** 555 to 4444. */
PINCEL_API bool Convert16_555_16_4444(TSurfDesc& dst, TSurfDesc& src);
/** 565 to 4444. */
PINCEL_API bool Convert16_565_16_4444(TSurfDesc& dst, TSurfDesc& src);
/** 4444 to 565. */
PINCEL_API bool Convert16_4444_16_565(TSurfDesc& dst, TSurfDesc& src);
/** 4444 to 1555. */
PINCEL_API bool Convert16_4444_16_5551(TSurfDesc& dst, TSurfDesc& src);
/** 555 to 1555. */
PINCEL_API bool Convert16_555_16_5551(TSurfDesc& dst, TSurfDesc& src);
/** 1555 to 555. */
PINCEL_API bool Convert16_5551_16_555(TSurfDesc& dst, TSurfDesc& src);
/** 565 to 1555. */
PINCEL_API bool Convert16_565_16_5551(TSurfDesc& dst, TSurfDesc& src);
/** 555 to 565. */
PINCEL_API bool Convert16_555_16_565(TSurfDesc& dst, TSurfDesc& src);
/** @} */

/** 24 to 32 bits: the colour bytes and a fourth byte of 255.
 *
 * The key is copied, with 0xFF000000 ORed in when `dst.aMask` is not 0.
 * @param dst 32-bit destination. @param src 24-bit source. The formats are not checked. A width or
 *        height below 1 counts as 1.
 * @return always true. */
PINCEL_API bool Convert24_32_(TSurfDesc& dst, TSurfDesc& src);

/** 32 to 24 bits: the colour bytes; the fourth byte is dropped.
 *
 * The key is copied unchanged, top byte included.
 * @param dst 24-bit destination. @param src 32-bit source. The formats are not checked. A width or
 *        height below 1 counts as 1.
 * @return always true. */
PINCEL_API bool Convert32_24_(TSurfDesc& dst, TSurfDesc& src);

/** 8 to 8 bits: maps each source palette entry to the nearest destination entry.
 *
 * "Nearest" is the wrapping distance of Convert, mode 2. The key is copied unchanged, not mapped.
 * @param dst 8-bit destination with a palette. @param src 8-bit source with a palette; both
 *        palettes are read unchecked. A source without rows copies the key only.
 * @return always true. */
PINCEL_API bool Convert8_8(TSurfDesc& dst, TSurfDesc& src);

/** @} */

/** @defgroup draw Blits and primitives
 * @{ */

/** Copies a rectangle of pixels, leaving out transparent ones: the sprite blit.
 *
 * Equal depths copy raw pixels (565 onto 555 bit for bit; nothing is repacked). An 8-bit source on
 * a deeper destination goes through its palette, or #lu_gPaleta when it has none: truncated to 16
 * bits with alpha bits 0, three bytes at 24, the whole entry at 32. Any other pair draws nothing.
 *
 * A source with a colour key leaves out its transparent pixels: at 16 bits those equal to the key's
 * low 16 bits, at 24 and 32 bits those whose low 24 bits equal the key's (the top byte is ignored,
 * and copied when the pixel is drawn), **at 8 bits those of index 0, whatever the key's value**.
 *
 * **An opaque 24-bit blit copies only the first 2 x w bytes of each row of w pixels**; the last
 * third keeps its old contents. Intended: give the source a key, or use DrawBlock.
 * @param dst destination, any format.
 * @param rect destination rectangle; clipped.
 * @param src source. Not clipped: the area at `at` must lie inside it.
 * @param at source pixel that lands on the rectangle's top-left corner; moves with the clipping.
 * @return true for a supported destination, whether or not anything was drawn. */
PINCEL_API bool DrawBitmap(TSurfDesc& dst, CRectangulo rect, TSurfDesc& src, CPunto at);

/** Draws a whole surface: DrawBitmap with the destination's full rectangle from source (0, 0).
 * @param dst destination; **its** size is the size drawn.
 * @param src source, at least as large as `dst`.
 * @return see DrawBitmap(TSurfDesc &, CRectangulo, TSurfDesc &, CPunto). */
PINCEL_API bool DrawBitmap(TSurfDesc& dst, TSurfDesc& src);

/** Fills a rectangle.
 *
 * The colour is 0xAARRGGBB, truncated to the destination's fields. Alpha bits of 16-bit formats
 * fold the halves of AA together: 1555 and 555 store bit 7 OR bit 0 in bit 15, 4444 stores the high
 * nibble OR the low one. 32 bits store the whole word; 24 bits ignore AA; 8 bits store the low byte
 * as the index.
 * @param dst destination, any format.
 * @param rect rectangle to fill; clipped, may be empty or inverted.
 * @param colour 0xAARRGGBB, or the index on 8-bit surfaces.
 * @return true; false only for an unsupported format. */
PINCEL_API bool IdxFillRect(TSurfDesc& dst, CRectangulo rect, unsigned long colour);

/** Horizontal run of pixels **in the row above** `p`.
 * @param dst destination, any format.
 * @param p the run covers row p.y - 1, from p.x on; clipped.
 * @param len pixels; negative runs leftwards from p.x - 1, 0 draws nothing.
 * @param colour see IdxFillRect.
 * @return that of IdxFillRect. */
PINCEL_API bool IdxLineHI(TSurfDesc& dst, CPunto const& p, int len, unsigned long colour);

/** Vertical run of pixels **in the column left of** `p`.
 * @param dst destination, any format.
 * @param p the run covers column p.x - 1, from p.y on; clipped.
 * @param len pixels; negative runs upwards from p.y - 1, 0 draws nothing.
 * @param colour see IdxFillRect.
 * @return that of IdxFillRect. */
PINCEL_API bool IdxLineVI(TSurfDesc& dst, CPunto const& p, int len, unsigned long colour);

/** Draws a rectangle's last row and last column.
 * @param dst destination, any format.
 * @param rect rectangle; the lines are clipped.
 * @param colour see IdxFillRect.
 * @return **always false**. */
PINCEL_API bool FrameBR(TSurfDesc& dst, CRectangulo rect, unsigned long colour);

/** Black bottom-right frame, offset by one pixel: a drop shadow.
 *
 * With any `depth` above 0 exactly **one** frame is drawn, at the rectangle moved by (1, 1),
 * whatever `depth` and `step`; intended.
 * @param dst destination, any format; the frame is colour 0.
 * @param rect rectangle that throws the shadow.
 * @param step not significant.
 * @param depth 0 draws nothing.
 * @return true for a depth of 0, else false. */
PINCEL_API bool DrawRectShadow(TSurfDesc& dst, CRectangulo rect, unsigned char step,
                               unsigned char depth);

/** Blended line with thickness and, if wanted, soft edges.
 *
 * The longer axis is walked one pixel at a time (equal extents walk along y), both end points
 * included, the start clamped to 0 and the end to the destination's width (height when walking
 * along y), **that column or row included**. Steps whose centre lies outside the other axis are
 * left out; otherwise the thickness runs from the centre line towards larger coordinates and is
 * **not clipped**: keep the line and its thickness inside the surface, one pixel away from its far
 * edges when they matter, a soft line from its near edges too.
 *
 * 32 and 24 bits blend in floating point with the level / 255, the fourth byte is kept. 565, 555,
 * 1555 and 4444 blend field by field, d + ((c - d) x weight >> 8), so full level leaves a rest;
 * alpha bits are kept. 8 bits mix the palette colours (`dst.palette`, else #lu_gPaleta) as the
 * 32-bit form does and store the nearest entry (distance as in Convert, mode 2).
 * @param dst destination, any format.
 * @param p1 one end. @param p2 the other end.
 * @param colour true colour 0x00RRGGBB, on 8-bit surfaces too.
 * @param alpha level 0..255; larger counts as 255.
 * @param soft also blend the two edge pixels of each step by their coverage.
 * @param thickness pixels; below 1 draws the soft edges only.
 * @return **always false**. */
PINCEL_API bool Line(TSurfDesc& dst, CPunto const& p1, CPunto const& p2, unsigned long colour,
                     unsigned short alpha, bool soft, int thickness);

/** Flood fill with a tolerance.
 *
 * From (x, y) a walk marks cells that can be reached over similar neighbours, then every marked
 * cell is painted. A pixel is similar to the reference when the sum over the channels of (reference
 * - pixel) mod 256 is at most the tolerance: **a channel brighter than the reference counts as far
 * away**. The start cell itself is never tested; it is painted whenever it has a similar neighbour.
 * The walk is not a plain flood: within one round it may step on from a cell it has just entered,
 * so it can mark a dissimilar diagonal neighbour and can miss cells; results are exactly those of
 * the walk, mask bytes included. A reference equal to the colour paints the start cell only.
 *
 * 16-bit pixels compare unpacked with zero low bits; alpha bits are written 0, a 32-bit fourth byte
 * is kept. On 8-bit destinations pixels read as 0 and nothing is painted.
 * @param dst destination, any format.
 * @param work 8-bit surface of the destination's size, all zero; keeps a byte per visited cell
 *        (1 up, 2 down, 8 left, 4 right: neighbours found similar). Clear it before the next fill.
 * @param x start column, inside the surface. @param y start row, inside the surface.
 * @param tolerance largest sum that still counts as similar, 0..765.
 * @param reference true colour 0x00RRGGBB to compare with.
 * @param colour true colour 0x00RRGGBB to paint.
 * @return true, also when nothing was painted; false only for an unsupported format. */
PINCEL_API bool Rellena(TSurfDesc& dst, TSurfDesc& work, int x, int y, unsigned long tolerance,
                        unsigned long reference, unsigned long colour);

/** Copies a block of raw pixels: no clipping, no key, no conversion.
 * @param dst destination, any format; the block must lie inside.
 * @param src source of the destination's depth; the block must lie inside.
 * @param sx left edge of the block in `src`, pixels. @param sy its top edge.
 * @param dx left edge of the block in `dst`, pixels. @param dy its top edge.
 * @param w width in pixels. @param h height in pixels; 0 of either copies nothing.
 * @return true; false for an unsupported format. */
PINCEL_API bool DrawBlock(TSurfDesc& dst, TSurfDesc& src, unsigned short sx, unsigned short sy,
                          unsigned short dx, unsigned short dy, unsigned short w, unsigned short h);

/** @} */

/** @defgroup scale Scaling and transforms
 * Between surfaces of the same depth; nothing is converted and no colour key is consulted. Source
 * and destination must not overlap.
 * @{ */

/** Stretches a rectangle onto another.
 *
 * Both rectangles are clipped, each to its own surface, and then the whole of one is fitted onto the
 * whole of the other: **a destination that is partly clipped shows a squeezed copy of the whole
 * source**, not a part of it. Intended; StretchBitmap keeps the proportions.
 *
 * *Nearest* takes source column trunc(i x step), where the step, source width / destination width, is
 * **rounded to single precision** and added up in double precision; rows alike. A step rounded down
 * may fall short of a column: six columns from ten are 0, 1, 3, 4, 6 and 8. At 32 bits **three bytes
 * are copied, the fourth is kept**.
 *
 * *Smooth* (24 and 32 bits, others sample the nearest pixel) mixes four neighbours in 16.16 fixed
 * point. **The weights sum to a little less than one**: a white area comes out as 254. The right and
 * lower neighbours of the rectangle's last column and row lie outside it. Right of a surface's last
 * column they are what follows in memory, padding or the next row; the surface's last row is its own
 * lower neighbour, and the pixel that ends its memory its own right one.
 * @param dst destination, any format.
 * @param dRect area to fill; clipped.
 * @param src source of the destination's depth; its own depth is not looked at.
 * @param sRect area to take; clipped.
 * @param smooth mixes neighbours.
 * @return true; false for an unsupported format and when either clipped rectangle is empty. */
PINCEL_API bool BltStrech(TSurfDesc& dst, CRectangulo dRect, TSurfDesc& src, CRectangulo sRect,
                          bool smooth);

/** BltStrech without smoothing.
 * @param dst destination, any format. @param dRect area to fill; clipped.
 * @param src source of the same depth. @param sRect area to take; clipped.
 * @return that of BltStrech. */
PINCEL_API bool DrawStretch(TSurfDesc& dst, CRectangulo const& dRect, TSurfDesc& src,
                            CRectangulo const& sRect);

/** Tells whether a destination could be stretched through a table; **draws nothing**.
 * @param dst only its depth is read.
 * @param dRect not read. @param src not read. @param sRect not read. @param table not read.
 * @return true for a destination of 8, 24 or 32 bits, false for others. */
PINCEL_API bool DrawStretch(TSurfDesc& dst, CRectangulo const& dRect, TSurfDesc& src,
                            CRectangulo const& sRect, unsigned char* table);

/** Enlarges or reduces true-colour pictures in proportion: when the destination is clipped, the
 * source shrinks along with it, by whole pixels. The two rectangles that are left are compared.
 *
 * *Enlarging* (the source is smaller in both directions) interpolates in 16.16 fixed point; the last
 * source column and row are repeated. *Reducing* (larger in both) averages the block of source
 * pixels that falls on each pixel. **The sides of both rectangles count modulo 256 while reducing,
 * a channel sum of 32768 or more wraps, and the way from the end of a drawn row to the next one has
 * 16 bits**: it is meant for rectangles of at most 255 pixels a side, blocks of up to 128 bright
 * pixels and pitches below 32768. Sides that are a multiple of 256 draw nothing, and pixels on which
 * no source pixel falls stay as they are. The fourth byte of a 32-bit destination is kept.
 * @param dst destination.
 * @param dRect area to fill; clipped.
 * @param src source of the destination's depth.
 * @param sRect area to take; clipped.
 * @param bitsPerPixel 24 or 32: the depth to work in; it should be that of the surfaces.
 * @param enable false draws nothing.
 * @param extra no effect.
 * @return true, **also when nothing was drawn** (nothing visible, not enabled, other depths, wider
 *         but lower or the reverse); false only for surfaces of different depths. */
PINCEL_API bool StretchBitmap(TSurfDesc& dst, CRectangulo dRect, TSurfDesc& src, CRectangulo sRect,
                              int bitsPerPixel, bool enable, bool extra);

/** Draws a surface at twice its size.
 *
 * The size is clipped to the destination, to whole source pixels, but **drawing starts at `at` from
 * the source's first pixel, also where `at` is negative**: only what lies inside the destination is
 * drawn.
 * @param dst destination of 24 or 32 bits; all four bytes of a pixel are copied.
 * @param src source of the same depth.
 * @param at position of the top-left corner.
 * @return **always false**. */
PINCEL_API bool DrawDouble(TSurfDesc& dst, TSurfDesc& src, CPunto at);

/** Mirrors a surface left to right, in place.
 * @param surf surface, any format; a width below 2 changes nothing.
 * @return true; false for an unsupported format. */
PINCEL_API bool FlipX(TSurfDesc& surf);

/** Fills a surface with another one turned by a quarter turn, or mirrored.
 *
 * | mode | result                                                                  |
 * |------|-------------------------------------------------------------------------|
 * | 0    | the source, by DrawBitmap(dst, src): its colour key counts              |
 * | 1    | a quarter turn counter-clockwise                                        |
 * | 2    | a **reversed copy that starts at the source's first pixel**, see below  |
 * | 3    | a quarter turn clockwise                                                |
 * | + 4  | 1 and 3: mirrored top to bottom; 0 and 2: then mirrored left to right   |
 *
 * Modes 1 and 3 need a destination of the source's size turned; what does not fit is left out.
 *
 * **Mode 2 walks backwards from the source's first pixel, through the memory in front of it**: the
 * pixel at byte k of the destination becomes the one at byte -k, padding included, for all but the
 * last pixel of the destination (at 16 bits for that one, too). Give a source whose `pixels` is the
 * last pixel of a block that is as large as the destination. At 16 bits each store is a word of two
 * pixels with its bytes reversed, of which the next one covers the second half: pixels arrive with
 * their two bytes swapped. Intended.
 * @param dst destination, any format. Its whole size is filled.
 * @param src source of the destination's depth.
 * @param mode bits 0 to 2 as above; others are not significant.
 * @return true; false for an unsupported format. */
PINCEL_API bool CreateRotated(TSurfDesc& dst, TSurfDesc& src, int mode);

/** Brightens or darkens a rectangle, or maps it through a table.
 *
 * *24 and 32 bits*: k = trunc(amount x 510 - 255). From 0 on, k is added to every byte, the fourth
 * one included, up to 255. **A negative shift is one step weaker: |k| - 1 is subtracted**, down to 0.
 * **Only the low byte of k counts**, and its sign: shifts of 256 and of -257 change nothing.
 *
 * *16 bits*: k = trunc(amount x 62 - 31) is added to each field, as a number of five bits from 0 to
 * 31. 565 uses green's top five bits, so that **its lowest bit is cleared by every call**; 4444
 * doubles its fields and halves the sum. Alpha bits are kept.
 *
 * *8 bits*: each pixel becomes `table[pixel]`.
 * @param dst destination, any format.
 * @param rect rectangle; clipped.
 * @param amount 0 darkest, 0.5 no change, 1 brightest; at 16 bits larger and smaller values saturate;
 *        not a number counts as 0. Computed in double precision. Not read at 8 bits.
 * @param table 256 bytes; read at 8 bits only, where null leaves the surface as it is.
 * @return true; false for an unsupported format. */
PINCEL_API bool TranslateRect(TSurfDesc& dst, CRectangulo const& rect, float amount,
                              unsigned char const* table);

/** @} */

/** @defgroup load Image loading
 * Images arrive as complete files in memory; pixels go straight into the caller's surface. Ask for
 * the size, prepare a surface of any format, load. @{ */

/** Reads size and depth from a BMP file.
 * @param surface receives `width`, `height` (absolute value; INT32_MAX for the lowest of all) and
 *        `bpp`; nothing else is written.
 * @param bitmap the file's first byte; its header must be complete.
 * @return always true. */
PINCEL_API bool LoadInfoBMP(TSurfDesc& surface, unsigned char* bitmap);

/** Decodes a BMP file into a surface of any format.
 *
 * Reads 8-bit (plain or run-length coded) and 24-bit files with a 40-byte header, and 8- and 24-bit
 * files with a 12-byte header; every other header size is read as the 12-byte one. Depths below 17
 * other than 8 write nothing; **depths above 24 are read as 24**, so a 32-bit file comes out wrong.
 * The file's length is not known: it must be complete. A file that starts with "QX" has its pixels
 * at offset 54, whatever its header says.
 *
 * The surface's width and height drive the decoding, so give it those of LoadInfoBMP. Run-length
 * data never writes outside the surface: what crosses the end of a row is left out, and moves
 * outside the surface end the decoding. Pixels that run-length data skips take the colour of entry
 * 0, unless that packs to 0 (in a top-down file only those skipped by a move); on 8-bit surfaces they
 * keep their old contents.
 *
 * Alpha bits: palette entries count as alpha 255 (32-bit surfaces get the entry whole); 24-bit data
 * gives 555, 1555 and 4444 pixels **the top bits of the byte that follows the pixel** in the file,
 * and leaves the fourth byte of 32-bit pixels as it was.
 *
 * An 8-bit surface needs a palette, which receives the file's colour table, or #lu_gPaleta when the
 * file has none; there every black entry but entry 0 gets blue 1, so that index 0 is the only pure
 * black. 24-bit files write no pixels to it.
 *
 * **A top-down run-length file on a 24-bit surface comes out with red and blue exchanged**;
 * intended.
 * @param surface destination; pixels, pitch, masks and, at 8 bits, palette filled in by the caller.
 * @param bitmap the file's first byte.
 * @return true, also when nothing could be decoded; false only for an unsupported surface. */
PINCEL_API bool LoadBMP(TSurfDesc& surface, unsigned char* bitmap);

/** Reads the size of a BMP file that is to be loaded as an alpha map.
 * @param surface receives `width`, `height` (absolute value) and `bpp` 8, whatever the file holds.
 * @param bitmap the file's first byte.
 * @return always true. */
PINCEL_API bool LoadInfoBMPAlpha(TSurfDesc& surface, unsigned char* bitmap);

/** Loads the bytes of an 8-bit BMP file as they stand: an alpha map or mask.
 *
 * Run-length data is decoded as in LoadBMP; skipped pixels keep their old contents. Neither the
 * file's depth nor the surface's is looked at, and no palette is touched.
 * @param surface 8-bit destination; its width and height drive the decoding.
 * @param bitmap the file's first byte; an 8-bit file.
 * @return always true. */
PINCEL_API bool LoadBMPAlpha(TSurfDesc& surface, unsigned char* bitmap);

/** Reads the screen size of a GIF file and starts a walk over its frames:
 *
 *     CQXGIF gif;
 *     RAW frame;
 *     if (LoadInfoGIF(surface, data, gif, frame)) {
 *       // ... give the surface a format and memory
 *       while (LoadGIFNext(surface, data, gif, frame)) {
 *         if (LoadGIF(surface, data, gif, frame)) Show(surface);
 *       }
 *       LoadGIFEnd(surface, data, gif, frame);
 *     }
 *
 * The walk needs a complete file whose last block is the trailer: the length is not known. For files
 * of unknown origin there are #pincel_gif_frame and #pincel_load_gif.
 * @param surface receives `width` and `height` of the screen and `bpp` 8; for a file that is no GIF
 *        the size that `frame` had.
 * @param data the file's first byte; null gives false.
 * @param gif decoder state, to be passed to the other calls. It and `frame` are all the state there
 *        is: walks with records of their own are independent.
 * @param frame receives the size, and the global colour table in an otherwise black palette.
 * @return false when the file does not start with "GIF". */
PINCEL_API bool LoadInfoGIF(TSurfDesc& surface, unsigned char* data, CQXGIF& gif, RAW& frame);

/** Goes to the next frame, the first one included.
 *
 * Transparency, delay, disposal and position are not read. What an early end code leaves of the frame
 * before is searched for blocks, too.
 * @param surface not touched. @param data not read.
 * @param gif state from LoadInfoGIF or LoadInfoGIFAlpha. @param frame not touched.
 * @return false at the end of the file, and without LoadInfoGIF. */
PINCEL_API bool LoadGIFNext(TSurfDesc& surface, unsigned char* data, CQXGIF& gif, RAW& frame);

/** Decodes the frame that LoadGIFNext has found into a surface of any format.
 *
 * One index per pixel, rows of the frame's width without padding, goes to the start of the surface's
 * memory. There the indices are turned into pixels, with **the surface's width**: give the surface
 * the frame's, or the picture is skewed. Where no pixel is written, indices remain and can be seen:
 * in the padding of rows and in **the fourth bytes of 32-bit pixels**, which are never written as
 * such. The indices stay as they are when the width equals the pitch in bytes, when a row does not
 * fit the pitch, and on deeper surfaces after LoadInfoGIFAlpha.
 *
 * Alpha bits of 555, 1555 and 4444 pixels are set. An 8-bit surface's palette, unless it is null,
 * gets all 256 entries of `frame`; there every black entry but entry 0 gets blue 1.
 *
 * Nothing is written outside the surface, height x pitch bytes from its first pixel, whatever the
 * file says: what does not fit is left out. So a surface with a negative pitch receives nothing. A
 * stream that lacks the clear code at its start counts the first index as one behind a 0.
 * @param surface destination; pixels, pitch, masks and, at 8 bits, palette filled in by the caller.
 * @param data not read.
 * @param gif state. @param frame receives the frame's size and its own colour table, over the entries
 *        of the table before.
 * @return true, also for a stream that ends early; false for an unsupported surface, one without
 *         pixels, a code size outside 2 to 9, or without a frame. */
PINCEL_API bool LoadGIF(TSurfDesc& surface, unsigned char* data, CQXGIF& gif, RAW& frame);

/** Ends a walk. There is nothing to be released.
 * @param surface not touched. @param data not read.
 * @param gif loses its place in the file. @param frame not touched.
 * @return always true. */
PINCEL_API bool LoadGIFEnd(TSurfDesc& surface, unsigned char* data, CQXGIF& gif, RAW& frame);

/** Starts a walk over frames whose indices are all that counts: LoadInfoGIF without colour tables.
 * @param surface receives `width` and `height` of the screen and `bpp` 8.
 * @param data the file's first byte. @param gif decoder state.
 * @param frame receives the size and a black palette; colour tables of the file are skipped.
 * @return see LoadInfoGIF. */
PINCEL_API bool LoadInfoGIFAlpha(TSurfDesc& surface, unsigned char* data, CQXGIF& gif, RAW& frame);

/** LoadGIFNext by another name.
 * @param surface not touched. @param data not read.
 * @param gif state from LoadInfoGIFAlpha. @param frame not touched.
 * @return see LoadGIFNext. */
PINCEL_API bool LoadGIFAlphaNext(TSurfDesc& surface, unsigned char* data, CQXGIF& gif, RAW& frame);

/** Decodes the indices of a frame as they are: an alpha map or mask.
 *
 * As LoadGIF on an 8-bit surface; no palette is touched and the surface's depth is not looked at.
 * @param surface 8-bit destination. @param data not read.
 * @param gif state. @param frame receives the frame's size.
 * @return true; false for a surface without pixels, a code size outside 2 to 9, or without a frame. */
PINCEL_API bool LoadGIFAlpha(TSurfDesc& surface, unsigned char* data, CQXGIF& gif, RAW& frame);

/** LoadGIFEnd by another name.
 * @param surface not touched. @param data not read.
 * @param gif loses its place in the file. @param frame not touched.
 * @return always true. */
PINCEL_API bool LoadGIFAlphaEnd(TSurfDesc& surface, unsigned char* data, CQXGIF& gif, RAW& frame);

/** Reads the size of a JPEG file: that of the first frame header. Nothing else is checked.
 * @param surface receives `width`, `height` and `bpp` 24; 0 x 0 when there is no such header.
 * @param data the file. @param length its bytes; nothing behind them is read.
 * @return always true. */
PINCEL_API bool LoadInfoJPG(TSurfDesc& surface, unsigned char* data, long length);

/** Decodes a JPEG file, baseline or progressive, into a surface of any format.
 *
 * The surface should have the size of LoadInfoJPG; of a larger image the rows and columns that do
 * not fit are dropped (progressive images of more than 80 million pixels fail unless the surface has
 * room for them). Grayscale files are decoded as colours, files with four components (CMYK) not at
 * all. 16-bit pixels keep the top bits of each byte. **Alpha bits of 1555 and 4444 become 0,
 * fourth bytes of 32-bit pixels are kept.**
 *
 * 8-bit surfaces: the palette, unless it is null, becomes #lu_gPaleta, and the image is dithered to
 * those colours. **Each row takes the image's width, rounded up to a multiple of 4 with bytes of 0;
 * the surface's width and pitch do not count**, but nothing is written behind its end, height x pitch
 * bytes from its first pixel. So a surface with a negative pitch receives nothing.
 *
 * **An error in the header, up to the first scan, is thrown as an `int`.** A host built with MinGW
 * must link libgcc as a DLL (`-shared-libgcc`) to catch it. Hosts of the MSVC family could not; they
 * get false. Where nothing can be caught, there is #pincel_load_jpg.
 * @param surface destination; pixels, pitch, masks and, at 8 bits, palette filled in by the caller.
 * @param data the file. @param length its bytes; nothing behind them is read.
 * @return true when the decoder had nothing to complain about; false after any error or warning, with
 *         the rows that were decoded in the surface (those that a truncated file lacks are grey, or
 *         coarse in a progressive one), and for an unsupported surface or one without pixels. */
PINCEL_API bool LoadJPG(TSurfDesc& surface, unsigned char* data, long length);

/** Kept for an image format that is not supported.
 * @param surface not touched. @param data not read.
 * @return always false. */
PINCEL_API bool LoadInfoPGF(TSurfDesc& surface, unsigned char* data);

/** Kept for an image format that is not supported.
 * @param surface not touched. @param data not read.
 * @return always false. */
PINCEL_API bool LoadPGF(TSurfDesc& surface, unsigned char* data);

/** @} */

/** @defgroup mix Mixing, masks and fades
 * Levels count in 256ths of the source. Colours between are d + floor((s - d) x weight / 256) for
 * each channel, except where a text says otherwise.
 *
 * *Sources* have the destination's layout, or 8 bits: then their palette (#lu_gPaleta when it has
 * none) stands for the pixels. The colour key is not consulted. Points are not checked against their
 * surfaces; they move with the clipping.
 *
 * *16-bit destinations* mix the blue, green and red fields; **the alpha bits of every mixed pixel
 * become 0**. Several kernels work on groups of four pixels, counted from the left of the clipped
 * rectangle, and treat the 0 to 3 pixels at the end of each row by other rules. That is a property
 * of the result on every machine.
 *
 * *8-bit destinations* mix the colours that **#lu_gPaleta** has for the indices, whatever palettes
 * the surfaces carry, pack the result as 565 and look it up in the caller's `table`: two planes of
 * 65536 indices. Pixel (x, y) uses plane (x + y + 1) mod 2, so different planes give a checkerboard
 * dither; pincel_build_mix_table() makes a table. Other formats do not read it; it may be null.
 * @{ */

/** Draws a source at one level.
 *
 * *32 and 24 bits*: only the low byte of the level counts, **256 leaves the destination unchanged**.
 * All four bytes of a 32-bit pixel are mixed. *16 bits*: groups of four take the low byte of the
 * level, the end of a row all 16 bits. When the low byte is 255, **the first four pixels of each row
 * become copies of the source**, alpha bits included; the others keep a rest of the destination.
 *
 * The levels **64, 128 and 192** have shift-and-mask forms, where each term is cut on its own: at
 * 128, (s >> 1) + (d >> 1). At 16 bits, green and red of a group sum before they are cut; and **at
 * 128 the end of a row of 555, 1555 or 4444 loses the top bit of each half**.
 *
 * *8-bit sources*: at 32 bits the fourth byte is mixed with the weight of the blue byte just written
 * to its left neighbour (0 at the start of a row), at 192 it keeps the source's terms only, at 64
 * the destination's. At 16 bits the weight is 256 - (level XOR 255), no groups.
 * @param dst destination, any format.
 * @param rect destination rectangle; clipped.
 * @param level weight of the source, 0..255 of 256; larger values as above (8 bits: 256 gives the
 *        source's colour).
 * @param src source. @param at source pixel that lands on the rectangle's top-left corner.
 * @param table see the head of this group; needed for 8-bit destinations.
 * @return true; false for an unsupported format. */
PINCEL_API bool DrawMix(TSurfDesc& dst, CRectangulo const& rect, unsigned short level,
                        TSurfDesc& src, CPunto const& at, unsigned char (*const table)[65536]);

/** The 8-bit form of DrawMix at one level; the source is read one byte a pixel.
 * @param dst 8-bit destination. @param rect destination rectangle; clipped.
 * @param level weight of the source, all 16 bits; 256 gives exactly the source's colour.
 * @param src 8-bit source. @param at source pixel of the rectangle's top-left corner.
 * @param table two planes of 65536 indices.
 * @return true; false when the destination has not 8 bits. */
PINCEL_API bool DrawMix_8Bits(TSurfDesc& dst, CRectangulo const& rect, unsigned short level,
                              TSurfDesc& src, CPunto const& at,
                              unsigned char (*const table)[65536]);

/** Draws a source through an alpha surface.
 *
 * An alpha byte a of 0 leaves the pixel as it is, alpha bits included; 255 copies the source pixel
 * whole; anything between mixes with weight a + 1. *16 bits*: a source of the destination's layout
 * with an 8-bit alpha surface uses weight a, and **in a group of four only four bytes of 255 copy**;
 * an alpha surface of any other depth is read two bytes a pixel, low byte first, with weight a + 1
 * and no groups; an 8-bit source has weight a + 2.
 * @param dst destination, any format.
 * @param rect destination rectangle; clipped.
 * @param alpha alpha surface, one byte a pixel (see above for 16 bits).
 * @param alphaAt alpha pixel of the rectangle's top-left corner.
 * @param src source. @param srcAt source pixel of the rectangle's top-left corner.
 * @param table see the head of this group; needed for 8-bit destinations.
 * @return true; false for an unsupported format and, **at 32 and 24 bits only, for an empty
 *         area**. */
PINCEL_API bool DrawMix(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& alpha,
                        CPunto const& alphaAt, TSurfDesc& src, CPunto const& srcAt,
                        unsigned char (*const table)[65536]);

/** The 8-bit form of DrawMix through an alpha surface.
 *
 * 0 leaves the pixel, 255 copies the source index, anything between mixes with weight a + 1.
 * @param dst 8-bit destination. @param rect destination rectangle; clipped.
 * @param alpha alpha surface, one byte a pixel. @param alphaAt its pixel of the top-left corner.
 * @param src 8-bit source. @param srcAt its pixel of the top-left corner.
 * @param table two planes of 65536 indices.
 * @return true; false, with nothing drawn, when the destination or the source has not 8 bits. */
PINCEL_API bool DrawMix_8Bits(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& alpha,
                              CPunto const& alphaAt, TSurfDesc& src, CPunto const& srcAt,
                              unsigned char (*const table)[65536]);

/** Draws a source through an alpha surface and a level.
 *
 * Each alpha byte becomes (a x level / 256) mod 256 first; then 0 leaves the pixel, 255 copies the
 * source, anything between mixes with itself as weight (16 bits: as DrawMix through an alpha
 * surface). **At 32 and 24 bits the source is read from column `srcAt.y`, row `srcAt.y` on, neither
 * moved by clipping**, in the destination's layout only; `srcAt.x` is not read.
 * @param dst destination of 16, 24 or 32 bits.
 * @param rect destination rectangle; clipped.
 * @param alpha alpha surface. @param alphaAt its pixel of the rectangle's top-left corner.
 * @param src source. @param srcAt see above; at 16 bits the pixel of the top-left corner.
 * @param level scale of the alpha bytes, 256 keeps them.
 * @return true; false for an unsupported format, 8 bits included. */
PINCEL_API bool DrawMix(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& alpha,
                        CPunto const& alphaAt, TSurfDesc& src, CPunto const& srcAt,
                        unsigned short level);

/** Draws a background, then a source through an alpha surface over it.
 * @param dst destination, any format. @param rect destination rectangle; clipped.
 * @param alpha alpha surface. @param alphaAt its pixel of the rectangle's top-left corner.
 * @param src source. @param srcAt its pixel of the rectangle's top-left corner.
 * @param table needed for 8-bit destinations.
 * @param back background, drawn with DrawBitmap (its key counts).
 * @param backAt its pixel of the rectangle's top-left corner.
 * @return false when DrawBitmap returns false, and then nothing is mixed; else that of DrawMix. */
PINCEL_API bool DrawMix(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& alpha,
                        CPunto const& alphaAt, TSurfDesc& src, CPunto const& srcAt, TSurfDesc& back,
                        CPunto const& backAt, unsigned char (*const table)[65536]);

/** Draws a background, then a source at one level over it.
 * @param dst destination, any format. @param rect destination rectangle; clipped.
 * @param level weight of the source, as for DrawMix at one level.
 * @param src source. @param srcAt its pixel of the rectangle's top-left corner.
 * @param table needed for 8-bit destinations.
 * @param back background, drawn with DrawBitmap (its key counts).
 * @param backAt its pixel of the rectangle's top-left corner.
 * @return false when DrawBitmap returns false, and then nothing is mixed; else that of DrawMix. */
PINCEL_API bool DrawMix(TSurfDesc& dst, CRectangulo const& rect, unsigned short level,
                        TSurfDesc& src, CPunto const& srcAt, TSurfDesc& back, CPunto const& backAt,
                        unsigned char (*const table)[65536]);

/** Paints a colour through a mask.
 *
 * A mask byte m of 0 keeps the pixel, 255 stores the colour whole, anything between mixes with
 * weight m + 1; at 32 bits all four bytes. 8-bit destinations: see DrawMask_8Bits.
 * @param dst destination, any format.
 * @param rect destination rectangle; clipped.
 * @param mask mask surface: one byte a pixel, or 32 bits, whose first byte counts.
 * @param maskAt mask pixel of the rectangle's top-left corner.
 * @param colour packed, in the destination's layout; true colour on 8-bit destinations.
 * @param table see the head of this group; needed for 8-bit destinations.
 * @return true; false for an unsupported format and, with nothing drawn, for an 8-bit destination
 *         whose mask has not 8 bits. */
PINCEL_API bool DrawMask(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& mask,
                         CPunto const& maskAt, unsigned long colour,
                         unsigned char (*const table)[65536]);

/** The 8-bit form of DrawMask: weight m, so that **255 mixes too and leaves a rest**.
 * @param dst 8-bit destination. @param rect destination rectangle; clipped.
 * @param mask 8-bit mask. @param maskAt its pixel of the rectangle's top-left corner.
 * @param colour true colour 0x00RRGGBB. @param table two planes of 65536 indices.
 * @return true; false, with nothing drawn, when the destination or the mask has not 8 bits. */
PINCEL_API bool DrawMask_8Bits(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& mask,
                               CPunto const& maskAt, unsigned long colour,
                               unsigned char (*const table)[65536]);

/** Tints a rectangle with a colour at one level.
 *
 * *32 and 24 bits*: weight (level AND 255) + 1, all four bytes. *16 bits*: groups of four have the
 * weight level AND 255, and **store the whole colour at 255**; the end of a row takes all 16 bits of
 * the level.
 * @param dst destination of 16, 24 or 32 bits.
 * @param rect rectangle; clipped.
 * @param colour packed, in the destination's layout.
 * @param level weight of the colour in 256ths.
 * @return true; false for an unsupported format, 8 bits included. */
PINCEL_API bool MaskFillRect(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour,
                             unsigned short level);

/** Tints a rectangle of an 8-bit surface.
 *
 * The destination weighs (256 - level) AND 255, so **level 0 looks up key 0 everywhere**; and **each
 * entry's blue is mixed with the colour's red**, into the key's red, and the other way round.
 * @param dst 8-bit destination. @param rect rectangle; clipped.
 * @param colour true colour 0x00RRGGBB. @param level weight of the colour in 256ths.
 * @param table two planes of 65536 indices.
 * @return true; false when the destination has not 8 bits. */
PINCEL_API bool MaskFillRect_8Bits(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour,
                                   unsigned short level, unsigned char (*const table)[65536]);

/** Darkens and lightens through a two-sided mask.
 *
 * A mask byte below 128 darkens with the strength (127 - m) x level / 128, one from 128 on lightens
 * with (m - 128) x level / 128. Strength 0 keeps the pixel; from 254 on its colour bytes become those
 * of #lu_gPaleta entry 0 (darken) or 255 (lighten). **Anything between writes a grey that does not
 * depend on the pixel**: 256 - strength in all three bytes. At 32 bits the fourth byte becomes the
 * entry's blue plus the pixel's old blue; **at 24 bits the byte behind the pixel changes** (the
 * square of that sum / 256), also behind the last pixel of a row. Rows are done from the last to the
 * first.
 * @param dst destination of 32, 24 or 8 bits.
 * @param level 128 spans half the strength, 256 all of it.
 * @param rect destination rectangle; clipped.
 * @param mask 8-bit mask. @param maskAt its pixel of the rectangle's top-left corner.
 * @param table needed for 8-bit destinations.
 * @return true; false for any other depth, 16 bits included. */
PINCEL_API bool DrawBiMask(TSurfDesc& dst, unsigned short level, CRectangulo rect, TSurfDesc& mask,
                           CPunto maskAt, unsigned char (*const table)[65536]);

/** The 8-bit form of DrawBiMask.
 *
 * From strength 254 on the index itself becomes 0 or 255; between, the entry's colour is mixed with
 * black or white, **blue into the key's red and red into its blue**, and looked up in **the first
 * plane only**.
 * @param dst 8-bit destination. @param level as for DrawBiMask.
 * @param rect destination rectangle; clipped.
 * @param mask 8-bit mask. @param maskAt its pixel of the rectangle's top-left corner.
 * @param table planes of 65536 indices; the first is read.
 * @return true; false when the destination has not 8 bits. */
PINCEL_API bool DrawBiMask_8Bits(TSurfDesc& dst, unsigned short level, CRectangulo rect,
                                 TSurfDesc& mask, CPunto maskAt,
                                 unsigned char (*const table)[65536]);

/** Draws a source that fades out from left to right.
 *
 * Every row starts at one level, holds it for `hold` + 1 pixels and then falls by `step` per pixel.
 * The level is a word with a weight in every byte, for the bytes of a pixel (at 16 bits byte 0 for
 * blue, 1 for green, 2 for red). It is **not clamped**: it falls as one 32-bit number, so a byte
 * that passes below zero wraps and borrows from the next. A level of 256 is the word 0x01010100.
 * @param dst destination of 16, 24 or 32 bits.
 * @param rect destination rectangle; clipped. Each row's level starts at the clipped left edge.
 * @param src source of the destination's layout, whatever depth it claims.
 * @param at source pixel of the rectangle's top-left corner.
 * @param start above 0: the level starts at 0; else at 256 - |start| x `step`.
 * @param step fall per pixel. @param hold pixels before it falls, less one; negative counts as 0.
 * @return true; false for an unsupported format, 8 bits included. */
PINCEL_API bool OpenFader(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& at,
                          int start, int step, int hold);

/** @} */

/** @defgroup blend Blend modes
 * Seven formulas that combine each channel of the destination, a, with that of a source, b, both
 * 0..255; divisions truncate.
 *
 * | function     | mode     | 24 and 32 bits                              | 565, 555, 1555, 4444    |
 * |--------------|----------|---------------------------------------------|-------------------------|
 * | DoSuma       | add      | min(a + b, 255)                             | the same                |
 * | DoResta      | subtract | max(a - b, 0)                               | the same                |
 * | DoMultiplica | multiply | a b / 256                                   | the same                |
 * | DoScreen     | screen   | 255 - (255 - a)(255 - b) / 256              | ... / 255               |
 * | DoLighten    | lighten  | max(a, b)                                   | the same                |
 * | DoDarken     | darken   | min(a, b)                                   | the same                |
 * | DoSuperponer | overlay  | a < 128: a b / 128                          | 2 a b / 255             |
 * | ^            | ^        | else: 255 - (255 - a)(255 - b) / 128        | 255 - 2 (255 - a)(255 - b) / 255 |
 *
 * **The divisors differ by format**; intended. So full by full multiplies to 254, and screening
 * black with black gives 1 at 24 and 32 bits, 0 at 16.
 *
 * *Shapes.* Each function has three: a source; a colour through a mask; a source through a mask.
 * The source has the destination's format. The mask is read one byte per pixel, whatever its
 * descriptor's depth: 0 leaves the destination pixel as it is, 255 is nearly the full blend. The
 * rectangle is clipped to the destination, and the points move with it; source and mask are not
 * clipped, the areas that the rectangle covers must lie inside them.
 *
 * *Formats.* 565, 555, 1555, 4444, 24 and 32 bits; 555 and 1555 alike. 16-bit fields are blended at
 * the top of a byte, low bits 0, and truncated back. **The alpha bits of a blended 1555 or 4444
 * pixel become 0.** The fourth byte of 32-bit pixels is **blended like a channel** by DoSuma,
 * DoResta, DoMultiplica and DoScreen, and kept by DoLighten, DoDarken and DoSuperponer.
 *
 * *Colours* are 0xAARRGGBB, truncated to the fields of a 16-bit destination; AA is read at 32 bits
 * only.
 *
 * *Transparency* concerns the source shape alone; a mask takes no notice of colour keys. Source
 * pixels equal to the key leave the destination as it is: compared are 16 bits, or the low 24 bits
 * at 24 and 32. **Without a key, pixels of value 0 are transparent**, so black neither multiplies
 * nor darkens; intended.
 *
 * *Mask weights.* At a mask byte m other than 0 each channel d of the destination goes towards its
 * blend t, to d + (t - d) m / 256, rounded down; 16-bit fields do so in their own precision.
 * **DoSuma and DoResta at 24 and 32 bits weigh with m + 256 b instead of m**, b being the channel of
 * the source or colour, so that a byte becomes (((t - d)(m + 256 b) + 256 d) mod 65536) / 256;
 * intended.
 *
 * *Results.* True when pixels were processed, even if none changed. False, and nothing drawn, for
 * other formats and when the clipped rectangle is empty; in the first two shapes also when the
 * point, as passed in, lies outside the source or the mask. **With both a source and a mask the
 * points are not tested.**
 * @{ */

/** Adds a source: min(a + b, 255).
 * @param dst destination, 16 bits or more.
 * @param rect destination rectangle; clipped.
 * @param src source of the same format; its transparent pixels are left out.
 * @param at source pixel that lands on the rectangle's top-left corner; must lie inside.
 * @return see the group. */
PINCEL_API bool DoSuma(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& at);

/** Adds a colour through a mask.
 * @param dst destination, 16 bits or more.
 * @param rect destination rectangle; clipped.
 * @param colour 0xAARRGGBB.
 * @param mask one byte per pixel, 0..255.
 * @param maskAt mask byte that lands on the rectangle's top-left corner; must lie inside.
 * @return see the group. */
PINCEL_API bool DoSuma(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour,
                       TSurfDesc& mask, CPunto const& maskAt);

/** Adds a source through a mask; no pixel is transparent.
 * @param dst destination, 16 bits or more.
 * @param rect destination rectangle; clipped.
 * @param src source of the same format.
 * @param srcAt source pixel that lands on the rectangle's top-left corner.
 * @param mask one byte per pixel, 0..255.
 * @param maskAt mask byte that lands on the rectangle's top-left corner.
 * @return see the group. */
PINCEL_API bool DoSuma(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& srcAt,
                       TSurfDesc& mask, CPunto const& maskAt);

/** @name Subtract: max(a - b, 0).
 * Arguments and results as those of DoSuma.
 * @{ */
/** Subtracts a source. */
PINCEL_API bool DoResta(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& at);
/** Subtracts a colour through a mask. */
PINCEL_API bool DoResta(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour,
                        TSurfDesc& mask, CPunto const& maskAt);
/** Subtracts a source through a mask. */
PINCEL_API bool DoResta(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src,
                        CPunto const& srcAt, TSurfDesc& mask, CPunto const& maskAt);
/** @} */

/** @name Multiply: a b / 256; darkens.
 * Arguments and results as those of DoSuma.
 * @{ */
/** Multiplies by a source. */
PINCEL_API bool DoMultiplica(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src,
                             CPunto const& at);
/** Multiplies by a colour through a mask. */
PINCEL_API bool DoMultiplica(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour,
                             TSurfDesc& mask, CPunto const& maskAt);
/** Multiplies by a source through a mask. */
PINCEL_API bool DoMultiplica(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src,
                             CPunto const& srcAt, TSurfDesc& mask, CPunto const& maskAt);
/** @} */

/** @name Screen: multiplies the complements; lightens.
 * Arguments and results as those of DoSuma.
 * @{ */
/** Screens with a source. */
PINCEL_API bool DoScreen(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& at);
/** Screens with a colour through a mask. */
PINCEL_API bool DoScreen(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour,
                         TSurfDesc& mask, CPunto const& maskAt);
/** Screens with a source through a mask. */
PINCEL_API bool DoScreen(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src,
                         CPunto const& srcAt, TSurfDesc& mask, CPunto const& maskAt);
/** @} */

/** @name Lighten: the larger of both, channel by channel.
 * Arguments and results as those of DoSuma.
 * @{ */
/** Lightens by a source. */
PINCEL_API bool DoLighten(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src,
                          CPunto const& at);
/** Lightens by a colour through a mask. */
PINCEL_API bool DoLighten(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour,
                          TSurfDesc& mask, CPunto const& maskAt);
/** Lightens by a source through a mask. */
PINCEL_API bool DoLighten(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src,
                          CPunto const& srcAt, TSurfDesc& mask, CPunto const& maskAt);
/** @} */

/** @name Darken: the smaller of both, channel by channel.
 * Arguments and results as those of DoSuma.
 * @{ */
/** Darkens by a source. */
PINCEL_API bool DoDarken(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src, CPunto const& at);
/** Darkens by a colour through a mask. */
PINCEL_API bool DoDarken(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour,
                         TSurfDesc& mask, CPunto const& maskAt);
/** Darkens by a source through a mask. */
PINCEL_API bool DoDarken(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src,
                         CPunto const& srcAt, TSurfDesc& mask, CPunto const& maskAt);
/** @} */

/** @name Overlay: multiplies where the destination is below 128, screens elsewhere.
 * Arguments and results as those of DoSuma.
 * @{ */
/** Overlays a source. */
PINCEL_API bool DoSuperponer(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src,
                             CPunto const& at);
/** Overlays a colour through a mask. */
PINCEL_API bool DoSuperponer(TSurfDesc& dst, CRectangulo const& rect, unsigned long colour,
                             TSurfDesc& mask, CPunto const& maskAt);
/** Overlays a source through a mask. */
PINCEL_API bool DoSuperponer(TSurfDesc& dst, CRectangulo const& rect, TSurfDesc& src,
                             CPunto const& srcAt, TSurfDesc& mask, CPunto const& maskAt);
/** @} */

/** @} */

/** @defgroup filter Filters
 * Convolutions of whole images, in place. `scratch` receives a copy of the image (height x pitch
 * bytes, in units of four: up to three bytes at the end are not copied), from which all pixels are
 * read; it must have room for that, and its own size and depth are not looked at.
 *
 * | format   | pixels filtered         | channels                | added     | rest of the pixel |
 * |----------|-------------------------|-------------------------|-----------|-------------------|
 * | 32       | those of the rows       | blue, green, red        | bias      | becomes 0         |
 * | 24       | those of the rows       | blue, green, red        | bias      |                   |
 * | 565      | **all, padding too**    | blue, green, red        | see below |                   |
 * | 555,1555 | **all, padding too**    | blue, green, pixel >> 10 | see below | becomes 0        |
 * | 4444     | **all, padding too**    | blue, green, pixel >> 8 | see below | becomes 0         |
 *
 * Fields of 16-bit pixels are filtered in their own range, not as bytes, with the bias as it stands
 * and **twice the bias on green**; the alpha bits count as high bits of red. Intended.
 *
 * *Neighbours.* A tap is an offset in bytes from the pixel. **The image is one run of bytes**: left
 * of a row's first pixel lies the end of the row above (its padding, if any), and what lies before
 * the first or behind the last pixel of the buffer is that pixel.
 *
 * *Arithmetic.* Sums are 32-bit and wrap; the quotient is truncated toward zero, the bias added
 * (wrapping too), the result clamped to the channel's range.
 *
 * 8-bit images are not filtered: the result is false. A buffer (height x pitch bytes) that has no
 * room for a pixel stays as it is; so does one of 24 or 32 bits whose rows have no pixels.
 * @{ */

/** Filters an image with any list of taps.
 * @param image 16, 24 or 32 bits; filtered in place.
 * @param scratch height x pitch bytes of the image at least.
 * @param count number of taps; below 1 the sum is 0.
 * @param weights `count` weights.
 * @param offsets `count` offsets in bytes, row x pitch + column x bytes per pixel; their low 32 bits
 *        are read, signed.
 * @param divisor of the sums, not 0.
 * @param bias added to the quotients.
 * @return true; false, with nothing changed, for null arrays, a divisor of 0 and other formats. */
PINCEL_API bool DoConvolucion(TSurfDesc& image, TSurfDesc& scratch, int count, int* const weights,
                              long* const offsets, int divisor, int bias);

/** Blurs an image: the mean of 3 x 3 pixels.
 * @param image 16, 24 or 32 bits. @param scratch see the group.
 * @return that of DoConvolucion. */
PINCEL_API bool DoSuavizado(TSurfDesc& image, TSurfDesc& scratch);

/** Turns an image into a relief: the pixel at the lower right minus the one at the upper left, plus
 * 127 (which saturates 16-bit fields).
 * @param image 16, 24 or 32 bits. @param scratch see the group.
 * @return that of DoConvolucion. */
PINCEL_API bool DoEmboss(TSurfDesc& image, TSurfDesc& scratch);

/** Sharpens an image: nine times the pixel minus its eight neighbours.
 * @param image 16, 24 or 32 bits. @param scratch see the group.
 * @return that of DoConvolucion. */
PINCEL_API bool DoRealce(TSurfDesc& image, TSurfDesc& scratch);

/** Filters an image with one of 24 stored kernels of up to 5 x 5 taps.
 *
 * | number         | result                                                                  |
 * |----------------|-------------------------------------------------------------------------|
 * | 0              | next to black: the weights sum to -79, which a bias of 50 cannot lift   |
 * | 1, 2           | reliefs over the picture, brightened (2 and 1 times its value, plus 128) |
 * | 5              | a relief on grey                                                        |
 * | 3, 4, 16, 17   | directed edges on black                                                 |
 * | 6, 14, 21      | the picture with directed edges                                         |
 * | 7, 12, 20      | edges on black (sums -7, -18 and -3)                                    |
 * | 8, 9, 10       | sharpening                                                              |
 * | 11             | a blur, a little brighter (8 / 7)                                       |
 * | 13             | a blur, nearly white (35 / 3)                                           |
 * | 15             | a shift by one pixel to the right and down                              |
 * | 18             | brighter by 140                                                         |
 * | 19             | the picture, sharpened the wrong way: neighbours weigh 36, itself -35   |
 * | 22             | edges over the picture at a third of its brightness                     |
 *
 * Number 23 has divisor 0: it is refused.
 * @param image 16, 24 or 32 bits. @param scratch see the group.
 * @param number 0 to 22.
 * @return that of DoConvolucion; false for other numbers. */
PINCEL_API bool FiltroMask(TSurfDesc& image, TSurfDesc& scratch, int number);

/** @} */

/** @defgroup blur Directional blurs
 * A mask, moved along a line, through which a colour is painted once for each position.
 *
 * *Mask.* Of 8 bits, or the first bytes of 32-bit pixels; a mask of another depth paints nothing.
 * Pixels outside the mask's memory count as 0. **In a mask of 8 bits, the byte that belongs to row i
 * of the painted area counts only where it lies within row i of the mask**: what a pass reads from
 * other rows is 0, so that passes above and below the centre paint next to nothing when the area
 * starts at the mask's first row; with rows upwards an 8-bit mask paints nothing at all. Intended.
 *
 * *Positions.* Position k, from half the length less 1 down to minus half the length, reads the mask
 * from `at` + k x (cosine, sine) on, truncated toward zero; the point moves along when the rectangle
 * is clipped. Sine and cosine are rounded to single precision, the rest is double precision. **A
 * quarter turn is exact in its rows, but leans by a column where `at.x` is not 0**: its cosine is
 * -4.4e-8.
 *
 * *Strength.* A mask byte m paints with a = (m x step / 256) mod 256: 0 leaves the pixel, 255 stores
 * the whole colour, others move each channel c of the colour towards the destination's d, to
 * c + floor((d - c)(255 - a) / 256). All four bytes of a 32-bit pixel are mixed. 16-bit fields are
 * mixed in their own precision, and **the alpha bits of a mixed pixel become 0**.
 *
 * *Destinations* of 8 bits and unsupported formats are left as they are; the result does not tell.
 * @{ */

/** Paints a colour through a mask that is smeared evenly along a line.
 * @param dst destination of 16, 24 or 32 bits.
 * @param mask mask of 8 or 32 bits.
 * @param rect area to paint; clipped to the destination, and made no larger than the mask.
 * @param at mask pixel that lands on the area's top-left corner in the middle position.
 * @param colour packed.
 * @param length number of positions, rounded down to an even one; below 2 nothing is painted.
 * @param angle direction in radians, clockwise from the right; not finite counts as 0.
 * @return false when the area is empty; else true. */
PINCEL_API bool FiltroMotionBlur(TSurfDesc& dst, TSurfDesc& mask, CRectangulo const& rect,
                                 CPunto const& at, unsigned long colour, int length, float angle);

/** Paints a colour through a mask whose copies along a line fade with the distance from the middle:
 * a glow.
 * @param dst destination of 16, 24 or 32 bits.
 * @param mask mask of 8 or 32 bits.
 * @param rect area to paint; clipped to the destination.
 * @param at mask pixel that lands on the area's top-left corner in the middle position.
 * @param colour packed.
 * @param length number of positions, rounded down to an even one; below 2 nothing is painted.
 * @param angle direction in radians, clockwise from the right; not finite counts as 0.
 * @return **true when the area is clipped away, false after drawing**. Intended. */
PINCEL_API bool FiltroBrilloBlur(TSurfDesc& dst, TSurfDesc& mask, CRectangulo const& rect,
                                 CPunto const& at, unsigned long colour, int length, float angle);

/** Paints colour 0xFFFFFF through a mask, once.
 * @param dst destination of 16, 24 or 32 bits; 16 bits take the low half of the colour.
 * @param mask mask of 8 or 32 bits.
 * @param rect area to paint; clipped to the destination.
 * @param at mask pixel that lands on the area's top-left corner.
 * @param level step, 256 for the mask as it is; its low 16 bits are read.
 * @return **true when the area is clipped away, false after drawing**. Intended. */
PINCEL_API bool FiltroMotionMask(TSurfDesc& dst, TSurfDesc& mask, CRectangulo const& rect,
                                 CPunto const& at, int level);

/** @} */

/** @defgroup effect Anti-aliasing, tone, masks and shadows
 * Operations on whole surfaces.
 *
 * *Coverage images* of the anti-aliasing keep their value in the first byte of a pixel, blue (at 16
 * bits in the blue field). **Rows 2 to height - 3 are processed, and in each of them the pixels from
 * column 1 to one past the last column**, which is the first of the next row or lies in the padding.
 * Everything is read from a copy taken before. A processed pixel gets its value in the first byte
 * and 0 in the second and third; the fourth is kept. At 16 bits green and red become 0, and alpha
 * bits are kept.
 * When there is no memory for the copy, nothing is changed and the result is false.
 * @{ */

/** Softens a coverage image: 16 times the value plus its eight neighbours, by 8, up to 255.
 * @param image any format; 8 bits are left as they are.
 * @param rect not read. @param other not read. @param level no effect.
 * @return true; false for an unsupported format. */
PINCEL_API bool DoAntiAlias(TSurfDesc& image, CRectangulo const& rect, TSurfDesc& other,
                            unsigned short level);

/** Softens a coverage image by a cross of radius 2, weights 3 at distance 1 and -1 at distance 2 and
 * in the middle, times 0.136986301369863, truncated, 0 to 255; only pixels of a value other than 0.
 *
 * **Only width x pitch bytes of the image are copied**: the lower rows of an image that is higher than
 * wide read as 0, and its processed pixels there become 0. At 24 bits a pixel of value 0 is restored
 * from the copy with the byte behind it. Intended.
 * @param image 16, 24 or 32 bits.
 * @param rect not read. @param other not read. @param level no effect.
 * @return true; false for other formats, 8 bits included. */
PINCEL_API bool DoAntiAlias2(TSurfDesc& image, CRectangulo const& rect, TSurfDesc& other,
                             unsigned short level);

/** Turns a coverage image into a map of edges.
 *
 * The bytes from row 2, column 2 on are walked in place, (height - 4) x pitch - 4 of them. A byte of
 * 0 stays. Any other becomes 3 plus a bit for each neighbour that is greater than the threshold: 128
 * two rows above, 64 above, 32 above left, 16 two to the left, 8 left, 4 below left. **The threshold is
 * the second byte of the number of bytes still to go**, and neighbours that the walk has passed
 * already are edge codes. Intended.
 * @param image taken as 8 bits a pixel, whatever its format.
 * @param level 256 leaves the codes as they are; else all bytes of the buffer (in units of four) are
 *        multiplied by its low byte and divided by 256.
 * @return true. */
PINCEL_API bool DoAntiAliasBMP(TSurfDesc& image, unsigned short level);

/** Darkens a surface: every channel becomes channel x factor / 256.
 *
 * **The fourth byte of 32-bit pixels is scaled by the low byte of the surface's height instead.** At
 * 16 bits the first width x height pixels of the buffer are scaled, **whatever the pitch**; alpha bits
 * are kept. At 8 bits the indices themselves are scaled, padding included, in units of four bytes: up
 * to three at the end of the buffer are left. Intended.
 * @param image any format.
 * @param factor 0 to 255; from 256 on nothing is changed.
 * @return true; false for an unsupported format and a factor below 256. */
PINCEL_API bool DoFactor(TSurfDesc& image, unsigned short factor);

/** Fills a surface with a ramp from one colour on the left to another on the right.
 *
 * Channels run in 16.16 fixed point by trunc((to - from) / width x 65536) a pixel, so **the last column
 * is a step short of `to`**. 16 bits truncate; alpha bits and the fourth byte are 0.
 * @param image 16, 24 or 32 bits.
 * @param from true colour of the first column. @param to true colour behind the last.
 * @return true; false for other formats, 8 bits included, and for a width of 0. */
PINCEL_API bool DoGradient(TSurfDesc& image, unsigned long const& from, unsigned long const& to);

/** Makes a mask of a picture: 0 where the pixel is transparent, a level elsewhere.
 *
 * Pixels equal to the colour key are transparent (low 24 bits compared at 24 and 32 bits, 16 at 16, the
 * index at 8). **A source without a key compares with 0**: its black is transparent. Intended.
 *
 * **Whether the source is 1555 is asked of the mask**: a mask of that format is still filled with
 * bytes, and then sources that are not of 565, 555, 24 or 32 bits are read as 1555. Intended.
 * @param mask 8-bit surface to fill; its size counts. Pixels that the source does not have are left.
 * @param src source of any format **but 1555**, at least as large.
 * @param level 256 writes 255; else its low byte is written.
 * @return true; false for an unsupported source and **for 1555**. */
PINCEL_API bool CreateMask(TSurfDesc& mask, TSurfDesc& src, unsigned short level);

/** Grows a shadow out of a mask, downwards and to the right.
 *
 * A value below 240 becomes the weighted mean of the shadow above, above left (twice) and to the left,
 * less `decay` and at most `limit`, if that is more than the mask's own value. Row 0 and the first pixel
 * of row 1 are left as they are; column 0 of the later rows is written. **The buffers are walked as one
 * run**: left of column 0 lies the end of the row above, and between two surfaces of 8 bits padding is
 * walked, too. Whether the source is 1555 is asked of the shadow, as in CreateMask. Intended.
 *
 * The mask is an 8-bit surface, the first byte of 32-bit pixels, or the highest channel, expanded to 8
 * bits, of 24- and 16-bit ones. An 8-bit mask needs an 8-bit shadow. **Any other mask takes a shadow that
 * is not of 8 bits for one of 32**, and there rows are walked without their pitch: give both surfaces
 * rows without padding. Nothing is read or written outside the two buffers.
 * @param shadow surface to write, 8 or 32 bits, of the source's size.
 * @param src mask, any format **but 1555**.
 * @param decay loss per pixel, 0 to 255. @param limit largest value of the shadow, 0 to 255.
 * @param factor 256, or a level by which the whole shadow is scaled afterwards (bytes 0 to 2 at 32
 *        bits): its low byte.
 * @return true; false for an unsupported source, **for 1555**, and for an 8-bit source with another
 *         shadow. */
PINCEL_API bool CreateShadow(TSurfDesc& shadow, TSurfDesc& src, unsigned char decay,
                             unsigned char limit, unsigned short factor);

/** @} */

#endif /* __cplusplus */

/** @defgroup additions Additions
 * Helpers with C linkage and the prefix `pincel_`, beside the interface proper.
 *
 * **Loading files of unknown origin.** The loaders here know the file's length. They read nothing
 * outside [data, data + length), write nothing outside the image's rectangle at the surface's top
 * left corner, and take time in proportion to length and pixels. The surface must be at least as
 * large as the image; its fields must describe real memory, as ever; its pitch may be negative. An
 * image is decoded as its writers mean it, without the irregularities of the older loaders: opaque
 * pixels have all alpha bits set (bit 15 of 555 pixels too). An 8-bit surface gets indices and, in
 * its palette unless that is null, the image's colours, where every black entry but entry 0 gets
 * blue 1. @{ */

/** What became of a file. */
#ifdef __cplusplus
enum pincel_status : int32_t {
#else
typedef int32_t pincel_status;
enum {
#endif
  PINCEL_OK = 0,              /**< complete */
  PINCEL_TRUNCATED = 1,       /**< the data ends early; the pixels before that are in the surface */
  PINCEL_NOT_THIS_FORMAT = 2, /**< another kind of file; nothing was written */
  PINCEL_UNSUPPORTED = 3,     /**< a variant, or a surface for it, that is not supported; nothing
                                     was written */
  PINCEL_CORRUPT = 4,         /**< the file contradicts itself; the pixels before that are in the
                                     surface */
  PINCEL_SURFACE_TOO_SMALL = 5, /**< smaller than the image; nothing was written */
  PINCEL_NO_FRAME = 6           /**< the walk is behind the last frame */
};

/** A frame of a GIF file, as #pincel_gif_frame finds it. All zero before the first. */
struct TGifFrame {
  size_t offset;       /**< place in the file; 0: before the first frame */
  CRectangulo area;    /**< rectangle on the screen; may reach beyond it */
  int32_t delay;       /**< time on the screen, in hundredths of a second */
  int32_t transparent; /**< index of the pixels that show what is below; -1: none */
  int32_t disposal;    /**< then: 0, 1 stays; 2 area is cleared; 3 area is as before this frame */
  int32_t loops;       /**< repetitions as far as read; 0: without end; -1: not said */
};

#ifdef __cplusplus
extern "C" {

/** Builds the table that the 8-bit mixing functions look colours up in.
 *
 * Each key stands for a colour, its fields widened to bytes with the top bits repeated below. Without
 * dither both planes hold the nearest palette entry (smallest squared distance, the lowest index
 * among equals). With dither the first plane holds the nearest and the second the entry nearest to
 * the colour mirrored at it, so that a checkerboard of the two averages to the colour.
 * @param table receives two planes of 65536 indices.
 * @param palette 256 entries; for the functions here, #lu_gPaleta.
 * @param dither 0 for equal planes. */
PINCEL_API void pincel_build_mix_table(unsigned char table[2][65536], const TRGBA palette[256],
                                       int dither);

/** Reads size and depth of a BMP file.
 * @param surface receives `width`, `height` (absolute value) and the file's `bpp`, with #PINCEL_OK
 *        only.
 * @param data the file. @param length its bytes.
 * @return OK when #pincel_load_bmp decodes files with such a header; TRUNCATED (inside the header);
 *         NOT_THIS_FORMAT; UNSUPPORTED; CORRUPT (no width or height, pixels inside the header). */
PINCEL_API pincel_status pincel_load_info_bmp(TSurfDesc& surface, const unsigned char* data,
                                              size_t length);

/** Decodes a BMP file into the top left corner of a surface.
 *
 * Reads headers of 12, 16, 40, 52, 56, 64, 108 and 124 bytes; 1, 2, 4 and 8 bits with a colour
 * table (indices beyond it are black), run-length data of 4 and 8 bits, 24 bits, and 16 and 32 bits
 * with any masks. Fields narrower than 8 bits repeat their top bits below, so that they span 0..255;
 * wider ones keep their top 8. Without an alpha mask pixels are opaque. Pixels that run-length data
 * skips get index 0, on every surface; what it has past the end of a row is left out. Embedded JPEG
 * and PNG images and colour profiles are not read; "QX" files have their pixels at offset 54.
 * @param surface destination; 8-bit surfaces take files of up to 8 bits.
 * @param data the file. @param length its bytes.
 * @return OK; TRUNCATED (whole rows are kept, of run-length data every pixel); CORRUPT (also
 *         run-length data that moves outside the image); NOT_THIS_FORMAT; UNSUPPORTED;
 *         SURFACE_TOO_SMALL. */
PINCEL_API pincel_status pincel_load_bmp(TSurfDesc& surface, const unsigned char* data,
                                         size_t length);

/** Reads the screen size of a GIF file.
 * @param surface receives `width`, `height` and `bpp` 8, with #PINCEL_OK only.
 * @param data the file. @param length its bytes.
 * @return OK, TRUNCATED (inside header or colour table), NOT_THIS_FORMAT. */
PINCEL_API pincel_status pincel_load_info_gif(TSurfDesc& surface, const unsigned char* data,
                                              size_t length);

/** Finds the next frame of a GIF file and what is said about it; decodes nothing:
 *
 *     TGifFrame frame = {};
 *     while (pincel_gif_frame(frame, data, length) == PINCEL_OK) {
 *       // ... a surface of the size of frame.area
 *       pincel_load_gif(surface, data, length, frame);
 *     }
 * @param frame all zero for the first frame, else the frame before. With OK it receives the next one
 *        and its facts; otherwise it is left as it is.
 * @param data the file. @param length its bytes.
 * @return OK; NO_FRAME at the end of the file, with or without a trailer; TRUNCATED when the file
 *         ends inside the frame before, an extension or the frame's header; NOT_THIS_FORMAT. */
PINCEL_API pincel_status pincel_gif_frame(TGifFrame& frame, const unsigned char* data,
                                          size_t length);

/** Decodes one frame of a GIF file into the top left corner of a surface of any format.
 *
 * The surface must hold the frame (`frame.area`), not the screen. Pixels of the transparent index
 * get alpha 0 where the format has alpha.
 * @param surface destination.
 * @param data the file. @param length its bytes.
 * @param frame from #pincel_gif_frame.
 * @return OK; TRUNCATED (fewer pixels than the frame has, the others are left as they were); CORRUPT
 *         (also a minimum code size outside 1 to 8); NOT_THIS_FORMAT; UNSUPPORTED (the surface's
 *         depth); SURFACE_TOO_SMALL; NO_FRAME when `frame` is none of this file. */
PINCEL_API pincel_status pincel_load_gif(TSurfDesc& surface, const unsigned char* data,
                                         size_t length, const TGifFrame& frame);

/** Reads the size of a JPEG file.
 * @param surface receives `width`, `height` and `bpp` 24, with #PINCEL_OK only.
 * @param data the file. @param length its bytes.
 * @return OK when #pincel_load_jpg decodes files with such a header; TRUNCATED (before the first
 *         scan); NOT_THIS_FORMAT; UNSUPPORTED; CORRUPT. */
PINCEL_API pincel_status pincel_load_info_jpg(TSurfDesc& surface, const unsigned char* data,
                                              size_t length);

/** Decodes a JPEG file into the top left corner of a surface of any format.
 *
 * Reads baseline and progressive files of 8 bits a sample, in colour and grayscale. On 8-bit surfaces
 * the image is dithered to #lu_gPaleta. Rows stand at the surface's pitch. Files with several scans
 * are held in memory while they are decoded, up to six bytes a pixel. Throws nothing.
 * @param surface destination.
 * @param data the file. @param length its bytes.
 * @return OK; TRUNCATED (what is missing is grey, or coarse in a progressive file; one that ends
 *         inside a header between two scans gives no pixels); CORRUPT (whatever could be made sense
 *         of is there, possibly all); NOT_THIS_FORMAT; UNSUPPORTED (also CMYK, lossless
 *         and 12-bit files, and when memory runs out); SURFACE_TOO_SMALL. */
PINCEL_API pincel_status pincel_load_jpg(TSurfDesc& surface, const unsigned char* data,
                                         size_t length);

} /* extern "C" */
#endif

/** @} */

/* Made by scripts/exports. */

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup plain Plain C
 * Every function once more for C and for whatever calls C: one name for each, also where C++ has
 * several functions of one name; records by pointer, colours as `uint32_t`, 1 and 0 for true and
 * false. What a function does is said at the C++ function that its own text names.
 *
 * None throws: #pincel_load_jpg_trusted returns 0 where LoadJPG throws. Pointers must not be null,
 * but where the C++ function's text allows it.
 *
 * Loaders ending in `_trusted` are those that exist a second time among the additions, where they
 * report what became of the file: prefer #pincel_load_bmp, #pincel_load_gif and #pincel_load_jpg.
 * @{ */

/** CQXGIF::ReadHeader(unsigned char*, RAW*). */
PINCEL_API uint32_t pincel_gif_read_header(CQXGIF* gif, const unsigned char* data, RAW* frame);

/** CQXGIF::NextImage(). */
PINCEL_API uint32_t pincel_gif_next_image(CQXGIF* gif);

/** CQXGIF::DecodeImage(RAW*). */
PINCEL_API uint32_t pincel_gif_decode_image(CQXGIF* gif, RAW* frame);

/** CQXGIF::ReadCode(). */
PINCEL_API uint32_t pincel_gif_read_code(CQXGIF* gif);

/** Width(TSurfDesc&). */
PINCEL_API int pincel_width(TSurfDesc* surface);

/** Height(TSurfDesc&). */
PINCEL_API int pincel_height(TSurfDesc* surface);

/** ScanWidth(TSurfDesc&). */
PINCEL_API int pincel_scan_width(TSurfDesc* surface);

/** Size(TSurfDesc&). */
PINCEL_API void pincel_size(TSurfDesc* surface, CSize* result);

/** Transp(TSurfDesc&). */
PINCEL_API int pincel_transp(TSurfDesc* surface);

/** GetPixel(TSurfDesc&, CPunto). */
PINCEL_API uint32_t pincel_get_pixel_at(TSurfDesc* surface, const CPunto* point);

/** GetPixel(TSurfDesc&, int, int). */
PINCEL_API uint32_t pincel_get_pixel(TSurfDesc* surface, int x, int y);

/** SetPixel(TSurfDesc&, CPunto, unsigned long). */
PINCEL_API void pincel_set_pixel_at(TSurfDesc* surface, const CPunto* point, uint32_t colour);

/** SetPixel(TSurfDesc&, int, int, unsigned long). */
PINCEL_API void pincel_set_pixel(TSurfDesc* surface, int x, int y, uint32_t colour);

/** InitializeDLL(). */
PINCEL_API void pincel_initialize_dll(void);

/** CreateModelPal(TRGBA (&)[256]). */
PINCEL_API void pincel_create_model_pal(TRGBA palette[256]);

/** CreateGreyPal(TRGBA (&)[256]). */
PINCEL_API void pincel_create_grey_pal(TRGBA palette[256]);

/** CreateTruncPal(TRGBA (&)[256]). */
PINCEL_API void pincel_create_trunc_pal(TRGBA palette[256]);

/** Convert(TSurfDesc&, TSurfDesc&, unsigned long). */
PINCEL_API int pincel_convert(TSurfDesc* dst, TSurfDesc* src, uint32_t mode);

/** CopyImage(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_copy_image(TSurfDesc* dst, TSurfDesc* src);

/** Convert16_565_16_555(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_convert16_565_16_555(TSurfDesc* dst, TSurfDesc* src);

/** Convert16_4444_16_555(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_convert16_4444_16_555(TSurfDesc* dst, TSurfDesc* src);

/** Convert16_555_16_4444(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_convert16_555_16_4444(TSurfDesc* dst, TSurfDesc* src);

/** Convert16_565_16_4444(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_convert16_565_16_4444(TSurfDesc* dst, TSurfDesc* src);

/** Convert16_4444_16_565(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_convert16_4444_16_565(TSurfDesc* dst, TSurfDesc* src);

/** Convert16_4444_16_5551(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_convert16_4444_16_5551(TSurfDesc* dst, TSurfDesc* src);

/** Convert16_555_16_5551(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_convert16_555_16_5551(TSurfDesc* dst, TSurfDesc* src);

/** Convert16_5551_16_555(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_convert16_5551_16_555(TSurfDesc* dst, TSurfDesc* src);

/** Convert16_565_16_5551(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_convert16_565_16_5551(TSurfDesc* dst, TSurfDesc* src);

/** Convert16_555_16_565(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_convert16_555_16_565(TSurfDesc* dst, TSurfDesc* src);

/** Convert24_32_(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_convert24_32(TSurfDesc* dst, TSurfDesc* src);

/** Convert32_24_(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_convert32_24(TSurfDesc* dst, TSurfDesc* src);

/** Convert8_8(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_convert8_8(TSurfDesc* dst, TSurfDesc* src);

/** DrawBitmap(TSurfDesc&, CRectangulo, TSurfDesc&, CPunto). */
PINCEL_API int pincel_draw_bitmap(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                  const CPunto* at);

/** DrawBitmap(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_draw_bitmap_whole(TSurfDesc* dst, TSurfDesc* src);

/** IdxFillRect(TSurfDesc&, CRectangulo, unsigned long). */
PINCEL_API int pincel_idx_fill_rect(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour);

/** IdxLineHI(TSurfDesc&, CPunto const&, int, unsigned long). */
PINCEL_API int pincel_idx_line_hi(TSurfDesc* dst, const CPunto* p, int len, uint32_t colour);

/** IdxLineVI(TSurfDesc&, CPunto const&, int, unsigned long). */
PINCEL_API int pincel_idx_line_vi(TSurfDesc* dst, const CPunto* p, int len, uint32_t colour);

/** FrameBR(TSurfDesc&, CRectangulo, unsigned long). */
PINCEL_API int pincel_frame_br(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour);

/** DrawRectShadow(TSurfDesc&, CRectangulo, unsigned char, unsigned char). */
PINCEL_API int pincel_draw_rect_shadow(TSurfDesc* dst, const CRectangulo* rect, unsigned char step,
                                       unsigned char depth);

/** Line(TSurfDesc&, CPunto const&, CPunto const&, unsigned long, unsigned short, bool, int). */
PINCEL_API int pincel_line(TSurfDesc* dst, const CPunto* p1, const CPunto* p2, uint32_t colour,
                           unsigned short alpha, int soft, int thickness);

/** Rellena(TSurfDesc&, TSurfDesc&, int, int, unsigned long, unsigned long, unsigned long). */
PINCEL_API int pincel_rellena(TSurfDesc* dst, TSurfDesc* work, int x, int y, uint32_t tolerance,
                              uint32_t reference, uint32_t colour);

/** DrawBlock(TSurfDesc&, TSurfDesc&, unsigned short, unsigned short, unsigned short,
 * unsigned short, unsigned short, unsigned short). */
PINCEL_API int pincel_draw_block(TSurfDesc* dst, TSurfDesc* src, unsigned short sx,
                                 unsigned short sy, unsigned short dx, unsigned short dy,
                                 unsigned short w, unsigned short h);

/** BltStrech(TSurfDesc&, CRectangulo, TSurfDesc&, CRectangulo, bool). */
PINCEL_API int pincel_blt_strech(TSurfDesc* dst, const CRectangulo* dRect, TSurfDesc* src,
                                 const CRectangulo* sRect, int smooth);

/** DrawStretch(TSurfDesc&, CRectangulo const&, TSurfDesc&, CRectangulo const&). */
PINCEL_API int pincel_draw_stretch(TSurfDesc* dst, const CRectangulo* dRect, TSurfDesc* src,
                                   const CRectangulo* sRect);

/** DrawStretch(TSurfDesc&, CRectangulo const&, TSurfDesc&, CRectangulo const&, unsigned char*). */
PINCEL_API int pincel_draw_stretch_table(TSurfDesc* dst, const CRectangulo* dRect, TSurfDesc* src,
                                         const CRectangulo* sRect, const unsigned char* table);

/** StretchBitmap(TSurfDesc&, CRectangulo, TSurfDesc&, CRectangulo, int, bool, bool). */
PINCEL_API int pincel_stretch_bitmap(TSurfDesc* dst, const CRectangulo* dRect, TSurfDesc* src,
                                     const CRectangulo* sRect, int bitsPerPixel, int enable,
                                     int extra);

/** DrawDouble(TSurfDesc&, TSurfDesc&, CPunto). */
PINCEL_API int pincel_draw_double(TSurfDesc* dst, TSurfDesc* src, const CPunto* at);

/** FlipX(TSurfDesc&). */
PINCEL_API int pincel_flip_x(TSurfDesc* surf);

/** CreateRotated(TSurfDesc&, TSurfDesc&, int). */
PINCEL_API int pincel_create_rotated(TSurfDesc* dst, TSurfDesc* src, int mode);

/** TranslateRect(TSurfDesc&, CRectangulo const&, float, unsigned char const*). */
PINCEL_API int pincel_translate_rect(TSurfDesc* dst, const CRectangulo* rect, float amount,
                                     const unsigned char* table);

/** LoadInfoBMP(TSurfDesc&, unsigned char*). */
PINCEL_API int pincel_load_info_bmp_trusted(TSurfDesc* surface, const unsigned char* bitmap);

/** LoadBMP(TSurfDesc&, unsigned char*). */
PINCEL_API int pincel_load_bmp_trusted(TSurfDesc* surface, const unsigned char* bitmap);

/** LoadInfoBMPAlpha(TSurfDesc&, unsigned char*). */
PINCEL_API int pincel_load_info_bmp_alpha(TSurfDesc* surface, const unsigned char* bitmap);

/** LoadBMPAlpha(TSurfDesc&, unsigned char*). */
PINCEL_API int pincel_load_bmp_alpha(TSurfDesc* surface, const unsigned char* bitmap);

/** LoadInfoGIF(TSurfDesc&, unsigned char*, CQXGIF&, RAW&). */
PINCEL_API int pincel_load_info_gif_trusted(TSurfDesc* surface, const unsigned char* data,
                                            CQXGIF* gif, RAW* frame);

/** LoadGIFNext(TSurfDesc&, unsigned char*, CQXGIF&, RAW&). */
PINCEL_API int pincel_load_gif_next(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                                    RAW* frame);

/** LoadGIF(TSurfDesc&, unsigned char*, CQXGIF&, RAW&). */
PINCEL_API int pincel_load_gif_trusted(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                                       RAW* frame);

/** LoadGIFEnd(TSurfDesc&, unsigned char*, CQXGIF&, RAW&). */
PINCEL_API int pincel_load_gif_end(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                                   RAW* frame);

/** LoadInfoGIFAlpha(TSurfDesc&, unsigned char*, CQXGIF&, RAW&). */
PINCEL_API int pincel_load_info_gif_alpha(TSurfDesc* surface, const unsigned char* data,
                                          CQXGIF* gif, RAW* frame);

/** LoadGIFAlphaNext(TSurfDesc&, unsigned char*, CQXGIF&, RAW&). */
PINCEL_API int pincel_load_gif_alpha_next(TSurfDesc* surface, const unsigned char* data,
                                          CQXGIF* gif, RAW* frame);

/** LoadGIFAlpha(TSurfDesc&, unsigned char*, CQXGIF&, RAW&). */
PINCEL_API int pincel_load_gif_alpha(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                                     RAW* frame);

/** LoadGIFAlphaEnd(TSurfDesc&, unsigned char*, CQXGIF&, RAW&). */
PINCEL_API int pincel_load_gif_alpha_end(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                                         RAW* frame);

/** LoadInfoJPG(TSurfDesc&, unsigned char*, long). */
PINCEL_API int pincel_load_info_jpg_trusted(TSurfDesc* surface, const unsigned char* data,
                                            long length);

/** LoadJPG(TSurfDesc&, unsigned char*, long). */
PINCEL_API int pincel_load_jpg_trusted(TSurfDesc* surface, const unsigned char* data, long length);

/** LoadInfoPGF(TSurfDesc&, unsigned char*). */
PINCEL_API int pincel_load_info_pgf(TSurfDesc* surface, const unsigned char* data);

/** LoadPGF(TSurfDesc&, unsigned char*). */
PINCEL_API int pincel_load_pgf(TSurfDesc* surface, const unsigned char* data);

/** DrawMix(TSurfDesc&, CRectangulo const&, unsigned short, TSurfDesc&, CPunto const&,
 * unsigned char (*const)[65536]). */
PINCEL_API int pincel_draw_mix_level(TSurfDesc* dst, const CRectangulo* rect, unsigned short level,
                                     TSurfDesc* src, const CPunto* at,
                                     unsigned char (*table)[65536]);

/** DrawMix_8Bits(TSurfDesc&, CRectangulo const&, unsigned short, TSurfDesc&, CPunto const&,
 * unsigned char (*const)[65536]). */
PINCEL_API int pincel_draw_mix_level_8bits(TSurfDesc* dst, const CRectangulo* rect,
                                           unsigned short level, TSurfDesc* src, const CPunto* at,
                                           unsigned char (*table)[65536]);

/** DrawMix(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&, CPunto const&,
 * unsigned char (*const)[65536]). */
PINCEL_API int pincel_draw_mix_alpha(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* alpha,
                                     const CPunto* alphaAt, TSurfDesc* src, const CPunto* srcAt,
                                     unsigned char (*table)[65536]);

/** DrawMix_8Bits(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&,
 * CPunto const&, unsigned char (*const)[65536]). */
PINCEL_API int pincel_draw_mix_alpha_8bits(TSurfDesc* dst, const CRectangulo* rect,
                                           TSurfDesc* alpha, const CPunto* alphaAt, TSurfDesc* src,
                                           const CPunto* srcAt, unsigned char (*table)[65536]);

/** DrawMix(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&, CPunto const&,
 * unsigned short). */
PINCEL_API int pincel_draw_mix_alpha_level(TSurfDesc* dst, const CRectangulo* rect,
                                           TSurfDesc* alpha, const CPunto* alphaAt, TSurfDesc* src,
                                           const CPunto* srcAt, unsigned short level);

/** DrawMix(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&, CPunto const&,
 * TSurfDesc&, CPunto const&, unsigned char (*const)[65536]). */
PINCEL_API int pincel_draw_mix_alpha_back(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* alpha,
                                          const CPunto* alphaAt, TSurfDesc* src,
                                          const CPunto* srcAt, TSurfDesc* back,
                                          const CPunto* backAt, unsigned char (*table)[65536]);

/** DrawMix(TSurfDesc&, CRectangulo const&, unsigned short, TSurfDesc&, CPunto const&, TSurfDesc&,
 * CPunto const&, unsigned char (*const)[65536]). */
PINCEL_API int pincel_draw_mix_level_back(TSurfDesc* dst, const CRectangulo* rect,
                                          unsigned short level, TSurfDesc* src, const CPunto* srcAt,
                                          TSurfDesc* back, const CPunto* backAt,
                                          unsigned char (*table)[65536]);

/** DrawMask(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, unsigned long,
 * unsigned char (*const)[65536]). */
PINCEL_API int pincel_draw_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* mask,
                                const CPunto* maskAt, uint32_t colour,
                                unsigned char (*table)[65536]);

/** DrawMask_8Bits(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, unsigned long,
 * unsigned char (*const)[65536]). */
PINCEL_API int pincel_draw_mask_8bits(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* mask,
                                      const CPunto* maskAt, uint32_t colour,
                                      unsigned char (*table)[65536]);

/** MaskFillRect(TSurfDesc&, CRectangulo const&, unsigned long, unsigned short). */
PINCEL_API int pincel_mask_fill_rect(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                     unsigned short level);

/** MaskFillRect_8Bits(TSurfDesc&, CRectangulo const&, unsigned long, unsigned short,
 * unsigned char (*const)[65536]). */
PINCEL_API int pincel_mask_fill_rect_8bits(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                           unsigned short level, unsigned char (*table)[65536]);

/** DrawBiMask(TSurfDesc&, unsigned short, CRectangulo, TSurfDesc&, CPunto,
 * unsigned char (*const)[65536]). */
PINCEL_API int pincel_draw_bi_mask(TSurfDesc* dst, unsigned short level, const CRectangulo* rect,
                                   TSurfDesc* mask, const CPunto* maskAt,
                                   unsigned char (*table)[65536]);

/** DrawBiMask_8Bits(TSurfDesc&, unsigned short, CRectangulo, TSurfDesc&, CPunto,
 * unsigned char (*const)[65536]). */
PINCEL_API int pincel_draw_bi_mask_8bits(TSurfDesc* dst, unsigned short level,
                                         const CRectangulo* rect, TSurfDesc* mask,
                                         const CPunto* maskAt, unsigned char (*table)[65536]);

/** OpenFader(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, int, int, int). */
PINCEL_API int pincel_open_fader(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                 const CPunto* at, int start, int step, int hold);

/** DoSuma(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_suma(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                              const CPunto* at);

/** DoSuma(TSurfDesc&, CRectangulo const&, unsigned long, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_suma_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                          TSurfDesc* mask, const CPunto* maskAt);

/** DoSuma(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_suma_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                          const CPunto* srcAt, TSurfDesc* mask,
                                          const CPunto* maskAt);

/** DoResta(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_resta(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                               const CPunto* at);

/** DoResta(TSurfDesc&, CRectangulo const&, unsigned long, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_resta_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                           TSurfDesc* mask, const CPunto* maskAt);

/** DoResta(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&,
 * CPunto const&). */
PINCEL_API int pincel_do_resta_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                           const CPunto* srcAt, TSurfDesc* mask,
                                           const CPunto* maskAt);

/** DoMultiplica(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_multiplica(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                    const CPunto* at);

/** DoMultiplica(TSurfDesc&, CRectangulo const&, unsigned long, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_multiplica_colour_mask(TSurfDesc* dst, const CRectangulo* rect,
                                                uint32_t colour, TSurfDesc* mask,
                                                const CPunto* maskAt);

/** DoMultiplica(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&,
 * CPunto const&). */
PINCEL_API int pincel_do_multiplica_source_mask(TSurfDesc* dst, const CRectangulo* rect,
                                                TSurfDesc* src, const CPunto* srcAt,
                                                TSurfDesc* mask, const CPunto* maskAt);

/** DoScreen(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_screen(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                const CPunto* at);

/** DoScreen(TSurfDesc&, CRectangulo const&, unsigned long, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_screen_colour_mask(TSurfDesc* dst, const CRectangulo* rect,
                                            uint32_t colour, TSurfDesc* mask, const CPunto* maskAt);

/** DoScreen(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&,
 * CPunto const&). */
PINCEL_API int pincel_do_screen_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                            const CPunto* srcAt, TSurfDesc* mask,
                                            const CPunto* maskAt);

/** DoLighten(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_lighten(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                 const CPunto* at);

/** DoLighten(TSurfDesc&, CRectangulo const&, unsigned long, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_lighten_colour_mask(TSurfDesc* dst, const CRectangulo* rect,
                                             uint32_t colour, TSurfDesc* mask,
                                             const CPunto* maskAt);

/** DoLighten(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&,
 * CPunto const&). */
PINCEL_API int pincel_do_lighten_source_mask(TSurfDesc* dst, const CRectangulo* rect,
                                             TSurfDesc* src, const CPunto* srcAt, TSurfDesc* mask,
                                             const CPunto* maskAt);

/** DoDarken(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_darken(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                const CPunto* at);

/** DoDarken(TSurfDesc&, CRectangulo const&, unsigned long, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_darken_colour_mask(TSurfDesc* dst, const CRectangulo* rect,
                                            uint32_t colour, TSurfDesc* mask, const CPunto* maskAt);

/** DoDarken(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&,
 * CPunto const&). */
PINCEL_API int pincel_do_darken_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                            const CPunto* srcAt, TSurfDesc* mask,
                                            const CPunto* maskAt);

/** DoSuperponer(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_superponer(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                    const CPunto* at);

/** DoSuperponer(TSurfDesc&, CRectangulo const&, unsigned long, TSurfDesc&, CPunto const&). */
PINCEL_API int pincel_do_superponer_colour_mask(TSurfDesc* dst, const CRectangulo* rect,
                                                uint32_t colour, TSurfDesc* mask,
                                                const CPunto* maskAt);

/** DoSuperponer(TSurfDesc&, CRectangulo const&, TSurfDesc&, CPunto const&, TSurfDesc&,
 * CPunto const&). */
PINCEL_API int pincel_do_superponer_source_mask(TSurfDesc* dst, const CRectangulo* rect,
                                                TSurfDesc* src, const CPunto* srcAt,
                                                TSurfDesc* mask, const CPunto* maskAt);

/** DoConvolucion(TSurfDesc&, TSurfDesc&, int, int* const, long* const, int, int). */
PINCEL_API int pincel_do_convolucion(TSurfDesc* image, TSurfDesc* scratch, int count,
                                     const int* weights, const long* offsets, int divisor,
                                     int bias);

/** DoSuavizado(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_do_suavizado(TSurfDesc* image, TSurfDesc* scratch);

/** DoEmboss(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_do_emboss(TSurfDesc* image, TSurfDesc* scratch);

/** DoRealce(TSurfDesc&, TSurfDesc&). */
PINCEL_API int pincel_do_realce(TSurfDesc* image, TSurfDesc* scratch);

/** FiltroMask(TSurfDesc&, TSurfDesc&, int). */
PINCEL_API int pincel_filtro_mask(TSurfDesc* image, TSurfDesc* scratch, int number);

/** FiltroMotionBlur(TSurfDesc&, TSurfDesc&, CRectangulo const&, CPunto const&, unsigned long, int,
 * float). */
PINCEL_API int pincel_filtro_motion_blur(TSurfDesc* dst, TSurfDesc* mask, const CRectangulo* rect,
                                         const CPunto* at, uint32_t colour, int length,
                                         float angle);

/** FiltroBrilloBlur(TSurfDesc&, TSurfDesc&, CRectangulo const&, CPunto const&, unsigned long, int,
 * float). */
PINCEL_API int pincel_filtro_brillo_blur(TSurfDesc* dst, TSurfDesc* mask, const CRectangulo* rect,
                                         const CPunto* at, uint32_t colour, int length,
                                         float angle);

/** FiltroMotionMask(TSurfDesc&, TSurfDesc&, CRectangulo const&, CPunto const&, int). */
PINCEL_API int pincel_filtro_motion_mask(TSurfDesc* dst, TSurfDesc* mask, const CRectangulo* rect,
                                         const CPunto* at, int level);

/** DoAntiAlias(TSurfDesc&, CRectangulo const&, TSurfDesc&, unsigned short). */
PINCEL_API int pincel_do_anti_alias(TSurfDesc* image, const CRectangulo* rect, TSurfDesc* other,
                                    unsigned short level);

/** DoAntiAlias2(TSurfDesc&, CRectangulo const&, TSurfDesc&, unsigned short). */
PINCEL_API int pincel_do_anti_alias_2(TSurfDesc* image, const CRectangulo* rect, TSurfDesc* other,
                                      unsigned short level);

/** DoAntiAliasBMP(TSurfDesc&, unsigned short). */
PINCEL_API int pincel_do_anti_alias_bmp(TSurfDesc* image, unsigned short level);

/** DoFactor(TSurfDesc&, unsigned short). */
PINCEL_API int pincel_do_factor(TSurfDesc* image, unsigned short factor);

/** DoGradient(TSurfDesc&, unsigned long const&, unsigned long const&). */
PINCEL_API int pincel_do_gradient(TSurfDesc* image, uint32_t from, uint32_t to);

/** CreateMask(TSurfDesc&, TSurfDesc&, unsigned short). */
PINCEL_API int pincel_create_mask(TSurfDesc* mask, TSurfDesc* src, unsigned short level);

/** CreateShadow(TSurfDesc&, TSurfDesc&, unsigned char, unsigned char, unsigned short). */
PINCEL_API int pincel_create_shadow(TSurfDesc* shadow, TSurfDesc* src, unsigned char decay,
                                    unsigned char limit, unsigned short factor);

#ifndef __cplusplus
/** @name The additions
 * Described above, where C++ takes references in place of the pointers to records.
 * @{ */
PINCEL_API void pincel_build_mix_table(unsigned char table[2][65536], const TRGBA palette[256],
                                       int dither);
PINCEL_API pincel_status pincel_load_info_bmp(TSurfDesc* surface, const unsigned char* data,
                                              size_t length);
PINCEL_API pincel_status pincel_load_bmp(TSurfDesc* surface, const unsigned char* data,
                                         size_t length);
PINCEL_API pincel_status pincel_load_info_gif(TSurfDesc* surface, const unsigned char* data,
                                              size_t length);
PINCEL_API pincel_status pincel_gif_frame(TGifFrame* frame, const unsigned char* data,
                                          size_t length);
PINCEL_API pincel_status pincel_load_gif(TSurfDesc* surface, const unsigned char* data,
                                         size_t length, const TGifFrame* frame);
PINCEL_API pincel_status pincel_load_info_jpg(TSurfDesc* surface, const unsigned char* data,
                                              size_t length);
PINCEL_API pincel_status pincel_load_jpg(TSurfDesc* surface, const unsigned char* data,
                                         size_t length);
/** @} */
#endif

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif
/* End of what scripts/exports makes. */

#endif /* PINCEL_H_ */
