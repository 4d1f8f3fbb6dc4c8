#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationController.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"

#include <QMetaObject>
#include <ctime>
#include <iterator>
#include <map>
#include <random>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Spots = std::vector<Spot>;
using Keys = std::vector<Key>;

class Registry : public RegistryFixture {
  protected:
    kaAnimationManager* manager = kaAnimationManager::the();
};

TEST_F(Registry, IsOneQtObjectWithoutParent) {
    EXPECT_EQ(kaAnimationManager::the(), kaAnimationManager::the());
    EXPECT_EQ(manager->parent(), nullptr);
    EXPECT_STREQ(manager->metaObject()->className(), "kaAnimationManager");
    EXPECT_EQ(manager->qt_metacast("kaAnimationManager"), static_cast<void*>(manager));
    EXPECT_EQ(manager->qt_metacast("kaAnimationUnit"), nullptr);
    EXPECT_EQ(manager->metaObject()->methodCount(), QObject::staticMetaObject.methodCount())
        << "no own signals";
    EXPECT_EQ(manager->metaObject()->propertyCount(), QObject::staticMetaObject.propertyCount());
}

TEST_F(Registry, FactoriesRegisterUnderTheTabledNames) {
    const struct {
        const kaAnimationObject* object;
        const char* name;
        unsigned int type;
    } rows[] = {
        {manager->createPoint2D(0), "Point", 1},    {manager->createPoint2D(1.0F, 2.0F, 0), "Point", 1},
        {manager->createCurve2D(0ULL), "Curve", 2}, {manager->createUnit(0), "Block", 3},
        {manager->createUnit("u", 0), "u", 3},      {manager->createStreak(0), "Track", 4},
        {manager->createStreak("t", 0), "t", 4},    {manager->createStrip(0), "Clip", 5},
        {manager->createStrip("c", 0), "c", 5},     {manager->createSequence("q", 0), "q", 6},
        {manager->createSequence("", 0), "", 6},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.object->getName(), row.name);
        EXPECT_EQ(row.object->getTypeID(), row.type);
        EXPECT_EQ(manager->getObject(row.object->getId()), row.object);
    }
    EXPECT_EQ(manager->getObjects().size(), std::size(rows));
}

TEST_F(Registry, FactoriesTakeTheGivenIdOrDrawOne) {
    IdSequence ids;
    EXPECT_EQ(manager->createUnit(42)->getId(), 42ULL);
    EXPECT_EQ(manager->createStreak(0)->getId(), ids.next());
    EXPECT_EQ(manager->createStrip(43)->getId(), 43ULL);
    EXPECT_EQ(manager->createSequence("s", 0)->getId(), ids.next());
    EXPECT_EQ(manager->createField(0)->getId(), ids.next());
    EXPECT_EQ(manager->createField(44)->getId(), 44ULL);
    EXPECT_EQ(manager->createCurve2D(45)->getField(), ids.next()) << "its field draws all the same";
}

TEST_F(Registry, TypedLookupsAnswerOnlyTheirType) {
    const kaAnimationObject* objects[] = {manager->createPoint2D(1), manager->createCurve2D(2),
                                          manager->createUnit(3),    manager->createStreak(4),
                                          manager->createStrip(5),   manager->createSequence("s", 6)};
    for (kaUID id = 0; id <= 7; ++id) {
        SCOPED_TRACE(id);
        const kaAnimationObject* expected = id >= 1 && id <= 6 ? objects[id - 1] : nullptr;
        EXPECT_EQ(manager->getObject(id), expected);
        const kaAnimationObject* typed[] = {manager->getPoint2D(id), manager->getCurve2D(id),
                                            manager->getUnit(id),    manager->getStreak(id),
                                            manager->getStrip(id),   manager->getSequence(id)};
        for (kaUID type = 1; type <= 6; ++type)
            EXPECT_EQ(typed[type - 1], type == id ? expected : nullptr);
    }
}

/// Ids as documents may bring them: drawn, counted, or with all that tells them apart in one part of the
/// number.
class RegistryOf : public Registry, public testing::WithParamInterface<kaUID (*)(kaUID)> {};

TEST_P(RegistryOf, ThousandsThatComeAndGoFindsThoseThatAreThereAndNoOther) {
    constexpr kaUID Ids = 2000;
    std::map<kaUID, kaAnimationUnit*> there;
    std::mt19937 random(12);
    std::uniform_int_distribution<kaUID> any(1, Ids);
    for (int i = 0; i < 20000; ++i) {
        const kaUID id = GetParam()(any(random));
        const auto found = there.find(id);
        ASSERT_EQ(manager->getUnit(id), found != there.end() ? found->second : nullptr) << "step " << i;
        if (found != there.end()) {
            manager->destroyUnit(found->second);
            there.erase(found);
        } else {
            there.emplace(id, manager->createUnit(id));
        }
        if (i % 1000 != 999)
            continue;
        for (kaUID number = 0; number <= Ids; ++number)
            ASSERT_EQ(manager->getUnit(GetParam()(number)),
                      there.count(GetParam()(number)) > 0 ? there.at(GetParam()(number)) : nullptr);
        ASSERT_EQ(manager->getObjects().size(), there.size());
    }
}

INSTANTIATE_TEST_SUITE_P(Ids, RegistryOf,
                         testing::Values(
                             static_cast<kaUID (*)(kaUID)>([](kaUID number) { return number; }),
                             [](kaUID number) { return ~number; }, [](kaUID number) { return number << 20U; },
                             [](kaUID number) { return number << 32U; },
                             [](kaUID number) { return number << 52U; },
                             [](kaUID number) { return number * 1664525ULL + 1013904223ULL; },
                             [](kaUID number) { return number * number * number * 0x9E3779B97F4A7C15ULL; }));

TEST_F(Registry, FindsByNameTheSmallestId) {
    manager->createUnit("same", 9);
    const kaAnimationObject* smaller = manager->createStreak("same", 5);
    EXPECT_EQ(manager->getObject("same"), smaller);
    EXPECT_EQ(manager->getObject("Same"), nullptr);
    EXPECT_EQ(manager->getObject("sam"), nullptr);
    EXPECT_EQ(manager->getObject("other"), nullptr);
}

TEST_F(Registry, AnEmptyNameIsFoundNowhereAndNeverUnique) {
    EXPECT_TRUE(manager->isObjectNameUnique("any")) << "in an empty registry";
    EXPECT_FALSE(manager->isObjectNameUnique(""));
    manager->createSequence("", 0);
    EXPECT_EQ(manager->getObject(std::string()), nullptr);
    EXPECT_FALSE(manager->isObjectNameUnique(""));
    manager->createSequence("taken", 0);
    EXPECT_FALSE(manager->isObjectNameUnique("taken"));
    EXPECT_TRUE(manager->isObjectNameUnique("Taken"));
    EXPECT_TRUE(manager->isObjectNameUnique("take"));
}

TEST_F(Registry, NamesAreBytes) {
    const std::string withNul("a\0b", 3);
    const kaAnimationObject* object = manager->createUnit(withNul, 0);
    EXPECT_EQ(manager->getObject(withNul), object);
    EXPECT_EQ(manager->getObject("a"), nullptr);
    EXPECT_TRUE(manager->isObjectNameUnique("a"));
}

TEST_F(Registry, NamesOfKeysAndHandlesAreFoundToo) {
    const kaControlPoint2D* copy = manager->duplicatePoint2D(manager->createPoint2D(7));
    EXPECT_EQ(manager->getObject("InTangent"), copy->getInTangent());
    EXPECT_FALSE(manager->isObjectNameUnique("OutTangent"));
    EXPECT_FALSE(manager->isObjectNameUnique("Point"));
}

/// Random edits of what is called something: keys and handles with the module's names, others, and all kinds
/// of ends.
class NameEdits {
  public:
    explicit NameEdits(kaAnimationManager& manager) : _manager(manager) {}

    kaAnimationObject* firstCalled(const std::string& name) const {
        for (const auto& entry : _manager.getObjects())
            if (entry.second->getName() == name)
                return entry.second;
        return nullptr;
    }

    void next() {
        const auto objects = _manager.getObjects();
        if (objects.size() < 5 || _random() % 3 == 0)
            create();
        else
            edit(
                *std::next(objects.begin(), static_cast<std::ptrdiff_t>(_random() % objects.size()))->second);
    }

    const std::vector<std::string> names{
        "Point", "Curve", "InTangent", "Unnamed", "a", "b", "a name too long for itself"};

  private:
    void create() {
        switch (_random() % 4) {
        case 0:
            _manager.createPoint2D(0);
            return;
        case 1:
            _manager.duplicatePoint2D(_manager.createPoint2D(0));
            return;
        case 2:
            _manager.createCurve2D(0ULL);
            return;
        default:
            _manager.createUnit(names[_random() % names.size()], 0);
        }
    }

    void edit(kaAnimationObject& object) {
        switch (_random() % 6) {
        case 0:
            return object.setName(names[_random() % names.size()]);
        case 1:
            return object.setName(object.getName());
        case 2:
            return _manager.setID(_random() % 50 + 1, &object);
        case 3:           // behind the registry's back
#ifndef KA_WATCHED_MEMORY // what loses its entry to the object then is nobody's to free
            object.setId(_random() % 50 + 1);
#endif
            return;
        case 4:
            if (kaControlPoint2D* key = _manager.getPoint2D(object.getId()))
                delete key;
            return;
        default:
            _manager.destroyObject(&object);
        }
    }

    kaAnimationManager& _manager;
    std::mt19937 _random{11};
};

TEST_F(Registry, NamesFollowEveryEdit) {
    NameEdits edits(*manager);
    for (int step = 0; step < 1500; ++step) {
        edits.next();
        for (const std::string& name : edits.names) {
            kaAnimationObject* expected = edits.firstCalled(name);
            ASSERT_EQ(manager->getObject(name), expected) << name << ", step " << step;
            ASSERT_EQ(manager->isObjectNameUnique(name), expected == nullptr) << name << ", step " << step;
        }
    }
}

TEST_F(Registry, MapsAreCopiesInAscendingOrder) {
    manager->createUnit(9);
    manager->createUnit(3);
    manager->createPoint2D(5);
    manager->createField(8);
    manager->createField(2);
    std::vector<kaUID> ids;
    for (const auto& entry : manager->getObjects())
        ids.push_back(entry.first);
    EXPECT_THAT(ids, ElementsAre(3, 5, 9));
    auto fields = manager->getFields();
    EXPECT_EQ(fields.begin()->first, 2ULL);
    fields.clear();
    EXPECT_EQ(manager->getFields().size(), 2U);
}

class Duplication : public Registry {};

TEST_F(Duplication, GivesRegisteredCopiesWithFreshIdsByType) {
    kaAnimationObject* objects[] = {manager->createPoint2D(1), manager->createCurve2D(2),
                                    manager->createUnit(3), manager->createStreak(4),
                                    manager->createStrip(5)};
    for (kaAnimationObject* object : objects) {
        SCOPED_TRACE(object->getTypeID());
        const kaAnimationObject* copy = manager->duplicateObject(object);
        ASSERT_NE(copy, nullptr);
        EXPECT_NE(copy, object);
        EXPECT_EQ(copy->getTypeID(), object->getTypeID());
        EXPECT_NE(copy->getId(), object->getId());
        EXPECT_EQ(manager->getObject(copy->getId()), copy);
    }
}

TEST_F(Duplication, OfASequenceGoesOnlyThroughItsOwnOperation) {
    kaAnimationSequence* sequence = makeSequence("s", 3, 4);
    EXPECT_EQ(manager->duplicateObject(sequence), nullptr);
    const kaAnimationSequence* copy = manager->duplicateSequence(sequence);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getBegin(), 3.0F);
    EXPECT_EQ(manager->getSequence(copy->getId()), copy);
    EXPECT_NE(copy->getId(), sequence->getId());
}

TEST_F(Duplication, OfNullIsNull) {
    EXPECT_EQ(manager->duplicatePoint2D(nullptr), nullptr);
    EXPECT_EQ(manager->duplicateCurve2D(nullptr), nullptr);
    EXPECT_EQ(manager->duplicateUnit(nullptr, false), nullptr);
    EXPECT_EQ(manager->duplicateUnit(nullptr, true), nullptr);
    EXPECT_EQ(manager->duplicateStreak(nullptr), nullptr);
    EXPECT_EQ(manager->duplicateStrip(nullptr), nullptr);
    EXPECT_EQ(manager->duplicateSequence(nullptr), nullptr);
    EXPECT_EQ(manager->duplicateField(nullptr), nullptr);
    EXPECT_EQ(manager->duplicateObject(nullptr), nullptr);
}

TEST_F(Duplication, OfAFieldCopiesAllButTheId) {
    kaAnimationField* field = manager->createField(5);
    field->fcID = 1;
    field->nodeID = 2;
    field->name = "n";
    field->attribute = "a";
    field->value = 3.5F;
    field->valuePos = 4;
    field->dirty = false;
    const kaAnimationField* copy = manager->duplicateField(field);
    EXPECT_EQ(manager->getField(copy->getId()), copy);
    EXPECT_NE(copy->getId(), 5ULL);
    EXPECT_EQ(copy->fcID, 1ULL);
    EXPECT_EQ(copy->nodeID, 2ULL);
    EXPECT_EQ(copy->name, "n");
    EXPECT_EQ(copy->attribute, "a");
    EXPECT_EQ(copy->value, 3.5F);
    EXPECT_EQ(copy->valuePos, 4U);
    EXPECT_FALSE(copy->dirty);
}

class InsertingKeys : public Registry {
  protected:
    /// A straight curve from (0, 0) to (20, 10) over (10, 5).
    kaAnimationCurve2D* straight() {
        return makeCurve(Keys{
            {{0, 0}, {-5, 0}, {5, 2.5F}}, {{10, 5}, {5, 2.5F}, {15, 7.5F}}, {{20, 10}, {15, 7.5F}, {25, 0}}});
    }
};

TEST_F(InsertingKeys, AtAPlace) {
    kaAnimationCurve2D* curve = straight();
    EXPECT_TRUE(manager->createCurvePoint(curve, 7.25F, 3.5F, false, false, false));
    ASSERT_NE(curve->findPoint(7.25F), nullptr);
    EXPECT_EQ(curve->findPoint(7.25F)->getMaximum(), 3.5F);
    EXPECT_EQ(curve->getChildCount(), 4U);
    EXPECT_FALSE(manager->createCurvePoint(nullptr, 1.0F, 1.0F, false, false, true));
}

TEST_F(InsertingKeys, SnapsFramesAndValues) {
    kaAnimationCurve2D* curve = straight();
    EXPECT_TRUE(manager->createCurvePoint(curve, 7.5F, 3.5F, true, false, false));
    EXPECT_EQ(curve->findPoint(8.0F)->getMaximum(), 3.5F);
    EXPECT_TRUE(manager->createCurvePoint(curve, 3.25F, 2.5F, false, true, false));
    EXPECT_EQ(curve->findPoint(3.25F)->getMaximum(), 3.0F);
}

TEST_F(InsertingKeys, SnapsNegativeNumbersAsUnsigned) {
    // -3 as an unsigned 32-bit number is 4294967293, as a float 4294967296.
    kaAnimationCurve2D* curve = straight();
    EXPECT_TRUE(manager->createCurvePoint(curve, -3.25F, -1.0F, true, true, false));
    ASSERT_NE(curve->findPoint(4294967296.0F), nullptr);
    EXPECT_EQ(curve->findPoint(4294967296.0F)->getMaximum(), 4294967296.0F);
}

TEST_F(InsertingKeys, AtATakenPlaceNeedsReplace) {
    kaAnimationCurve2D* curve = straight();
    const kaUID old = curve->findPoint(10.0F)->getId();
    EXPECT_FALSE(manager->createCurvePoint(curve, 10.0F, 99.0F, false, false, false));
    EXPECT_EQ(curve->findPoint(10.0F)->getMaximum(), 5.0F);
    EXPECT_TRUE(manager->createCurvePoint(curve, 10.0F, 99.0F, false, false, true));
    EXPECT_EQ(curve->findPoint(10.0F)->getMaximum(), 99.0F);
    EXPECT_EQ(manager->getObject(old), nullptr);
    EXPECT_EQ(curve->getChildCount(), 3U);
    EXPECT_FALSE(manager->createCurvePoint(curve, 10.375F, 1.0F, true, false, false)) << "it snaps to 10";
}

TEST_F(InsertingKeys, AtAFrameTakesTheCurvesValue) {
    kaAnimationCurve2D* curve = makeCurve(Keys{{{0, 0}, {0, 0}, {10, 5}}, {{20, 10}, {10, 5}, {20, 10}}});
    EXPECT_TRUE(manager->createCurvePoint(curve, 10.0F, false));
    EXPECT_FLOAT_EQ(curve->findPoint(10.0F)->getMaximum(), 5.0F);
}

TEST_F(InsertingKeys, AtAFrameOutsideTheCurveIsRefused) {
    kaAnimationCurve2D* curve = straight();
    EXPECT_FALSE(manager->createCurvePoint(curve, -0.5F, true));
    EXPECT_FALSE(manager->createCurvePoint(curve, 20.5F, true));
    EXPECT_FALSE(manager->createCurvePoint(nullptr, 5.0F, true));
    EXPECT_EQ(curve->getChildCount(), 3U);
}

TEST_F(InsertingKeys, AtAFrameWithAKeyNeedsReplace) {
    kaAnimationCurve2D* curve = straight();
    EXPECT_FALSE(manager->createCurvePoint(curve, 10.0F, false));
    EXPECT_EQ(curve->getChildCount(), 3U);
    // Once the key at 10 is gone the outer handles at 5 and 15 leave room, and the curve is sampled without
    // it.
    EXPECT_TRUE(manager->createCurvePoint(curve, 10.0F, true));
    EXPECT_EQ(curve->getChildCount(), 3U);
}

TEST_F(InsertingKeys, AtAFrameWithAKeyLosesItEvenWhereTheHandlesRefuse) {
    kaAnimationCurve2D* curve = straight();
    place(*curve->findPoint(0.0F)->getOutTangent(), {12, 0});
    const kaUID old = curve->findPoint(10.0F)->getId();
    EXPECT_FALSE(manager->createCurvePoint(curve, 10.0F, true));
    EXPECT_EQ(manager->getObject(old), nullptr);
    EXPECT_EQ(curve->getChildCount(), 2U);
}

TEST_F(InsertingKeys, AtAFrameWithAKeyLosesItEvenWhereSamplingRefuses) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 5}});
    const kaUID old = curve->findPoint(10.0F)->getId();
    EXPECT_FALSE(manager->createCurvePoint(curve, 10.0F, true)) << "one key is left, which has no value";
    EXPECT_EQ(manager->getObject(old), nullptr);
    EXPECT_EQ(curve->getChildCount(), 1U);
}

TEST_F(InsertingKeys, AtAFrameBetweenHandlesIsRefused) {
    kaAnimationCurve2D* curve = straight();
    EXPECT_FALSE(manager->createCurvePoint(curve, 4.5F, true));
    EXPECT_FALSE(manager->createCurvePoint(curve, 5.5F, true));
    EXPECT_EQ(curve->getChildCount(), 3U);
    EXPECT_TRUE(manager->createCurvePoint(curve, 5.0F, true));
}

class CopyBufferAtShutDown : public Registry {
  protected:
    static int calls;
    static bool last;
};

int CopyBufferAtShutDown::calls = 0;
bool CopyBufferAtShutDown::last = false;

TEST_F(CopyBufferAtShutDown, IsEmptiedAndTheHostToldOnlyWhenThereWasSomething) {
    calls = 0;
    kaAnimationManager::setUpdatePasteCB([](bool filled) {
        ++calls;
        last = filled;
    });
    manager->terminate();
    EXPECT_EQ(calls, 0);
    manager->copy(manager->createUnit(5));
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(last);
    EXPECT_EQ(manager->getObjects().size(), 2U);
    manager->terminate();
    EXPECT_EQ(calls, 2);
    EXPECT_FALSE(last);
    EXPECT_EQ(manager->getObjects().size(), 1U);
    EXPECT_THAT(manager->getCopyBuffer(), IsEmpty());
}

TEST_F(Registry, InitSeedsTheIdsFromTheCalendar) {
    const auto before = static_cast<unsigned long long>(std::time(nullptr));
    manager->init(nullptr);
    const unsigned long long drawn = manager->createUID();
    const auto after = static_cast<unsigned long long>(std::time(nullptr));
    bool found = false;
    for (unsigned long long second = before; second <= after; ++second) {
        IdSequence ids(second); // init has drawn one
        found = found || ids.next() == drawn;
    }
    EXPECT_TRUE(found);
}

} // namespace
