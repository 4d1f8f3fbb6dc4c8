#include "WindowFixture.h"
#include "views/ChannelModel.h"
#include "views/ChannelTree.h"
#include "views/ClipTimeline.h"
#include "views/DopeSheet.h"

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QDropEvent>
#include <QMimeData>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>

namespace ka::studio {

namespace {

/// The figure's take: a clip with a block for the hip and one for the arm, each on a track of its own.
class Timeline : public testing::WindowFixture {
  protected:
    void SetUp() override {
        WindowFixture::SetUp();
        openFigure();
        raise("clipsDock");
        window().timeline().frameAll();
        QTest::qWait(20);
        for (const kaAnimationObject* object : kaAnimationManager::the()->getObjects(KA_TYPE_UNIT))
            (object->getName().find("hip") != std::string::npos ? _hip : _arm) = object->getId();
        ASSERT_NE(_hip, 0U);
        ASSERT_NE(_arm, 0U);
    }

    void raise(const char* dock) { window().findChild<QDockWidget*>(dock)->raise(); }
    ClipTimeline& view() { return window().timeline(); }
    kaAnimationObject& object(kaUID id) { return *kaAnimationManager::the()->getObject(id); }
    QPoint middle(kaUID id) { return view().barOf(id).center(); }
    QPoint moved(const QPoint& from, double frames) {
        return from + QPoint(static_cast<int>(std::lround(frames * window().axis().map().scale())), 0);
    }

    kaUID _hip = 0, _arm = 0;
};

TEST_F(Timeline, MovesABlockWithItsKeys) {
    const float key = object(_hip).getCurves().front()->getBegin();
    drag(view(), middle(_hip), moved(middle(_hip), 12));
    EXPECT_FLOAT_EQ(object(_hip).getBegin(), 12.0F);
    EXPECT_FLOAT_EQ(object(_hip).getCurves().front()->getBegin(), key + 12.0F);
    EXPECT_TRUE(window().barSelection().contains(_hip));
    picture("timeline");
    trigger("undo");
    EXPECT_FLOAT_EQ(object(_hip).getBegin(), 0.0F);
}

TEST_F(Timeline, StretchesAtTheEndAndTrimsWithCtrl) {
    const QPoint end(view().barOf(_hip).right() - 1, middle(_hip).y());
    drag(view(), end, moved(end, 20));
    EXPECT_FLOAT_EQ(object(_hip).getEnd(), 120.0F);
    EXPECT_NEAR(static_cast<double>(object(_hip).getCurves().front()->getEnd()), 120.0, 1e-3);
    const QPoint begin(view().barOf(_hip).left() + 1, middle(_hip).y());
    drag(view(), begin, moved(begin, 30), Qt::LeftButton, Qt::ControlModifier);
    EXPECT_FLOAT_EQ(object(_hip).getBegin(), 30.0F);
    EXPECT_FLOAT_EQ(object(_hip).getCurves().front()->getBegin(), 0.0F) << "the keys of a trimmed block stay";
}

TEST_F(Timeline, RefusesAPlaceThatIsTaken) {
    const std::string before = Document::text();
    drag(view(), middle(_hip), QPoint(middle(_hip).x(), middle(_arm).y()));
    EXPECT_EQ(Document::text(), before);
    EXPECT_EQ(window().session().document().history().count(), 0);
    // Behind the arm's block there is room.
    drag(view(), middle(_hip), QPoint(moved(middle(_hip), 130).x(), middle(_arm).y()));
    EXPECT_EQ(object(_hip).getParent(), object(_arm).getParent());
    EXPECT_FLOAT_EQ(object(_hip).getBegin(), 130.0F);
    trigger("undo");
    EXPECT_EQ(Document::text(), before);
}

TEST_F(Timeline, FlipsDuplicatesRenamesAndDeletes) {
    window().barSelection().select({_hip}, SelectBy::Replacing);
    const std::size_t blocks = kaAnimationManager::the()->getObjects(KA_TYPE_UNIT).size();
    trigger("duplicateBar");
    EXPECT_EQ(kaAnimationManager::the()->getObjects(KA_TYPE_UNIT).size(), blocks + 1);
    trigger("flip");
    EXPECT_TRUE(object(_hip).isFlipped());
    MainWindow::Answers answers;
    answers.name = [](const QString&) { return QStringLiteral("Sway"); };
    answers.unsavedChanges = [] { return static_cast<int>(0x00800000); }; // discard
    window().setAnswers(answers);
    trigger("rename");
    EXPECT_EQ(object(_hip).getName(), "Sway");
    trigger("flagRepeating");
    EXPECT_TRUE(object(_hip).isRepeating());
    trigger("deleteBar");
    EXPECT_EQ(kaAnimationManager::the()->getObject(_hip), nullptr);
    for (int i = 0; i < 5; ++i)
        trigger("undo");
    EXPECT_EQ(kaAnimationManager::the()->getObjects(KA_TYPE_UNIT).size(), blocks);
    EXPECT_EQ(object(_hip).getName(), "hip");
    EXPECT_FALSE(object(_hip).isRepeating());
}

TEST_F(Timeline, MakesClipsTracksAndMarkers) {
    const std::size_t clips = kaAnimationManager::the()->getObjects(KA_TYPE_STRIP).size();
    trigger("newClip");
    EXPECT_EQ(kaAnimationManager::the()->getObjects(KA_TYPE_STRIP).size(), clips + 1);
    window().barSelection().select({_hip}, SelectBy::Replacing);
    trigger("newTrack");
    window().head().scrub(150.0F);
    trigger("newMarker");
    const auto markers = kaAnimationManager::the()->getObjects(KA_TYPE_SEQUENCE);
    ASSERT_EQ(markers.size(), 1U);
    EXPECT_FLOAT_EQ(markers.front()->getBegin(), 150.0F);
    EXPECT_EQ(markers.front()->getParent(), object(_hip).getParent());
}

TEST_F(Timeline, TakesABlockThatIsDroppedOnATrack) {
    QMimeData data;
    data.setData(ChannelModel::MimeType, QByteArray::number(static_cast<qulonglong>(_hip)));
    const QPoint at(static_cast<int>(window().axis().map().toPixel(102)), middle(_arm).y());
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&view(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&view(), &drop);
    const auto track = kaAnimationManager::the()->getStreak(object(_arm).getParent());
    ASSERT_EQ(track->getUnits().size(), 2U);
    EXPECT_FLOAT_EQ(track->getUnits().back()->getBegin(), 102.0F);
    EXPECT_FLOAT_EQ(object(_hip).getBegin(), 0.0F) << "what lies elsewhere is copied";
}

TEST_F(Timeline, DrawsALinkThatStartsTheOther) {
    drag(view(), middle(_hip), middle(_arm), Qt::LeftButton, Qt::AltModifier);
    EXPECT_EQ(object(_hip).getTriggers().size(), 1U);
    EXPECT_EQ(object(_hip).getTriggers().begin()->first, kaAnimationManager::TriggerEnd);
    picture("link");
    trigger("undo");
    EXPECT_TRUE(object(_hip).getTriggers().empty());
}

TEST_F(Timeline, PlaysWhatIsDoubleClicked) {
    QTest::mouseDClick(&view(), Qt::LeftButton, Qt::NoModifier, middle(_hip));
    EXPECT_EQ(window().transport().objects(), std::vector<kaUID>{_hip});
}

TEST_F(Timeline, SharesSelectedKeysBetweenDopeSheetAndCurves) {
    raise("dopesDock");
    const kaUID way = curve("hip", "translationX");
    window().channels().choose({way});
    window().curveEditor().frameAll();
    QTest::qWait(20);
    DopeSheet& dopes = window().dopeSheet();
    const kaUID id = key(way, 40)->getId();
    const QPoint at = dopes.pixelOfKey(id);
    QTest::mouseClick(&dopes, Qt::LeftButton, Qt::NoModifier, at);
    EXPECT_EQ(window().keySelection().ids(), std::vector<kaUID>{id});
    picture("dopes");
    drag(dopes, at, moved(at, 4));
    EXPECT_FLOAT_EQ(kaAnimationManager::the()->getPoint2D(id)->getBegin(), 44.0F);
    EXPECT_EQ(window().session().document().history().count(), 1);
}

} // namespace

} // namespace ka::studio
