#include "Builders.h"
#include "RegistryFixture.h"
#include "Rig.h"
#include "TestScene.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGGroup.h>
#include <memory>
#include <random>
#include <set>

namespace {

using namespace binding_test;
using ka_test::TestScene;
using Units = std::vector<kaAnimationUnit*>;
using Curves = std::vector<kaAnimationCurve2D*>;
using Fields = std::vector<kaAnimationField*>;

class SceneQuery : public ka_test::RegistryFixture {
  protected:
    kaAnimationManager& manager = *kaAnimationManager::the();
};

TEST_F(SceneQuery, RootIsKeptUntilItIsSetToNullOrDestroyed) {
    EXPECT_EQ(kaAnimationManager::getSceneRootNode(), osg::NullFC);
    {
        const TestScene scene;
        kaAnimationManager::setSceneRootNode(scene.root());
        EXPECT_EQ(kaAnimationManager::getSceneRootNode(), scene.root());
    }
    EXPECT_EQ(kaAnimationManager::getSceneRootNode(), osg::NullFC);
    manager.checkUniqueAttributes();
    manager.completeAnimationFieldNodes();
    manager.changeAnimAttachmentIDs(1, 2);

    const TestScene scene;
    kaAnimationManager::setSceneRootNode(scene.root());
    kaAnimationManager::setSceneRootNode(osg::NullFC);
    EXPECT_EQ(kaAnimationManager::getSceneRootNode(), osg::NullFC);
}

TEST_F(SceneQuery, UnitsAreTheTopLevelOnesInOrderOfTheirIds) {
    kaAnimationUnit* late = manager.createUnit(30);
    kaAnimationUnit* early = manager.createUnit(10);
    kaAnimationUnit* hidden = manager.createUnit(20);
    hidden->setInternal(true);
    kaAnimationUnit* onTrack = manager.createUnit(40);
    ka_test::makeTrack({onTrack});
    kaAnimationUnit* orphan = manager.createUnit(50);
    orphan->setParent(987654321);
    EXPECT_EQ(manager.getSceneUnits(), (Units{early, late, orphan}));

    early->setActive(false);
    hidden->setActive(true);
    EXPECT_EQ(manager.getActiveSceneUnits(), (Units{late, orphan}));
}

TEST_F(SceneQuery, StripsAreTheTopLevelOnesInOrderOfTheirIds) {
    kaAnimationStrip* late = manager.createStrip(30);
    kaAnimationStrip* early = manager.createStrip(10);
    kaAnimationStrip* inner = manager.createStrip(20);
    late->addObject(inner);
    manager.createStrip(5)->setInternal(true);
    EXPECT_EQ(manager.getSceneStrips(), (std::vector<kaAnimationStrip*>{early, late}));
}

TEST_F(SceneQuery, ReferencedFieldsComeOncePerCurve) {
    kaAnimationField* field = manager.createField(7);
    field->fcID = 77;
    kaAnimationField* other = manager.createField(8);
    other->fcID = 78;
    manager.createCurve2D(field, "a", 30, false);
    manager.createCurve2D(other, "b", 20, false);
    manager.createCurve2D(field, "c", 10, false);
    manager.createCurve2D(nullptr, "d", 40, false);
    EXPECT_EQ(manager.getReferencedFields(77), (Fields{field, field}));
    EXPECT_EQ(manager.getReferencedFields(78), (Fields{other}));
    EXPECT_TRUE(manager.getReferencedFields(79).empty());
}

TEST_F(SceneQuery, ReferencedCurvesComeInOrderOfTheirIds) {
    kaAnimationField* field = manager.createField(7);
    kaAnimationCurve2D* late = manager.createCurve2D(field, "a", 30, false);
    manager.createCurve2D(0);
    kaAnimationCurve2D* early = manager.createCurve2D(field, "b", 10, false);
    EXPECT_EQ(manager.getReferencedCurves(7), (Curves{early, late}));
    EXPECT_TRUE(manager.getReferencedCurves(0).empty());
    manager.createCurve2D(nullptr, "unbound", 0, false);
    EXPECT_TRUE(manager.getReferencedCurves(0).empty());
    manager.destroyField(field);
    EXPECT_TRUE(manager.getReferencedCurves(7).empty()) << "the field is not registered";
}

/// Random edits of curves and of the ids of curves and fields.
class CurveEdits {
  public:
    explicit CurveEdits(kaAnimationManager& manager) : _manager(manager) {
        for (int i = 0; i < 4; ++i)
            fields.push_back(manager.createField(0));
    }
    CurveEdits(const CurveEdits&) = delete;
    CurveEdits& operator=(const CurveEdits&) = delete;
    /// Frees those that stand under no id: another took theirs, or they never had one.
    ~CurveEdits() {
        for (kaAnimationCurve2D* curve : _made)
            if (_manager.getObject(curve->getId()) != curve)
                delete curve;
    }

    /// What a look at every curve tells.
    Curves curvesOf(kaUID field) const {
        Curves found;
        for (const auto& entry : _manager.getObjects()) {
            auto* curve = static_cast<kaAnimationCurve2D*>(entry.second);
            if (entry.second->getTypeID() == KA_TYPE_CURVE && curve->getField() == field)
                found.push_back(curve);
        }
        return found;
    }

    void next() {
        Curves curves;
        for (const auto& entry : _manager.getObjects())
            if (entry.second->getTypeID() == KA_TYPE_CURVE)
                curves.push_back(static_cast<kaAnimationCurve2D*>(entry.second));
        if (curves.size() < 5)
            make(0);
        else
            edit(*any(curves));
    }

    Fields fields;

  private:
    template <class List>
    auto any(const List& list) -> typename List::value_type {
        return list[_random() % list.size()];
    }

    void edit(kaAnimationCurve2D& curve) {
        switch (_random() % 12) {
        case 0:
            return curve.setAnimationField(any(fields));
        case 1:
            return curve.setAnimationField(nullptr);
        case 2:
            return curve.setField(4711);
        case 3:
            return _manager.setID(_random() % 50 + 1, &curve);
        case 4: // behind the registry's back
            return curve.setId(_random() % 50 + 1);
        case 5:
            _made.erase(&curve);
            return _manager.destroyCurve2D(&curve);
        case 6:
            _made.erase(&curve);
            delete &curve;
            return;
        case 7:
            _made.insert(_manager.duplicateCurve2D(&curve));
            return;
        case 8:
            return _manager.changeFieldReferences(any(fields), any(fields));
        case 9:
            return _manager.setID(_random() % 50 + 1, any(fields));
        case 10: // the id may be taken: then the curve is not registered
            return createUnderAnyID();
        default:
            make(0);
        }
    }

    kaAnimationCurve2D* make(kaUID id) {
        return *_made.insert(_manager.createCurve2D(any(fields), "curve", id, false)).first;
    }

    void createUnderAnyID() { make(_random() % 50 + 1)->setAnimationField(any(fields)); }

    kaAnimationManager& _manager;
    std::mt19937 _random{17};
    std::set<kaAnimationCurve2D*> _made; ///< those that are still there
};

TEST_F(SceneQuery, ReferencedCurvesFollowEveryEditOfCurvesAndIds) {
    CurveEdits edits(manager);
    for (int step = 0; step < 4000; ++step) {
        edits.next();
        for (const kaAnimationField* field : edits.fields)
            ASSERT_EQ(manager.getReferencedCurves(field->getId()), edits.curvesOf(field->getId()))
                << "step " << step;
    }
}

/// A field that takes another's curves hands on only those that it had itself.
TEST_F(SceneQuery, ReferencesMoveOneStepAtATime) {
    kaAnimationField* a = manager.createField(1);
    kaAnimationField* b = manager.createField(2);
    kaAnimationCurve2D* first = manager.createCurve2D(a, "first", 20, false);
    kaAnimationCurve2D* second = manager.createCurve2D(b, "second", 10, false);
    manager.changeFieldReferences(a, b);
    EXPECT_EQ(manager.getReferencedCurves(2), (Curves{second, first}));
    EXPECT_TRUE(manager.getReferencedCurves(1).empty());
    manager.changeFieldReferences(b, b);
    EXPECT_EQ(manager.getReferencedCurves(2), (Curves{second, first}));
    manager.changeFieldReferences(b, a);
    EXPECT_EQ(manager.getReferencedCurves(1), (Curves{second, first}));
}

/// A record that was made under a taken id has no entry, so no curve names it, whatever its id says.
TEST_F(SceneQuery, AFieldWithoutEntryHasNoReferences) {
    kaAnimationField* entered = manager.createField(1);
    kaAnimationField* second = manager.createField(1);
    kaAnimationField* target = manager.createField(2);
    kaAnimationCurve2D* curve = manager.createCurve2D(entered, "curve", 10, false);
    manager.changeFieldReferences(second, target);
    EXPECT_EQ(manager.getReferencedCurves(1), Curves{curve});
    delete second;
}

TEST_F(SceneQuery, FieldsOfANodeAreMadeOnDemand) {
    TestScene scene;
    const osg::NodePtr node = scene.add<osg::Group>("group");
    const Fields fields = manager.getAnimationFields(node);
    EXPECT_EQ(attributesOf(fields), (std::vector<std::string>{"visible"}));
    EXPECT_EQ(manager.getAnimationFields(node), fields);
    EXPECT_TRUE(manager.getAnimationFields(osg::NullFC).empty());
    const osg::NodePtr bare = scene.addNode("bare", osg::NullFC);
    EXPECT_TRUE(manager.getAnimationFields(bare).empty());
    EXPECT_EQ(kaAnimationUtils::getAnimationAttachment(bare), osg::NullFC);
}

TEST_F(SceneQuery, AnAttachmentWithoutFieldsIsLeftWithoutFields) {
    TestScene scene;
    const osg::NodePtr node = scene.add<osg::Group>("group");
    kaAnimationUtils::createAnimationAttachment(node, false);
    EXPECT_TRUE(manager.getAnimationFields(node).empty());
}

TEST_F(SceneQuery, OneUnitOfANodeCanBeTheOnlyActiveOne) {
    TestScene scene;
    const osg::NodePtr node = scene.addTransform("arm");
    kaAnimationUnit* chosen = manager.createUnit(10);
    kaAnimationUnit* other = manager.createUnit(20);
    kaAnimationUnit* elsewhere = manager.createUnit(30);
    kaAnimationCurve2D* curve = manager.createCurve2D(40);
    for (kaAnimationObject* object : std::vector<kaAnimationObject*>{chosen, other, curve})
        kaAnimationUtils::addAnimationObject(node, object);
    chosen->setNodeID(node.getFieldContainerId());
    chosen->setActive(false);
    manager.setExclusiveActiveNodeUnit(chosen);
    EXPECT_FALSE(chosen->isActive()) << "its own flag is not touched";
    EXPECT_FALSE(other->isActive());
    EXPECT_TRUE(elsewhere->isActive());
    EXPECT_TRUE(curve->isActive());

    other->setActive(true);
    chosen->setNodeID(0);
    manager.setExclusiveActiveNodeUnit(chosen);
    manager.setExclusiveActiveNodeUnit(nullptr);
    EXPECT_TRUE(other->isActive());
}

} // namespace
