#include "kaMessage.h"

#include <gtest/gtest.h>
#include <string>

TEST(Message, GivesBackWhatWasSetInItsOwnType) {
    kaMessage message("currentFrameChanged");
    EXPECT_TRUE(message.set("frame", 12.5F, true));
    EXPECT_TRUE(message.set("finished", true, true));

    EXPECT_EQ(message.getName(), "currentFrameChanged");
    ASSERT_NE(message.get<float>("frame"), nullptr);
    EXPECT_EQ(*message.get<float>("frame"), 12.5F);
    ASSERT_NE(message.get<bool>("finished"), nullptr);
    EXPECT_TRUE(*message.get<bool>("finished"));
}

TEST(Message, HasNothingUnderAnotherKeyOrType) {
    kaMessage message;
    message.set("frame", 12.5F, true);

    EXPECT_EQ(message.get("Frame"), nullptr);
    EXPECT_EQ(message.get<float>(""), nullptr);
    EXPECT_EQ(message.get<int>("frame"), nullptr);
    EXPECT_EQ(message.get<double>("frame"), nullptr);
}

TEST(Message, OverwritesOnlyWhenAllowedTo) {
    kaMessage message;
    message.set("frame", 1, true);

    EXPECT_FALSE(message.set("frame", 2, false));
    EXPECT_EQ(*message.get<int>("frame"), 1);
    EXPECT_TRUE(message.set("frame", std::string("three"), true));
    EXPECT_EQ(*message.get<std::string>("frame"), "three");
    EXPECT_TRUE(message.set("other", 4, false));
}

TEST(Message, KeepsTheOrderInWhichKeysCame) {
    kaMessage message;
    for (const char* key : {"c", "a", "b", "a"}) {
        message.set(key, 0, true);
    }
    std::string keys;
    for (const auto& [key, value] : message.getEntries()) {
        keys += key;
    }
    EXPECT_EQ(keys, "cab");
}

TEST(Message, IsAValueOfItsOwnWhenCopied) {
    kaMessage first;
    first.set("frame", 1, true);
    kaMessage second = first;
    second.set("frame", 2, true);
    EXPECT_EQ(*first.get<int>("frame"), 1);
    EXPECT_EQ(*second.get<int>("frame"), 2);
}

TEST(Message, KeepsAnEmptyValueApartFromNone) {
    kaMessage message;
    message.set("nothing", boost::any(), true);
    ASSERT_NE(message.get("nothing"), nullptr);
    EXPECT_TRUE(message.get("nothing")->empty());
    EXPECT_EQ(message.get<int>("nothing"), nullptr);
}
