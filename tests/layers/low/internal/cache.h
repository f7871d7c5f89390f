// An internal header of the lower layer, shared with the layers above; the fault: it
// includes a private header, which would hand that header on to them.
#pragma once

#include "low/store_p.h"

inline int cachedValue()
{
    return kStoredValue;
}
