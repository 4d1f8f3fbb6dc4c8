#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationManager.h"

#include <limits>

using namespace ka_test;

namespace {

using Keys = std::vector<Key>;

// Previous key at 0 with its out handle at 4, the key at 10 with handles at 8 and 13, the next at 20 with its
// in handle at 17.
const Keys THREE = {{{0, 0}, {-2, 0}, {4, 0}}, {{10, 0}, {8, 0}, {13, 0}}, {{20, 0}, {17, 0}, {22, 0}}};

class Constraints : public RegistryFixture {
  protected:
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationCurve2D* curve = nullptr;
    kaControlPoint2D* key = nullptr;

    void SetUp() override {
        RegistryFixture::SetUp();
        curve = makeCurve(THREE);
        key = curve->findPoint(10.0F);
    }
};

TEST_F(Constraints, OfAPlaceAllowEqualityEverywhere) {
    const struct {
        const char* name;
        float x;
        float in;
        float out;
        bool allowed;
    } rows[] = {
        {"as it stands", 10, 8, 13, true},
        {"handles on the key", 10, 10, 10, true},
        {"in handle beyond the key", 10, 10.5F, 13, false},
        {"out handle before the key", 10, 8, 9.5F, false},
        {"on the previous out handle", 4, 2, 6, true},
        {"before the previous out handle", 3.75F, 2, 6, false},
        {"on the next in handle", 17, 15, 19, true},
        {"past the next in handle", 17.25F, 15, 19, false},
        {"in handle on the previous key", 10, 0, 13, true},
        {"in handle before the previous key", 10, -0.25F, 13, false},
        {"out handle on the next key", 10, 8, 20, true},
        {"out handle past the next key", 10, 8, 20.25F, false},
        {"no number", std::numeric_limits<float>::quiet_NaN(), 8, 13, false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(curve->checkMoveConstraints(key, row.x, row.in, row.out), row.allowed) << row.name;
}

TEST_F(Constraints, OfAPlaceAtTheEndsLookOnOneSideOnly) {
    kaControlPoint2D* first = curve->findPoint(0.0F);
    EXPECT_TRUE(curve->checkMoveConstraints(first, -100, -200, 0));
    EXPECT_TRUE(curve->checkMoveConstraints(first, 8, 0, 10));
    EXPECT_FALSE(curve->checkMoveConstraints(first, 8.25F, 0, 10));
    EXPECT_FALSE(curve->checkMoveConstraints(first, 8, 0, 10.25F));
    kaControlPoint2D* last = curve->findPoint(20.0F);
    EXPECT_TRUE(curve->checkMoveConstraints(last, 100, 10, 200));
    EXPECT_FALSE(curve->checkMoveConstraints(last, 12.75F, 10, 200));
}

TEST_F(Constraints, OfAPlaceForNullAndForStrangers) {
    EXPECT_FALSE(curve->checkMoveConstraints(nullptr, 5, 5, 5));
    kaControlPoint2D* stranger = manager->createPoint2D(5.0F, 0.0F, 0);
    EXPECT_TRUE(curve->checkMoveConstraints(stranger, 500, 500, 500));
    EXPECT_FALSE(curve->checkMoveConstraints(stranger, 500, 501, 502))
        << "the order of its own handles still counts";
}

TEST_F(Constraints, OfAPlaceUseTheKeyWhereAHandleIsMissing) {
    manager->destroyPoint2D(curve->findPoint(0.0F)->getOutTangent());
    manager->destroyPoint2D(curve->findPoint(20.0F)->getInTangent());
    EXPECT_TRUE(curve->checkMoveConstraints(key, 0, 0, 13));
    EXPECT_FALSE(curve->checkMoveConstraints(key, -0.25F, -0.25F, 13));
    EXPECT_TRUE(curve->checkMoveConstraints(key, 20, 20, 20));
}

TEST_F(Constraints, OfAStepAllowEqualityEverywhere) {
    const struct {
        const char* name;
        float dx;
        bool allowed;
    } rows[] = {
        {"no step", 0, true},
        {"on the previous out handle", -6, true},
        {"before the previous out handle", -6.25F, false},
        {"on the next in handle", 7, true},
        {"past the next in handle", 7.25F, false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(curve->checkMoveConstraints2(key, row.dx, false), row.allowed) << row.name;
}

TEST_F(Constraints, OfAStepKeepTheHandlesWithinTheNeighbours) {
    place(*key->getInTangent(), {3, 0});
    EXPECT_TRUE(curve->checkMoveConstraints2(key, -3, false));
    EXPECT_FALSE(curve->checkMoveConstraints2(key, -3.25F, false));
    place(*key->getOutTangent(), {18, 0});
    EXPECT_TRUE(curve->checkMoveConstraints2(key, 2, false));
    EXPECT_FALSE(curve->checkMoveConstraints2(key, 2.25F, false));
}

TEST_F(Constraints, OfAStepUseTheKeyForItsOwnMissingHandles) {
    manager->destroyPoint2D(key->getInTangent());
    manager->destroyPoint2D(key->getOutTangent());
    EXPECT_TRUE(curve->checkMoveConstraints2(key, 7, false));
    EXPECT_FALSE(curve->checkMoveConstraints2(key, 7.25F, false));
}

TEST_F(Constraints, OfAStepForNullAndForStrangers) {
    EXPECT_FALSE(curve->checkMoveConstraints2(nullptr, 0, false));
    EXPECT_TRUE(curve->checkMoveConstraints2(manager->createPoint2D(5.0F, 0.0F, 0), 1e9F, false));
}

TEST_F(Constraints, OfAStepFromSavedGoByTheSavedKey) {
    key->setSavedPosition({6, 0});
    key->setTangentType(kaControlPoint2D::TANGENT_USER);
    key->setSavedInTangent({5, 0});
    key->setSavedOutTangent({7, 0});
    EXPECT_TRUE(curve->checkMoveConstraints2(key, -2, true));
    EXPECT_FALSE(curve->checkMoveConstraints2(key, -2.25F, true)) << "6 - 2.25 is before the handle at 4";
    EXPECT_TRUE(curve->checkMoveConstraints2(key, 11, true));
    EXPECT_FALSE(curve->checkMoveConstraints2(key, 11.25F, true)) << "6 + 11.25 is past the handle at 17";
}

TEST_F(Constraints, OfAStepFromSavedTakeUserHandlesAsSaved) {
    key->setSavedPosition({10, 0});
    key->setTangentType(kaControlPoint2D::TANGENT_USER);
    key->setSavedInTangent({2, 0});
    key->setSavedOutTangent({19, 0});
    EXPECT_TRUE(curve->checkMoveConstraints2(key, -2, true));
    EXPECT_FALSE(curve->checkMoveConstraints2(key, -2.25F, true))
        << "saved in handle before the previous key";
    EXPECT_TRUE(curve->checkMoveConstraints2(key, 1, true));
    EXPECT_FALSE(curve->checkMoveConstraints2(key, 1.25F, true)) << "saved out handle past the next key";
}

TEST_F(Constraints, OfAStepFromSavedTakeOtherHandlesWhereTheyStand) {
    // For these the step falls away: the handle's place itself is what must lie between the neighbours.
    key->setSavedPosition({10, 0});
    key->setSavedInTangent({-500, 0});
    key->setSavedOutTangent({500, 0});
    key->setTangentType(kaControlPoint2D::TANGENT_SMOOTH);
    EXPECT_TRUE(curve->checkMoveConstraints2(key, -6, true));
    EXPECT_FALSE(curve->checkMoveConstraints2(key, -6.25F, true));
    place(*key->getInTangent(), {-1, 0});
    EXPECT_FALSE(curve->checkMoveConstraints2(key, 0, true));
}

TEST_F(Constraints, OfAnInsertionKeepOffTheHandles) {
    const struct {
        const char* name;
        float x;
        bool allowed;
    } rows[] = {
        {"before everything", -50, true},
        {"on the first in handle", -2, true},
        {"between that handle and its key", -1, false},
        {"on the first key, which does not count itself", 0, true},
        {"between the first key and its out handle", 3.75F, false},
        {"on the first out handle", 4, true},
        {"on the in handle of the middle key", 8, true},
        {"between that handle and the key", 8.25F, false},
        {"on the middle key", 10, true},
        {"between the middle key and its out handle", 12.75F, false},
        {"on its out handle", 13, true},
        {"on the in handle of the last key", 17, true},
        {"between that handle and the key", 17.25F, false},
        {"between the last key and its out handle", 21, false},
        {"on the last out handle", 22, true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(curve->checkInsertConstraints(row.x), row.allowed) << row.name;
}

TEST_F(Constraints, OfAnInsertionIntoACurveWithoutKeysAllowAnything) {
    EXPECT_TRUE(manager->createCurve2D(0ULL)->checkInsertConstraints(5));
    EXPECT_TRUE(makeCurve(Keys{THREE[1]})->checkInsertConstraints(10));
}

TEST_F(Constraints, OfAnInsertionUseTheKeyWhereAHandleIsMissing) {
    manager->destroyPoint2D(key->getInTangent());
    EXPECT_TRUE(curve->checkInsertConstraints(9.75F));
}

} // namespace
