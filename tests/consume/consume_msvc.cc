// A host of the MSVC family that needs no library of Microsoft's; used by check-packages.
#include "../abi/freestanding.h"
#include "consume.h"

static int Main() {
  const bool right = DrawsRight();
  Print(right ? "consume: right\n" : "consume: WRONG\n");
  return right ? 0 : 1;
}
