#include "Documents.h"
#include "RegistryFixture.h"
#include "kaAnimationManager.h"
#include "kaAnimationUnit.h"

#include <string>
#include <vector>

using namespace ka_test;

namespace {

using Percents = std::vector<unsigned int>;

Percents percents;

void note(unsigned int percent) {
    percents.push_back(percent);
}

/// A smallest int taken as unsigned: what a division by zero comes to.
constexpr unsigned int Undefined = 2147483648U;

class Progress : public RegistryFixture {
  protected:
    void SetUp() override {
        RegistryFixture::SetUp();
        percents.clear();
        kaAnimationManager::setFileIOProgressCB(note);
    }
};

std::string blocks(int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += "<block id=\"" + std::to_string(31 + i) + "\" typeID=\"3\"/>";
    return text;
}

std::string pool(const std::string& objects, const std::string& elements) {
    return "<AnimationPool objects=\"" + objects + "\">" + elements + "</AnimationPool>";
}

} // namespace

TEST_F(Progress, ClimbsToAHundredOverTwoPasses) {
    EXPECT_TRUE(load(pool("4", blocks(4))));
    EXPECT_EQ(percents, (Percents{13, 25, 38, 50, 63, 75, 88, 100}))
        << "eighths, rounded half away from zero";
}

TEST_F(Progress, CountsElementsThatMakeNothingButNoComments) {
    EXPECT_TRUE(load(pool("2", "<a typeID=\"0\"/><!-- c -->text<b/>")));
    EXPECT_EQ(percents, (Percents{25, 50, 75, 100}));
}

TEST_F(Progress, GoesByTheCountThatTheDocumentStates) {
    EXPECT_TRUE(load(pool("10", blocks(1))));
    EXPECT_TRUE(load(pool("1", blocks(2))));
    EXPECT_EQ(percents, (Percents{5, 10, 50, 100, 150, 200}));
}

TEST_F(Progress, WithoutACountIsADivisionByZero) {
    EXPECT_TRUE(load("<a>" + blocks(1) + "</a>"));
    EXPECT_TRUE(load(pool("many", blocks(1))));
    EXPECT_EQ(percents, (Percents(4, Undefined)));
}

TEST_F(Progress, IsNotReportedForARefusedDocumentOrBySaving) {
    EXPECT_FALSE(load("<a><b typeID=\"3\"/>"));
    saved();
    EXPECT_TRUE(percents.empty());
}

// What a host may do meanwhile.

TEST_F(Progress, MayDestroyEverything) {
    kaAnimationManager::setFileIOProgressCB([](unsigned int) {
        for (const auto& entry : kaAnimationManager::the()->getObjects())
            kaAnimationManager::the()->destroyObject(kaAnimationManager::the()->getObject(entry.first));
        kaAnimationManager::the()->destroyAllFields();
    });
    EXPECT_TRUE(load(contentOf(testFile("example.xml"))));
    EXPECT_TRUE(kaAnimationManager::the()->getObjects().empty());
    EXPECT_TRUE(kaAnimationManager::the()->getFields().empty());
}

TEST_F(Progress, MayLoadAnotherDocument) {
    kaAnimationManager::setFileIOProgressCB([](unsigned int) {
        kaAnimationManager::setFileIOProgressCB(nullptr);
        load("<a><b id=\"77\" typeID=\"3\"/></a>");
    });
    EXPECT_TRUE(load(contentOf(testFile("example.xml"))));
    EXPECT_NE(kaAnimationManager::the()->getUnit(77), nullptr);
    EXPECT_NE(kaAnimationManager::the()->getStrip(51), nullptr);
}

TEST_F(Progress, MaySaveAndTakeItselfAway) {
    kaAnimationManager::setFileIOProgressCB([](unsigned int) {
        kaAnimationManager::setFileIOProgressCB(nullptr);
        EXPECT_NE(saved().find("id=\"7\""), std::string::npos);
    });
    EXPECT_TRUE(load(contentOf(testFile("example.xml"))));
    EXPECT_EQ(kaAnimationManager::the()->getObjects().size(), 6U);
}
