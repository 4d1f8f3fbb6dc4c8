#include "WindowFixture.h"
#include "views/ChannelTree.h"
#include "views/KeyFields.h"
#include "views/Sum.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QTreeView>
#include <QWheelEvent>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>

namespace ka::studio {

namespace {

/// The hip's way along X alone in the editor: keys at 0, 10, ... 100 with the values 0, 1, 2, 0, 1, 2...
class Curves : public testing::WindowFixture {
  protected:
    void SetUp() override {
        WindowFixture::SetUp();
        openFigure();
        _curve = curve("hip", "translationX");
        window().channels().choose({_curve});
        window().curveEditor().frameAll();
        QTest::qWait(20);
        ASSERT_EQ(window().curveEditor().scene().curves(), std::vector<kaUID>{_curve});
        ASSERT_EQ(on().getChildCount(), 11U);
    }

    kaAnimationCurve2D& on() { return *kaAnimationManager::the()->getCurve2D(_curve); }
    CurveEditor& editor() { return window().curveEditor(); }
    QPoint at(float frame) { return editor().pixelOfKey(key(_curve, frame)->getId()).toPoint(); }
    QPoint moved(const QPoint& from, double frames, double value) {
        return from +
               QPointF(frames * window().axis().map().scale(), value * editor().values().scale()).toPoint();
    }
    QUndoStack& history() { return window().session().document().history(); }

    kaUID _curve = 0;
};

TEST_F(Curves, SelectAKeyByAClickAndShowItsNumbers) {
    QTest::mouseClick(&editor(), Qt::LeftButton, Qt::NoModifier, at(20));
    EXPECT_EQ(window().keySelection().ids(), std::vector<kaUID>{key(_curve, 20)->getId()});
    EXPECT_EQ(window().keyFields().field(KeyNumber::Frame).text(), "20");
    EXPECT_EQ(window().keyFields().field(KeyNumber::Value).text(), "2");
    EXPECT_EQ(history().count(), 0) << "a click changes nothing";
    picture("curves");
}

TEST_F(Curves, SelectByABoxAndAddAndTakeAwayByModifiers) {
    const auto box = [this](float from, float to, Qt::KeyboardModifiers modifiers) {
        drag(editor(), QPoint(at(from).x() - 8, editor().contentRect().top() + 3),
             QPoint(at(to).x() + 8, editor().height() - 3), Qt::LeftButton, modifiers);
    };
    box(20, 40, Qt::NoModifier);
    EXPECT_EQ(window().keySelection().size(), 3U);
    box(60, 70, Qt::ShiftModifier);
    EXPECT_EQ(window().keySelection().size(), 5U);
    box(30, 30, Qt::ControlModifier);
    EXPECT_EQ(window().keySelection().size(), 4U);
    EXPECT_FALSE(window().keySelection().contains(key(_curve, 30)->getId()));
}

TEST_F(Curves, DragAKeyWithoutAnyModifierToAWholeFrame) {
    const kaUID id = key(_curve, 20)->getId();
    drag(editor(), at(20), moved(at(20), 3.3, 0.5));
    const kaControlPoint2D* key = kaAnimationManager::the()->getPoint2D(id);
    EXPECT_FLOAT_EQ(key->getBegin(), 23.0F);
    EXPECT_NEAR(static_cast<double>(key->getMaximum()), 2.5, 0.02);
    EXPECT_EQ(history().count(), 1);
    trigger("undo");
    EXPECT_FLOAT_EQ(kaAnimationManager::the()->getPoint2D(id)->getBegin(), 20.0F);
    EXPECT_FLOAT_EQ(kaAnimationManager::the()->getPoint2D(id)->getMaximum(), 2.0F);
    trigger("redo");
    EXPECT_FLOAT_EQ(kaAnimationManager::the()->getPoint2D(id)->getBegin(), 23.0F);
}

TEST_F(Curves, KeepToOneAxisWithShift) {
    const kaUID id = key(_curve, 20)->getId();
    window().keySelection().select({id}, SelectBy::Replacing);
    drag(editor(), at(20), moved(at(20), 4.0, 0.05), Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_FLOAT_EQ(kaAnimationManager::the()->getPoint2D(id)->getBegin(), 24.0F);
    EXPECT_FLOAT_EQ(kaAnimationManager::the()->getPoint2D(id)->getMaximum(), 2.0F);
}

TEST_F(Curves, NeverLetAKeyPassItsNeighbour) {
    const kaUID id = key(_curve, 20)->getId();
    drag(editor(), at(20), moved(at(20), 35.0, 0.0));
    EXPECT_GT(kaAnimationManager::the()->getPoint2D(id)->getBegin(), 20.0F);
    EXPECT_LE(kaAnimationManager::the()->getPoint2D(id)->getBegin(), 30.0F);
    EXPECT_EQ(on().getChildCount(), 11U);
    float last = -1.0F;
    for (const kaAnimationObject* key : on().getObjects()) {
        EXPECT_GE(key->getBegin(), last);
        last = key->getBegin();
    }
}

TEST_F(Curves, GiveADragUpWithEscape) {
    const std::string before = Document::text();
    QTest::mousePress(&editor(), Qt::LeftButton, Qt::NoModifier, at(20));
    const QPoint to = moved(at(20), 5.0, 1.0);
    QMouseEvent move(QEvent::MouseMove, to, editor().mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(&editor(), &move);
    EXPECT_NE(Document::text(), before);
    QTest::keyClick(&editor(), Qt::Key_Escape);
    QTest::mouseRelease(&editor(), Qt::LeftButton, Qt::NoModifier, to);
    EXPECT_EQ(Document::text(), before);
    EXPECT_EQ(history().count(), 0);
}

TEST_F(Curves, DragAHandleAndTurnTheOtherAlong) {
    const kaUID id = key(_curve, 20)->getId();
    kaControlPoint2D* point = kaAnimationManager::the()->getPoint2D(id);
    window().keySelection().select({id}, SelectBy::Replacing);
    trigger("typeFlat");
    const float in = point->getInTangent()->getBegin();
    const QPoint from = editor().pixelOfHandle(id, HandleDrag::Side::Out).toPoint();
    drag(editor(), from, moved(from, 0.0, 1.0));
    EXPECT_EQ(point->getTangentType(), kaControlPoint2D::TANGENT_USER);
    const osg::Pnt2f out = point->getOutTangent()->getPosition();
    const float slope = (out[1] - 2.0F) / (out[0] - 20.0F);
    EXPECT_NEAR(static_cast<double>(out[1]), 3.0, 0.05);
    EXPECT_FLOAT_EQ(point->getInTangent()->getBegin(), in);
    EXPECT_NEAR(static_cast<double>(point->getInTangent()->getMaximum()),
                static_cast<double>(2.0F + slope * (in - 20.0F)), 1e-4);
    picture("handle");
}

TEST_F(Curves, InsertAKeyOnTheCurveByADoubleClickAndByI) {
    const double x = window().axis().map().toPixel(25.0);
    const double y = editor().values().toPixel(1.0); // half way from 2 at frame 20 to 0 at frame 30
    QTest::mouseDClick(&editor(), Qt::LeftButton, Qt::NoModifier, QPointF(x, y).toPoint());
    ASSERT_NE(key(_curve, 25), nullptr);
    EXPECT_NEAR(static_cast<double>(key(_curve, 25)->getMaximum()), 1.0, 0.02);
    window().head().scrub(45.0F);
    QTest::keyClick(&window(), Qt::Key_I);
    EXPECT_NE(key(_curve, 45), nullptr);
    EXPECT_EQ(on().getChildCount(), 13U);
    trigger("undo");
    trigger("undo");
    EXPECT_EQ(on().getChildCount(), 11U);
}

TEST_F(Curves, CutAndPasteAtThePlayhead) {
    window().keySelection().select({key(_curve, 20)->getId()}, SelectBy::Replacing);
    trigger("cut");
    EXPECT_EQ(key(_curve, 20), nullptr);
    window().head().scrub(55.0F);
    trigger("paste");
    ASSERT_NE(key(_curve, 55), nullptr);
    EXPECT_FLOAT_EQ(key(_curve, 55)->getMaximum(), 2.0F);
    EXPECT_TRUE(window().keySelection().contains(key(_curve, 55)->getId()));
    window().head().scrub(57.0F);
    trigger("duplicate");
    EXPECT_NE(key(_curve, 57), nullptr);
    QTest::keyClick(&window(), Qt::Key_Delete);
    EXPECT_EQ(key(_curve, 57), nullptr);
}

TEST_F(Curves, ShortenHandlesBetweenWhichKeysArePasted) {
    trigger("selectAll");
    trigger("copy");
    window().head().scrub(1.0F);
    const std::string before = Document::text();
    trigger("paste"); // between keys ten frames apart, whose handles are five long
    ASSERT_EQ(on().getChildCount(), 22U);
    const kaControlPoint2D* last = nullptr;
    for (int i = 0; i <= 10; ++i)
        for (const int frame : {10 * i, 10 * i + 1}) {
            const kaControlPoint2D* point = key(_curve, static_cast<float>(frame));
            ASSERT_NE(point, nullptr) << frame;
            if (last != nullptr) {
                EXPECT_LE(last->getOutTangent()->getBegin(), point->getInTangent()->getBegin() + 1e-4F)
                    << frame;
            }
            last = point;
        }
    trigger("undo");
    EXPECT_EQ(Document::text(), before);
}

TEST_F(Curves, TakeNumbersAndSumsInTheFields) {
    window().keySelection().select({key(_curve, 20)->getId(), key(_curve, 50)->getId()}, SelectBy::Replacing);
    QLineEdit& value = window().keyFields().field(KeyNumber::Value);
    value.setFocus();
    value.selectAll();
    QTest::keyClicks(&value, "*=1.5");
    QTest::keyClick(&value, Qt::Key_Return);
    EXPECT_FLOAT_EQ(key(_curve, 20)->getMaximum(), 3.0F);
    EXPECT_FLOAT_EQ(key(_curve, 50)->getMaximum(), 3.0F);
    QLineEdit& frame = window().keyFields().field(KeyNumber::Frame);
    frame.setFocus();
    QTest::keyClicks(&frame, "+=2");
    QTest::keyClick(&frame, Qt::Key_Return);
    EXPECT_NE(key(_curve, 22), nullptr);
    EXPECT_NE(key(_curve, 52), nullptr);
    EXPECT_EQ(history().count(), 2);
}

TEST_F(Curves, SetTangentTypesByKeyAndByTheField) {
    const kaUID id = key(_curve, 20)->getId();
    window().keySelection().select({id}, SelectBy::Replacing);
    editor().setFocus();
    QTest::keyClick(&window(), Qt::Key_1);
    EXPECT_EQ(kaAnimationManager::the()->getPoint2D(id)->getTangentType(),
              kaControlPoint2D::TANGENT_COLLAPSED);
    EXPECT_EQ(window().keyFields().tangentType().currentText(), "Collapsed");
}

TEST_F(Curves, ZoomAtThePointerAndEachAxisAlone) {
    const QPointF place(400, 300);
    const auto wheel = [&](Qt::KeyboardModifiers modifiers) {
        QWheelEvent event(place, editor().mapToGlobal(place.toPoint()), QPoint(), QPoint(0, 120),
                          Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&editor(), &event);
    };
    const double frame = editor().frameAt(place.x()), value = editor().values().toValue(place.y());
    const double inTime = window().axis().map().scale(), inValue = editor().values().scale();
    wheel(Qt::NoModifier);
    EXPECT_NEAR(editor().frameAt(place.x()), frame, 1e-9);
    EXPECT_NEAR(editor().values().toValue(place.y()), value, 1e-9);
    EXPECT_NEAR(window().axis().map().scale() / inTime, 1.2, 1e-9);
    wheel(Qt::ControlModifier);
    EXPECT_NEAR(window().axis().map().scale() / inTime, 1.2, 1e-9) << "the value's axis alone";
    EXPECT_NEAR(editor().values().scale() / inValue, 1.44, 1e-9);
    drag(editor(), QPoint(400, 300), QPoint(450, 320), Qt::MiddleButton);
    EXPECT_NEAR(editor().frameAt(place.x() + 50), frame, 1e-6);
}

TEST_F(Curves, ScaleTheSelectionByItsFrame) {
    window().action("scaling")->setChecked(true);
    std::vector<kaUID> keys;
    for (const float frame : {40.0F, 50.0F, 60.0F})
        keys.push_back(key(_curve, frame)->getId());
    window().keySelection().select(keys, SelectBy::Replacing);
    QTest::qWait(20);
    picture("scaling");
    // The frame stands ten pixels around the keys; its right side is drawn in by half.
    const int left = at(40).x() - 10, right = at(60).x() + 10, y = (at(40).y() + at(50).y()) / 2;
    drag(editor(), QPoint(right, y), QPoint((left + right) / 2 + 2, y));
    EXPECT_LT(kaAnimationManager::the()->getPoint2D(keys[2])->getBegin(), 51.0F);
    EXPECT_EQ(history().count(), 1);
}

TEST_F(Curves, FindChannelsAndMuteLockAndShowOneAlone) {
    ChannelTree& channels = window().channels();
    const int all = channels.view().model()->rowCount();
    EXPECT_GE(all, 2);
    QTest::keyClicks(&channels.search(), "arm");
    EXPECT_EQ(channels.view().model()->rowCount(), 1);
    channels.search().clear();
    ChannelModel& model = channels.model();
    const QModelIndex index = model.indexOf(_curve);
    model.setData(index.siblingAtColumn(ChannelModel::Mute), Qt::Checked, Qt::CheckStateRole);
    EXPECT_FALSE(on().isActive());
    trigger("undo");
    EXPECT_TRUE(on().isActive());
    model.setData(index.siblingAtColumn(ChannelModel::Lock), Qt::Checked, Qt::CheckStateRole);
    const std::string before = Document::text();
    drag(editor(), at(20), moved(at(20), 5.0, 1.0));
    EXPECT_EQ(Document::text(), before) << "a locked curve was changed";
    channels.choose({model.index(0, 0).data(ChannelModel::IdRole).toULongLong()});
    model.setData(index.siblingAtColumn(ChannelModel::Solo), Qt::Checked, Qt::CheckStateRole);
    EXPECT_EQ(editor().scene().curves(), std::vector<kaUID>{_curve});
}

TEST_F(Curves, ScrubByDraggingInTheRuler) {
    const int y = TimeView::RulerHeight / 2;
    drag(editor(), QPoint(static_cast<int>(window().axis().map().toPixel(10)), y),
         QPoint(static_cast<int>(std::lround(window().axis().map().toPixel(42))), y));
    EXPECT_FLOAT_EQ(window().head().frame(), 42.0F);
}

struct SumRow {
    const char* text;
    double former, result;
    bool isTaken;
};

class Sums : public ::testing::TestWithParam<SumRow> {};

TEST_P(Sums, GiveTheNumberOrNone) {
    const std::optional<double> result = applySum(GetParam().text, GetParam().former);
    EXPECT_EQ(result.has_value(), GetParam().isTaken);
    if (result.has_value()) {
        EXPECT_DOUBLE_EQ(*result, GetParam().result);
    }
}

INSTANTIATE_TEST_SUITE_P(Typed, Sums,
                         ::testing::Values(SumRow{"5", 1, 5, true}, SumRow{"-5", 1, -5, true},
                                           SumRow{"+=5", 1, 6, true}, SumRow{"-= 2.5", 1, -1.5, true},
                                           SumRow{"*1.5", 4, 6, true}, SumRow{"*=2", 4, 8, true},
                                           SumRow{"/2", 4, 2, true}, SumRow{"/=0", 4, 0, false},
                                           SumRow{"1,5", 4, 0, false}, SumRow{"", 4, 0, false},
                                           SumRow{"nan", 4, 0, false}, SumRow{"1e400", 4, 0, false}));

} // namespace

} // namespace ka::studio
