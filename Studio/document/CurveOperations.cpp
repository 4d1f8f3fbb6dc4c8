#include "CurveOperations.h"

#include <algorithm>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaMotion/CurveKind.h>
#include <kaMotion/Failure.h>

namespace ka::studio {

namespace {

bool isRotation(const kaAnimationObject& object) {
    const kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(object.getId());
    return curve != nullptr && ka::motion::curveKind(curve) == ka::motion::CurveKind::Rotation;
}

} // namespace

ka::motion::CurveList curvesWith(const Ids& ids) {
    ka::motion::CurveList curves;
    for (const kaUID id : ids)
        if (kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(id))
            curves.push_back(curve);
    return curves;
}

Ids withWholeRotations(const Ids& curves) {
    Ids all = curves;
    for (const kaUID id : curves) {
        const kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(id);
        const kaAnimationObject* block = curve != nullptr ? curve->getParentObject() : nullptr;
        if (block == nullptr || !isRotation(*curve))
            continue;
        for (const kaAnimationObject* sibling : block->getObjects())
            if (isRotation(*sibling))
                all.push_back(sibling->getId());
    }
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

QString summaryOf(const ka::motion::OperationReport& report) {
    QString text = Document::tr("%1 of %2 curves changed, %3 keys to %4")
                       .arg(report.changedCurves)
                       .arg(report.curves)
                       .arg(report.keysBefore)
                       .arg(report.keysAfter);
    for (const ka::motion::Measure& measure : report.measures) {
        text +=
            QStringLiteral("; %1 %2").arg(QString::fromStdString(measure.name)).arg(measure.value, 0, 'g', 4);
        if (!measure.unit.empty())
            text += QLatin1Char(' ') + QString::fromStdString(measure.unit);
        if (!measure.where.empty())
            text += QStringLiteral(" (%1)").arg(QString::fromStdString(measure.where));
    }
    return text;
}

OperationOutcome runOperation(Document& document, LongWork& work, const QString& name, const Ids& curves,
                              const CurveOperation& operation) {
    if (work.isRunning())
        return {Document::tr("Something else is still going on."), {}, true};
    OperationOutcome outcome;
    Scope scope;
    for (const kaAnimationCurve2D* curve : curvesWith(curves))
        scope.objects.push_back(curve->getId());
    Gesture gesture(document, scope);
    try {
        const LongWork::Run run(work, LongWork::Ending::Answer);
        const ka::motion::OperationReport report = operation(curvesWith(curves), work);
        outcome.text = report.isCancelled ? Document::tr("%1 was given up").arg(name)
                                          : name + QStringLiteral(": ") + summaryOf(report);
        for (const auto* lines : {&report.notes, &report.faults})
            for (const std::string& line : *lines)
                outcome.notes.append(QString::fromStdString(line));
    } catch (const ka::motion::Failure& failure) {
        outcome.text = QString::fromStdString(failure.what());
        outcome.hasFailed = true;
        gesture.cancel();
    }
    gesture.commit(name);
    return outcome;
}

} // namespace ka::studio
