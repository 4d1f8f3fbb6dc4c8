#include "ReferenceTangents.h"
#include "RegistryFixture.h"
#include "kaAnimationManager.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace ka_test;

namespace {

using Point = kaControlPoint2D;

enum class Neighbours { Both, Previous, Next };

const char* nameOf(Neighbours neighbours) {
    switch (neighbours) {
    case Neighbours::Both:
        return "both";
    case Neighbours::Previous:
        return "only previous";
    default:
        return "only next";
    }
}

/// A key, and the keys before and after it where the situation has them.
struct Geometry {
    const char* name;
    Spot previous;
    Spot key;
    Spot next;
};

class Tangents : public RegistryFixture {
  protected:
    /// The middle key of a curve, its handles far away from where any rule puts them.
    Point* keyBetween(const Geometry& geometry, Neighbours neighbours) {
        std::vector<Spot> spots = {geometry.key};
        if (neighbours != Neighbours::Next)
            spots.insert(spots.begin(), geometry.previous);
        if (neighbours != Neighbours::Previous)
            spots.push_back(geometry.next);
        Point* key = makeCurve(spots)->findPoint(geometry.key.x);
        place(*key->getInTangent(), {-777, -777});
        place(*key->getOutTangent(), {777, 777});
        return key;
    }

    static void expectNear(const Spot& actual, double x, double y, double scale) {
        EXPECT_NEAR(static_cast<double>(actual.x), x, scale * 1e-6);
        EXPECT_NEAR(static_cast<double>(actual.y), y, scale * 1e-6);
    }
};

const Geometry UNEVEN = {"uneven", {0, 0}, {10, 20}, {12, 21}};

struct HandWorked {
    unsigned int type;
    unsigned int mode;
    Neighbours neighbours;
    Spot in;
    Spot out;
};

// Previous (0, 0), key (10, 20), next (12, 21): slopes 2 back, 0.5 ahead, 1.75 across; halves 5 and 1; thirds
// of the spans 12, 10 and 2 are 4, 3.3333333 and 0.6666667. Along slope 2 the direction is (0.4472136,
// 0.8944272), along 0.5 (0.8944272, 0.4472136), along 1.75 (0.4961389, 0.8682431).
const HandWorked TABLE[] = {
    {Point::TANGENT_BROKEN,
     Point::LENGTH_THIRD,
     Neighbours::Both,
     {8.2111456F, 16.4222912F},
     {13.5777088F, 21.7888544F}},
    {Point::TANGENT_BROKEN,
     Point::LENGTH_THIRD,
     Neighbours::Previous,
     {6.6666667F, 13.3333333F},
     {13.3333333F, 20}},
    {Point::TANGENT_BROKEN,
     Point::LENGTH_THIRD,
     Neighbours::Next,
     {9.3333333F, 20},
     {10.6666667F, 20.3333333F}},
    {Point::TANGENT_BROKEN, Point::LENGTH_HALF, Neighbours::Both, {5, 10}, {11, 20.5F}},
    {Point::TANGENT_BROKEN, Point::LENGTH_HALF, Neighbours::Previous, {5, 10}, {15, 20}},
    {Point::TANGENT_BROKEN, Point::LENGTH_HALF, Neighbours::Next, {9, 20}, {11, 20.5F}},
    {Point::TANGENT_BROKEN,
     Point::LENGTH_FIXED,
     Neighbours::Both,
     {9.1055728F, 18.2111456F},
     {11.7888544F, 20.8944272F}},
    {Point::TANGENT_BROKEN, Point::LENGTH_FIXED, Neighbours::Previous, {9.1055728F, 18.2111456F}, {12, 20}},
    {Point::TANGENT_BROKEN, Point::LENGTH_FIXED, Neighbours::Next, {8, 20}, {11.7888544F, 20.8944272F}},
    {Point::TANGENT_FLAT, Point::LENGTH_THIRD, Neighbours::Both, {6, 20}, {14, 20}},
    {Point::TANGENT_FLAT, Point::LENGTH_THIRD, Neighbours::Previous, {6.6666667F, 20}, {13.3333333F, 20}},
    {Point::TANGENT_FLAT, Point::LENGTH_THIRD, Neighbours::Next, {9.3333333F, 20}, {10.6666667F, 20}},
    {Point::TANGENT_FLAT, Point::LENGTH_HALF, Neighbours::Both, {6, 20}, {11, 20}},
    {Point::TANGENT_FLAT, Point::LENGTH_HALF, Neighbours::Previous, {5, 20}, {15, 20}},
    {Point::TANGENT_FLAT, Point::LENGTH_HALF, Neighbours::Next, {9, 20}, {11, 20}},
    {Point::TANGENT_FLAT, Point::LENGTH_FIXED, Neighbours::Both, {8, 20}, {12, 20}},
    {Point::TANGENT_FLAT, Point::LENGTH_FIXED, Neighbours::Previous, {8, 20}, {12, 20}},
    {Point::TANGENT_FLAT, Point::LENGTH_FIXED, Neighbours::Next, {8, 20}, {12, 20}},
    {Point::TANGENT_SMOOTH, Point::LENGTH_THIRD, Neighbours::Both, {6, 13}, {14, 27}},
    {Point::TANGENT_SMOOTH,
     Point::LENGTH_THIRD,
     Neighbours::Previous,
     {6.6666667F, 13.3333333F},
     {13.3333333F, 26.6666667F}},
    {Point::TANGENT_SMOOTH,
     Point::LENGTH_THIRD,
     Neighbours::Next,
     {9.3333333F, 19.6666667F},
     {10.6666667F, 20.3333333F}},
    {Point::TANGENT_SMOOTH, Point::LENGTH_HALF, Neighbours::Both, {6, 13}, {11, 21.75F}},
    {Point::TANGENT_SMOOTH, Point::LENGTH_HALF, Neighbours::Previous, {5, 10}, {15, 30}},
    {Point::TANGENT_SMOOTH, Point::LENGTH_HALF, Neighbours::Next, {9, 19.5F}, {11, 20.5F}},
    {Point::TANGENT_SMOOTH,
     Point::LENGTH_FIXED,
     Neighbours::Both,
     {9.0077221F, 18.2635137F},
     {10.9922779F, 21.7364863F}},
    {Point::TANGENT_SMOOTH,
     Point::LENGTH_FIXED,
     Neighbours::Previous,
     {9.1055728F, 18.2111456F},
     {10.8944272F, 21.7888544F}},
    {Point::TANGENT_SMOOTH,
     Point::LENGTH_FIXED,
     Neighbours::Next,
     {8.2111456F, 19.1055728F},
     {11.7888544F, 20.8944272F}},
    {Point::TANGENT_FORWARD, Point::LENGTH_THIRD, Neighbours::Both, {6, 18}, {14, 22}},
    {Point::TANGENT_FORWARD, Point::LENGTH_THIRD, Neighbours::Previous, {6.6666667F, 20}, {13.3333333F, 20}},
    {Point::TANGENT_FORWARD,
     Point::LENGTH_THIRD,
     Neighbours::Next,
     {9.3333333F, 19.6666667F},
     {10.6666667F, 20.3333333F}},
    {Point::TANGENT_FORWARD, Point::LENGTH_HALF, Neighbours::Both, {6, 18}, {11, 20.5F}},
    {Point::TANGENT_FORWARD, Point::LENGTH_HALF, Neighbours::Previous, {5, 20}, {15, 20}},
    {Point::TANGENT_FORWARD, Point::LENGTH_HALF, Neighbours::Next, {9, 19.5F}, {11, 20.5F}},
    {Point::TANGENT_FORWARD,
     Point::LENGTH_FIXED,
     Neighbours::Both,
     {8.2111456F, 19.1055728F},
     {11.7888544F, 20.8944272F}},
    {Point::TANGENT_FORWARD, Point::LENGTH_FIXED, Neighbours::Previous, {8, 20}, {12, 20}},
    {Point::TANGENT_FORWARD,
     Point::LENGTH_FIXED,
     Neighbours::Next,
     {8.2111456F, 19.1055728F},
     {11.7888544F, 20.8944272F}},
    {Point::TANGENT_COLLAPSED, Point::LENGTH_HALF, Neighbours::Both, {10, 20}, {10, 20}},
    {Point::TANGENT_COLLAPSED, Point::LENGTH_FIXED, Neighbours::Next, {10, 20}, {10, 20}},
};

TEST_F(Tangents, StandWhereTheHandWorkedTablePutsThem) {
    for (const HandWorked& row : TABLE) {
        SCOPED_TRACE(testing::Message()
                     << "type " << row.type << " mode " << row.mode << ", " << nameOf(row.neighbours));
        Point* key = keyBetween(UNEVEN, row.neighbours);
        key->setTangentType(row.type);
        key->setTangentLengthMode(row.mode);
        ASSERT_TRUE(key->computeTangents());
        expectNear(spotOf(*key->getInTangent()), static_cast<double>(row.in.x), static_cast<double>(row.in.y),
                   10);
        expectNear(spotOf(*key->getOutTangent()), static_cast<double>(row.out.x),
                   static_cast<double>(row.out.y), 10);
    }
}

TEST_F(Tangents, FollowThePlainComputationForEveryTypeLengthAndNeighbourhood) {
    const Geometry geometries[] = {
        UNEVEN,
        {"level", {-3, 5}, {4, 5}, {9, 5}},
        {"peak", {0, -10}, {3, 40}, {9, -7}},
        {"steep", {1, 0}, {1.5F, 900}, {2.25F, -100}},
        {"narrow before", {9.875F, 1}, {10, 2}, {110, 3}},
        {"negative frames", {-250, 0.25F}, {-100, -0.5F}, {-96, 8}},
    };
    const unsigned int types[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 17, 32, 0xFFFFFFFFU};
    const unsigned int modes[] = {4, 32, 64, 0, 1, 36, 128, 0xFFFFFFFFU};
    for (const Geometry& geometry : geometries)
        for (Neighbours neighbours : {Neighbours::Both, Neighbours::Previous, Neighbours::Next}) {
            Point* key = keyBetween(geometry, neighbours);
            for (unsigned int type : types)
                for (unsigned int mode : modes) {
                    SCOPED_TRACE(testing::Message() << geometry.name << ", " << nameOf(neighbours)
                                                    << ", type " << type << " mode " << mode);
                    key->setTangentType(type);
                    key->setTangentLengthMode(mode);
                    ASSERT_TRUE(key->computeTangents());
                    const bool hasPrevious = neighbours != Neighbours::Next;
                    const bool hasNext = neighbours != Neighbours::Previous;
                    const Handles expected =
                        referenceHandles(type, mode, geometry.key,
                                         hasPrevious ? std::optional<Spot>(geometry.previous) : std::nullopt,
                                         hasNext ? std::optional<Spot>(geometry.next) : std::nullopt);
                    expectNear(spotOf(*key->getInTangent()), expected.inX, expected.inY, 1000);
                    expectNear(spotOf(*key->getOutTangent()), expected.outX, expected.outY, 1000);
                }
        }
}

TEST_F(Tangents, SmoothHalfIsCappedAtAThirdOfTheSpan) {
    // Neighbours at x - 10 and x + 2: the in handle reaches back min(5, 4) frames, the out handle min(1, 4).
    Point* key = keyBetween({"", {90, 0}, {100, 0}, {102, 0}}, Neighbours::Both);
    ASSERT_TRUE(key->computeTangents());
    EXPECT_FLOAT_EQ(spotOf(*key->getInTangent()).x, 96.0F);
    EXPECT_FLOAT_EQ(spotOf(*key->getOutTangent()).x, 101.0F);
}

TEST_F(Tangents, FixedLengthIsMeasuredAlongTheSlope) {
    Point* key =
        keyBetween({"", {0, 0}, {4, 3}, {8, 6}}, Neighbours::Both); // slope 3/4: direction (0.8, 0.6)
    key->setTangentLengthMode(Point::LENGTH_FIXED);
    for (unsigned int type : {Point::TANGENT_BROKEN, Point::TANGENT_SMOOTH, Point::TANGENT_FORWARD}) {
        key->setTangentType(type);
        ASSERT_TRUE(key->computeTangents());
        expectNear(spotOf(*key->getInTangent()), 2.4, 1.8, 1);
        expectNear(spotOf(*key->getOutTangent()), 5.6, 4.2, 1);
    }
}

TEST_F(Tangents, ForwardOnTheLastKeyIsHorizontal) {
    Point* key = keyBetween(UNEVEN, Neighbours::Previous);
    key->setTangentType(Point::TANGENT_FORWARD);
    for (unsigned int mode : {Point::LENGTH_THIRD, Point::LENGTH_FIXED, Point::LENGTH_HALF}) {
        key->setTangentLengthMode(mode);
        ASSERT_TRUE(key->computeTangents());
        EXPECT_EQ(spotOf(*key->getInTangent()).y, 20.0F);
        EXPECT_EQ(spotOf(*key->getOutTangent()).y, 20.0F);
    }
}

TEST_F(Tangents, UserHandlesAreNeverChanged) {
    for (Neighbours neighbours : {Neighbours::Both, Neighbours::Previous, Neighbours::Next}) {
        Point* key = keyBetween(UNEVEN, neighbours);
        key->setTangentType(Point::TANGENT_USER);
        EXPECT_FALSE(key->computeTangents());
        EXPECT_EQ(spotOf(*key->getInTangent()).x, -777.0F);
        EXPECT_EQ(spotOf(*key->getOutTangent()).y, 777.0F);
    }
}

TEST_F(Tangents, NeighboursAreTheKeysByFrameWhateverTheirOrderInTheCurve) {
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{0, 0}, {10, 0}, {20, 0}});
    Point* key = curve->findPoint(0.0F);
    Point* last = curve->findPoint(20.0F);
    key->setPosition(15.0F, 0.0F); // between the others now, while the list still has it first
    ASSERT_TRUE(key->computeTangents());
    EXPECT_FLOAT_EQ(spotOf(*key->getInTangent()).x, 15.0F - std::min(2.5F, 10.0F / 3.0F));
    ASSERT_TRUE(last->computeTangents());
    EXPECT_FLOAT_EQ(spotOf(*last->getInTangent()).x, 17.5F);
}

TEST_F(Tangents, KeysThatTheRegistryDoesNotKnowAreNoNeighbours) {
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{0, 0}, {10, 0}, {20, 0}});
    Point* middle = curve->findPoint(10.0F);
    Point* last = curve->findPoint(20.0F);
    middle->setParent(0);
    kaAnimationManager::the()->destroyPoint2D(middle);
    ASSERT_TRUE(last->computeTangents());
    EXPECT_FLOAT_EQ(spotOf(*last->getInTangent()).x, 10.0F);
}

TEST_F(Tangents, AVerticalSlopeIsUsedAsItComes) {
    const float infinity = std::numeric_limits<float>::infinity();
    Point* key = keyBetween({"", {0, -infinity}, {10, 3}, {20, 3}}, Neighbours::Both);
    key->setTangentType(Point::TANGENT_BROKEN);
    EXPECT_TRUE(key->computeTangents());
    EXPECT_EQ(spotOf(*key->getInTangent()).x, 5.0F);
    EXPECT_EQ(spotOf(*key->getInTangent()).y, -infinity);
    EXPECT_EQ(spotOf(*key->getOutTangent()).x, 15.0F);
    EXPECT_EQ(spotOf(*key->getOutTangent()).y, 3.0F);
}

TEST_F(Tangents, AnUndefinedSlopeIsUsedAsItComes) {
    const float infinity = std::numeric_limits<float>::infinity();
    Point* key = keyBetween({"", {0, infinity}, {10, infinity}, {20, 3}}, Neighbours::Both);
    key->setTangentType(Point::TANGENT_BROKEN);
    EXPECT_TRUE(key->computeTangents());
    EXPECT_EQ(spotOf(*key->getInTangent()).x, 5.0F);
    EXPECT_TRUE(std::isnan(spotOf(*key->getInTangent()).y));
}

class TangentRefusals : public Tangents {
  protected:
    void expectRefused(Point* key) {
        const Key before = keyOf(*key);
        EXPECT_FALSE(key->computeTangents());
        const Key after = keyOf(*key);
        EXPECT_EQ(before.in.x, after.in.x);
        EXPECT_EQ(before.in.y, after.in.y);
        EXPECT_EQ(before.out.x, after.out.x);
        EXPECT_EQ(before.out.y, after.out.y);
    }
};

TEST_F(TangentRefusals, AKeyAlone) {
    Point* key = makeCurve(std::vector<Spot>{{10, 20}})->findPoint(10.0F);
    place(*key->getInTangent(), {1, 2});
    expectRefused(key);
}

TEST_F(TangentRefusals, AKeyThatIsNotInItsParentsMap) {
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{0, 0}, {10, 0}});
    Point* stranger = kaAnimationManager::the()->createPoint2D(5.0F, 0.0F, 0);
    stranger->setParent(curve->getId());
    expectRefused(stranger);
}

TEST_F(TangentRefusals, AStrangerAtTheFrameOfAKeyIsPlacedLikeIt) {
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{0, 0}, {10, 8}, {20, 0}});
    Point* stranger = kaAnimationManager::the()->createPoint2D(10.0F, 2.0F, 0);
    stranger->setParent(curve->getId());
    stranger->setTangentType(Point::TANGENT_BROKEN);
    ASSERT_TRUE(stranger->computeTangents()); // the frame is a key of the curve; its own value counts
    expectNear(spotOf(*stranger->getInTangent()), 5.0, 1.0, 1);
    expectNear(spotOf(*stranger->getOutTangent()), 15.0, 1.0, 1);
}

TEST_F(TangentRefusals, NoParentAParentThatIsGoneOrNoCurve) {
    Point* key = keyBetween(UNEVEN, Neighbours::Both);
    const kaUID curve = key->getParent();
    key->setParent(0);
    expectRefused(key);
    key->setParent(123456789);
    expectRefused(key);
    key->setParent(kaAnimationManager::the()->createUnit(0)->getId());
    expectRefused(key);
    key->setParent(key->getId());
    expectRefused(key);
    key->setParent(curve);
    EXPECT_TRUE(key->computeTangents());
}

TEST_F(TangentRefusals, AMissingHandle) {
    Point* key = keyBetween(UNEVEN, Neighbours::Both);
    kaAnimationManager::the()->destroyPoint2D(key->getInTangent());
    expectRefused(key);
    key = keyBetween(UNEVEN, Neighbours::Both);
    kaAnimationManager::the()->destroyPoint2D(key->getOutTangent());
    expectRefused(key);
}

TEST_F(TangentRefusals, AHandle) {
    Point* key = keyBetween(UNEVEN, Neighbours::Both);
    EXPECT_FALSE(key->getInTangent()->computeTangents());
}

} // namespace
