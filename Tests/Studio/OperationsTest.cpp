#include "RegistryDump.h"
#include "WindowFixture.h"
#include "app/OperationDialog.h"
#include "views/ChannelTree.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QTreeView>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaMotion/Failure.h>

namespace ka::studio {

namespace {

/// Operations on whole curves from the menu: each is one step, which undo takes back bit for bit.
class Operations : public testing::WindowFixture {
  protected:
    void SetUp() override {
        WindowFixture::SetUp();
        openFigure();
        _answers.dialog = [this](OperationDialog& dialog) {
            _dialogs.append(dialog.windowTitle());
            if (_fill)
                _fill(dialog);
            return _isWished;
        };
        setAnswers();
    }

    /// The only curve that is shown, with these values at frames 0, 10, 20...
    kaUID shown(const char* block, const char* attribute, const std::vector<float>& values = {}) {
        const kaUID id = curve(block, attribute);
        Document& document = window().session().document();
        for (std::size_t i = 0; i < values.size(); ++i)
            changeNumber(document, {key(id, static_cast<float>(10 * i))->getId()}, KeyNumber::Value,
                         [&](float) { return values[i]; });
        document.history().clear();
        window().channels().choose({id});
        return id;
    }
    std::size_t keyCount(kaUID id) { return kaAnimationManager::the()->getCurve2D(id)->getChildCount(); }
    float valueAt(kaUID id, float frame) {
        float value = 0.0F;
        kaAnimationController::the()->computeCurveValue(kaAnimationManager::the()->getCurve2D(id), frame,
                                                        value);
        return value;
    }
    static QDoubleSpinBox& number(OperationDialog& dialog, const char* name) {
        return *dialog.findChild<QDoubleSpinBox*>(name);
    }
    /// Runs an action that is to make one step, undone to the last bit and done again.
    void step(const char* action, const char* name) {
        QUndoStack& history = window().session().document().history();
        const std::string before = testing::registryDump();
        const int steps = history.index();
        trigger(action);
        EXPECT_TRUE(_messages.isEmpty()) << _messages.join('\n').toStdString();
        ASSERT_EQ(history.index(), steps + 1);
        EXPECT_EQ(history.undoText(), name);
        const std::string after = testing::registryDump();
        EXPECT_NE(after, before);
        history.undo();
        EXPECT_TRUE(testing::registryDump() == before) << "undo leaves a difference";
        history.redo();
        EXPECT_TRUE(testing::registryDump() == after) << "redo leaves a difference";
    }

    QStringList _dialogs;
    std::function<void(OperationDialog&)> _fill;
    bool _isWished = true;
};

TEST_F(Operations, EulerFilterTakesAFlipOutOfTheShownRotation) {
    const kaUID id = shown("arm", "rotationX", {0, 20, 40, -300, -280, -260, -240, -220, -200, -180, -160});
    step("eulerFilter", "Euler filter");
    for (int i = 3; i <= 10; ++i) // a whole turn on, the same rotation
        EXPECT_FLOAT_EQ(key(id, static_cast<float>(10 * i))->getMaximum(), static_cast<float>(20 * i)) << i;
    EXPECT_TRUE(_dialogs.isEmpty()) << "there is nothing to ask";
}

TEST_F(Operations, LeaveLockedCurvesAlone) {
    const kaUID id = shown("arm", "rotationX", {0, 20, 40, -300, -280, -260, -240, -220, -200, -180, -160});
    ChannelModel& model = window().channels().model();
    model.setData(model.indexOf(id).siblingAtColumn(ChannelModel::Lock), Qt::Checked, Qt::CheckStateRole);
    trigger("eulerFilter");
    EXPECT_EQ(window().session().document().history().count(), 0);
    EXPECT_FLOAT_EQ(key(id, 30)->getMaximum(), -300.0F);
}

TEST_F(Operations, ReduceTellsBeforehandHowManyKeysAndHowFarOff) {
    const kaUID id = shown("hip", "translationX", {0, 1, 2, 3, 4, 5, 4, 3, 2, 1, 0});
    std::vector<float> before; // at every half frame
    for (float frame = 0.0F; frame <= 100.0F; frame += 0.5F)
        before.push_back(valueAt(id, frame));
    QString loose, tight;
    _fill = [&](OperationDialog& dialog) {
        dialog.show();
        number(dialog, "translation").setValue(0.01);
        ASSERT_TRUE(QTest::qWaitFor([&] { return dialog.estimated().contains("11 keys to"); }, 20000));
        tight = dialog.estimated();
        picture(dialog, "studio-reduce");
        number(dialog, "translation").setValue(100.0);
        ASSERT_TRUE(QTest::qWaitFor([&] { return dialog.estimated().contains("11 keys to 2"); }, 20000))
            << dialog.estimated().toStdString();
        loose = dialog.estimated();
        EXPECT_EQ(keyCount(id), 11U) << "nothing is changed before it is wished for";
        number(dialog, "translation").setValue(0.01);
        dialog.hide();
    };
    step("reduce", "Reduce keys");
    EXPECT_TRUE(tight.contains("1 of 1 curves changed")) << tight.toStdString();
    EXPECT_LT(keyCount(id), 11U);
    for (std::size_t i = 0; i < before.size(); ++i)
        EXPECT_NEAR(static_cast<double>(valueAt(id, static_cast<float>(i) * 0.5F)),
                    static_cast<double>(before[i]), 0.011);
}

TEST_F(Operations, SmoothKeepsTheEndsAndTakesTheJitterOff) {
    const kaUID id = shown("hip", "translationX", {0, 1, -1, 1, -1, 1, -1, 1, -1, 1, 0});
    _fill = [](OperationDialog& dialog) { number(dialog, "cutOff").setValue(0.3); }; // keys come at 2.5 hertz
    step("smooth", "Smooth");
    EXPECT_FLOAT_EQ(key(id, 0)->getMaximum(), 0.0F);
    EXPECT_FLOAT_EQ(key(id, 100)->getMaximum(), 0.0F);
    for (int i = 2; i <= 8; ++i)
        EXPECT_LT(std::abs(valueAt(id, static_cast<float>(10 * i))), 0.5F) << i;
}

TEST_F(Operations, ThatFailHalfwayChangeNothing) {
    const kaUID id = shown("hip", "translationX");
    Document& document = window().session().document();
    const std::string before = testing::registryDump();
    const OperationOutcome outcome = runOperation(
        document, window().session().work(), "Try", {id},
        [](const ka::motion::CurveList& curves, ka::motion::Listener&) -> ka::motion::OperationReport {
            curves.front()->findPoint(20.0F)->setMaximum(7.0F);
            throw ka::motion::Failure(ka::motion::ExitCode::Usage, "no such thing");
        });
    EXPECT_TRUE(outcome.hasFailed);
    EXPECT_EQ(outcome.text, "no such thing");
    EXPECT_TRUE(testing::registryDump() == before);
    EXPECT_EQ(document.history().count(), 0);
}

TEST_F(Operations, BakePutsKeysAtEvenDistancesOnTheCurveAsItWas) {
    const kaUID id = shown("hip", "translationX", {0, 1, 2, 3, 4, 5, 4, 3, 2, 1, 0});
    std::vector<float> before;
    for (int frame = 0; frame <= 100; frame += 5)
        before.push_back(valueAt(id, static_cast<float>(frame)));
    _fill = [](OperationDialog& dialog) {
        number(dialog, "every").setValue(5.0);
        dialog.findChild<QComboBox*>("shape")->setCurrentIndex(1);
    };
    step("bake", "Bake");
    ASSERT_EQ(keyCount(id), 21U);
    for (int frame = 0; frame <= 100; frame += 5) {
        ASSERT_NE(key(id, static_cast<float>(frame)), nullptr) << frame;
        EXPECT_NEAR(static_cast<double>(key(id, static_cast<float>(frame))->getMaximum()),
                    static_cast<double>(before[static_cast<std::size_t>(frame / 5)]), 1e-4);
    }
}

TEST_F(Operations, RemovePeaksPutsASingleKeyBackIntoLine) {
    const kaUID id = shown("hip", "translationX", {0, 1, 2, 3, 90, 5, 6, 7, 8, 9, 10});
    step("removePeaks", "Remove peaks");
    EXPECT_NEAR(static_cast<double>(key(id, 40)->getMaximum()), 4.0, 1e-4);
}

TEST_F(Operations, ChangeNothingWhenTheDialogIsLeft) {
    shown("hip", "translationX");
    _isWished = false;
    for (const char* action : {"reduce", "smooth", "bake", "removePeaks"})
        trigger(action);
    EXPECT_EQ(_dialogs.size(), 4);
    EXPECT_EQ(window().session().document().history().count(), 0);
}

TEST_F(Operations, WorkOnTheCurvesOfSelectedKeysAlone) {
    const kaUID x = curve("hip", "translationX"), y = curve("hip", "translationY");
    window().channels().choose({x, y});
    window().keySelection().select({key(y, 20)->getId()}, SelectBy::Replacing);
    _fill = [](OperationDialog& dialog) { number(dialog, "every").setValue(5.0); };
    trigger("bake");
    EXPECT_EQ(keyCount(x), 11U);
    EXPECT_EQ(keyCount(y), 21U);
}

TEST_F(Operations, DoNothingWhereNothingIsShown) {
    window().channels().view().clearSelection();
    for (const char* action : {"eulerFilter", "reduce", "smooth", "bake"})
        trigger(action);
    EXPECT_TRUE(_messages.isEmpty()) << _messages.join('\n').toStdString();
    EXPECT_EQ(window().session().document().history().count(), 0);
}

} // namespace

} // namespace ka::studio
