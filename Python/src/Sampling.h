#pragma once

#include <cstddef>
#include <vector>

class kaAnimationCurve2D;

namespace ka::python {

/// Samples a curve at frames into a column; nan where it has no value.
/// @param hold  outside its extent it keeps its first and last value, as it does when it plays.
/// @param held  memory that calls share.
/// @return whether there is a value at every frame.
bool sampleColumn(kaAnimationCurve2D& curve, const float* frames, std::size_t count, bool hold,
                  std::vector<float>& held, float* column);

} // namespace ka::python
