#include "DecimalComma.h"
#include "Documents.h"
#include "RegistryFixture.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaControlPoint2D.h"

#include <cstdlib>
#include <string>

using namespace ka_test;

namespace {

class UnderADecimalComma : public RegistryFixture {
  protected:
    const DecimalComma _comma;
};

} // namespace

TEST_F(UnderADecimalComma, TheCLibraryReadsNoPoint) {
    if (!_comma.isInForceInC())
        GTEST_SKIP() << "the C library has no German here";
    EXPECT_EQ(std::strtof("1.5", nullptr), 1.0F);
}

TEST_F(UnderADecimalComma, TheSameIsReadAndWritten) {
    const std::string text = contentOf(testFile("elements/point.xml"));
    ASSERT_TRUE(load(text));
    EXPECT_EQ(kaAnimationManager::the()->getPoint2D(11)->getInTangent()->getPosition()[0], -5.25F);
    EXPECT_EQ(saved(), text);
}

TEST_F(UnderADecimalComma, LargeNumbersAreNotGrouped) {
    kaAnimationField* field = kaAnimationManager::the()->createField(123456789);
    field->fcID = 4000000000U;
    field->value = 123456.0F;
    const std::string text = saved();
    EXPECT_NE(text.find("id=\"123456789\""), std::string::npos) << text;
    EXPECT_NE(text.find("fcID=\"4000000000\""), std::string::npos) << text;
    EXPECT_NE(text.find("value=\"123456\""), std::string::npos) << text;
}
