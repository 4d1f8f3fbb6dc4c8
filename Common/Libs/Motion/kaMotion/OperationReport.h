#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// A number that an operation has found, with where it comes from.
struct Measure {
    std::string name;              ///< what was measured, in words: "largest difference in rotation"
    double value = 0.0;            ///< how much
    std::string unit;              ///< "degrees", "units", "frames"; empty for plain numbers
    std::string where;             ///< the curve or node that it was found on; empty when it is of all
    std::optional<double> frame;   ///< when; nothing when it is of no single frame
    std::optional<double> allowed; ///< the bound that was asked for; nothing where there is none
};

/// What an operation on motion did, or would do.
struct OperationReport {
    std::string operation;          ///< its name, "reduce"
    bool isCancelled = false;       ///< then nothing was changed
    bool isDry = false;             ///< nothing was to be changed
    std::size_t curves = 0;         ///< that it worked on
    std::size_t changedCurves = 0;  ///< of them those that are different now
    std::size_t keysBefore = 0;     ///< of the curves that it worked on
    std::size_t keysAfter = 0;      ///< the same, afterwards
    std::vector<Measure> measures;  ///< what was found out
    std::vector<std::string> notes; ///< what its user ought to know, one line each
    /// What could not be kept to, one line each; empty when all is as it was asked for.
    std::vector<std::string> faults;

    /// A few lines of UTF-8 for people, each with its line end.
    std::string text() const;
    /// One JSON object, indented, with its line end. Ids and names are strings.
    std::string json() const;
};

/// The reports of several operations one after the other, as a JSON array.
std::string jsonOf(const std::vector<OperationReport>& reports);

} // namespace ka::motion
#pragma GCC visibility pop
