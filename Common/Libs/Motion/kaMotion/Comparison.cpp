#include <algorithm>
#include <cmath>
#include <kaMotion/Comparison.h>
#include <kaMotion/Text.h>
#include <limits>

namespace ka::motion {

namespace {

using Object = ProjectSummary::Object;
constexpr std::size_t none = ProjectSummary::none;

/// Whole frames that one pair of curves is sampled at, at most; longer ones are sampled in larger steps.
constexpr double mostFrames = 100000.0;

std::string number(float value) {
    return formatNumber(static_cast<double>(value));
}

std::string titleOf(const Object& object) {
    const std::string& name =
        object.type == KA_TYPE_CURVE && !object.label.empty() ? object.label : object.name;
    return name.empty() ? std::to_string(object.id) : name;
}

std::string rangeText(const Object& object) {
    return object.begin <= object.end ? number(object.begin) + " to " + number(object.end) : "empty";
}

bool isNear(float a, float b, double tolerance) {
    return a == b || std::abs(static_cast<double>(a) - static_cast<double>(b)) <= tolerance;
}

class Comparer {
  public:
    Comparer(const ProjectSummary& a, const ProjectSummary& b, double tolerance)
        : _a(a), _b(b), _tolerance(tolerance), _objects(matchObjects(a, b)) {}

    Comparison run() {
        compareNodes();
        addMissing(_a, _objects.ofA, true);
        addMissing(_b, _objects.ofB, false);
        for (std::size_t i = 0; i < _a.objects.size(); ++i)
            if (_objects.ofA[i] != none)
                compareObjects(_a.objects[i], _b.objects[_objects.ofA[i]]);
        std::stable_sort(_result.values.begin(), _result.values.end(),
                         [](const auto& x, const auto& y) { return x.error > y.error; });
        return std::move(_result);
    }

  private:
    void add(const std::string& element, const std::string& name, const std::string& what,
             const std::string& a, const std::string& b) {
        if (a != b)
            _result.structure.push_back({element, name, what, a, b});
    }

    /// A node or object that one side lacks; `isInA` says which has it.
    void addPresence(const std::string& element, const std::string& name, const std::string& what,
                     bool isInA) {
        add(element, name, "presence", isInA ? what : "", isInA ? "" : what);
    }

    // Nodes.

    void compareNodes() {
        // A document by itself has none.
        if (_a.nodes.empty() || _b.nodes.empty())
            return;
        const Matching nodes = matchNodes(_a, _b);
        addMissingNodes(_a, nodes.ofA, true);
        addMissingNodes(_b, nodes.ofB, false);
        for (std::size_t i = 0; i < _a.nodes.size(); ++i)
            if (nodes.ofA[i] != none)
                compareNode(_a.nodes[i], _b.nodes[nodes.ofA[i]]);
    }

    void addMissingNodes(const ProjectSummary& summary, const std::vector<std::size_t>& partners,
                         bool isInA) {
        for (std::size_t i = 0; i < summary.nodes.size(); ++i) {
            const std::size_t parent = summary.nodes[i].parent;
            if (partners[i] == none && (parent == none || partners[parent] != none))
                addPresence("node", summary.nodes[i].name, "present", isInA);
        }
    }

    void compareNode(const ProjectSummary::Node& a, const ProjectSummary::Node& b) {
        add("node", a.name, "placing", a.isPlaced ? "placed" : "not placed",
            b.isPlaced ? "placed" : "not placed");
        if (!a.isPlaced || !b.isPlaced)
            return;
        compareTriple(a, "translation", a.pose.translation, b.pose.translation);
        compareTriple(a, "rotation", a.pose.rotation, b.pose.rotation);
        compareTriple(a, "scale", a.pose.scale, b.pose.scale);
    }

    void compareTriple(const ProjectSummary::Node& node, const char* what, const std::array<float, 3>& a,
                       const std::array<float, 3>& b) {
        const auto text = [](const std::array<float, 3>& v) {
            return number(v[0]) + " " + number(v[1]) + " " + number(v[2]);
        };
        for (std::size_t i = 0; i < 3; ++i)
            if (!isNear(a[i], b[i], _tolerance))
                return add("node", node.name, what, text(a), text(b));
    }

    // Objects.

    /// Only the topmost: what is missing takes along what is below it.
    void addMissing(const ProjectSummary& summary, const std::vector<std::size_t>& partners, bool isInA) {
        for (std::size_t i = 0; i < summary.objects.size(); ++i) {
            const Object& object = summary.objects[i];
            if (partners[i] != none || (object.parent != none && partners[object.parent] == none))
                continue;
            const std::size_t below = curvesBelow(summary, partners, i);
            const bool isCurve = object.type == KA_TYPE_CURVE;
            addPresence(typeName(object.type), titleOf(object),
                        isCurve || below == 0 ? "present" : "present, with " + counted(below, "curve"),
                        isInA);
        }
    }

    static std::size_t curvesBelow(const ProjectSummary& summary, const std::vector<std::size_t>& partners,
                                   std::size_t place) {
        std::size_t count = 0;
        std::vector<std::size_t> pending{place};
        while (!pending.empty()) {
            const Object& object = summary.objects[pending.back()];
            pending.pop_back();
            for (const std::size_t child : object.children) {
                count += summary.objects[child].type == KA_TYPE_CURVE && partners[child] == none ? 1 : 0;
                pending.push_back(child);
            }
        }
        return count;
    }

    void compareObjects(const Object& a, const Object& b) {
        const std::string element = typeName(a.type), name = titleOf(a);
        add(element, name, "name", a.name, b.name);
        compareParents(element, name, a, b);
        if (!isNear(a.begin, b.begin, _tolerance) || !isNear(a.end, b.end, _tolerance))
            add(element, name, "range", rangeText(a), rangeText(b));
        const auto flag = [&](const char* what, bool inA, bool inB) {
            add(element, name, what, inA ? "yes" : "no", inB ? "yes" : "no");
        };
        flag("active", a.active, b.active);
        flag("repeating", a.repeating, b.repeating);
        flag("flipped", a.flipped, b.flipped);
        flag("motion blur", a.motionBlur, b.motionBlur);
        if (a.type == KA_TYPE_CURVE)
            compareCurves(name, a, b);
    }

    void compareParents(const std::string& element, const std::string& name, const Object& a,
                        const Object& b) {
        const std::size_t partner = a.parent == none ? none : _objects.ofA[a.parent];
        if (partner == b.parent && (a.parent == none) == (b.parent == none))
            return;
        const std::string inA = a.parent == none ? "none" : titleOf(_a.objects[a.parent]);
        const std::string inB = b.parent == none ? "none" : titleOf(_b.objects[b.parent]);
        // Two parents of one name are told apart by their ids.
        const bool isSame = inA == inB;
        add(element, name, "parent", isSame ? inA + " " + std::to_string(_a.objects[a.parent].id) : inA,
            isSame ? inB + " " + std::to_string(_b.objects[b.parent].id) : inB);
    }

    void compareCurves(const std::string& name, const Object& a, const Object& b) {
        add("curve", name, "field", fieldText(a, _a), fieldText(b, _b));
        add("curve", name, "keys", std::to_string(a.keys.size()), std::to_string(b.keys.size()));
        if (a.keys.size() == b.keys.size() && a.tangentTypes != b.tangentTypes)
            compareTangents(name, a, b);
        if (!a.keys.empty() && !b.keys.empty())
            compareValues(a, b);
    }

    /// Without the container's number, which is another in every process.
    std::string fieldText(const Object& curve, const ProjectSummary& summary) const {
        const bool areBound = !_a.nodes.empty() && !_b.nodes.empty();
        const std::string attribute = curve.attribute.empty() ? "none" : curve.attribute;
        return areBound && curve.node != none ? summary.nodes[curve.node].name + "." + attribute : attribute;
    }

    void compareTangents(const std::string& name, const Object& a, const Object& b) {
        std::size_t first = 0;
        while (a.tangentTypes[first] == b.tangentTypes[first])
            ++first;
        const std::string at = " at frame " + number(a.keys[first].x);
        add("curve", name, "tangent type", std::to_string(a.tangentTypes[first]) + at,
            std::to_string(b.tangentTypes[first]) + at);
    }

    // Values.

    std::vector<float> framesOf(const Object& a, const Object& b) const {
        const double from = std::floor(static_cast<double>(std::min(a.keys.front().x, b.keys.front().x)));
        const double to = std::ceil(static_cast<double>(std::max(a.keys.back().x, b.keys.back().x)));
        const double step = std::max(1.0, std::ceil((to - from) / mostFrames));
        std::vector<float> frames;
        for (double i = 0.0; from + i * step <= to && i <= mostFrames; ++i)
            frames.push_back(static_cast<float>(from + i * step));
        for (const Object* curve : {&a, &b})
            for (const PlainKey& key : curve->keys)
                frames.push_back(key.x);
        std::sort(frames.begin(), frames.end());
        frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
        return frames;
    }

    static std::optional<float> valueAt(const Object& curve, float frame) {
        return sampleKeys(curve.keys, std::clamp(frame, curve.keys.front().x, curve.keys.back().x));
    }

    static double errorBetween(std::optional<float> a, std::optional<float> b) {
        if (a.has_value() != b.has_value())
            return std::numeric_limits<double>::infinity();
        if (!a || *a == *b || (std::isnan(*a) && std::isnan(*b)))
            return 0.0;
        const double error = std::abs(static_cast<double>(*a) - static_cast<double>(*b));
        return std::isnan(error) ? std::numeric_limits<double>::infinity() : error;
    }

    void compareValues(const Object& a, const Object& b) {
        const auto text = [](std::optional<float> value) {
            return value ? number(*value) : std::string("none");
        };
        Comparison::CurveError worst{a.node == none ? std::string() : _a.nodes[a.node].name,
                                     a.attribute.empty() ? titleOf(a) : a.attribute,
                                     0.0F,
                                     -1.0,
                                     "",
                                     ""};
        for (const float frame : framesOf(a, b)) {
            const std::optional<float> inA = valueAt(a, frame), inB = valueAt(b, frame);
            const double error = errorBetween(inA, inB);
            ++_result.samples;
            if (error <= worst.error)
                continue;
            worst.frame = frame;
            worst.error = error;
            worst.a = text(inA);
            worst.b = text(inB);
        }
        _result.values.push_back(worst);
    }

    const ProjectSummary& _a;
    const ProjectSummary& _b;
    double _tolerance;
    Matching _objects;
    Comparison _result;
};

} // namespace

Comparison compare(const ProjectSummary& a, const ProjectSummary& b, double tolerance) {
    return Comparer(a, b, tolerance).run();
}

} // namespace ka::motion
