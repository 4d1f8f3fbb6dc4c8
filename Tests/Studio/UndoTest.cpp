#include "RandomEdits.h"
#include "RegistryDump.h"
#include "RegistryFixture.h"
#include "TestScene.h"
#include "document/KeyDrag.h"

#include <cstdlib>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>

namespace ka::studio {

namespace {

using testing::RandomEdits;
using testing::registryDump;

/// Two nodes with a block of three curves each, laid out in a clip, and a document that is open on them.
class Undo : public ka_test::RegistryFixture {
  protected:
    void SetUp() override {
        RegistryFixture::SetUp();
        kaAnimationManager* manager = kaAnimationManager::the();
        manager->addAnimationAttributes("translation,scale");
        _scene = std::make_unique<ka_test::TestScene>();
        kaAnimationManager::setSceneRootNode(_scene->root());
        kaAnimationStrip* clip = manager->createStrip("Take", 0);
        for (const char* name : {"arm", "leg"}) {
            const osg::NodePtr node = _scene->addTransform(name);
            std::vector<kaAnimationCurve2D*> curves;
            for (const char* attribute : {"translationX", "rotationY", "scaleZ"}) {
                kaAnimationCurve2D* curve =
                    manager->createCurve2D(manager->getField(node, attribute), attribute, 0, true);
                for (int i = 0; i < 8; ++i)
                    manager->createCurvePoint(curve, static_cast<float>(i * 10), static_cast<float>(i % 3),
                                              false, false, false);
                curves.push_back(curve);
            }
            clip->insertObject(manager->createUnit(curves, name, 0, true));
        }
        _curve = manager->getObjects(KA_TYPE_CURVE).front()->getId();
    }

    void TearDown() override {
        _scene.reset();
        RegistryFixture::TearDown();
    }

    kaAnimationCurve2D& curve() { return *kaAnimationManager::the()->getCurve2D(_curve); }

    Document _document;
    std::unique_ptr<ka_test::TestScene> _scene;
    kaUID _curve = 0;
};

TEST_F(Undo, BringsADeletedKeyBackUnderItsId) {
    kaControlPoint2D* key = curve().findPoint(20.0F);
    ASSERT_NE(key, nullptr);
    const kaUID id = key->getId(), handle = key->getOutTangent()->getId();
    const std::string before = registryDump();
    ASSERT_TRUE(deleteKeys(_document, {id}));
    EXPECT_EQ(curve().getChildCount(), 7U);
    EXPECT_EQ(kaAnimationManager::the()->getPoint2D(id), nullptr);
    _document.history().undo();
    ASSERT_NE(kaAnimationManager::the()->getPoint2D(id), nullptr);
    EXPECT_EQ(kaAnimationManager::the()->getPoint2D(id)->getOutTangent()->getId(), handle);
    EXPECT_EQ(registryDump(), before);
}

TEST_F(Undo, MakesOneStepOfADragWhateverItPassed) {
    const kaUID key = curve().findPoint(20.0F)->getId();
    const std::string before = registryDump();
    KeyDrag drag(_document, {key});
    for (float dx = 0.0F; dx < 6.0F; dx += 0.5F)
        drag.moveTo(dx, dx, false, false);
    ASSERT_TRUE(drag.commit());
    EXPECT_EQ(_document.history().count(), 1);
    EXPECT_FLOAT_EQ(kaAnimationManager::the()->getPoint2D(key)->getBegin(), 25.5F);
    _document.history().undo();
    EXPECT_EQ(registryDump(), before);
}

TEST_F(Undo, KeepsNoStepOfWhatChangesNothing) {
    KeyDrag drag(_document, {curve().findPoint(20.0F)->getId()});
    drag.moveTo(3.0F, 0.0F, false, false);
    drag.moveTo(0.0F, 0.0F, false, false);
    EXPECT_FALSE(drag.commit());
    EXPECT_EQ(_document.history().count(), 0);
}

TEST_F(Undo, StopsADragAtTheNeighbourAsAGroup) {
    const kaUID first = curve().findPoint(20.0F)->getId(), second = curve().findPoint(30.0F)->getId();
    KeyDrag drag(_document, {first, second});
    drag.moveTo(500.0F, 0.0F, true, false);
    drag.commit();
    const float a = kaAnimationManager::the()->getPoint2D(first)->getBegin();
    const float b = kaAnimationManager::the()->getPoint2D(second)->getBegin();
    EXPECT_FLOAT_EQ(b - a, 10.0F);
    EXPECT_GE(b, 38.0F);
    EXPECT_LE(b, 40.0F);
}

TEST_F(Undo, TakesAClipBackThatWasMovedWithAllItsKeys) {
    const kaUID clip = kaAnimationManager::the()->getObjects(KA_TYPE_STRIP).front()->getId();
    const std::string before = registryDump();
    ASSERT_TRUE(_document.edit("Move", {{clip}, {}},
                               [&] { kaAnimationManager::the()->getObject(clip)->move(0.1F, true); }));
    const std::string after = registryDump();
    _document.history().undo();
    EXPECT_EQ(registryDump(), before);
    _document.history().redo();
    EXPECT_EQ(registryDump(), after);
}

TEST_F(Undo, TakesTenThousandRandomEditsBackAndDoesThemAgain) {
    const char* wish = std::getenv("KA_STUDIO_SEED");
    const unsigned int seed = wish != nullptr ? static_cast<unsigned int>(std::atoi(wish)) : 1;
    SCOPED_TRACE("KA_STUDIO_SEED=" + std::to_string(seed));
    RandomEdits edits(_document, seed);
    const std::string before = registryDump(), textBefore = Document::text();
    for (int i = 0; _document.history().count() < 10000; ++i) {
        const int step = _document.history().index();
        const bool look = i % 500 == 0;
        const std::string state = look ? registryDump() : std::string();
        edits.doOne();
        if (look && _document.history().index() > step) {
            _document.history().undo();
            ASSERT_EQ(registryDump(), state)
                << "edit " << i << ": " << _document.history().redoText().toStdString();
            _document.history().redo();
        }
    }
    const std::string after = registryDump(), textAfter = Document::text();
    while (_document.history().canUndo())
        _document.history().undo();
    EXPECT_TRUE(registryDump() == before);
    EXPECT_TRUE(Document::text() == textBefore);
    while (_document.history().canRedo())
        _document.history().redo();
    EXPECT_TRUE(registryDump() == after);
    EXPECT_TRUE(Document::text() == textAfter);
}

} // namespace

} // namespace ka::studio
