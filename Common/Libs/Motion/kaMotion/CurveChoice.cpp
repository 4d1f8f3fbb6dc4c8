#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/Failure.h>
#include <kaMotion/PlainCurve.h>
#include <kaMotion/Project.h>
#include <kaMotion/Text.h>
#include <set>

namespace ka::motion {

namespace {

const kaAnimationField* fieldOf(const kaAnimationCurve2D* curve) {
    return kaAnimationManager::the()->getField(curve->getField());
}

std::string attributeOf(const kaAnimationCurve2D* curve) {
    const kaAnimationField* field = fieldOf(curve);
    return utf8FromLatin1(field == nullptr || field->attribute.empty() ? curve->getName() : field->attribute);
}

bool startsWith(const std::string& text, const char* start) {
    return text.rfind(start, 0) == 0;
}

bool isNamed(const kaAnimationCurve2D* curve, const std::string& name) {
    const osg::NodePtr node = curve->getParentOSGNode();
    return std::to_string(curve->getId()) == name || utf8FromLatin1(curve->getName()) == name ||
           attributeOf(curve) == name || curveLabel(curve) == name ||
           (node != osg::NullFC && nodeName(node) == name);
}

CurveList byLabel(const CurveList& curves) {
    std::vector<std::pair<std::string, kaAnimationCurve2D*>> labelled;
    for (kaAnimationCurve2D* curve : curves)
        labelled.emplace_back(curveLabel(curve), curve);
    std::stable_sort(labelled.begin(), labelled.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    CurveList sorted;
    for (const auto& [label, curve] : labelled)
        sorted.push_back(curve);
    return sorted;
}

/// How far a curve moves, seen from afar: the range of its values at even frames, turns counted on and each the
/// mean of its neighbours, so that neither a wrapped angle nor noise counts for motion.
double motionOf(const kaAnimationCurve2D* curve, bool turns) {
    constexpr std::size_t count = 240, reach = 2;
    const double begin = static_cast<double>(curve->getBegin()), end = static_cast<double>(curve->getEnd());
    const std::vector<PlainKey> keys = plainKeys(*curve);
    if (keys.size() < 2 || !(begin < end))
        return 0.0;
    std::vector<double> values;
    for (std::size_t i = 0; i <= count; ++i) {
        const auto frame = static_cast<float>(begin + (end - begin) * static_cast<double>(i) / count);
        const auto value =
            static_cast<double>(sampleKeys(keys, std::max(frame, keys.front().x)).value_or(0.0F));
        const double step = values.empty() ? 0.0 : value - values.back();
        values.push_back(values.empty() || !turns ? value : values.back() + std::remainder(step, 360.0));
    }
    double low = HUGE_VAL, high = -HUGE_VAL;
    for (std::size_t i = reach; i + reach < values.size(); ++i) {
        double mean = 0.0;
        for (std::size_t k = i - reach; k <= i + reach; ++k)
            mean += values[k] / (2 * reach + 1);
        low = std::min(low, mean);
        high = std::max(high, mean);
    }
    return high - low;
}

/// The rotations that move most, one of each node.
CurveList widestRotations(const CurveList& curves) {
    constexpr std::size_t most = 5;
    std::vector<std::pair<double, kaAnimationCurve2D*>> rotations;
    for (kaAnimationCurve2D* curve : curves)
        if (startsWith(attributeOf(curve), "rotation"))
            if (const double motion = motionOf(curve, true); motion > 0.0)
                rotations.emplace_back(motion, curve);
    std::stable_sort(rotations.begin(), rotations.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    CurveList widest;
    std::set<kaUID> nodes;
    for (const auto& [motion, curve] : rotations) {
        const kaAnimationField* field = fieldOf(curve);
        if (widest.size() < most && (field == nullptr || nodes.insert(field->nodeID).second))
            widest.push_back(curve);
    }
    return widest;
}

} // namespace

std::string curveLabel(const kaAnimationCurve2D* curve) {
    const osg::NodePtr node = curve->getParentOSGNode();
    const std::string owner = node == osg::NullFC ? std::string() : nodeName(node);
    return owner.empty() ? attributeOf(curve) : owner + "." + attributeOf(curve);
}

std::string curveUnit(const kaAnimationCurve2D* curve) {
    const std::string attribute = attributeOf(curve);
    if (startsWith(attribute, "rotation") || attribute == "fieldOfView")
        return "degrees";
    return startsWith(attribute, "translation") ? "units" : "";
}

CurveList allCurves() {
    CurveList curves;
    for (const auto& [id, object] : kaAnimationManager::the()->getObjects())
        if (object->getTypeID() == KA_TYPE_CURVE)
            curves.push_back(static_cast<kaAnimationCurve2D*>(object));
    return byLabel(curves);
}

CurveList curvesBelow(const std::vector<kaAnimationObject*>& objects) {
    CurveList curves;
    for (const kaAnimationObject* object : objects)
        for (kaAnimationCurve2D* curve : object->getCurves())
            if (std::find(curves.begin(), curves.end(), curve) == curves.end())
                curves.push_back(curve);
    return byLabel(curves);
}

CurveList chooseCurves(const CurveList& curves, const std::vector<std::string>& names) {
    CurveList chosen;
    for (const std::string& name : names) {
        bool found = false;
        for (kaAnimationCurve2D* curve : curves) {
            if (!isNamed(curve, name))
                continue;
            found = true;
            if (std::find(chosen.begin(), chosen.end(), curve) == chosen.end())
                chosen.push_back(curve);
        }
        if (!found)
            throw Failure(ExitCode::Usage, "no curve is called '" + oneLine(name) + "'");
    }
    return chosen;
}

CurveList tellingCurves(const CurveList& curves) {
    kaAnimationCurve2D* furthest = nullptr;
    double way = 0.0;
    for (kaAnimationCurve2D* curve : curves)
        if (startsWith(attributeOf(curve), "translation"))
            if (const double motion = motionOf(curve, false); motion > way) {
                way = motion;
                furthest = curve;
            }
    CurveList telling;
    for (kaAnimationCurve2D* curve : curves)
        if (furthest != nullptr && startsWith(attributeOf(curve), "translation") &&
            curve->getParentOSGNode() == furthest->getParentOSGNode())
            telling.push_back(curve);
    const CurveList rotations = widestRotations(curves);
    telling.insert(telling.end(), rotations.begin(), rotations.end());
    return telling.empty() ? curves : telling;
}

} // namespace ka::motion
