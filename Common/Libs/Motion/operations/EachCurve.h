#pragma once

#include "operations/CurveEdit.h"
#include "operations/KeyEdits.h"

#include <functional>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/Listener.h>
#include <kaMotion/OperationReport.h>
#include <string>

namespace ka::motion {

/// Curves with their keys, and what becomes of them: the frame of every operation that works on curve after
/// curve.
class CurveWork {
  public:
    /// Nulls are left out. @param operation  its name, for the report.
    CurveWork(std::string operation, const CurveList& curves);

    const CurveList& curves() const { return _curves; }
    const std::vector<Keys>& sources() const { return _sources; }
    /// From the earliest to the latest key of all curves; both 0 where there is none.
    std::pair<double, double> range() const;
    OperationReport& report() { return _report; }

    /// New keys for curve `number`; the same as before leave it alone.
    void set(std::size_t number, Keys keys) { _results[number] = std::move(keys); }
    const Keys& result(std::size_t number) const { return _results[number]; }
    /// Curve `number` is to go.
    void drop(std::size_t number) { _dropped[number] = true; }

    /// Sets the keys of every curve of at least two, on several threads. @return false when cancelled.
    bool setEach(Listener& listener, const std::string& what,
                 const std::function<Keys(const Keys& keys, std::size_t number)>& change);

    /// Changes the curves and gives the report.
    OperationReport finish();
    /// The report of work that was cancelled; nothing is changed.
    OperationReport cancel();

  private:
    CurveList _curves;
    std::vector<Keys> _sources, _results;
    std::vector<bool> _dropped;
    OperationReport _report;
};

} // namespace ka::motion
