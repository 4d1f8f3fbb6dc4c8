#include "check/WrittenCheck.h"

#include "check/Deviation.h"
#include "check/DocumentCurves.h"
#include "check/SegmentCheck.h"

#include <algorithm>
#include <cstring>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationXmlNumber.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/Text.h>

namespace ka::motion {

namespace {

using kaAnimationXmlNumber::parse;
using kaAnimationXmlNumber::take;

bool isSame(const PlainKey& a, const PlainKey& b) {
    return a.x == b.x && a.y == b.y && a.inX == b.inX && a.inY == b.inY && a.outX == b.outX &&
           a.outY == b.outY;
}

std::optional<float> firstWithoutValue(const std::vector<PlainKey>& keys) {
    if (keys.size() == 1)
        return keys.front().x;
    for (std::size_t i = 0; i + 1 < keys.size(); ++i)
        if (const auto frame = frameWithoutValue(segmentBetween(keys[i], keys[i + 1])))
            return frame;
    return std::nullopt;
}

/// What is wrong with a written curve; empty when nothing is.
std::string faultOf(const std::vector<PlainKey>& written, const std::vector<PlainKey>& meant) {
    if (const auto frame = firstWithoutValue(written))
        return Deviation{*frame, 0.0, std::nullopt}.text();
    if (std::equal(written.begin(), written.end(), meant.begin(), meant.end(), isSame))
        return {};
    if (written.empty())
        return "none of its keys is in the document";
    const CurveJudgement judgement = judge(written, [&meant](double frame) -> std::optional<double> {
        // Outside of its span a curve is held.
        const auto held = std::clamp(static_cast<float>(frame), meant.front().x, meant.back().x);
        const std::optional<float> value = sampleKeys(meant, held);
        return value ? std::optional<double>(static_cast<double>(*value)) : std::nullopt;
    });
    return judgement.fault ? judgement.fault->text() : std::string();
}

} // namespace

void OutlineOutput::beginElement(const char* tag) {
    _output.beginElement(tag);
    ++_depth;
    _place = *tag;
    if (isEntry()) {
        _outline.elements.emplace_back();
        _outline.elements.back().firstReference = static_cast<std::uint32_t>(_outline.references.size());
    }
}

void OutlineOutput::attribute(const char* name, std::string_view value) {
    _output.attribute(name, value);
    if (_depth < 2)
        return;
    DocumentOutline::Element& entry = _outline.elements.back();
    const auto is = [name](const char* other) { return std::strcmp(name, other) == 0; };
    if (isChild() && is("id")) {
        _outline.references.push_back({parse(value, kaUID{0}), 0});
        ++entry.references;
    } else if (isEntry() && is("id")) {
        entry.id = parse(value, kaUID{0});
    } else if (isEntry() && is("typeID")) {
        entry.kind = static_cast<Kind>(parse(value, 0));
        if (entry.kind == Kind::Point) {
            entry.point = static_cast<std::uint32_t>(_outline.points.size());
            _outline.points.emplace_back();
        }
    } else if (isEntry() && is("field")) {
        entry.field = parse(value, kaUID{0});
    } else if (entry.kind == Kind::Point && is("tangentType")) {
        _outline.points.back().tangentType = parse(value, 0U);
    } else if (entry.kind == Kind::Point && is("tangentLengthMode")) {
        _outline.points.back().lengthMode = parse(value, 0U);
    }
}

void OutlineOutput::text(std::string_view text) {
    _output.text(text);
    if (!isChild() || _outline.elements.back().kind != Kind::Point)
        return;
    DocumentOutline::Point& point = _outline.points.back();
    std::array<float, 2>& place = _place == 'p' ? point.position : _place == 'i' ? point.in : point.out;
    take(text, place[0]) && take(text, place[1]);
}

void OutlineOutput::endElement() {
    _output.endElement();
    --_depth;
}

std::vector<std::string> checkWritten(const DocumentOutline& written, Listener& listener) {
    const ElementsById byId(written);
    DocumentCurves curves(written, byId);
    std::vector<std::string> faults;
    std::size_t done = 0;
    for (const DocumentOutline::Element& element : written.elements) {
        listener.progress("checking", done++, written.elements.size());
        const kaAnimationObject* object =
            element.kind == Kind::Curve ? kaAnimationManager::the()->getObject(element.id) : nullptr;
        if (object == nullptr || object->getTypeID() != KA_TYPE_CURVE)
            continue;
        const auto& curve = static_cast<const kaAnimationCurve2D&>(*object);
        const std::vector<PlainKey> meant = plainKeys(curve);
        if (meant.empty())
            continue;
        curves.set(element);
        if (const std::string fault = faultOf(curves.keys(), meant); !fault.empty())
            faults.push_back("curve '" + oneLine(curveLabel(&curve)) + "': " + fault);
    }
    return faults;
}

} // namespace ka::motion
