#include "RegistryFixture.h"
#include "kaAnimationManager.h"

#include <algorithm>
#include <random>

namespace {

using Names = std::vector<std::string>;

class AttributeList : public ka_test::RegistryFixture {
  protected:
    kaAnimationManager& manager = *kaAnimationManager::the();
};

TEST_F(AttributeList, IsEmptyAtFirst) {
    EXPECT_EQ(manager.getAnimationAttributes(), Names());
    EXPECT_FALSE(manager.isAnimationAttribute(""));
    EXPECT_FALSE(manager.isAnimationAttribute("scale"));
}

TEST_F(AttributeList, HoldsEachNameOnce) {
    manager.addAnimationAttribute("scale");
    manager.addAnimationAttribute("");
    manager.addAnimationAttribute("scale");
    manager.addAnimationAttribute("");
    manager.addAnimationAttribute("Scale");
    EXPECT_EQ(manager.getAnimationAttributes(), (Names{"scale", "", "Scale"}));
    EXPECT_TRUE(manager.isAnimationAttribute("scale"));
    EXPECT_TRUE(manager.isAnimationAttribute(""));
    EXPECT_FALSE(manager.isAnimationAttribute("SCALE"));
    EXPECT_FALSE(manager.isAnimationAttribute("scale "));
}

struct Split {
    const char* name;
    const char* text;
    Names expected;
};

class SplitNames : public AttributeList, public testing::WithParamInterface<Split> {};

TEST_P(SplitNames, AreTakenAsTheyStandBetweenTheCommas) {
    manager.addAnimationAttributes(GetParam().text);
    EXPECT_EQ(manager.getAnimationAttributes(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Texts, SplitNames,
                         testing::Values(Split{"one_name", "scale", {"scale"}},
                                         Split{"repeats", "a,b,a", {"a", "b"}},
                                         Split{"spaces_are_kept", "a, b", {"a", " b"}},
                                         Split{"an_empty_piece", "a,,b", {"a", "", "b"}},
                                         Split{"a_comma_at_the_start", ",a", {"", "a"}},
                                         Split{"a_comma_at_the_end", "a,", {"a", ""}},
                                         Split{"only_commas", ",,", {""}}, Split{"nothing", "", {""}}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(AttributeList, LosesANameAndKeepsTheOrderOfTheOthers) {
    manager.addAnimationAttributes("a,b,c,d");
    manager.subAnimationAttribute("b");
    EXPECT_EQ(manager.getAnimationAttributes(), (Names{"a", "c", "d"}));
    manager.subAnimationAttribute("B");
    manager.subAnimationAttribute("");
    EXPECT_EQ(manager.getAnimationAttributes(), (Names{"a", "c", "d"}));
    manager.subAnimationAttribute(manager.getAnimationAttributes().front()); // an entry of the list itself
    EXPECT_EQ(manager.getAnimationAttributes(), (Names{"c", "d"}));
}

TEST_F(AttributeList, HoldsWhatWasAddedAndNotRemovedInOrder) {
    Names expected;
    std::mt19937 random(3);
    for (int step = 0; step < 2000; ++step) {
        const std::string name = std::to_string(random() % 40);
        const auto found = std::find(expected.begin(), expected.end(), name);
        if (random() % 2 == 0) {
            manager.addAnimationAttribute(name);
            if (found == expected.end())
                expected.push_back(name);
        } else {
            manager.subAnimationAttribute(name);
            if (found != expected.end())
                expected.erase(found);
        }
        ASSERT_EQ(manager.getAnimationAttributes(), expected) << "step " << step;
        ASSERT_EQ(manager.isAnimationAttribute("7"),
                  std::find(expected.begin(), expected.end(), "7") != expected.end());
    }
}

} // namespace
