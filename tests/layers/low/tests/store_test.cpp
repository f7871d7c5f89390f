// The lower layer's own test: including its private header is allowed.
#include "low/store_p.h"

static_assert(kStoredValue == 42);
