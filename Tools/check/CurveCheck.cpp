#include "check/CurveCheck.h"

#include "base/Text.h"
#include "scene/PlainCurve.h"

#include <algorithm>
#include <cmath>
#include <kaControlPoint2D.h>
#include <kaTangents.h>

namespace ka::tools {

namespace {

using Element = DocumentOutline::Element;
using Point = DocumentOutline::Point;

/// Frames of a segment at which it is tried out.
constexpr int mostTrials = 16;

/// What the file's six decimals can be off.
constexpr double fileError = 1e-6;

std::string frameText(float frame) {
    return formatNumber(static_cast<double>(frame));
}

/// Places handles by the module's own rules, with keys that nobody else sees.
class HandlePlacer {
  public:
    PlainKey place(const Point& key, const Point* previous, const Point* next) {
        PlainKey plain{key.position[0], key.position[1], key.in[0], key.in[1], key.out[0], key.out[1]};
        if (key.tangentType == kaControlPoint2D::TANGENT_USER || (previous == nullptr && next == nullptr))
            return plain;
        const kaHandles handles =
            kaPlaceHandles(*set(_key, &key), set(_previous, previous), set(_next, next));
        plain.inX = handles.in[0];
        plain.inY = handles.in[1];
        plain.outX = handles.out[0];
        plain.outY = handles.out[1];
        return plain;
    }

  private:
    /// @return null for no values.
    static const kaControlPoint2D* set(kaControlPoint2D& point, const Point* values) {
        if (values == nullptr)
            return nullptr;
        point.setPosition(values->position[0], values->position[1]);
        point.setTangentType(values->tangentType);
        point.setTangentLengthMode(values->lengthMode);
        return &point;
    }

    // Handles have no handles of their own, and an id of their own draws none.
    kaControlPoint2D _key{0.0F, 0.0F, "", 1, true};
    kaControlPoint2D _previous{0.0F, 0.0F, "", 1, true};
    kaControlPoint2D _next{0.0F, 0.0F, "", 1, true};
};

/// Whether a segment's time runs backwards somewhere, by more than the file's decimals can make it.
bool turnsBack(const kaSegmentPoints& p) {
    const double length = static_cast<double>(p.x3) - static_cast<double>(p.x0);
    // The derivative of the time polynomial, in Bernstein form.
    const double first = (static_cast<double>(p.x1) - static_cast<double>(p.x0)) / length;
    const double last = (static_cast<double>(p.x3) - static_cast<double>(p.x2)) / length;
    const double middle = 1.0 - first - last;
    double least = std::min(first, last);
    const double bend = first - 2.0 * middle + last;
    if (middle < 0.0 && first >= 0.0 && last >= 0.0)
        least = (first * last - middle * middle) / bend;
    return least < -(fileError / length + 1e-6);
}

class CurveChecker {
  public:
    CurveChecker(const DocumentOutline& outline, const ElementsById& byId, FindingList& findings)
        : _outline(outline), _byId(byId), _findings(findings) {}

    void check(const Element& curve) {
        collect(curve);
        dropDoubles(curve);
        place();
        for (std::size_t i = 0; i + 1 < _keys.size(); ++i)
            checkSegment(curve, i);
    }

  private:
    const Point& pointOf(const Element* element) const { return _outline.points[element->point]; }

    void report(const Element& element, const std::string& message) {
        _findings.push_back({element.line, 0, kindName(element.kind), std::to_string(element.id), message});
    }

    /// The curve's keys in ascending order; of those at one frame the first listed is first.
    void collect(const Element& curve) {
        _points.clear();
        for (std::uint32_t i = 0; i < curve.references; ++i) {
            const Element* target = _byId.find(_outline.references[curve.firstReference + i].id);
            if (target != nullptr && target->kind == Kind::Point)
                _points.push_back(target);
        }
        std::stable_sort(_points.begin(), _points.end(), [this](const Element* a, const Element* b) {
            return pointOf(a).position[0] < pointOf(b).position[0];
        });
    }

    void dropDoubles(const Element& curve) {
        const auto isDouble = [&](const Element* kept, const Element* other) {
            if (kept == other)
                return true;
            if (pointOf(kept).position[0] != pointOf(other).position[0])
                return false;
            report(*other, "stands at frame " + frameText(pointOf(other).position[0]) + " like point " +
                               std::to_string(kept->id) + " (line " + std::to_string(kept->line) +
                               ") of curve " + std::to_string(curve.id) + ": only one of them counts");
            return true;
        };
        _points.erase(std::unique(_points.begin(), _points.end(), isDouble), _points.end());
    }

    void place() {
        _keys.clear();
        for (std::size_t i = 0; i < _points.size(); ++i)
            _keys.push_back(_placer.place(pointOf(_points[i]), i > 0 ? &pointOf(_points[i - 1]) : nullptr,
                                          i + 1 < _points.size() ? &pointOf(_points[i + 1]) : nullptr));
    }

    void checkSegment(const Element& curve, std::size_t left) {
        const kaSegmentPoints points = segmentBetween(_keys[left], _keys[left + 1]);
        const std::string place = "between frames " + frameText(points.x0) + " and " + frameText(points.x3) +
                                  " of curve " + std::to_string(curve.id);
        if (turnsBack(points))
            report(*_points[left], "handles turn back in time " + place);
        float frame = 0.0F;
        if (!isSolved(points, frame))
            report(*_points[left], "no value at frame " + frameText(frame) + " " + place);
    }

    /// @param frame  set to the first one that was tried and has no value.
    static bool isSolved(const kaSegmentPoints& points, float& frame) {
        const double length = static_cast<double>(points.x3) - static_cast<double>(points.x0);
        for (int i = 1; i < mostTrials; ++i) {
            const double at = static_cast<double>(points.x0) + length * i / mostTrials;
            // Whole frames are what is played.
            const auto whole = static_cast<float>(std::round(at));
            frame = whole > points.x0 && whole < points.x3 ? whole : static_cast<float>(at);
            float value = 0.0F;
            if (!kaSampleSegment(points, frame, value) || !std::isfinite(value))
                return false;
        }
        return true;
    }

    const DocumentOutline& _outline;
    const ElementsById& _byId;
    FindingList& _findings;
    HandlePlacer _placer;
    std::vector<const Element*> _points;
    std::vector<PlainKey> _keys;
};

} // namespace

void checkCurves(const DocumentOutline& outline, const ElementsById& byId, FindingList& findings) {
    CurveChecker checker(outline, byId, findings);
    for (const Element& element : outline.elements)
        if (element.kind == Kind::Curve)
            checker.check(element);
}

} // namespace ka::tools
