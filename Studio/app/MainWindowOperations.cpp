#include "MainWindow.h"
#include "OperationDialog.h"
#include "document/CurveOperations.h"
#include "views/ChannelTree.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QMenu>
#include <algorithm>
#include <kaMotion/EditTime.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Filter.h>
#include <kaMotion/Project.h>
#include <kaMotion/Reduce.h>

namespace ka::studio {

namespace {

namespace motion = ka::motion;

} // namespace

/// Those with selected keys, else all that are shown; without the locked ones.
std::vector<kaUID> MainWindow::chosenCurves(bool takesWholeRotations) const {
    std::vector<kaUID> curves = curvesOf(_keys.ids());
    if (curves.empty())
        curves = _curves->scene().curves();
    if (takesWholeRotations)
        curves = withWholeRotations(curves);
    const std::vector<kaUID> locked = _channels->lockedCurves();
    const auto isLocked = [&locked](kaUID id) {
        return std::find(locked.begin(), locked.end(), id) != locked.end();
    };
    curves.erase(std::remove_if(curves.begin(), curves.end(), isLocked), curves.end());
    return curves;
}

bool MainWindow::isWished(OperationDialog& dialog) {
    _transport.pause();
    return (_answers.dialog ? _answers.dialog(dialog) : dialog.exec() == QDialog::Accepted);
}

void MainWindow::operate(const QString& name, const std::vector<kaUID>& curves,
                         const CurveOperation& operation) {
    const OperationOutcome outcome =
        runOperation(_session.document(), _session.work(), name, curves, operation);
    _session.addToReport(outcome.notes);
    if (outcome.hasFailed)
        tell(outcome.text);
    else
        say(outcome.text);
}

void MainWindow::reduceKeys() {
    const std::vector<kaUID> curves = chosenCurves();
    OperationDialog dialog(tr("Reduce keys"),
                           tr("Thins the keys of %n curve(s) to few that stay this near to the motion.",
                              nullptr, static_cast<int>(curves.size())),
                           this);
    constexpr double Least = 1e-6, Most = 1e6;
    const motion::ReduceOptions usual;
    const auto* rotation =
        dialog.addNumber("rotation", tr("Rotations, degrees"), tr("How far an angle may be off"),
                         usual.rotation, Least, Most, 4);
    const auto* translation =
        dialog.addNumber("translation", tr("Translations, units"), tr("How far a length may be off"),
                         usual.translation, Least, Most, 4);
    const auto* scale = dialog.addNumber("scale", tr("Scales"), tr("How far a factor may be off"),
                                         usual.scale, Least, Most, 6);
    const auto* value = dialog.addNumber("value", tr("Other values"), tr("How far anything else may be off"),
                                         usual.value, Least, Most, 6);
    const auto* corners = dialog.addSwitch("corners", tr("Keys may be corners"),
                                           tr("Fewer keys; they need not be smooth where the motion is"));
    const auto optionsOf = [&](bool isDry) {
        motion::ReduceOptions options;
        options.rotation = rotation->value();
        options.translation = translation->value();
        options.scale = scale->value();
        options.value = value->value();
        options.allowsCorners = corners->isChecked();
        options.isDry = isDry;
        return options;
    };
    dialog.setEstimate([&](motion::Listener& listener) {
        return summaryOf(motion::reduce(curvesWith(curves), osg::NodePtr(), optionsOf(true), listener));
    });
    if (isWished(dialog))
        operate(tr("Reduce keys"), curves, [&](const motion::CurveList& list, motion::Listener& listener) {
            return motion::reduce(list, osg::NodePtr(), optionsOf(false), listener);
        });
}

void MainWindow::smoothCurves() {
    const std::vector<kaUID> curves = chosenCurves();
    OperationDialog dialog(
        tr("Smooth"), tr("Takes quick jitter off; nothing moves in time, first and last keys stay."), this);
    const motion::LowPass usual;
    const auto* cutOff =
        dialog.addNumber("cutOff", tr("Cut-off, hertz"), tr("What swings faster than this goes"),
                         usual.cutOff, 0.01, 1000.0, 2);
    if (isWished(dialog))
        operate(tr("Smooth"), curves, [&](const motion::CurveList& list, motion::Listener& listener) {
            return motion::smooth(list, {cutOff->value(), static_cast<double>(_head.framesPerSecond())},
                                  listener);
        });
}

void MainWindow::bakeCurves() {
    const std::vector<kaUID> curves = chosenCurves();
    OperationDialog dialog(
        tr("Bake"), tr("Puts keys at even distances, with the values that the curves have there."), this);
    const motion::Resampling usual;
    const auto* every = dialog.addNumber("every", tr("Frames from key to key"), tr("Counted from frame 0"),
                                         usual.every, 0.01, 10000.0, 2);
    const auto* shape =
        dialog.addChoice("shape", tr("Between keys"), tr("How the curves run from key to key"),
                         {tr("Smooth"), tr("Straight"), tr("Steps")});
    if (!isWished(dialog))
        return;
    using Shape = motion::Resampling::Shape;
    constexpr Shape Shapes[] = {Shape::Smooth, Shape::Straight, Shape::Step};
    operate(tr("Bake"), curves, [&](const motion::CurveList& list, motion::Listener& listener) {
        motion::Resampling resampling;
        resampling.every = every->value();
        resampling.shape = Shapes[std::clamp(shape->currentIndex(), 0, 2)];
        return motion::resample(list, resampling, listener);
    });
}

void MainWindow::removePeaks() {
    const std::vector<kaUID> curves = chosenCurves();
    OperationDialog dialog(tr("Remove peaks"), tr("Puts single keys that leap out of line back into it."),
                           this);
    const motion::PeakOptions usual;
    const auto* sensitivity = dialog.addNumber(
        "sensitivity", tr("Sensitivity"), tr("Times the usual distance of the keys around from their median"),
        usual.sensitivity, 0.1, 1000.0, 2);
    const auto* least =
        dialog.addNumber("least", tr("Least height"), tr("What is nearer to its neighbours is no peak"),
                         usual.least, 0.0, 1e6, 3);
    if (isWished(dialog))
        operate(tr("Remove peaks"), curves, [&](const motion::CurveList& list, motion::Listener& listener) {
            motion::PeakOptions options;
            options.sensitivity = sensitivity->value();
            options.least = least->value();
            return motion::removePeaks(list, options, listener);
        });
}

void MainWindow::buildOperationMenu(QMenu* menu) {
    menu->addSeparator();
    addAction(menu, "eulerFilter", tr("&Euler filter"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E),
              tr("Takes the flips out of the rotations that are shown"), [this] {
                  operate(tr("Euler filter"), chosenCurves(true),
                          [](const motion::CurveList& list, motion::Listener& listener) {
                              return motion::removeFlips(list, listener);
                          });
              });
    addAction(menu, "reduce", tr("&Reduce keys..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R),
              tr("Fewer keys within a bound, with their number and error as you choose it"),
              [this] { reduceKeys(); });
    addAction(menu, "smooth", tr("S&mooth..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_M),
              tr("Takes quick jitter off the curves"), [this] { smoothCurves(); });
    addAction(menu, "removePeaks", tr("Remove &peaks..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_K),
              tr("Puts single keys that leap out of line back into it"), [this] { removePeaks(); });
    addAction(menu, "bake", tr("Ba&ke..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_B),
              tr("Keys at even distances on the curves as they are"), [this] { bakeCurves(); });
}

} // namespace ka::studio
