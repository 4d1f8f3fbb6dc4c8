#include "WindowFixture.h"
#include "views/ChannelTree.h"
#include "views/ClipTimeline.h"
#include "views/KeyFields.h"
#include "views/SceneView.h"

#include <QAction>
#include <QLineEdit>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaMotion/Project.h>

namespace ka::studio {

namespace {

/// The walk of Docs/studio.md, step by step: from a motion to an edited, looping clip that is handed on as glTF.
class Walk : public testing::WindowFixture {};

TEST_F(Walk, LeadsFromAMotionToAnExportedClip) {
    picture("studio-first-start");

    // 1. Open.
    trigger("sample");
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().session().isOpen(); }, 30000));
    SceneView& scene = window().sceneView();
    QTest::qWait(30);

    // 2. See it move.
    trigger("play");
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().head().frame() > 3.0F; }, 5000));
    trigger("stop");
    EXPECT_FLOAT_EQ(window().head().frame(), 0.0F);

    // 3. Pick a joint.
    int joint = -1;
    for (std::size_t i = 0; i < scene.figure().joints().size(); ++i)
        if (scene.figure().joints()[i].name == "LeftForeArm")
            joint = static_cast<int>(i);
    ASSERT_GE(joint, 0);
    QTest::mouseClick(&scene, Qt::LeftButton, Qt::NoModifier, scene.pixelOfJoint(joint).toPoint());
    ASSERT_NE(scene.pickedNode(), 0U);
    const kaUID bend = curve("LeftForeArm", "rotationX");
    window().channels().choose({bend});
    trigger("frameAll");
    QTest::qWait(30);
    picture("studio-window");

    // 4. Bend its curve.
    CurveEditor& editor = window().curveEditor();
    ASSERT_NE(key(bend, 10), nullptr);
    const kaUID id = key(bend, 10)->getId();
    const float before = key(bend, 10)->getMaximum();
    const QPoint from = editor.pixelOfKey(id).toPoint();
    drag(editor, from, from + QPoint(0, 30));
    EXPECT_LT(kaAnimationManager::the()->getPoint2D(id)->getMaximum(), before);
    picture("studio-curves");

    // 5. Type a value.
    QLineEdit& value = window().keyFields().field(KeyNumber::Value);
    const float bent = kaAnimationManager::the()->getPoint2D(id)->getMaximum();
    value.setFocus();
    value.selectAll();
    QTest::keyClicks(&value, "-=5");
    QTest::keyClick(&value, Qt::Key_Return);
    EXPECT_NEAR(static_cast<double>(kaAnimationManager::the()->getPoint2D(id)->getMaximum()),
                static_cast<double>(bent - 5.0F), 1e-3);

    // 6. Pose.
    window().head().scrub(20.0F);
    trigger("toolRotate");
    QTest::qWait(30);
    picture("studio-pose");
    const int steps = window().session().document().history().index();
    const QPointF centre = scene.pixelOfJoint(joint), ring = scene.pixelOfGizmo(2);
    const QPointF arm = ring - centre;
    const QPointF turned(arm.x() * std::cos(0.4) - arm.y() * std::sin(0.4),
                         arm.x() * std::sin(0.4) + arm.y() * std::cos(0.4));
    drag(scene, ring.toPoint(), (centre + turned).toPoint());
    EXPECT_EQ(window().session().document().history().index(), steps + 1);

    // 7. Lay it out: the clip repeats.
    window().timeline().frameAll();
    const kaUID clip = kaAnimationManager::the()->getObjects(KA_TYPE_STRIP).front()->getId();
    QTest::mouseClick(&window().timeline(), Qt::LeftButton, Qt::NoModifier,
                      window().timeline().barOf(clip).center());
    ASSERT_TRUE(window().barSelection().contains(clip));
    trigger("flagRepeating");
    EXPECT_TRUE(kaAnimationManager::the()->getObject(clip)->isRepeating());
    QTest::qWait(30);
    picture("studio-clips");

    // 8. Save, and hand it on.
    _saveName = QString::fromStdString(folder() + "/walk.osg");
    trigger("save");
    EXPECT_FALSE(window().isWindowModified());
    _saveName = QString::fromStdString(folder() + "/walk.glb");
    trigger("export");
    EXPECT_TRUE(_messages.isEmpty()) << _messages.join('\n').toStdString();
    const std::string file = ka_test::contentOf(folder() + "/walk.glb");
    ASSERT_GT(file.size(), 1000U);
    EXPECT_EQ(file.substr(0, 4), "glTF");

    // It plays in the next program: here the studio itself.
    window().openPath(QString::fromStdString(folder() + "/walk.glb"));
    ASSERT_TRUE(
        QTest::qWaitFor([this] { return window().session().files().shownName() == "walk.glb"; }, 30000));
    EXPECT_FALSE(kaAnimationManager::the()->getObjects(KA_TYPE_CURVE).empty());
}

} // namespace

} // namespace ka::studio
