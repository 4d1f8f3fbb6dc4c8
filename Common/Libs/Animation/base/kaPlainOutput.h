#pragma once

#include <ostream>

/// Standard output as diagnostics need it: default format and the "C" locale, whatever the host made of its
/// locale or of `std::cout`, in order with what the host prints. Flushed when it goes.
class kaPlainOutput : public std::ostream {
  public:
    kaPlainOutput();
    ~kaPlainOutput() override;
};
