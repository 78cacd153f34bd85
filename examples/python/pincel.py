"""Pincel for Python: numpy arrays as surfaces, through ctypes. One file, to be copied.

    screen = pincel.Surface(numpy.zeros((240, 320, 4), numpy.uint8))
    pincel.idx_fill_rect(screen, (10, 10, 50, 40), 0xFFF0B020)
    pincel.draw_bitmap(screen, (60, 20, 160, 95), picture, (0, 0))

The functions are those at the end of pincel.h, without their prefix; what they do is described
there. Rectangles (left, top, right, bottom) and points (x, y) are tuples. Bytes, palettes, tables
and lists of numbers are numpy arrays or bytes; None is the null pointer. On Windows it takes a
32-bit Python, as the DLL has 32 bits.
"""
import ctypes
import os
import re

import numpy

# The library that PINCEL_LIBRARY names, else the installed one.
_library = ctypes.CDLL(os.environ.get(
    "PINCEL_LIBRARY", "pincel.dll" if os.name == "nt" else "libpincel.so.0"))

NO_KEY = 0xFFFFFFFF
MASKS = {  # red, green, blue, alpha
    "565": (0xF800, 0x07E0, 0x001F, 0),
    "555": (0x7C00, 0x03E0, 0x001F, 0),
    "1555": (0x7C00, 0x03E0, 0x001F, 0x8000),
    "4444": (0x0F00, 0x00F0, 0x000F, 0xF000),
}


def _fields(c_type, names):
    return [(name, c_type) for name in names.split()]


class Surface(ctypes.Structure):
    """A numpy array as TSurfDesc. Arrays of uint8 have one byte a pixel, or a last axis of 3 (blue,
    green, red) or 4 (and alpha); uint16 are pixels of the format that is named, uint32 of 32 bits.

    The library knows the address only: the surface keeps the arrays alive. They are shared, not
    copied, so that slices of a larger picture are surfaces as well.
    """
    _fields_ = (_fields(ctypes.c_int32, "width height") +
                _fields(ctypes.c_uint32, "bpp rMask gMask bMask aMask colorKey") +
                [("pitch", ctypes.c_int32), ("pixels", ctypes.c_void_p),
                 ("_palette", ctypes.c_void_p)])

    def __init__(self, array, palette=None, masks="565", key=NO_KEY):
        """palette: 256 x 4 bytes blue, green, red, alpha; key: the transparent colour as stored."""
        bpp = 8 * array.itemsize * (array.shape[2] if array.ndim == 3 else 1)
        if array.dtype.kind != "u" or bpp not in (8, 16, 24, 32):
            raise ValueError("pixels are uint8 (one, three or four), uint16 or uint32")
        if array.strides[1:] != (bpp // 8, 1)[:array.ndim - 1] or not array.flags.writeable:
            raise ValueError("the pixels of a row must lie side by side in writeable memory")
        super().__init__(array.shape[1], array.shape[0], bpp,
                         *(MASKS[masks] if bpp == 16 else (0, 0, 0, 0)), key,
                         array.strides[0], array.ctypes.data)
        self.array = array
        self.palette = palette
        if palette is not None:
            if palette.shape != (256, 4) or palette.dtype != numpy.uint8:
                raise ValueError("a palette has 256 entries of four bytes")
            self._palette = _address(palette)

    @classmethod
    def from_image(cls, image, key=NO_KEY):
        """A copy of a Pillow image: 8 bits for L and P, 24 for RGB, 32 for RGBA."""
        pixels = numpy.array(image)
        if image.mode in ("L", "P"):
            palette = numpy.arange(256, dtype=numpy.uint8)[:, None].repeat(4, 1)
            if image.mode == "P":
                colours = numpy.array(image.getpalette("RGB"), numpy.uint8).reshape(-1, 3)
                palette[:len(colours), :3] = colours[:, ::-1]
            return cls(pixels, palette, key=key)
        order = {"RGB": [2, 1, 0], "RGBA": [2, 1, 0, 3]}[image.mode]
        return cls(numpy.ascontiguousarray(pixels[:, :, order]), key=key)

    def to_image(self):
        """A Pillow image of what the surface shows. 16 bits are converted to 24 first."""
        from PIL import Image
        if self.bpp == 16:
            true_colour = Surface(numpy.zeros((self.height, self.width, 3), numpy.uint8))
            convert(true_colour, self, 0)
            return true_colour.to_image()
        if self.bpp == 8:
            image = Image.fromarray(self.array, "P")
            image.putpalette(self.palette[:, 2::-1].tobytes())
            return image
        order = [2, 1, 0] if self.bpp == 24 else [2, 1, 0, 3]
        return Image.fromarray(numpy.ascontiguousarray(self.array[:, :, order]))


class Rect(ctypes.Structure):
    """CRectangulo."""
    _fields_ = _fields(ctypes.c_int32, "left top right bottom")


class Point(ctypes.Structure):
    """CPunto."""
    _fields_ = _fields(ctypes.c_int32, "x y")


class Size(ctypes.Structure):
    """CSize."""
    _fields_ = _fields(ctypes.c_int32, "width height")


class Raw(ctypes.Structure):
    """RAW."""
    _fields_ = (_fields(ctypes.c_uint32, "width height readPalette reserved") +
                [("palette", ctypes.c_uint8 * 4 * 256), ("output", ctypes.c_void_p)])


class Gif(ctypes.Structure):
    """CQXGIF."""
    _fields_ = (_fields(ctypes.c_void_p, "cursor blockPos") +
                _fields(ctypes.c_uint32, "codeSize endCode") + [("blockLeft", ctypes.c_int32)] +
                _fields(ctypes.c_uint32, "bitCount bitByte"))


class GifFrame(ctypes.Structure):
    """TGifFrame."""
    _fields_ = ([("offset", ctypes.c_size_t), ("area", Rect)] +
                _fields(ctypes.c_int32, "delay transparent disposal loops"))


def _address(array):
    if not array.flags.c_contiguous:
        raise ValueError("the array must be contiguous")
    return array.ctypes.data


class _Memory:
    """An argument that is the address of something else than a record."""
    @staticmethod
    def from_param(value):
        if value is None or isinstance(value, bytes):
            return ctypes.c_char_p(value)
        return ctypes.c_void_p(_address(value))


def _record(structure):
    """An argument that is the address of a record: the record, or a tuple of its fields."""
    def from_param(value):
        record = structure(*value) if isinstance(value, tuple) else value
        if not isinstance(record, structure):
            raise TypeError(f"a {structure.__doc__} is needed")
        return ctypes.byref(record)
    return type(structure.__name__, (), {"from_param": staticmethod(from_param)})


_TYPES = {
    "int": ctypes.c_int, "long": ctypes.c_long, "size_t": ctypes.c_size_t,
    "float": ctypes.c_float, "uint32_t": ctypes.c_uint32, "unsigned short": ctypes.c_ushort,
    "unsigned char": ctypes.c_ubyte, "pincel_status": ctypes.c_int32, "void": None,
    "TSurfDesc*": _record(Surface), "CRectangulo*": _record(Rect), "CPunto*": _record(Point),
    "CSize*": _record(Size), "RAW*": _record(Raw), "CQXGIF*": _record(Gif),
    "TGifFrame*": _record(GifFrame),
}


def _type(declaration):
    """The type of `const CPunto* at`; of arrays and pointers to numbers it is _Memory."""
    declared = re.sub(r"^const |\s*\b\w+$", "", declaration)
    return _TYPES[declared] if declared in _TYPES else _Memory


def _bind(declarations):
    for result, name, parameters in re.findall(r"(\w+) pincel_(\w+)\((.*?)\);", declarations, re.S):
        function = _library["pincel_" + name]
        function.restype = _TYPES[result]
        if parameters != "void":
            function.argtypes = [_type(part) for part in re.split(r",\s+", parameters)]
        globals()[name] = function


_bind("""
# Made by scripts/exports.
uint32_t pincel_gif_read_header(CQXGIF* gif, const unsigned char* data, RAW* frame);
uint32_t pincel_gif_next_image(CQXGIF* gif);
uint32_t pincel_gif_decode_image(CQXGIF* gif, RAW* frame);
uint32_t pincel_gif_read_code(CQXGIF* gif);
int pincel_width(TSurfDesc* surface);
int pincel_height(TSurfDesc* surface);
int pincel_scan_width(TSurfDesc* surface);
void pincel_size(TSurfDesc* surface, CSize* result);
int pincel_transp(TSurfDesc* surface);
uint32_t pincel_get_pixel_at(TSurfDesc* surface, const CPunto* point);
uint32_t pincel_get_pixel(TSurfDesc* surface, int x, int y);
void pincel_set_pixel_at(TSurfDesc* surface, const CPunto* point, uint32_t colour);
void pincel_set_pixel(TSurfDesc* surface, int x, int y, uint32_t colour);
void pincel_initialize_dll(void);
void pincel_create_model_pal(TRGBA palette[256]);
void pincel_create_grey_pal(TRGBA palette[256]);
void pincel_create_trunc_pal(TRGBA palette[256]);
int pincel_convert(TSurfDesc* dst, TSurfDesc* src, uint32_t mode);
int pincel_copy_image(TSurfDesc* dst, TSurfDesc* src);
int pincel_convert16_565_16_555(TSurfDesc* dst, TSurfDesc* src);
int pincel_convert16_4444_16_555(TSurfDesc* dst, TSurfDesc* src);
int pincel_convert16_555_16_4444(TSurfDesc* dst, TSurfDesc* src);
int pincel_convert16_565_16_4444(TSurfDesc* dst, TSurfDesc* src);
int pincel_convert16_4444_16_565(TSurfDesc* dst, TSurfDesc* src);
int pincel_convert16_4444_16_5551(TSurfDesc* dst, TSurfDesc* src);
int pincel_convert16_555_16_5551(TSurfDesc* dst, TSurfDesc* src);
int pincel_convert16_5551_16_555(TSurfDesc* dst, TSurfDesc* src);
int pincel_convert16_565_16_5551(TSurfDesc* dst, TSurfDesc* src);
int pincel_convert16_555_16_565(TSurfDesc* dst, TSurfDesc* src);
int pincel_convert24_32(TSurfDesc* dst, TSurfDesc* src);
int pincel_convert32_24(TSurfDesc* dst, TSurfDesc* src);
int pincel_convert8_8(TSurfDesc* dst, TSurfDesc* src);
int pincel_draw_bitmap(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at);
int pincel_draw_bitmap_whole(TSurfDesc* dst, TSurfDesc* src);
int pincel_idx_fill_rect(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour);
int pincel_idx_line_hi(TSurfDesc* dst, const CPunto* p, int len, uint32_t colour);
int pincel_idx_line_vi(TSurfDesc* dst, const CPunto* p, int len, uint32_t colour);
int pincel_frame_br(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour);
int pincel_draw_rect_shadow(TSurfDesc* dst, const CRectangulo* rect, unsigned char step,
                            unsigned char depth);
int pincel_line(TSurfDesc* dst, const CPunto* p1, const CPunto* p2, uint32_t colour,
                unsigned short alpha, int soft, int thickness);
int pincel_rellena(TSurfDesc* dst, TSurfDesc* work, int x, int y, uint32_t tolerance,
                   uint32_t reference, uint32_t colour);
int pincel_draw_block(TSurfDesc* dst, TSurfDesc* src, unsigned short sx, unsigned short sy,
                      unsigned short dx, unsigned short dy, unsigned short w, unsigned short h);
int pincel_blt_strech(TSurfDesc* dst, const CRectangulo* dRect, TSurfDesc* src,
                      const CRectangulo* sRect, int smooth);
int pincel_draw_stretch(TSurfDesc* dst, const CRectangulo* dRect, TSurfDesc* src,
                        const CRectangulo* sRect);
int pincel_draw_stretch_table(TSurfDesc* dst, const CRectangulo* dRect, TSurfDesc* src,
                              const CRectangulo* sRect, const unsigned char* table);
int pincel_stretch_bitmap(TSurfDesc* dst, const CRectangulo* dRect, TSurfDesc* src,
                          const CRectangulo* sRect, int bitsPerPixel, int enable, int extra);
int pincel_draw_double(TSurfDesc* dst, TSurfDesc* src, const CPunto* at);
int pincel_flip_x(TSurfDesc* surf);
int pincel_create_rotated(TSurfDesc* dst, TSurfDesc* src, int mode);
int pincel_translate_rect(TSurfDesc* dst, const CRectangulo* rect, float amount,
                          const unsigned char* table);
int pincel_load_info_bmp_trusted(TSurfDesc* surface, const unsigned char* bitmap);
int pincel_load_bmp_trusted(TSurfDesc* surface, const unsigned char* bitmap);
int pincel_load_info_bmp_alpha(TSurfDesc* surface, const unsigned char* bitmap);
int pincel_load_bmp_alpha(TSurfDesc* surface, const unsigned char* bitmap);
int pincel_load_info_gif_trusted(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                                 RAW* frame);
int pincel_load_gif_next(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif, RAW* frame);
int pincel_load_gif_trusted(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif, RAW* frame);
int pincel_load_gif_end(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif, RAW* frame);
int pincel_load_info_gif_alpha(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                               RAW* frame);
int pincel_load_gif_alpha_next(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                               RAW* frame);
int pincel_load_gif_alpha(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif, RAW* frame);
int pincel_load_gif_alpha_end(TSurfDesc* surface, const unsigned char* data, CQXGIF* gif,
                              RAW* frame);
int pincel_load_info_jpg_trusted(TSurfDesc* surface, const unsigned char* data, long length);
int pincel_load_jpg_trusted(TSurfDesc* surface, const unsigned char* data, long length);
int pincel_load_info_pgf(TSurfDesc* surface, const unsigned char* data);
int pincel_load_pgf(TSurfDesc* surface, const unsigned char* data);
int pincel_draw_mix_level(TSurfDesc* dst, const CRectangulo* rect, unsigned short level,
                          TSurfDesc* src, const CPunto* at, unsigned char (*table)[65536]);
int pincel_draw_mix_level_8bits(TSurfDesc* dst, const CRectangulo* rect, unsigned short level,
                                TSurfDesc* src, const CPunto* at, unsigned char (*table)[65536]);
int pincel_draw_mix_alpha(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* alpha,
                          const CPunto* alphaAt, TSurfDesc* src, const CPunto* srcAt,
                          unsigned char (*table)[65536]);
int pincel_draw_mix_alpha_8bits(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* alpha,
                                const CPunto* alphaAt, TSurfDesc* src, const CPunto* srcAt,
                                unsigned char (*table)[65536]);
int pincel_draw_mix_alpha_level(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* alpha,
                                const CPunto* alphaAt, TSurfDesc* src, const CPunto* srcAt,
                                unsigned short level);
int pincel_draw_mix_alpha_back(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* alpha,
                               const CPunto* alphaAt, TSurfDesc* src, const CPunto* srcAt,
                               TSurfDesc* back, const CPunto* backAt,
                               unsigned char (*table)[65536]);
int pincel_draw_mix_level_back(TSurfDesc* dst, const CRectangulo* rect, unsigned short level,
                               TSurfDesc* src, const CPunto* srcAt, TSurfDesc* back,
                               const CPunto* backAt, unsigned char (*table)[65536]);
int pincel_draw_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* mask, const CPunto* maskAt,
                     uint32_t colour, unsigned char (*table)[65536]);
int pincel_draw_mask_8bits(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* mask,
                           const CPunto* maskAt, uint32_t colour, unsigned char (*table)[65536]);
int pincel_mask_fill_rect(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                          unsigned short level);
int pincel_mask_fill_rect_8bits(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                unsigned short level, unsigned char (*table)[65536]);
int pincel_draw_bi_mask(TSurfDesc* dst, unsigned short level, const CRectangulo* rect,
                        TSurfDesc* mask, const CPunto* maskAt, unsigned char (*table)[65536]);
int pincel_draw_bi_mask_8bits(TSurfDesc* dst, unsigned short level, const CRectangulo* rect,
                              TSurfDesc* mask, const CPunto* maskAt, unsigned char (*table)[65536]);
int pincel_open_fader(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at,
                      int start, int step, int hold);
int pincel_do_suma(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at);
int pincel_do_suma_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                               TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_suma_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                               const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_resta(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at);
int pincel_do_resta_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_resta_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_multiplica(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at);
int pincel_do_multiplica_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                     TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_multiplica_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                     const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_screen(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at);
int pincel_do_screen_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                 TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_screen_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                 const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_lighten(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at);
int pincel_do_lighten_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                  TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_lighten_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                  const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_darken(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at);
int pincel_do_darken_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                 TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_darken_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                 const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_superponer(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src, const CPunto* at);
int pincel_do_superponer_colour_mask(TSurfDesc* dst, const CRectangulo* rect, uint32_t colour,
                                     TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_superponer_source_mask(TSurfDesc* dst, const CRectangulo* rect, TSurfDesc* src,
                                     const CPunto* srcAt, TSurfDesc* mask, const CPunto* maskAt);
int pincel_do_convolucion(TSurfDesc* image, TSurfDesc* scratch, int count, const int* weights,
                          const long* offsets, int divisor, int bias);
int pincel_do_suavizado(TSurfDesc* image, TSurfDesc* scratch);
int pincel_do_emboss(TSurfDesc* image, TSurfDesc* scratch);
int pincel_do_realce(TSurfDesc* image, TSurfDesc* scratch);
int pincel_filtro_mask(TSurfDesc* image, TSurfDesc* scratch, int number);
int pincel_filtro_motion_blur(TSurfDesc* dst, TSurfDesc* mask, const CRectangulo* rect,
                              const CPunto* at, uint32_t colour, int length, float angle);
int pincel_filtro_brillo_blur(TSurfDesc* dst, TSurfDesc* mask, const CRectangulo* rect,
                              const CPunto* at, uint32_t colour, int length, float angle);
int pincel_filtro_motion_mask(TSurfDesc* dst, TSurfDesc* mask, const CRectangulo* rect,
                              const CPunto* at, int level);
int pincel_do_anti_alias(TSurfDesc* image, const CRectangulo* rect, TSurfDesc* other,
                         unsigned short level);
int pincel_do_anti_alias_2(TSurfDesc* image, const CRectangulo* rect, TSurfDesc* other,
                           unsigned short level);
int pincel_do_anti_alias_bmp(TSurfDesc* image, unsigned short level);
int pincel_do_factor(TSurfDesc* image, unsigned short factor);
int pincel_do_gradient(TSurfDesc* image, uint32_t from, uint32_t to);
int pincel_create_mask(TSurfDesc* mask, TSurfDesc* src, unsigned short level);
int pincel_create_shadow(TSurfDesc* shadow, TSurfDesc* src, unsigned char decay,
                         unsigned char limit, unsigned short factor);
void pincel_build_mix_table(unsigned char table[2][65536], const TRGBA palette[256], int dither);
pincel_status pincel_load_info_bmp(TSurfDesc* surface, const unsigned char* data, size_t length);
pincel_status pincel_load_bmp(TSurfDesc* surface, const unsigned char* data, size_t length);
pincel_status pincel_load_info_gif(TSurfDesc* surface, const unsigned char* data, size_t length);
pincel_status pincel_gif_frame(TGifFrame* frame, const unsigned char* data, size_t length);
pincel_status pincel_load_gif(TSurfDesc* surface, const unsigned char* data, size_t length,
                              const TGifFrame* frame);
pincel_status pincel_load_info_jpg(TSurfDesc* surface, const unsigned char* data, size_t length);
pincel_status pincel_load_jpg(TSurfDesc* surface, const unsigned char* data, size_t length);
# End of what scripts/exports makes.
""")

#: lu_gPaleta: the colours of 8-bit surfaces without a palette, and of all mixing at 8 bits.
default_palette = numpy.ctypeslib.as_array(
    (ctypes.c_uint8 * 4 * 256).in_dll(_library, "lu_gPaleta"))
