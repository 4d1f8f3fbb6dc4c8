#include "DecimalComma.h"

#include <clocale>
#include <cstdlib>
#include <optional>
#include <stdlib.h>

namespace ka_test {

namespace {

/// A number's punctuation as Germans write it.
class CommaPunctuation : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

/// The C library's German; whether it is there. Where it looks for locales matters only while one is taken.
bool takeGerman() {
    std::optional<std::string> before;
    if (const char* path = std::getenv("LOCPATH"))
        before = path;
    ::setenv("LOCPATH", KA_TEST_LOCALES, 1);
    const bool isTaken = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    if (before)
        ::setenv("LOCPATH", before->c_str(), 1);
    else
        ::unsetenv("LOCPATH");
    return isTaken;
}

} // namespace

DecimalComma::DecimalComma()
    : _before(std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation))),
      _beforeInC(std::setlocale(LC_ALL, nullptr)),
      _isInForceInC(takeGerman()) {}

DecimalComma::~DecimalComma() {
    std::locale::global(_before);
    std::setlocale(LC_ALL, _beforeInC.c_str());
}

} // namespace ka_test
