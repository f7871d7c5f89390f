// A private header of the lower layer: for its own files and its own tests only.
#pragma once

constexpr int kStoredValue = 42;
