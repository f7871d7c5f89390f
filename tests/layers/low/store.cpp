// The fault the include check must catch: a lower layer reaching up to a header of the
// layer above it.
#include "low/store.h"
#include "high/view.h"

int storedValue()
{
    return 42;
}
