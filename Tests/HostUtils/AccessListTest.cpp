#include "kaAccessList.h"

#include <gtest/gtest.h>

namespace {

/// A list in the bytes of the system: one line for each entry, its kind, its rights, four bytes of id.
const std::string named("\2\0\0\0"
                        "\x01\0\x06\0\xFF\xFF\xFF\xFF"
                        "\x02\0\x04\0\x01\x02\0\0"
                        "\x04\0\x07\0\xFF\xFF\xFF\xFF"
                        "\x08\0\x05\0\x03\x04\0\0"
                        "\x10\0\x06\0\xFF\xFF\xFF\xFF"
                        "\x20\0\x05\0\xFF\xFF\xFF\xFF",
                        52);

} // namespace

TEST(AccessList, IsReadAndWrittenAsTheSystemKeepsIt) {
    const auto list = kaAccessList::parse(named);
    ASSERT_TRUE(list);
    EXPECT_EQ(list->bytes(), named);
    EXPECT_EQ(list->mode(), 0665U);
    EXPECT_EQ(kaAccessList::ofMode(0100751).mode(), 0751U);
}

TEST(AccessList, IsNoneWhenTheBytesAreCutShortOrOfAnotherVersion) {
    for (std::size_t size = 0; size < named.size(); ++size)
        EXPECT_FALSE(kaAccessList::parse(std::string_view(named).substr(0, size))) << size;
    EXPECT_FALSE(kaAccessList::parse("\3" + named.substr(1)));
}

TEST(AccessList, WithoutNamesDeniesEverybodyWhatOneOfThemWasDenied) {
    auto list = kaAccessList::parse(named);
    list->forgetNames();
    // The user had 4 and the group 5, both cut by the mask 6: 4 is what all of them had.
    EXPECT_EQ(list->mode(), 0644U);
    auto plain = kaAccessList::ofMode(0670);
    plain.forgetNames();
    EXPECT_EQ(plain.mode(), 0670U);
}
