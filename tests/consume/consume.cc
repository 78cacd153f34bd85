// A host with a C library; used by check-consume and check-packages.
#include "consume.h"

#include <stdio.h>

int main() {
  const bool right = DrawsRight();
  puts(right ? "consume: right" : "consume: WRONG");
  return right ? 0 : 1;
}
