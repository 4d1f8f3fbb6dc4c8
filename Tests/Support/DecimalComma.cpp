#include "DecimalComma.h"

#include "TemporaryFolder.h"

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

/// A folder with a German locale, made once for each program: few machines have one.
class GermanLocale {
  public:
    GermanLocale() {
        const std::string make =
            "localedef -i de_DE -f UTF-8 '" + _folder.at("de_DE.UTF-8") + "' >/dev/null 2>&1";
        _isMade = std::system(make.c_str()) == 0;
    }

    /// Where the C library looks for locales matters only while one is taken.
    bool take() const {
        if (!_isMade)
            return false;
        std::optional<std::string> before;
        if (const char* path = std::getenv("LOCPATH"))
            before = path;
        ::setenv("LOCPATH", _folder.path().c_str(), 1);
        const bool isTaken = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
        if (before)
            ::setenv("LOCPATH", before->c_str(), 1);
        else
            ::unsetenv("LOCPATH");
        return isTaken;
    }

  private:
    TemporaryFolder _folder;
    bool _isMade = false;
};

} // namespace

DecimalComma::DecimalComma()
    : _before(std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation))),
      _beforeInC(std::setlocale(LC_ALL, nullptr)) {
    static const GermanLocale german;
    _isInForceInC = german.take();
}

DecimalComma::~DecimalComma() {
    std::locale::global(_before);
    std::setlocale(LC_ALL, _beforeInC.c_str());
}

} // namespace ka_test
