// The header must compile by itself, first in its file, with every compiler that a host may use.
#include "pincel.h"

#define SAME(condition) static_assert(condition, #condition)
#include "layout.h"

// Compilers agree on how to pass and return plain aggregates, and on nothing else.
#define PLAIN(record) \
  SAME(__is_aggregate(record) && __is_trivial(record) && __is_standard_layout(record))
PLAIN(TRGBA);
PLAIN(TSurfDesc);
PLAIN(CRectangulo);
PLAIN(CPunto);
PLAIN(CSize);
PLAIN(RAW);
PLAIN(CQXGIF);
PLAIN(TGifFrame);
