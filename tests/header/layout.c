/* The header must compile by itself as C, and its records must be those that C++ sees. */
#include "pincel.h"

#define SAME(condition) extern char same[(condition) ? 1 : -1]
#include "layout.h"
