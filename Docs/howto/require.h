#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program with a message unless `holds`.
inline void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::exit(1);
}
