// Sizes and offsets of the records, which are part of the interface: hosts in other languages rely on
// them. SAME(condition) is for the including file to define.
#include <stddef.h>
SAME(sizeof(TRGBA) == 4);
SAME(offsetof(TRGBA, blue) == 0);
SAME(offsetof(TRGBA, green) == 1);
SAME(offsetof(TRGBA, red) == 2);
SAME(offsetof(TRGBA, alpha) == 3);
SAME(sizeof(CPunto) == 8);
SAME(offsetof(CPunto, x) == 0);
SAME(offsetof(CPunto, y) == 4);
SAME(sizeof(CSize) == 8);
SAME(offsetof(CSize, width) == 0);
SAME(offsetof(CSize, height) == 4);
SAME(sizeof(CRectangulo) == 16);
SAME(offsetof(CRectangulo, left) == 0);
SAME(offsetof(CRectangulo, top) == 4);
SAME(offsetof(CRectangulo, right) == 8);
SAME(offsetof(CRectangulo, bottom) == 12);

SAME(offsetof(TSurfDesc, width) == 0);
SAME(offsetof(TSurfDesc, height) == 4);
SAME(offsetof(TSurfDesc, bpp) == 8);
SAME(offsetof(TSurfDesc, rMask) == 12);
SAME(offsetof(TSurfDesc, gMask) == 16);
SAME(offsetof(TSurfDesc, bMask) == 20);
SAME(offsetof(TSurfDesc, aMask) == 24);
SAME(offsetof(TSurfDesc, colorKey) == 28);
SAME(offsetof(TSurfDesc, pitch) == 32);

SAME(offsetof(RAW, width) == 0);
SAME(offsetof(RAW, height) == 4);
SAME(offsetof(RAW, readPalette) == 8);
SAME(offsetof(RAW, reserved) == 12);
SAME(offsetof(RAW, palette) == 16);
SAME(offsetof(RAW, output) == 1040);
SAME(offsetof(CQXGIF, cursor) == 0);
SAME(sizeof(pincel_status) == 4);
#if UINTPTR_MAX == 0xFFFFFFFF
SAME(sizeof(RAW) == 1044);
SAME(offsetof(CQXGIF, blockPos) == 4);
SAME(offsetof(CQXGIF, codeSize) == 8);
SAME(offsetof(CQXGIF, endCode) == 12);
SAME(offsetof(CQXGIF, blockLeft) == 16);
SAME(offsetof(CQXGIF, bitCount) == 20);
SAME(offsetof(CQXGIF, bitByte) == 24);
SAME(sizeof(CQXGIF) == 28);
SAME(offsetof(TGifFrame, area) == 4);
SAME(sizeof(TGifFrame) == 36);
SAME(offsetof(TSurfDesc, pixels) == 36);
SAME(offsetof(TSurfDesc, palette) == 40);
SAME(sizeof(TSurfDesc) == 44);
SAME(sizeof(unsigned long) == 4);
#else
SAME(sizeof(RAW) == 1048);
SAME(offsetof(CQXGIF, blockPos) == 8);
SAME(offsetof(CQXGIF, codeSize) == 16);
SAME(offsetof(CQXGIF, endCode) == 20);
SAME(offsetof(CQXGIF, blockLeft) == 24);
SAME(offsetof(CQXGIF, bitCount) == 28);
SAME(offsetof(CQXGIF, bitByte) == 32);
SAME(sizeof(CQXGIF) == 40);
SAME(offsetof(TGifFrame, area) == 8);
SAME(sizeof(TGifFrame) == 40);
SAME(offsetof(TSurfDesc, pixels) == 40);
SAME(offsetof(TSurfDesc, palette) == 48);
SAME(sizeof(TSurfDesc) == 56);
#endif
