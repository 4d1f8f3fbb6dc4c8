#include "WindowFixture.h"
#include "views/ChannelTree.h"
#include "views/ClipTimeline.h"

#include <QGuiApplication>
#include <QLineEdit>
#include <QProcess>
#include <QStandardPaths>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>

namespace ka::studio {

namespace {

/// Pointer and keyboard of the display itself, as a user's hands move them: what Qt makes of them is what counts.
class RealInput : public testing::WindowFixture {
  protected:
    void SetUp() override {
        WindowFixture::SetUp();
        if (QGuiApplication::platformName() != "xcb" || QStandardPaths::findExecutable("xdotool").isEmpty())
            GTEST_SKIP() << "needs an X display and xdotool";
        openFigure();
        _curve = curve("hip", "translationX");
        window().channels().choose({_curve});
        window().curveEditor().frameAll();
        window().timeline().frameAll();
        window().move(0, 0);
        hand({"windowfocus", "--sync", QString::number(window().winId())});
        ASSERT_TRUE(QTest::qWaitFor([this] { return window().isActiveWindow(); }, 10000));
    }

    /// Runs xdotool and handles what comes of it.
    static void hand(const QStringList& what) {
        QProcess program;
        program.start("xdotool", what);
        ASSERT_TRUE(program.waitForStarted());
        ASSERT_TRUE(QTest::qWaitFor([&] { return program.state() == QProcess::NotRunning; }, 20000));
        ASSERT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
        QTest::qWait(20);
    }
    static QStringList to(const QWidget& view, const QPoint& at) {
        const QPoint global = view.mapToGlobal(at);
        return {"mousemove", "--sync", QString::number(global.x()), QString::number(global.y())};
    }
    /// A drag in some steps, as a hand makes it.
    static void handDrag(const QWidget& view, const QPoint& from, const QPoint& to,
                         const QString& held = {}) {
        hand(RealInput::to(view, from));
        if (!held.isEmpty())
            hand({"keydown", held});
        hand({"mousedown", "1"});
        constexpr int Steps = 6;
        for (int i = 1; i <= Steps; ++i)
            hand(RealInput::to(view, from + (to - from) * i / Steps));
        hand({"mouseup", "1"});
        if (!held.isEmpty())
            hand({"keyup", held});
    }
    CurveEditor& editor() { return window().curveEditor(); }
    QUndoStack& history() { return window().session().document().history(); }

    kaUID _curve = 0;
};

TEST_F(RealInput, DragsAKeyAndUndoesItByTheKeyboard) {
    const kaUID id = key(_curve, 20)->getId();
    const QPoint from = editor().pixelOfKey(id).toPoint();
    const QPoint way = QPointF(3 * window().axis().map().scale(), 0.5 * editor().values().scale()).toPoint();
    handDrag(editor(), from, from + way);
    const kaControlPoint2D* moved = kaAnimationManager::the()->getPoint2D(id);
    EXPECT_FLOAT_EQ(moved->getBegin(), 23.0F);
    EXPECT_NEAR(static_cast<double>(moved->getMaximum()), 2.5, 0.05);
    ASSERT_EQ(history().index(), 1) << "a drag is one step";
    hand({"key", "ctrl+z"});
    EXPECT_FLOAT_EQ(kaAnimationManager::the()->getPoint2D(id)->getBegin(), 20.0F);
    hand({"key", "ctrl+shift+z"});
    EXPECT_FLOAT_EQ(kaAnimationManager::the()->getPoint2D(id)->getBegin(), 23.0F);
}

TEST_F(RealInput, PlaysPausesAndGoesFromKeyToKey) {
    hand({"key", "space"});
    EXPECT_TRUE(window().transport().isPlaying());
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().head().frame() > 1.0F; }, 20000));
    hand({"key", "space"});
    EXPECT_FALSE(window().transport().isPlaying());
    window().head().scrub(14.0F);
    hand({"key", "period"});
    EXPECT_FLOAT_EQ(window().head().frame(), 20.0F);
    hand({"key", "comma"});
    EXPECT_FLOAT_EQ(window().head().frame(), 10.0F);
}

TEST_F(RealInput, ScrubsInTheRulerAndDragsARangeWithShift) {
    const auto at = [this](double frame) {
        return QPoint(static_cast<int>(std::lround(window().axis().map().toPixel(frame))), 8);
    };
    handDrag(window().timeline(), at(10), at(50));
    EXPECT_FLOAT_EQ(window().head().frame(), 50.0F);
    handDrag(editor(), at(20), at(60), "shift");
    EXPECT_FLOAT_EQ(window().transport().begin(), 20.0F);
    EXPECT_FLOAT_EQ(window().transport().end(), 60.0F);
}

TEST_F(RealInput, ZoomsAtThePointerByTheWheelAndEachAxisAlone) {
    const QPoint at(500, 120);
    hand(to(editor(), at));
    const double time = window().axis().map().scale(), value = editor().values().scale();
    const double frame = window().axis().map().toValue(at.x());
    hand({"click", "4"});
    EXPECT_NEAR(window().axis().map().scale(), 1.2 * time, 1e-6 * time);
    EXPECT_NEAR(editor().values().scale(), 1.2 * value, std::abs(1e-6 * value));
    EXPECT_NEAR(window().axis().map().toValue(at.x()), frame, 1e-6);
    hand({"keydown", "shift", "click", "5", "keyup", "shift"});
    EXPECT_NEAR(window().axis().map().scale(), time, 1e-6 * time);
    EXPECT_NEAR(editor().values().scale(), 1.2 * value, std::abs(1e-6 * value));
}

TEST_F(RealInput, SelectsByABoxAndDeletesByTheKeyboard) {
    const QRectF keys(editor().pixelOfKey(key(_curve, 10)->getId()),
                      editor().pixelOfKey(key(_curve, 30)->getId()));
    const QRect box = keys.normalized().toAlignedRect();
    handDrag(editor(), QPoint(box.left() - 12, TimeView::RulerHeight + 4),
             QPoint(box.right() + 12, editor().height() - 4));
    EXPECT_EQ(window().keySelection().size(), 3U);
    hand({"key", "Delete"});
    EXPECT_EQ(kaAnimationManager::the()->getCurve2D(_curve)->getChildCount(), 8U);
    hand({"key", "ctrl+z"});
    EXPECT_EQ(kaAnimationManager::the()->getCurve2D(_curve)->getChildCount(), 11U);
}

TEST_F(RealInput, MovesABlockInTheTimelineAndDropsAnotherThereFromTheOutliner) {
    kaUID hip = 0, arm = 0;
    for (const kaAnimationObject* object : kaAnimationManager::the()->getObjects(KA_TYPE_UNIT))
        (object->getName().find("hip") != std::string::npos ? hip : arm) = object->getId();
    ClipTimeline& clips = window().timeline();
    const QPoint from = clips.barOf(hip).center();
    handDrag(clips, from, from + QPoint(static_cast<int>(std::lround(8 * window().axis().map().scale())), 0));
    EXPECT_FLOAT_EQ(kaAnimationManager::the()->getObject(hip)->getBegin(), 8.0F);
    EXPECT_EQ(history().index(), 1);
}

TEST_F(RealInput, TypesIntoASearchWithoutStartingAnyAction) {
    QLineEdit* search = window().channels().findChild<QLineEdit*>();
    ASSERT_NE(search, nullptr);
    hand(to(*search, search->rect().center()));
    hand({"click", "1"});
    hand({"type", "--delay", "5", "arm "});
    EXPECT_EQ(search->text(), "arm ");
    EXPECT_FALSE(window().transport().isPlaying()) << "a blank is a blank there";
    EXPECT_EQ(history().count(), 0);
}

} // namespace

} // namespace ka::studio
