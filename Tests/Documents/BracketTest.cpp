#include "kaXmlParser.h"

#include <gtest/gtest.h>
#include <string>

namespace {

/// A document whose type declares the root with so many brackets around one name, after `before`.
bool accepts(const std::string& before, std::size_t brackets) {
    const std::string model = std::string(brackets, '(') + 'b' + std::string(brackets, ')');
    const std::string text = "<!DOCTYPE a [" + before + "<!ELEMENT a " + model + ">]><a/>";
    return kaXmlParser::readText(QString::fromStdString(text)).has_value();
}

constexpr std::size_t Most = 4096;

TEST(OpenBrackets, MayBeAsManyAsTheLimitAndNoMore) {
    EXPECT_TRUE(accepts("", Most));
    EXPECT_FALSE(accepts("", Most + 1));
}

TEST(OpenBrackets, AreThoseThatNobodyHasClosed) {
    EXPECT_TRUE(accepts("<!ELEMENT c (d)><!ELEMENT e (f, (g | h))>", Most));
    EXPECT_FALSE(accepts("<!-- ( -->", Most));
}

TEST(OpenBrackets, AreNoFewerForSomeThatCloseNothing) {
    EXPECT_TRUE(accepts("<!-- ))) -->", Most));
    EXPECT_FALSE(accepts("<!-- ))) -->", Most + 1));
}

} // namespace
