#!/usr/bin/env python3
"""Composes a postcard: postcard.py <examples folder> out.png

Pictures come from Pillow and from the library's own loader, the soft edge from numpy.
"""
import sys
from pathlib import Path

import numpy
import pincel
from PIL import Image


def box(at, surface):
    return (at[0], at[1], at[0] + surface.width, at[1] + surface.height)


def load_jpeg(path):
    """A file of unknown origin, straight into an array."""
    data = path.read_bytes()
    info = pincel.Surface(numpy.zeros((1, 1), numpy.uint8))
    pincel.load_info_jpg(info, data, len(data))  # sets the size
    picture = pincel.Surface(numpy.zeros((info.height, info.width, 4), numpy.uint8))
    pincel.load_jpg(picture, data, len(data))
    return picture


def main():
    assets = Path(sys.argv[1]) / "assets"
    card = load_jpeg(assets / "jpg/pillow-flower.jpg")

    # A part of an array is a surface too; what is drawn there is drawn on the card.
    strip = pincel.Surface(card.array[-110:])
    pincel.do_suavizado(strip, pincel.Surface(numpy.empty_like(strip.array)))
    pincel.mask_fill_rect(strip, (0, 0, strip.width, strip.height), 0xFF102040, 120)

    # A sprite of 8 bits brings its palette along; with a key, pixels of index 0 are transparent.
    tree = pincel.Surface.from_image(Image.open(assets / "bmp/gd-tree-256.bmp"), key=0)
    for x in range(20, card.width, 65):
        pincel.draw_bitmap(strip, box((x, 20), tree), tree, (0, 0))

    # Alpha from numpy: full in the middle, none outside an ellipse.
    bird = pincel.Surface.from_image(Image.open(assets / "jpg/wuffs-peacock.default.jpg")
                                     .resize((200, 150)).convert("RGBA"))
    y, x = numpy.ogrid[-1:1:150j, -1:1:200j]
    alpha = pincel.Surface((numpy.clip(3 - 3 * (x * x + y * y), 0, 1) * 255).astype(numpy.uint8))
    pincel.draw_mix_alpha(card, box((250, 30), bird), alpha, (0, 0), bird, (0, 0), None)

    pincel.line(card, (10, 8), (470, 8), 0xFFFFFF, 160, True, 2)
    card.to_image().save(sys.argv[2])


if __name__ == "__main__":
    main()
