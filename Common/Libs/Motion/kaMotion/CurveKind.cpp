#include <array>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaMotion/CurveKind.h>
#include <string>
#include <utility>

namespace ka::motion {

namespace {

std::string attributeOf(const kaAnimationCurve2D* curve) {
    const kaAnimationField* field = kaAnimationManager::the()->getField(curve->getField());
    return field == nullptr || field->attribute.empty() ? curve->getName() : field->attribute;
}

bool startsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

} // namespace

CurveKind curveKind(const kaAnimationCurve2D* curve) {
    const std::string attribute = attributeOf(curve);
    using Kind = std::pair<const char*, CurveKind>;
    constexpr std::array<Kind, 4> kinds{{{"rotation", CurveKind::Rotation},
                                         {"rotate", CurveKind::Rotation},
                                         {"translation", CurveKind::Translation},
                                         {"scale", CurveKind::Scale}}};
    // An attribute of more than one component ends with its letter.
    for (const auto& [start, kind] : kinds)
        if (startsWith(attribute, start) && curveAxis(curve) >= 0)
            return kind;
    return CurveKind::Other;
}

int curveAxis(const kaAnimationCurve2D* curve) {
    const std::string attribute = attributeOf(curve);
    const std::size_t axis =
        attribute.empty() ? std::string::npos : std::string("XYZ").find(attribute.back());
    return axis == std::string::npos ? -1 : static_cast<int>(axis);
}

} // namespace ka::motion
