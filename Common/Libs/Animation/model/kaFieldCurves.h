#pragma once

#include "kaAnimationTypes.h"

#include <vector>

class kaAnimationCurve2D;
class kaAnimationField;

/// The registered curves that name one field, in ascending id order. Cost: what is found.
namespace kaFieldCurves {

/// By the field's id, whether or not there is such a field.
std::vector<kaAnimationCurve2D*> of(kaUID field);
/// By the id under which the field stands in the registry; none for a field without an entry.
std::vector<kaAnimationCurve2D*> of(const kaAnimationField& field);

} // namespace kaFieldCurves
