#pragma once

#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// Values of curves at frames, as other programs calculate with them.
struct CurveTable {
    /// What stands in a column.
    struct Column {
        std::string name; ///< UTF-8, "Hips.translationX"
        std::string unit; ///< "degrees", "units"; empty for plain numbers
    };

    std::vector<Column> columns;   ///< one for each curve
    std::vector<double> frames;    ///< one for each row
    double framesPerSecond = 25.0; ///< above 0
    /// Row by row, a number for each column; not a number where a curve has no value.
    std::vector<float> values;
};

/// Comma-separated values as RFC 4180 has them: a header "frame,seconds,Hips.translationX [units],...", then
/// a line a frame, its numbers with the nine digits that a float needs. Without a value the place is empty.
std::string csvOf(const CurveTable& table);

/// A NumPy archive (.npz, members stored as they are): `values` (float32, frames by curves), `frames` and
/// `seconds` (float64), `names` and `units` (texts, one a curve), `fps` (float64, no dimensions).
/// @throws Failure (OutputFailed).
std::string npzOf(const CurveTable& table);

} // namespace ka::motion
#pragma GCC visibility pop
