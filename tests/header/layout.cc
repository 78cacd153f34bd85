// The header must compile by itself, first in its file, with every compiler that a host may use.
#include "pincel.h"

#define SAME(condition) static_assert(condition, #condition)
#include "layout.h"
