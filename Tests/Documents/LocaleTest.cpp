#include "Documents.h"
#include "RegistryFixture.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaControlPoint2D.h"

#include <clocale>
#include <cstdlib>
#include <locale>
#include <memory>
#include <optional>
#include <string>

using namespace ka_test;

namespace {

/// A number's punctuation as Germans write it.
class CommaPunctuation : public std::numpunct<char> {
  protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

/// Makes the process's locale one with a decimal comma, for C++ streams always, for C where the system can
/// make one.
class DecimalComma : public RegistryFixture {
  protected:
    static void SetUpTestSuite() {
        folder = std::make_unique<TemporaryFolder>();
        const std::string make =
            "localedef -i de_DE -f UTF-8 '" + folder->at("de_DE.UTF-8") + "' >/dev/null 2>&1";
        canMakeLocale = std::system(make.c_str()) == 0;
    }
    static void TearDownTestSuite() { folder.reset(); }

    void SetUp() override {
        RegistryFixture::SetUp();
        _beforeInC = std::setlocale(LC_ALL, nullptr);
        _before = std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));
        if (const char* path = std::getenv("LOCPATH"))
            _pathBefore = path;
        _hasCommaInC = canMakeLocale && ::setenv("LOCPATH", folder->path().c_str(), 1) == 0 &&
                       std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    }
    void TearDown() override {
        std::locale::global(_before);
        if (_pathBefore)
            ::setenv("LOCPATH", _pathBefore->c_str(), 1);
        else
            ::unsetenv("LOCPATH");
        std::setlocale(LC_ALL, _beforeInC.c_str());
        RegistryFixture::TearDown();
    }

    static std::unique_ptr<TemporaryFolder> folder;
    static bool canMakeLocale;

    std::locale _before;
    std::string _beforeInC;
    std::optional<std::string> _pathBefore;
    bool _hasCommaInC = false;
};

std::unique_ptr<TemporaryFolder> DecimalComma::folder;
bool DecimalComma::canMakeLocale = false;

} // namespace

TEST_F(DecimalComma, IsInForceHere) {
    if (!_hasCommaInC)
        GTEST_SKIP() << "no locale with a decimal comma can be made here";
    EXPECT_EQ(std::strtof("1.5", nullptr), 1.0F);
}

TEST_F(DecimalComma, DoesNotChangeWhatIsReadAndWritten) {
    const std::string text = contentOf(testFile("elements/point.xml"));
    ASSERT_TRUE(load(text));
    EXPECT_EQ(kaAnimationManager::the()->getPoint2D(11)->getInTangent()->getPosition()[0], -5.25F);
    EXPECT_EQ(saved(), text);
}

TEST_F(DecimalComma, DoesNotGroupLargeNumbers) {
    kaAnimationField* field = kaAnimationManager::the()->createField(123456789);
    field->fcID = 4000000000U;
    field->value = 123456.0F;
    const std::string text = saved();
    EXPECT_NE(text.find("id=\"123456789\""), std::string::npos) << text;
    EXPECT_NE(text.find("fcID=\"4000000000\""), std::string::npos) << text;
    EXPECT_NE(text.find("value=\"123456\""), std::string::npos) << text;
}
