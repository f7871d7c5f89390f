// The fault: the upper layer reaching into a private header of the lower one.
#include "high/view.h"
#include "low/store_p.h"

int viewedValue()
{
    return kStoredValue;
}
