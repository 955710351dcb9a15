#pragma once
// Shared by the fuzz targets: a property that must hold on every input.

#include <cstdio>
#include <cstdlib>

// Reports the broken property and aborts, which libFuzzer records as a crash
// with the input that caused it.
#define MW_FUZZ_CHECK(condition)                                                        \
    do {                                                                                \
        if (!(condition)) {                                                             \
            std::fprintf(stderr, "property failed: %s (%s:%d)\n", #condition, __FILE__, __LINE__); \
            std::abort();                                                               \
        }                                                                               \
    } while (0)
