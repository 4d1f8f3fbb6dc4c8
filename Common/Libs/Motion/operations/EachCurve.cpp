#include "operations/EachCurve.h"

#include "operations/Parallel.h"

#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaMotion/Text.h>

namespace ka::motion {

CurveWork::CurveWork(std::string operation, const CurveList& curves) {
    _report.operation = std::move(operation);
    for (kaAnimationCurve2D* curve : curves)
        if (curve != nullptr) {
            _curves.push_back(curve);
            _sources.push_back(plainKeys(*curve));
            _report.keysBefore += _sources.back().size();
        }
    _report.curves = _curves.size();
    _results = _sources;
    _dropped.resize(_curves.size(), false);
}

std::pair<double, double> CurveWork::range() const {
    double begin = HUGE_VAL, end = -HUGE_VAL;
    for (const Keys& keys : _sources)
        if (!keys.empty()) {
            begin = std::min(begin, static_cast<double>(keys.front().x));
            end = std::max(end, static_cast<double>(keys.back().x));
        }
    return begin <= end ? std::pair(begin, end) : std::pair(0.0, 0.0);
}

bool CurveWork::setEach(Listener& listener, const std::string& what,
                        const std::function<Keys(const Keys& keys, std::size_t number)>& change) {
    return doAll(_curves.size(), listener, what, [&](std::size_t number, const GoesOn&) {
        if (_sources[number].size() > 1)
            _results[number] = change(_sources[number], number);
    });
}

OperationReport CurveWork::finish() {
    std::vector<CurveEdit> edits;
    std::size_t gone = 0;
    for (std::size_t i = 0; i < _curves.size(); ++i) {
        if (_dropped[i]) {
            kaAnimationManager::the()->destroyCurve2D(_curves[i]);
            ++gone;
            continue;
        }
        _report.keysAfter += _results[i].size();
        if (!isSame(_sources[i], _results[i]))
            edits.push_back({_curves[i], std::move(_results[i])});
    }
    apply(edits);
    _report.changedCurves = edits.size() + gone;
    if (gone > 0)
        _report.notes.push_back(counted(gone, "curve") + " left out");
    return std::move(_report);
}

OperationReport CurveWork::cancel() {
    _report.isCancelled = true;
    _report.keysAfter = _report.keysBefore;
    return std::move(_report);
}

} // namespace ka::motion
