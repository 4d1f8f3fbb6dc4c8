#include <algorithm>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/Failure.h>
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

float rangeOf(const kaAnimationCurve2D* curve) {
    return curve->getMaximum() - curve->getMinimum();
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

/// The rotations with the largest ranges, one of each node. What turns further than half way round says more
/// about how angles wind up than about the motion.
CurveList widestRotations(const CurveList& curves) {
    constexpr std::size_t most = 5;
    CurveList rotations, widest;
    for (kaAnimationCurve2D* curve : curves)
        if (startsWith(attributeOf(curve), "rotation") && rangeOf(curve) > 0.0F && rangeOf(curve) <= 180.0F)
            rotations.push_back(curve);
    std::stable_sort(rotations.begin(), rotations.end(),
                     [](const auto* a, const auto* b) { return rangeOf(a) > rangeOf(b); });
    std::set<kaUID> nodes;
    for (kaAnimationCurve2D* curve : rotations) {
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
    const auto isTranslation = [](const auto* curve) {
        return startsWith(attributeOf(curve), "translation");
    };
    const auto moves = [&](const auto* curve) { return isTranslation(curve) && rangeOf(curve) > 0.0F; };
    const auto first = std::find_if(curves.begin(), curves.end(), moves);
    CurveList telling;
    for (kaAnimationCurve2D* curve : curves)
        if (first != curves.end() && isTranslation(curve) &&
            curve->getParentOSGNode() == (*first)->getParentOSGNode())
            telling.push_back(curve);
    const CurveList rotations = widestRotations(curves);
    telling.insert(telling.end(), rotations.begin(), rotations.end());
    return telling.empty() ? curves : telling;
}

} // namespace ka::motion
