#include "views/SceneView.h"

#include "WindowFixture.h"
#include "views/ChannelTree.h"

#include <QAction>
#include <QApplication>
#include <QWheelEvent>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>

namespace ka::studio {

namespace {

/// The same with either drawing.
class Scene : public testing::WindowFixture, public ::testing::WithParamInterface<const char*> {
  protected:
    void SetUp() override {
        WindowFixture::SetUp();
        trigger(GetParam());
        openFigure();
        waitForPicture();
    }
    /// Until what is shown is how things are.
    void waitForPicture() {
        const bool isWanted = view().drawing() == SceneView::Drawing::OpenGL;
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return view().isUpToDate() && view().isDrawnByOpenGL() == isWanted; }, 60000))
            << view().note().toStdString();
    }

    SceneView& view() { return window().sceneView(); }
    int joint(const char* name) {
        for (std::size_t i = 0; i < view().figure().joints().size(); ++i)
            if (view().figure().joints()[i].name == name)
                return static_cast<int>(i);
        return -1;
    }
    QVector3D place(const char* name) {
        return view().figure().places()[static_cast<std::size_t>(joint(name))];
    }
};

TEST_P(Scene, ShowsTheFigureWhereThePlayheadIs) {
    ASSERT_GE(joint("arm"), 0);
    EXPECT_EQ(view().figure().joints()[static_cast<std::size_t>(joint("arm"))].parent, joint("hip"));
    EXPECT_NEAR(static_cast<double>(place("hip").x()), 0.0, 1e-4);
    EXPECT_NEAR(static_cast<double>(place("hip").y()), 20.0, 1e-4);
    EXPECT_NEAR(static_cast<double>(place("arm").y()), 30.0, 1e-4) << "ten above the hip";
    window().head().scrub(20.0F);
    EXPECT_NEAR(static_cast<double>(place("hip").x()), 2.0, 1e-4);
    picture("scene");
}

TEST_P(Scene, OrbitsPansAndZooms) {
    const QVector3D eye = view().camera().eye(), target = view().camera().target();
    drag(view(), QPoint(60, 60), QPoint(160, 60));
    EXPECT_GT((view().camera().eye() - eye).length(), 1.0F);
    EXPECT_NEAR(static_cast<double>((view().camera().target() - target).length()), 0.0, 1e-5);
    const QPointF before = view().viewpoint().project(target, view().size()).value();
    drag(view(), QPoint(60, 60), QPoint(90, 70), Qt::MiddleButton);
    const QPointF moved = view().viewpoint().project(target, view().size()).value() - before;
    EXPECT_NEAR(moved.x(), 30.0, 1.0) << "what is looked at goes along with the hand";
    EXPECT_NEAR(moved.y(), 10.0, 1.0);
    const float distance = view().camera().distance();
    QWheelEvent closer(QPointF(50, 50), view().mapToGlobal(QPoint(50, 50)), QPoint(), QPoint(0, 120),
                       Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&view(), &closer);
    EXPECT_LT(view().camera().distance(), distance);
}

TEST_P(Scene, PicksAJointAndShowsItsCurves) {
    QTest::mouseClick(&view(), Qt::LeftButton, Qt::NoModifier, view().pixelOfJoint(joint("arm")).toPoint());
    ASSERT_NE(view().pickedNode(), 0U);
    EXPECT_EQ(view().pickedNode(), view().figure().joints()[static_cast<std::size_t>(joint("arm"))].node);
    const std::vector<kaUID>& shown = window().curveEditor().scene().curves();
    const kaUID turn = curve("arm", "rotationZ");
    EXPECT_NE(std::find(shown.begin(), shown.end(), turn), shown.end());
    QTest::mouseClick(&view(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 40));
    EXPECT_EQ(view().pickedNode(), 0U);
}

TEST_P(Scene, MovesAJointByAnArrowAndSetsKeys) {
    const kaUID way = curve("hip", "translationX");
    view().pick(view().figure().joints()[static_cast<std::size_t>(joint("hip"))].node);
    trigger("viewFront");
    trigger("toolMove");
    window().head().scrub(25.0F);
    QTest::qWait(20);
    const float before = place("hip").x();
    ASSERT_EQ(key(way, 25), nullptr);
    const QPoint tip = view().pixelOfGizmo(0).toPoint();
    const double units = static_cast<double>(view().viewpoint().unitsPerPixel(place("hip"), view().size()));
    drag(view(), tip, tip + QPoint(40, 0));
    ASSERT_NE(key(way, 25), nullptr) << "auto-key sets one";
    EXPECT_NEAR(static_cast<double>(key(way, 25)->getMaximum() - before), 40 * units, 0.1 * 40 * units);
    EXPECT_NEAR(static_cast<double>(place("hip").x()), static_cast<double>(key(way, 25)->getMaximum()), 1e-4);
    EXPECT_EQ(window().session().document().history().count(), 1);
    picture("gizmo");
    trigger("undo");
    EXPECT_EQ(key(way, 25), nullptr);
    EXPECT_NEAR(static_cast<double>(place("hip").x()), static_cast<double>(before), 1e-4);
}

TEST_P(Scene, TurnsAJointByARing) {
    const kaUID turn = curve("arm", "rotationZ");
    view().pick(view().figure().joints()[static_cast<std::size_t>(joint("arm"))].node);
    trigger("viewFront");
    trigger("toolRotate");
    window().head().scrub(20.0F);
    QTest::qWait(20);
    ASSERT_NE(key(turn, 20), nullptr);
    const float before = key(turn, 20)->getMaximum();
    const QPointF centre = view().pixelOfJoint(joint("arm")), from = view().pixelOfGizmo(2);
    const double start = std::atan2(-(from.y() - centre.y()), from.x() - centre.x());
    const double radius = std::hypot(from.x() - centre.x(), from.y() - centre.y());
    const double end = start + 0.5; // radians, against the clock
    drag(view(), from.toPoint(), (centre + QPointF(std::cos(end), -std::sin(end)) * radius).toPoint());
    EXPECT_NEAR(static_cast<double>(key(turn, 20)->getMaximum() - before), 0.5 * 57.29578, 3.0);
    picture("rotate");
}

TEST_P(Scene, LeavesKeysAloneWithoutAutoKey) {
    view().pick(view().figure().joints()[static_cast<std::size_t>(joint("hip"))].node);
    window().action("autoKey")->setChecked(false);
    trigger("viewFront");
    trigger("toolMove");
    window().head().scrub(25.0F);
    QTest::qWait(20);
    const std::string before = Document::text();
    const QPoint tip = view().pixelOfGizmo(0).toPoint();
    drag(view(), tip, tip + QPoint(40, 0));
    EXPECT_EQ(window().session().document().history().count(), 0);
    EXPECT_EQ(key(curve("hip", "translationX"), 25), nullptr);
}

#ifdef KA_STUDIO_WITH_OPENGL
INSTANTIATE_TEST_SUITE_P(Drawn, Scene, ::testing::Values("drawPlain", "drawOpenGL"),
                         [](const auto& drawing) { return std::string(drawing.param); });
#else
INSTANTIATE_TEST_SUITE_P(Drawn, Scene, ::testing::Values("drawPlain"),
                         [](const auto& drawing) { return std::string(drawing.param); });
#endif

class Playing : public testing::WindowFixture {};

TEST_F(Playing, FollowsTheClockAndStops) {
    openFigure();
    window().transport().setLooping(false);
    window().transport().setSpeed(20.0);
    trigger("play");
    EXPECT_TRUE(window().transport().isPlaying());
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().head().frame() > 5.0F; }, 5000));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !window().transport().isPlaying(); }, 5000))
        << "it ends by itself";
    EXPECT_GE(window().head().frame(), 99.0F);
    trigger("stop");
    EXPECT_FLOAT_EQ(window().head().frame(), 0.0F);
}

TEST_F(Playing, LoopsBackwardsAndPausesWhereItIs) {
    openFigure();
    window().transport().setSpeed(20.0);
    window().head().scrub(10.0F);
    trigger("reverse");
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().head().frame() > 50.0F; }, 5000))
        << "it comes from the end";
    trigger("play");
    EXPECT_FALSE(window().transport().isPlaying());
    const float paused = window().head().frame();
    QTest::qWait(60);
    EXPECT_FLOAT_EQ(window().head().frame(), paused);
    trigger("play");
    QTest::qWait(5);
    EXPECT_LT(std::abs(window().head().frame() - paused), 40.0F) << "it goes on from where it was";
}

TEST_F(Playing, ShowsEveryFrameWhenAsked) {
    openFigure();
    window().transport().setLooping(false);
    window().action("everyFrame")->setChecked(true);
    std::vector<float> frames;
    QObject::connect(&window().head(), &PlayHead::moved, [&frames](float frame) { frames.push_back(frame); });
    trigger("play");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !window().transport().isPlaying(); }, 10000));
    ASSERT_GE(frames.size(), 98U);
    for (std::size_t i = 1; i < frames.size(); ++i)
        ASSERT_LT(frames[i] - frames[i - 1], 1.01F) << "a frame was left out before " << frames[i];
}

TEST_F(Playing, GoesToKeysAndTheEndsOfTheRange) {
    openFigure();
    window().channels().choose({curve("hip", "translationX")});
    window().head().scrub(25.0F);
    trigger("nextKey");
    EXPECT_FLOAT_EQ(window().head().frame(), 30.0F);
    trigger("previousKey");
    EXPECT_FLOAT_EQ(window().head().frame(), 20.0F);
    trigger("last");
    EXPECT_FLOAT_EQ(window().head().frame(), 100.0F);
    trigger("first");
    EXPECT_FLOAT_EQ(window().head().frame(), 0.0F);
}

} // namespace

} // namespace ka::studio
