#include "kaFieldCurves.h"

#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaObjectRegistry.h"

std::vector<kaAnimationCurve2D*> kaFieldCurves::of(kaUID field) {
    const kaObjectRegistry& registry = kaObjectRegistry::the();
    std::vector<kaAnimationCurve2D*> curves;
    for (kaUID id : registry.fieldUses().curvesOf(field))
        curves.push_back(static_cast<kaAnimationCurve2D*>(registry.find(id)));
    return curves;
}

std::vector<kaAnimationCurve2D*> kaFieldCurves::of(const kaAnimationField& field) {
    const kaObjectRegistry& registry = kaObjectRegistry::the();
    const kaUID id = registry.keyOf(field, field.getId());
    return registry.findField(id) == &field ? of(id) : std::vector<kaAnimationCurve2D*>();
}
