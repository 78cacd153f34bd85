// The plain C names. Made by scripts/exports from exports/exports.tsv.
#include "include/pincel.h"

uint32_t pincel_gif_read_header(CQXGIF* gif, const unsigned char* data, RAW* frame) {
  return gif->ReadHeader(const_cast<unsigned char*>(data), frame);
}

uint32_t pincel_gif_next_image(CQXGIF* gif) { return gif->NextImage(); }

uint32_t pincel_gif_decode_image(CQXGIF* gif, RAW* frame) { return gif->DecodeImage(frame); }

uint32_t pincel_gif_read_code(CQXGIF* gif) { return gif->ReadCode(); }

int pincel_width(TSurfDesc* surface) { return Width(*surface); }

int pincel_height(TSurfDesc* surface) { return Height(*surface); }

int pincel_scan_width(TSurfDesc* surface) { return ScanWidth(*surface); }

void pincel_size(TSurfDesc* surface, CSize* result) { *result = Size(*surface); }

int pincel_transp(TSurfDesc* surface) { return Transp(*surface); }

uint32_t pincel_get_pixel_at(TSurfDesc* surface, const CPunto* point) {
  return uint32_t(GetPixel(*surface, *point));
}

uint32_t pincel_get_pixel(TSurfDesc* surface, int x, int y) {
  return uint32_t(GetPixel(*surface, x, y));
}

void pincel_set_pixel_at(TSurfDesc* surface, const CPunto* point, uint32_t colour) {
  SetPixel(*surface, *point, colour);
}

void pincel_set_pixel(TSurfDesc* surface, int x, int y, uint32_t colour) {
  SetPixel(*surface, x, y, colour);
}

void pincel_initialize_dll(void) { InitializeDLL(); }

void pincel_create_model_pal(TRGBA palette[256]) {
  CreateModelPal(reinterpret_cast<TRGBA(&)[256]>(*palette));
}

void pincel_create_grey_pal(TRGBA palette[256]) {
  CreateGreyPal(reinterpret_cast<TRGBA(&)[256]>(*palette));
}

void pincel_create_trunc_pal(TRGBA palette[256]) {
  CreateTruncPal(reinterpret_cast<TRGBA(&)[256]>(*palette));
}

int pincel_convert(TSurfDesc* dst, TSurfDesc* src, uint32_t mode) {
  return Convert(*dst, *src, mode);
}

int pincel_copy_image(TSurfDesc* dst, TSurfDesc* src) { return CopyImage(*dst, *src); }

int pincel_convert16_565_16_555(TSurfDesc* dst, TSurfDesc* src) {
  return Convert16_565_16_555(*dst, *src);
}

int pincel_convert16_4444_16_555(TSurfDesc* dst, TSurfDesc* src) {
  return Convert16_4444_16_555(*dst, *src);
}

int pincel_convert16_555_16_4444(TSurfDesc* dst, TSurfDesc* src) {
  return Convert16_555_16_4444(*dst, *src);
}

int pincel_convert16_565_16_4444(TSurfDesc* dst, TSurfDesc* src) {
  return Convert16_565_16_4444(*dst, *src);
}

int pincel_convert16_4444_16_565(TSurfDesc* dst, TSurfDesc* src) {
  return Convert16_4444_16_565(*dst, *src);
}

int pincel_convert16_4444_16_5551(TSurfDesc* dst, TSurfDesc* src) {
  return Convert16_4444_16_5551(*dst, *src);
}

int pincel_convert16_555_16_5551(TSurfDesc* dst, TSurfDesc* src) {
  return Convert16_555_16_5551(*dst, *src);
}

int pincel_convert16_5551_16_555(TSurfDesc* dst, TSurfDesc* src) {
  return Convert16_5551_16_555(*dst, *src);
}

int pincel_convert16_565_16_5551(TSurfDesc* dst, TSurfDesc* src) {
  return Convert16_565_16_5551(*dst, *src);
}

int pincel_convert16_555_16_565(TSurfDesc* dst, TSurfDesc* src) {
  return Convert16_555_16_565(*dst, *src);
}

int pincel_convert24_32(TSurfDesc* dst, TSurfDesc* src) { return Convert24_32_(*dst, *src); }

int pincel_convert32_24(TSurfDesc* dst, TSurfDesc* src) { return Convert32_24_(*dst, *src); }

int pincel_convert8_8(TSurfDesc* dst, TSurfDesc* src) { return Convert8_8(*dst, *src); }

int pincel_draw_bitmap(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at) {
  return DrawBitmap(*dst, *rect, *src, *at);
}

int pincel_draw_bitmap_whole(TSurfDesc* dst, TSurfDesc* src) { return DrawBitmap(*dst, *src); }

int pincel_idx_fill_rect(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour) {
  return IdxFillRect(*dst, *rect, colour);
}

int pincel_idx_line_hi(TSurfDesc* dst, const CPunto* p, int len, uint32_t colour) {
  return IdxLineHI(*dst, *p, len, colour);
}

int pincel_idx_line_vi(TSurfDesc* dst, const CPunto* p, int len, uint32_t colour) {
  return IdxLineVI(*dst, *p, len, colour);
}

int pincel_frame_br(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour) {
  return FrameBR(*dst, *rect, colour);
}

int pincel_draw_rect_shadow(TSurfDesc* dst, const CRectangulo* rect, unsigned char step,
                            unsigned char depth) {
  return DrawRectShadow(*dst, *rect, step, depth);
}

int pincel_line(TSurfDesc* dst, const CPunto* p1, const CPunto* p2, uint32_t colour,
                unsigned short alpha, int soft, int thickness) {
  return Line(*dst, *p1, *p2, colour, alpha, soft != 0, thickness);
}

int pincel_rellena(TSurfDesc* dst, TSurfDesc* work, int x, int y, uint32_t tolerance,
                   uint32_t reference, uint32_t colour) {
  return Rellena(*dst, *work, x, y, tolerance, reference, colour);
}

int pincel_draw_block(TSurfDesc* dst, TSurfDesc* src, unsigned short sx, unsigned short sy,
                      unsigned short dx, unsigned short dy, unsigned short w, unsigned short h) {
  return DrawBlock(*dst, *src, sx, sy, dx, dy, w, h);
}

int pincel_blt_strech(TSurfDesc* dst, const CRectangulo* dRect, TSurfDesc* src,
                      const CRectangulo* sRect, int smooth) {
  return BltStrech(*dst, *dRect, *src, *sRect, smooth != 0);
}

int pincel_draw_stretch(TSurfDesc* dst, const CRectangulo* dRect, TSurfDesc* src,
                        const CRectangulo* sRect) {
  return DrawStretch(*dst, *dRect, *src, *sRect);
}

int pincel_draw_stretch_table(TSurfDesc* dst, const CRectangulo* dRect, TSurfDesc* src,
                              const CRectangulo* sRect, const unsigned char* table) {
  return DrawStretch(*dst, *dRect, *src, *sRect, const_cast<unsigned char*>(table));
}

int pincel_stretch_bitmap(TSurfDesc* dst, const CRectangulo* dRect, TSurfDesc* src,
                          const CRectangulo* sRect, int bitsPerPixel, int enable, int extra) {
  return StretchBitmap(*dst, *dRect, *src, *sRect, bitsPerPixel, enable != 0, extra != 0);
}

int pincel_draw_double(TSurfDesc* dst, TSurfDesc* src, const CPunto* at) {
  return DrawDouble(*dst, *src, *at);
}

int pincel_flip_x(TSurfDesc* surf) { return FlipX(*surf); }

int pincel_create_rotated(TSurfDesc* dst, TSurfDesc* src, int mode) {
  return CreateRotated(*dst, *src, mode);
}

int pincel_translate_rect(TSurfDesc* dst, const CRectangulo* rect, float amount,
                          const unsigned char* table) {
  return TranslateRect(*dst, *rect, amount, table);
}

int pincel_load_info_bmp_trusted(TSurfDesc* surface, const unsigned char* bitmap) {
  return LoadInfoBMP(*surface, const_cast<unsigned char*>(bitmap));
}

int pincel_load_bmp_trusted(TSurfDesc* surface, const unsigned char* bitmap) {
  return LoadBMP(*surface, const_cast<unsigned char*>(bitmap));
}

int pincel_load_info_bmp_alpha(TSurfDesc* surface, const unsigned char* bitmap) {
  return LoadInfoBMPAlpha(*surface, const_cast<unsigned char*>(bitmap));
}

int pincel_load_bmp_alpha(TSurfDesc* surface, const unsigned char* bitmap) {
  return LoadBMPAlpha(*surface, const_cast<unsigned char*>(bitmap));
}

int pincel_load_info_gif_trusted(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                                 RAW* frame) {
  return LoadInfoGIF(*surface, const_cast<unsigned char*>(data), *gif, *frame);
}

int pincel_load_gif_next(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif, RAW* frame) {
  return LoadGIFNext(*surface, const_cast<unsigned char*>(data), *gif, *frame);
}

int pincel_load_gif_trusted(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                            RAW* frame) {
  return LoadGIF(*surface, const_cast<unsigned char*>(data), *gif, *frame);
}

int pincel_load_gif_end(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif, RAW* frame) {
  return LoadGIFEnd(*surface, const_cast<unsigned char*>(data), *gif, *frame);
}

int pincel_load_info_gif_alpha(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                               RAW* frame) {
  return LoadInfoGIFAlpha(*surface, const_cast<unsigned char*>(data), *gif, *frame);
}

int pincel_load_gif_alpha_next(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                               RAW* frame) {
  return LoadGIFAlphaNext(*surface, const_cast<unsigned char*>(data), *gif, *frame);
}

int pincel_load_gif_alpha(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif, RAW* frame) {
  return LoadGIFAlpha(*surface, const_cast<unsigned char*>(data), *gif, *frame);
}

int pincel_load_gif_alpha_end(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                              RAW* frame) {
  return LoadGIFAlphaEnd(*surface, const_cast<unsigned char*>(data), *gif, *frame);
}

int pincel_load_info_jpg_trusted(TSurfDesc* surface, const unsigned char* data, long length) {
  return LoadInfoJPG(*surface, const_cast<unsigned char*>(data), length);
}

int pincel_load_jpg_trusted(TSurfDesc* surface, const unsigned char* data, long length) {
  try {
    return LoadJPG(*surface, const_cast<unsigned char*>(data), length);
  } catch (...) {
    return 0;
  }
}

int pincel_load_info_pgf(TSurfDesc* surface, const unsigned char* data) {
  return LoadInfoPGF(*surface, const_cast<unsigned char*>(data));
}

int pincel_load_pgf(TSurfDesc* surface, const unsigned char* data) {
  return LoadPGF(*surface, const_cast<unsigned char*>(data));
}

int pincel_draw_mix_level(TSurfDesc* dst, const CRectangulo* rect, unsigned short level,
                          TSurfDesc* src, const CPunto* at, unsigned char (*table)[65536]) {
  return DrawMix(*dst, *rect, level, *src, *at, table);
}

int pincel_draw_mix_level_8bits(TSurfDesc* dst, const CRectangulo* rect, unsigned short level,
                                TSurfDesc* src, const CPunto* at, unsigned char (*table)[65536]) {
  return DrawMix_8Bits(*dst, *rect, level, *src, *at, table);
}

int pincel_draw_mix_alpha(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* alpha,
                          const CPunto* alphaAt, TSurfDesc* src, const CPunto* srcAt,
                          unsigned char (*table)[65536]) {
  return DrawMix(*dst, *rect, *alpha, *alphaAt, *src, *srcAt, table);
}

int pincel_draw_mix_alpha_8bits(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* alpha,
                                const CPunto* alphaAt, TSurfDesc* src, const CPunto* srcAt,
                                unsigned char (*table)[65536]) {
  return DrawMix_8Bits(*dst, *rect, *alpha, *alphaAt, *src, *srcAt, table);
}

int pincel_draw_mix_alpha_level(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* alpha,
                                const CPunto* alphaAt, TSurfDesc* src, const CPunto* srcAt,
                                unsigned short level) {
  return DrawMix(*dst, *rect, *alpha, *alphaAt, *src, *srcAt, level);
}

int pincel_draw_mix_alpha_back(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* alpha,
                               const CPunto* alphaAt, TSurfDesc* src, const CPunto* srcAt,
                               TSurfDesc* back, const CPunto* backAt,
                               unsigned char (*table)[65536]) {
  return DrawMix(*dst, *rect, *alpha, *alphaAt, *src, *srcAt, *back, *backAt, table);
}

int pincel_draw_mix_level_back(TSurfDesc* dst, const CRectangulo* rect, unsigned short level,
                               TSurfDesc* src, const CPunto* srcAt, TSurfDesc* back,
                               const CPunto* backAt, unsigned char (*table)[65536]) {
  return DrawMix(*dst, *rect, level, *src, *srcAt, *back, *backAt, table);
}

int pincel_draw_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* mask, const CPunto* maskAt,
                     uint32_t colour, unsigned char (*table)[65536]) {
  return DrawMask(*dst, *rect, *mask, *maskAt, colour, table);
}

int pincel_draw_mask_8bits(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* mask,
                           const CPunto* maskAt, uint32_t colour, unsigned char (*table)[65536]) {
  return DrawMask_8Bits(*dst, *rect, *mask, *maskAt, colour, table);
}

int pincel_mask_fill_rect(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                          unsigned short level) {
  return MaskFillRect(*dst, *rect, colour, level);
}

int pincel_mask_fill_rect_8bits(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                unsigned short level, unsigned char (*table)[65536]) {
  return MaskFillRect_8Bits(*dst, *rect, colour, level, table);
}

int pincel_draw_bi_mask(TSurfDesc* dst, unsigned short level, const CRectangulo* rect,
                        TSurfDesc* mask, const CPunto* maskAt, unsigned char (*table)[65536]) {
  return DrawBiMask(*dst, level, *rect, *mask, *maskAt, table);
}

int pincel_draw_bi_mask_8bits(TSurfDesc* dst, unsigned short level, const CRectangulo* rect,
                              TSurfDesc* mask, const CPunto* maskAt,
                              unsigned char (*table)[65536]) {
  return DrawBiMask_8Bits(*dst, level, *rect, *mask, *maskAt, table);
}

int pincel_open_fader(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at,
                      int start, int step, int hold) {
  return OpenFader(*dst, *rect, *src, *at, start, step, hold);
}

int pincel_do_suma(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at) {
  return DoSuma(*dst, *rect, *src, *at);
}

int pincel_do_suma_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                               TSurfDesc* mask, const CPunto* maskAt) {
  return DoSuma(*dst, *rect, colour, *mask, *maskAt);
}

int pincel_do_suma_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                               const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt) {
  return DoSuma(*dst, *rect, *src, *srcAt, *mask, *maskAt);
}

int pincel_do_resta(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at) {
  return DoResta(*dst, *rect, *src, *at);
}

int pincel_do_resta_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                TSurfDesc* mask, const CPunto* maskAt) {
  return DoResta(*dst, *rect, colour, *mask, *maskAt);
}

int pincel_do_resta_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt) {
  return DoResta(*dst, *rect, *src, *srcAt, *mask, *maskAt);
}

int pincel_do_multiplica(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                         const CPunto* at) {
  return DoMultiplica(*dst, *rect, *src, *at);
}

int pincel_do_multiplica_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                     TSurfDesc* mask, const CPunto* maskAt) {
  return DoMultiplica(*dst, *rect, colour, *mask, *maskAt);
}

int pincel_do_multiplica_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                     const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt) {
  return DoMultiplica(*dst, *rect, *src, *srcAt, *mask, *maskAt);
}

int pincel_do_screen(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at) {
  return DoScreen(*dst, *rect, *src, *at);
}

int pincel_do_screen_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                 TSurfDesc* mask, const CPunto* maskAt) {
  return DoScreen(*dst, *rect, colour, *mask, *maskAt);
}

int pincel_do_screen_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                 const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt) {
  return DoScreen(*dst, *rect, *src, *srcAt, *mask, *maskAt);
}

int pincel_do_lighten(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at) {
  return DoLighten(*dst, *rect, *src, *at);
}

int pincel_do_lighten_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                  TSurfDesc* mask, const CPunto* maskAt) {
  return DoLighten(*dst, *rect, colour, *mask, *maskAt);
}

int pincel_do_lighten_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                  const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt) {
  return DoLighten(*dst, *rect, *src, *srcAt, *mask, *maskAt);
}

int pincel_do_darken(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at) {
  return DoDarken(*dst, *rect, *src, *at);
}

int pincel_do_darken_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                 TSurfDesc* mask, const CPunto* maskAt) {
  return DoDarken(*dst, *rect, colour, *mask, *maskAt);
}

int pincel_do_darken_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                 const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt) {
  return DoDarken(*dst, *rect, *src, *srcAt, *mask, *maskAt);
}

int pincel_do_superponer(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                         const CPunto* at) {
  return DoSuperponer(*dst, *rect, *src, *at);
}

int pincel_do_superponer_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                     TSurfDesc* mask, const CPunto* maskAt) {
  return DoSuperponer(*dst, *rect, colour, *mask, *maskAt);
}

int pincel_do_superponer_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                     const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt) {
  return DoSuperponer(*dst, *rect, *src, *srcAt, *mask, *maskAt);
}

int pincel_do_convolucion(TSurfDesc* image, TSurfDesc* scratch, int count, const int* weights,
                          const long* offsets, int divisor, int bias) {
  return DoConvolucion(*image, *scratch, count, const_cast<int*>(weights),
                       const_cast<long*>(offsets), divisor, bias);
}

int pincel_do_suavizado(TSurfDesc* image, TSurfDesc* scratch) {
  return DoSuavizado(*image, *scratch);
}

int pincel_do_emboss(TSurfDesc* image, TSurfDesc* scratch) { return DoEmboss(*image, *scratch); }

int pincel_do_realce(TSurfDesc* image, TSurfDesc* scratch) { return DoRealce(*image, *scratch); }

int pincel_filtro_mask(TSurfDesc* image, TSurfDesc* scratch, int number) {
  return FiltroMask(*image, *scratch, number);
}

int pincel_filtro_motion_blur(TSurfDesc* dst, TSurfDesc* mask, const CRectangulo* rect,
                              const CPunto* at, uint32_t colour, int length, float angle) {
  return FiltroMotionBlur(*dst, *mask, *rect, *at, colour, length, angle);
}

int pincel_filtro_brillo_blur(TSurfDesc* dst, TSurfDesc* mask, const CRectangulo* rect,
                              const CPunto* at, uint32_t colour, int length, float angle) {
  return FiltroBrilloBlur(*dst, *mask, *rect, *at, colour, length, angle);
}

int pincel_filtro_motion_mask(TSurfDesc* dst, TSurfDesc* mask, const CRectangulo* rect,
                              const CPunto* at, int level) {
  return FiltroMotionMask(*dst, *mask, *rect, *at, level);
}

int pincel_do_anti_alias(TSurfDesc* image, const CRectangulo* rect, TSurfDesc* other,
                         unsigned short level) {
  return DoAntiAlias(*image, *rect, *other, level);
}

int pincel_do_anti_alias_2(TSurfDesc* image, const CRectangulo* rect, TSurfDesc* other,
                           unsigned short level) {
  return DoAntiAlias2(*image, *rect, *other, level);
}

int pincel_do_anti_alias_bmp(TSurfDesc* image, unsigned short level) {
  return DoAntiAliasBMP(*image, level);
}

int pincel_do_factor(TSurfDesc* image, unsigned short factor) { return DoFactor(*image, factor); }

int pincel_do_gradient(TSurfDesc* image, uint32_t from, uint32_t to) {
  return DoGradient(*image, from, to);
}

int pincel_create_mask(TSurfDesc* mask, TSurfDesc* src, unsigned short level) {
  return CreateMask(*mask, *src, level);
}

int pincel_create_shadow(TSurfDesc* shadow, TSurfDesc* src, unsigned char decay,
                         unsigned char limit, unsigned short factor) {
  return CreateShadow(*shadow, *src, decay, limit, factor);
}
