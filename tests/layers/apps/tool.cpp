// A program: the public header is fine; the fault is the internal one.
#include "low/internal/cache.h"
#include "low/store.h"

int main()
{
    return storedValue() == cachedValue() ? 0 : 1;
}
