#include "WindowFixture.h"
#include "document/ContainerEdits.h"
#include "views/ChannelModel.h"
#include "views/ClipTimeline.h"
#include "views/DopeSheet.h"
#include "views/Outliner.h"
#include "views/Properties.h"
#include "views/SceneView.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QSortFilterProxyModel>
#include <QTreeView>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <memory>

namespace ka::studio {

namespace {

/// The outliner, the properties and the range in the rulers.
class Panels : public testing::WindowFixture {
  protected:
    using Kind = OutlineModel::Kind;

    void SetUp() override {
        WindowFixture::SetUp();
        openFigure();
        window().timeline().frameAll();
        QTest::qWait(20);
        for (const kaAnimationObject* object : kaAnimationManager::the()->getObjects(KA_TYPE_UNIT))
            (object->getName().find("hip") != std::string::npos ? _hip : _arm) = object->getId();
    }

    OutlineModel& model() { return window().outliner().model(); }
    /// The place of the entry of this name, wherever it is in the tree; invalid without one.
    QModelIndex named(const QString& name, const QModelIndex& below = {}) {
        for (int row = 0; row < model().rowCount(below); ++row) {
            const QModelIndex index = model().index(row, 0, below);
            if (index.data().toString() == name)
                return index;
            if (const QModelIndex found = named(name, index); found.isValid())
                return found;
        }
        return {};
    }
    kaAnimationObject& object(kaUID id) { return *kaAnimationManager::the()->getObject(id); }
    int steps() { return window().session().document().history().index(); }

    void type(Properties::Field field, const char* text) {
        QLineEdit& edit = window().properties().field(field);
        edit.setFocus();
        edit.selectAll();
        QTest::keyClicks(&edit, text);
        QTest::keyClick(&edit, Qt::Key_Return);
    }

    kaUID _hip = 0, _arm = 0;
};

TEST_F(Panels, OutlineShowsNodesBelowTheirParentsAndClipsWithTracksAndBlocks) {
    const QModelIndex hip = named("hip", model().sceneGroup()), arm = named("arm", model().sceneGroup());
    ASSERT_TRUE(hip.isValid());
    ASSERT_TRUE(arm.isValid());
    EXPECT_EQ(arm.parent(), hip);
    EXPECT_EQ(hip.siblingAtColumn(OutlineModel::What).data().toString(), "6 curves");
    const QModelIndex clip = model().index(0, 0, model().clipGroup());
    EXPECT_EQ(clip.data(OutlineModel::KindRole).toInt(), static_cast<int>(Kind::Clip));
    EXPECT_EQ(model().rowCount(clip), 2) << "a track for each block";
    EXPECT_EQ(model().indexOf(Kind::Bar, _hip).parent().parent(), clip);
    EXPECT_EQ(model().indexOf(Kind::Bar, _hip).siblingAtColumn(OutlineModel::What).data().toString(),
              "0 - 100");
}

TEST_F(Panels, OutlineFollowsUndo) {
    remove(window().session().document(), _arm);
    EXPECT_FALSE(model().indexOf(Kind::Bar, _arm).isValid());
    trigger("undo");
    EXPECT_TRUE(model().indexOf(Kind::Bar, _arm).isValid());
}

TEST_F(Panels, ANodeChosenInTheOutlineIsPickedAndShowsItsCurves) {
    QTreeView& tree = window().outliner().view();
    tree.expandAll();
    auto& filter = static_cast<QSortFilterProxyModel&>(*tree.model());
    const QModelIndex place = filter.mapFromSource(named("arm", model().sceneGroup()));
    tree.scrollTo(place);
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, Qt::NoModifier, tree.visualRect(place).center());
    EXPECT_EQ(window().outliner().chosenNode(), place.data(OutlineModel::IdRole).toUInt());
    EXPECT_EQ(window().sceneView().pickedNode(), place.data(OutlineModel::IdRole).toUInt());
    EXPECT_TRUE(window().properties().nodeText().text().contains("hip/arm"));
    ASSERT_FALSE(window().curveEditor().scene().curves().empty());
    for (const kaUID id : window().curveEditor().scene().curves())
        EXPECT_EQ(object(id).getParent(), _arm);
}

TEST_F(Panels, ABlockChosenInTheOutlineIsSelectedInTheTimelineAndTheOtherWayRound) {
    QTreeView& tree = window().outliner().view();
    tree.expandAll();
    auto& filter = static_cast<QSortFilterProxyModel&>(*tree.model());
    tree.setCurrentIndex(filter.mapFromSource(model().indexOf(Kind::Bar, _hip)));
    EXPECT_EQ(window().barSelection().ids(), std::vector<kaUID>{_hip});
    window().barSelection().select({_arm}, SelectBy::Replacing);
    const QModelIndexList chosen = tree.selectionModel()->selectedRows();
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen.front().data(OutlineModel::IdRole).toULongLong(), _arm);
}

TEST_F(Panels, ANodeDroppedOnATrackLaysItsBlockOutThere) {
    const std::unique_ptr<QMimeData> data(model().mimeData({named("hip", model().sceneGroup())}));
    const QPoint at(static_cast<int>(window().axis().map().toPixel(102)),
                    window().timeline().barOf(_arm).center().y());
    QDragEnterEvent enter(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window().timeline(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window().timeline(), &drop);
    const kaAnimationStreak* track = kaAnimationManager::the()->getStreak(object(_arm).getParent());
    ASSERT_EQ(track->getUnits().size(), 2U);
    EXPECT_FLOAT_EQ(track->getUnits().back()->getBegin(), 102.0F);
    EXPECT_EQ(steps(), 1);
    EXPECT_TRUE(model().indexOf(Kind::Bar, track->getUnits().back()->getId()).isValid())
        << "the outline shows it";
}

TEST_F(Panels, RenamesInTheOutlineAsAStep) {
    EXPECT_TRUE(model().setData(model().indexOf(Kind::Bar, _hip), "walk", Qt::EditRole));
    EXPECT_EQ(object(_hip).getName(), "walk");
    EXPECT_EQ(steps(), 1);
    EXPECT_FALSE(model().setData(named("hip", model().sceneGroup()), "no", Qt::EditRole))
        << "nodes keep theirs";
}

TEST_F(Panels, FindsNodesAndClipsByName) {
    QTest::keyClicks(&window().outliner().search(), "AR");
    const QAbstractItemModel& shown = *window().outliner().view().model();
    EXPECT_EQ(shown.rowCount(), 2);
    QTest::keyClicks(&window().outliner().search(), "zzz");
    EXPECT_EQ(shown.rowCount(), 0);
    window().outliner().search().clear();
    EXPECT_EQ(shown.rowCount(), 2);
}

TEST_F(Panels, PropertiesChangeNameAndPlaceAndLengthOfWhatIsSelected) {
    window().barSelection().select({_hip}, SelectBy::Replacing);
    EXPECT_EQ(window().properties().field(Properties::Field::End).text(), "100");
    type(Properties::Field::Name, "way");
    EXPECT_EQ(object(_hip).getName(), "way");
    type(Properties::Field::Begin, "+=10");
    EXPECT_FLOAT_EQ(object(_hip).getBegin(), 10.0F);
    EXPECT_FLOAT_EQ(object(_hip).getEnd(), 110.0F);
    type(Properties::Field::End, "60");
    EXPECT_FLOAT_EQ(object(_hip).getEnd(), 60.0F);
    EXPECT_EQ(steps(), 3);
    picture("studio-properties");
    for (int i = 0; i < 3; ++i)
        trigger("undo");
    EXPECT_EQ(window().properties().field(Properties::Field::End).text(), "100");
}

TEST_F(Panels, PropertiesSwitchFlagsOfAllThatIsSelectedAsOneStep) {
    window().barSelection().select({_hip, _arm}, SelectBy::Replacing);
    for (const ObjectFlag flag : {ObjectFlag::Repeating, ObjectFlag::MotionBlur, ObjectFlag::CustomRange}) {
        const int before = steps();
        window().properties().flag(flag).click();
        EXPECT_TRUE(isFlagged(object(_hip), flag));
        EXPECT_TRUE(isFlagged(object(_arm), flag));
        EXPECT_EQ(steps(), before + 1);
    }
    window().properties().flag(ObjectFlag::Active).click();
    EXPECT_FALSE(object(_hip).isActive());
    type(Properties::Field::CustomEnd, "40");
    EXPECT_FLOAT_EQ(object(_hip).getCustomEnd(), 40.0F);
    EXPECT_FLOAT_EQ(object(_arm).getCustomEnd(), 40.0F);
}

TEST_F(Panels, PropertiesRefuseWhatIsNoNumberAndWhatHasNoRoom) {
    window().barSelection().select({_hip}, SelectBy::Replacing);
    type(Properties::Field::Begin, "ten");
    type(Properties::Field::End, "-50");
    EXPECT_EQ(steps(), 0);
    EXPECT_EQ(window().properties().field(Properties::Field::Begin).text(), "0");
}

TEST_F(Panels, TheRangeIsDraggedInTheRuler) {
    CurveEditor& editor = window().curveEditor();
    const auto at = [this](double frame, int y) {
        return QPoint(static_cast<int>(std::lround(window().axis().map().toPixel(frame))), y);
    };
    const float head = window().head().frame();
    drag(editor, at(20, 8), at(60, 8), Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_FLOAT_EQ(window().transport().begin(), 20.0F);
    EXPECT_FLOAT_EQ(window().transport().end(), 60.0F);
    EXPECT_FLOAT_EQ(window().head().frame(), head) << "the playhead stays";
    drag(window().timeline(), at(60, TimeView::RulerHeight - 2), at(80, TimeView::RulerHeight - 2));
    EXPECT_FLOAT_EQ(window().transport().begin(), 20.0F);
    EXPECT_FLOAT_EQ(window().transport().end(), 80.0F);
    drag(editor, at(20, TimeView::RulerHeight - 2), at(10, TimeView::RulerHeight - 2));
    EXPECT_FLOAT_EQ(window().transport().begin(), 10.0F);
    drag(editor, at(50, TimeView::RulerHeight - 2), at(51, TimeView::RulerHeight - 2));
    EXPECT_FLOAT_EQ(window().head().frame(), 51.0F) << "between the ends the playhead is dragged";
    EXPECT_FLOAT_EQ(window().transport().end(), 80.0F);
}

TEST_F(Panels, ScrollingDrawsWhatDrawingAnewWouldHaveDrawn) {
    for (QWidget* view :
         {static_cast<QWidget*>(&window().timeline()), static_cast<QWidget*>(&window().dopeSheet())}) {
        view->resize(700, 160);
        view->grab();
        for (const int by : {-3, 40, -211, 5}) {
            window().axis().pan(by);
            const QImage scrolled = view->grab().toImage();
            view->resize(view->width(), view->height() + 1); // draws all of it
            view->resize(view->width(), view->height() - 1);
            EXPECT_TRUE(scrolled == view->grab().toImage())
                << view->objectName().toStdString() << " by " << by;
        }
    }
}

} // namespace

} // namespace ka::studio
