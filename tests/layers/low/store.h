// A lower layer of the include check's test tree.
#pragma once

int storedValue();
