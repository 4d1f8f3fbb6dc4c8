#include "CapturedOutput.h"
#include "TimeFixture.h"

#include <iostream>

using namespace ka_test;

namespace {

class Dump : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        manager->createStreak("third", 18000000000000000000ULL);
        manager->createUnit("first", 7);
        manager->createPoint2D(9);
        field = manager->createField(11);
        field->fcID = 13;
        field->nodeID = 12;
        field->name = "translation";
        field->attribute = "translationY";
        field->value = 1234567.0F;
        field->valuePos = 1;
        manager->createField(10);
    }

    kaAnimationField* field = nullptr;
};

const char* const ObjectLines = "ANIMATION_MANAGER Object Info\n"
                                "=============================\n"
                                "Object 7 name first type 3\n"
                                "Object 9 name Point type 1\n"
                                "Object 18000000000000000000 name third type 4\n"
                                "Field 10 node id 0 fcid 0\n"
                                "Field 11 node id 12 fcid 13\n";

const char* const FieldLines = "Field Info:\n"
                               "\tid 11\n"
                               "\tname translation\n"
                               "\tattribute translationY\n"
                               "\tfcID 13\n"
                               "\tnodeID 12\n"
                               "\tvalue 1.23457e+06\n"
                               "\tvaluePos 1\n"
                               "\tdirty 1\n";

TEST_F(Dump, ListsObjectsAndFieldsInAscendingOrderOfTheirIds) {
    const CapturedOutput output;
    manager->objectInfo();
    EXPECT_EQ(output.text(), ObjectLines);
}

TEST_F(Dump, ListsWhatAFieldHolds) {
    const CapturedOutput output;
    manager->printFieldInfo(field);
    EXPECT_EQ(output.text(), FieldLines);
    manager->printFieldInfo(nullptr);
    EXPECT_EQ(output.text(), FieldLines);
}

/// Groups thousands and takes the comma for decimals.
class Foreign : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST_F(Dump, LooksTheSameWhateverTheHostMadeOfTheStream) {
    const std::locale before = std::cout.imbue(std::locale(std::locale::classic(), new Foreign));
    const std::ios::fmtflags flags =
        std::cout.flags(std::ios::hex | std::ios::boolalpha | std::ios::showbase);
    field->value = 0.5F;
    field->dirty = false;
    std::string text;
    {
        const CapturedOutput output;
        manager->objectInfo();
        manager->printFieldInfo(field);
        text = output.text();
    }
    std::cout.imbue(before);
    std::cout.flags(flags);
    EXPECT_EQ(text.substr(0, std::string(ObjectLines).size()), ObjectLines);
    EXPECT_NE(text.find("\tvalue 0.5\n"), std::string::npos);
    EXPECT_NE(text.find("\tdirty 0\n"), std::string::npos);
}

TEST_F(Dump, OfAnEmptyRegistryIsItsHeading) {
    emptyModule();
    const CapturedOutput output;
    manager->objectInfo();
    EXPECT_EQ(output.text(), "ANIMATION_MANAGER Object Info\n=============================\n");
}

} // namespace
