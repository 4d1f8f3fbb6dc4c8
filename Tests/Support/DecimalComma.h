#pragma once

#include <locale>
#include <string>

namespace ka_test {

/// For as long as it lives numbers have a decimal comma and grouped thousands: in C++ streams always, in the
/// C library where it has German.
class DecimalComma {
  public:
    DecimalComma();
    DecimalComma(const DecimalComma&) = delete;
    DecimalComma& operator=(const DecimalComma&) = delete;
    ~DecimalComma();

    /// Whether the C library has it too.
    bool isInForceInC() const { return _isInForceInC; }

  private:
    std::locale _before;
    std::string _beforeInC;
    bool _isInForceInC;
};

} // namespace ka_test
