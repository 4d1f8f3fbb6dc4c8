#include "kaPlainOutput.h"

#include <iostream>
#include <locale>

/// The locale is set before the buffer, which is the host's and keeps its own.
kaPlainOutput::kaPlainOutput() : std::ostream(nullptr) {
    std::cout.flush();
    imbue(std::locale::classic());
    rdbuf(std::cout.rdbuf());
}

kaPlainOutput::~kaPlainOutput() {
    flush();
}
