#include "check/NestingCheck.h"

#include <algorithm>
#include <kaMotion/ReferenceCheck.h>

namespace ka::motion {

namespace {

using Element = DocumentOutline::Element;
using Reference = DocumentOutline::Reference;

constexpr std::uint32_t nobody = NestingCheck::nobody;

std::string named(const Element& element) {
    return std::string(kindName(element.kind)) + " " + std::to_string(element.id);
}

std::string onLine(std::uint32_t line) {
    return " (line " + std::to_string(line) + ")";
}

bool isContainer(Kind kind) {
    return kind == Kind::Track || kind == Kind::Clip;
}

/// Whether loading lets the one hold the other.
bool takes(Kind holder, Kind held) {
    switch (holder) {
    case Kind::Curve:
        return held == Kind::Point;
    case Kind::Block:
        return held == Kind::Curve;
    case Kind::Track:
        return held != Kind::Field;
    case Kind::Clip:
        return held != Kind::Field && held != Kind::Point && held != Kind::Curve;
    default:
        return false;
    }
}

class Check {
  public:
    Check(const DocumentOutline& outline, const ElementsById& byId, FindingList& findings)
        : _outline(outline),
          _byId(byId),
          _findings(findings),
          _holders(outline.elements.size(), nobody),
          _targets(outline.references.size(), nobody) {}

    void run() {
        for (const Element& element : _outline.elements) {
            if (element.kind == Kind::None)
                continue;
            checkId(element);
            if (element.kind == Kind::Curve)
                checkField(element);
            resolve(element);
            findRepeats(element);
        }
        checkDepth();
        findCycles();
    }

  private:
    void report(std::uint32_t line, const Element& element, const std::string& message) {
        _findings.push_back({line, 0, kindName(element.kind),
                             element.id == 0 ? std::string() : std::to_string(element.id), message});
    }

    void checkId(const Element& element) {
        const Element* first = element.id == 0 ? nullptr : _byId.find(element.id);
        if (first != nullptr && first != &element)
            report(element.line, element,
                   "the id belongs to " + named(*first) + onLine(first->line) +
                       ": loading draws another, and references reach the first");
    }

    void checkField(const Element& curve) {
        const Element* field = curve.field == 0 ? nullptr : _byId.find(curve.field);
        if (curve.field == 0)
            report(curve.line, curve, "no field: the curve moves nothing, and saving drops it");
        else if (field == nullptr)
            report(curve.line, curve, "dangling reference: there is no field " + std::to_string(curve.field));
        else if (field->kind != Kind::Field)
            report(curve.line, curve, named(*field) + onLine(field->line) + " is no field");
    }

    void resolve(const Element& element) {
        const auto self = static_cast<std::uint32_t>(_byId.placeOf(element));
        for (std::uint32_t i = element.firstReference; i < element.firstReference + element.references; ++i) {
            const Reference& reference = _outline.references[i];
            const Element* target = reference.id == 0 ? nullptr : _byId.find(reference.id);
            if (target == nullptr)
                report(reference.line, element,
                       "dangling reference: there is nothing with the id " + std::to_string(reference.id));
            else if (!takes(element.kind, target->kind))
                report(reference.line, element,
                       std::string("a ") + kindName(element.kind) + " does not take " + named(*target) +
                           onLine(target->line));
            else
                hold(self, i, static_cast<std::uint32_t>(_byId.placeOf(*target)));
        }
    }

    void hold(std::uint32_t self, std::uint32_t reference, std::uint32_t target) {
        _targets[reference] = target;
        if (target == self)
            return;
        std::uint32_t& holder = _holders[target];
        if (holder == nobody)
            holder = self;
        else if (holder != self)
            report(_outline.references[reference].line, _outline.elements[self],
                   "repeated reference: " + named(_outline.elements[target]) + " stands in " +
                       named(_outline.elements[holder]) + onLine(_outline.elements[holder].line) +
                       " already");
    }

    void findRepeats(const Element& element) {
        std::vector<Reference> sorted(_outline.references.begin() + element.firstReference,
                                      _outline.references.begin() + element.firstReference +
                                          element.references);
        std::stable_sort(sorted.begin(), sorted.end(),
                         [](const Reference& a, const Reference& b) { return a.id < b.id; });
        for (std::size_t i = 1; i < sorted.size(); ++i)
            if (sorted[i].id == sorted[i - 1].id)
                report(sorted[i].line, element,
                       "repeated reference: " + std::to_string(sorted[i].id) + " is listed twice");
    }

    void checkDepth() {
        const std::vector<std::uint32_t> leftOut = NestingCheck(_outline, _byId, _targets).findLeftOut();
        auto next = leftOut.begin();
        for (const Element& element : _outline.elements) {
            const std::uint32_t end = element.firstReference + element.references;
            for (; next != leftOut.end() && *next >= element.firstReference && *next < end; ++next)
                report(_outline.references[*next].line, element,
                       "nested deeper than " + std::to_string(KA_MAX_DEPTH) + " levels: loading leaves " +
                           named(_outline.elements[_targets[*next]]) + " out");
        }
    }

    /// Depth first, on the heap: chains can be as long as the document.
    void findCycles() {
        _colors.assign(_outline.elements.size(), Unseen);
        for (std::uint32_t i = 0; i < _outline.elements.size(); ++i)
            if (isContainer(_outline.elements[i].kind) && _colors[i] == Unseen)
                walkFrom(i);
    }

    void walkFrom(std::uint32_t start) {
        _path.assign(1, {start, 0});
        _colors[start] = Open;
        while (!_path.empty()) {
            auto& [place, next] = _path.back();
            const Element& element = _outline.elements[place];
            if (next == element.references) {
                _colors[place] = Done;
                _path.pop_back();
                continue;
            }
            const std::uint32_t reference = element.firstReference + next++;
            const std::uint32_t target = _targets[reference];
            if (target == nobody || !isContainer(_outline.elements[target].kind))
                continue;
            if (_colors[target] == Open)
                reportCycle(reference, target);
            else if (_colors[target] == Unseen) {
                _colors[target] = Open;
                _path.emplace_back(target, 0);
            }
        }
    }

    void reportCycle(std::uint32_t reference, std::uint32_t target) {
        constexpr std::size_t mostNames = 6;
        std::size_t from = _path.size() - 1;
        while (_path[from].first != target)
            --from;
        std::string way = named(_outline.elements[target]);
        for (std::size_t i = from + 1; i < _path.size() && i - from < mostNames; ++i)
            way += " > " + named(_outline.elements[_path[i].first]);
        if (_path.size() - from > mostNames)
            way += " > ...";
        report(_outline.references[reference].line, _outline.elements[_path.back().first],
               "contains itself: " + way + " > " + named(_outline.elements[target]));
    }

    enum Color : std::uint8_t { Unseen, Open, Done };

    const DocumentOutline& _outline;
    const ElementsById& _byId;
    FindingList& _findings;
    std::vector<std::uint32_t> _holders; ///< who lists each element first
    std::vector<std::uint32_t> _targets; ///< what each reference reaches, where loading lets it
    std::vector<Color> _colors;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> _path; ///< containers open, and how far each is
};

} // namespace

void checkReferences(const DocumentOutline& outline, const ElementsById& byId, FindingList& findings) {
    Check(outline, byId, findings).run();
}

} // namespace ka::motion
