#include "check/DocumentCurves.h"
#include "check/SegmentCheck.h"

#include <kaMotion/CurveCheck.h>
#include <kaMotion/Text.h>

namespace ka::motion {

namespace {

using Element = DocumentOutline::Element;

std::string frameText(float frame) {
    return formatNumber(static_cast<double>(frame));
}

class CurveChecker {
  public:
    CurveChecker(const DocumentOutline& outline, const ElementsById& byId, FindingList& findings)
        : _curves(outline, byId), _findings(findings) {}

    void check(const Element& curve) {
        _curves.set(curve);
        for (const auto& [kept, other] : _curves.doubles())
            report(*other, "stands at frame " + frameText(_curves.pointOf(other).position[0]) +
                               " like point " + std::to_string(kept->id) + " (line " +
                               std::to_string(kept->line) + ") of curve " + std::to_string(curve.id) +
                               ": only one of them counts");
        const std::vector<PlainKey>& keys = _curves.keys();
        if (keys.size() == 1)
            report(*_curves.points().front(), "no value at frame " + frameText(keys.front().x) +
                                                  ": the only key of curve " + std::to_string(curve.id));
        for (std::size_t i = 0; i + 1 < keys.size(); ++i)
            checkSegment(curve, *_curves.points()[i], segmentBetween(keys[i], keys[i + 1]));
    }

  private:
    void report(const Element& element, const std::string& message) {
        _findings.push_back({element.line, 0, kindName(element.kind), std::to_string(element.id), message});
    }

    void checkSegment(const Element& curve, const Element& left, const kaSegmentPoints& points) {
        const bool isTurning = turnsBack(points);
        const std::optional<float> frame = frameWithoutValue(points);
        if (!isTurning && !frame)
            return;
        const std::string place = "between frames " + frameText(points.x0) + " and " + frameText(points.x3) +
                                  " of curve " + std::to_string(curve.id);
        if (isTurning)
            report(left, "handles turn back in time " + place);
        if (frame)
            report(left, "no value at frame " + frameText(*frame) + " " + place);
    }

    DocumentCurves _curves;
    FindingList& _findings;
};

} // namespace

void checkCurves(const DocumentOutline& outline, const ElementsById& byId, FindingList& findings) {
    CurveChecker checker(outline, byId, findings);
    for (const Element& element : outline.elements)
        if (element.kind == Kind::Curve)
            checker.check(element);
}

} // namespace ka::motion
