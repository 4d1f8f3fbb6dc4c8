#pragma once

#include "KeyEdits.h"
#include "LongWork.h"

#include <kaMotion/CurveChoice.h>
#include <kaMotion/OperationReport.h>

/// Operations on whole curves, by the motion library: each of them one step of the history, or nothing where
/// its user gives it up.
namespace ka::studio {

/// One that changes the curves that it is given.
using CurveOperation =
    std::function<ka::motion::OperationReport(const ka::motion::CurveList&, ka::motion::Listener&)>;

/// What became of it.
struct OperationOutcome {
    QString text; ///< one line for its user: keys before and after, and the largest difference
    QStringList notes;
    bool hasFailed = false;
};

/// @param name  of the step.
/// @param curves  ids of no curve are passed over.
OperationOutcome runOperation(Document& document, LongWork& work, const QString& name, const Ids& curves,
                              const CurveOperation& operation);

/// The curves with those that turn the same nodes: a rotation is all three angles.
Ids withWholeRotations(const Ids& curves);

/// One line of what an operation did or would do.
QString summaryOf(const ka::motion::OperationReport& report);

ka::motion::CurveList curvesWith(const Ids& ids);

} // namespace ka::studio
