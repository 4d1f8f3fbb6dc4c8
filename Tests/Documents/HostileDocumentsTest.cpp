#include "Documents.h"
#include "RegistryFixture.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationManager.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

using namespace ka_test;

// A document can name anything as a child. Loading ends, and what comes of it is sound.

namespace {

using Ids = std::vector<kaUID>;

class HostileDocuments : public RegistryFixture {
  protected:
    static kaAnimationManager& manager() { return *kaAnimationManager::the(); }
    static Ids childrenOf(kaUID id) { return manager().getObject(id)->getChildIDs(); }
    static kaUID parentOf(kaUID id) { return manager().getObject(id)->getParent(); }

    void TearDown() override {
        expectSoundRegistry();
        RegistryFixture::TearDown();
    }
};

std::string track(const std::string& id, const std::vector<std::string>& children) {
    return containerElement("track", 4, id, "", children);
}

std::string block(const std::string& id, const std::vector<std::string>& children) {
    return containerElement("block", 3, id, "", children);
}

std::string clip(const std::string& id, const std::vector<std::string>& children) {
    return containerElement("clip", 5, id, "", children);
}

std::string curve(const std::string& id, const std::vector<std::string>& children) {
    return containerElement("curve", 2, id, "", children);
}

} // namespace

TEST_F(HostileDocuments, AContainerThatIsItsOwnChildStaysEmpty) {
    EXPECT_TRUE(load(
        documentOf(track("41", {"41"}) + clip("51", {"51"}) + block("31", {"31"}) + curve("21", {"21"}))));
    for (const kaUID id : Ids{41, 51, 31, 21})
        EXPECT_TRUE(childrenOf(id).empty()) << id;
}

TEST_F(HostileDocuments, AnAncestorIsRefusedAsAChild) {
    EXPECT_TRUE(load(documentOf(track("41", {"51"}) + clip("51", {"42"}) + track("42", {"41"}))));
    EXPECT_EQ(childrenOf(41), (Ids{51}));
    EXPECT_EQ(childrenOf(51), (Ids{42}));
    EXPECT_TRUE(childrenOf(42).empty());
}

TEST_F(HostileDocuments, AChildNamedTwiceIsListedOnce) {
    EXPECT_TRUE(load(documentOf(curve("21", {}) + block("31", {"21", "21"}) + track("41", {"31", "31"}) +
                                clip("51", {"41", "41"}))));
    EXPECT_EQ(childrenOf(31), (Ids{21}));
    EXPECT_EQ(childrenOf(41), (Ids{31}));
    EXPECT_EQ(childrenOf(51), (Ids{41}));
}

TEST_F(HostileDocuments, AKeyNamedTwiceIsListedOnce) {
    EXPECT_TRUE(load(
        documentOf(pointElement("11", 0, 0) + pointElement("12", 5, 0) + curve("21", {"11", "12", "11"}))));
    EXPECT_EQ(childrenOf(21), (Ids{11, 12}));
}

TEST_F(HostileDocuments, AChildOfTwoContainersBelongsToTheLast) {
    EXPECT_TRUE(load(documentOf(curve("21", {}) + block("31", {"21"}) + block("32", {"21"}) +
                                track("41", {"31", "32"}) + track("42", {"31"}))));
    EXPECT_TRUE(childrenOf(31).empty());
    EXPECT_EQ(childrenOf(32), (Ids{21}));
    EXPECT_EQ(parentOf(21), 32U);
    EXPECT_EQ(childrenOf(41), (Ids{32}));
    EXPECT_EQ(childrenOf(42), (Ids{31}));
}

TEST_F(HostileDocuments, AChildThatMovesWithinATreeKeepsItsIdThere) {
    EXPECT_TRUE(
        load(documentOf(curve("21", {}) + block("31", {"21"}) + block("32", {}) + track("41", {"31", "32"}) +
                        "<again id=\"32\" typeID=\"3\"><b id=\"21\"/></again>")));
    EXPECT_EQ(parentOf(21), 32U);
    EXPECT_EQ(manager().getStreak(41)->getCurveIDs(), (std::set<kaUID>{21}));
    EXPECT_TRUE(manager().getUnit(31)->getCurveIDs().empty());
}

TEST_F(HostileDocuments, AChildThatIsRefusedStaysWhereItIs) {
    EXPECT_TRUE(load(documentOf(curve("21", {}) + block("31", {"21"}) + clip("51", {"21"}) +
                                track("41", {"51"}) + clip("51", {"41"}))));
    EXPECT_EQ(childrenOf(31), (Ids{21}));
    EXPECT_EQ(parentOf(21), 31U);
    EXPECT_EQ(childrenOf(41), (Ids{51}));
}

TEST_F(HostileDocuments, ABlockNamedTwiceByAClipStandsOnOneTrack) {
    EXPECT_TRUE(load(documentOf(block("31", {}) + clip("51", {"31", "31"}))));
    std::size_t listings = 0;
    for (kaUID id : childrenOf(51))
        listings += childrenOf(id).size();
    EXPECT_EQ(listings, 1U);
}

TEST_F(HostileDocuments, AKeyOnATrackGoesBackToTheCurveThatNamesItLater) {
    EXPECT_TRUE(load(documentOf(pointElement("11", 0, 0) + track("41", {"11"}) + curve("21", {"11"}))));
    EXPECT_TRUE(childrenOf(41).empty());
    EXPECT_EQ(childrenOf(21), (Ids{11}));
}

TEST_F(HostileDocuments, AKeyOfACurveMovesToTheTrackThatNamesItLater) {
    EXPECT_TRUE(load(documentOf(pointElement("11", 0, 0) + pointElement("12", 1, 0) +
                                curve("21", {"11", "12"}) + track("41", {"11"}))));
    EXPECT_EQ(childrenOf(21), (Ids{12}));
    EXPECT_EQ(childrenOf(41), (Ids{11}));
}

TEST_F(HostileDocuments, ACurvesIdUnderAnotherTypeIsConnectedAsThatType) {
    // The second element got another id; its references reach the curve, which takes keys one by one.
    EXPECT_TRUE(load(documentOf(pointElement("11", 0, 0) + pointElement("12", 0, 5) + curve("21", {}) +
                                block("21", {"11", "12"}))));
    EXPECT_EQ(childrenOf(21), (Ids{12})) << "a key at the frame of another takes its place";
    EXPECT_EQ(manager().getObject(11), nullptr);
}

TEST_F(HostileDocuments, AnotherIdUnderTheTypeOfACurveIsLeftAlone) {
    EXPECT_TRUE(load(documentOf("<field id=\"7\" typeID=\"-1\"/>" + pointElement("11", 0, 0) +
                                block("31", {}) + containerElement("curve", 2, "31", "field=\"7\"", {"11"}) +
                                containerElement("curve", 2, "11", "field=\"7\"", {"11"}))));
    EXPECT_TRUE(childrenOf(31).empty());
    EXPECT_EQ(childrenOf(11), (Ids{11}));
    EXPECT_EQ(parentOf(11), 0U);
}

TEST_F(HostileDocuments, FieldsAndKeysTakeNoChildren) {
    EXPECT_TRUE(load(documentOf("<field id=\"7\" typeID=\"-1\"><a id=\"31\"/></field>" + block("31", {}) +
                                "<p id=\"11\" typeID=\"1\"><a id=\"31\"/></p>"
                                "<s id=\"61\" typeID=\"6\"><a id=\"31\"/></s>")));
    EXPECT_EQ(parentOf(31), 0U);
    EXPECT_EQ(childrenOf(11), (Ids{11}));
}

TEST_F(HostileDocuments, ContainmentIsNoDeeperThanATreeMayBe) {
    std::string text;
    for (unsigned int i = 0; i < KA_MAX_DEPTH + 1000; ++i)
        text += track(std::to_string(10000 + i), {std::to_string(10001 + i)});
    EXPECT_TRUE(load(documentOf(text)));
    unsigned int deepest = 0;
    for (const auto& entry : manager().getObjects()) {
        unsigned int depth = 1;
        for (const kaAnimationObject* at = entry.second; (at = at->getParentObject()) != nullptr;)
            ++depth;
        deepest = std::max(deepest, depth);
    }
    EXPECT_EQ(deepest, KA_MAX_DEPTH);
}

TEST_F(HostileDocuments, ManyKeysUnderTwoCurves) {
    std::string text;
    std::vector<std::string> ids;
    for (int i = 0; i < 2000; ++i) {
        ids.push_back(std::to_string(1000 + i));
        text += pointElement(ids.back(), static_cast<float>(i), 0);
    }
    EXPECT_TRUE(load(documentOf(text + curve("21", ids) + curve("22", ids))));
    EXPECT_EQ(childrenOf(21).size(), ids.size());
    EXPECT_EQ(childrenOf(22).size(), ids.size());
}

TEST_F(HostileDocuments, ManyCurvesUnderTwoBlocksAndNamedTwice) {
    std::string text;
    std::vector<std::string> ids;
    for (int i = 0; i < 2000; ++i) {
        ids.push_back(std::to_string(1000 + i));
        text += curve(ids.back(), {});
    }
    std::vector<std::string> twice = ids;
    twice.insert(twice.end(), ids.begin(), ids.end());
    EXPECT_TRUE(load(documentOf(text + block("31", twice) + block("32", twice))));
    EXPECT_TRUE(childrenOf(31).empty());
    EXPECT_EQ(childrenOf(32).size(), ids.size());
}

TEST_F(HostileDocuments, AnyReferencesAtAll) {
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        std::string text;
        for (int id = 1; id <= 12; ++id) {
            std::vector<std::string> children;
            for (unsigned int count = random() % 4; count > 0; --count)
                children.push_back(std::to_string(1 + random() % 12));
            text += containerElement("x", static_cast<int>(random() % 6) + 1,
                                     std::to_string(1 + random() % 12), "", children);
        }
        SCOPED_TRACE(text);
        ASSERT_TRUE(load(documentOf(text)));
        const std::string first = saved();
        expectSoundRegistry();
        if (HasFailure())
            return;
        emptyModule();
        ASSERT_TRUE(load(first));
        const std::string second = saved();
        emptyModule();
        ASSERT_TRUE(load(second));
        EXPECT_EQ(saved(), second) << "what a load and a save made of a document stays as it is";
        emptyModule();
    }
}
