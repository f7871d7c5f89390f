// The upper layer of the include check's test tree; including the lower one is allowed.
#pragma once

#include "low/store.h"

inline int shownValue()
{
    return storedValue();
}
