#include "operations/CurveEdit.h"

#include <algorithm>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaControlPoint2D.h>

namespace ka::motion {

namespace {

kaControlPoint2D* makeKey(const PlainKey& key) {
    kaControlPoint2D* point = kaAnimationManager::the()->createPoint2D(key.x, key.y, 0);
    point->setTangentType(kaControlPoint2D::TANGENT_USER);
    point->getInTangent()->setPosition(key.inX, key.inY);
    point->getOutTangent()->setPosition(key.outX, key.outY);
    return point;
}

void apply(const CurveEdit& edit) {
    kaAnimationManager* manager = kaAnimationManager::the();
    const std::vector<kaUID> former = edit.curve->getChildIDs();
    std::vector<kaControlPoint2D*> points;
    points.reserve(edit.keys.size());
    for (const PlainKey& key : edit.keys)
        points.push_back(makeKey(key));
    edit.curve->setPoints(points);
    for (const kaUID id : former)
        manager->destroyPoint2D(manager->getPoint2D(id));
}

} // namespace

void apply(const std::vector<CurveEdit>& edits) {
    for (const CurveEdit& edit : edits)
        if (edit.curve != nullptr && !edit.keys.empty())
            apply(edit);
}

double heldValue(const std::vector<PlainKey>& keys, double frame) {
    if (keys.empty())
        return 0.0;
    const auto at = static_cast<float>(frame);
    if (at <= keys.front().x || keys.size() == 1)
        return static_cast<double>(keys.front().y);
    return static_cast<double>(sampleKeys(keys, at).value_or(keys.back().y));
}

bool isSame(const std::vector<PlainKey>& a, const std::vector<PlainKey>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const PlainKey& one, const PlainKey& other) {
        return one.x == other.x && one.y == other.y && one.inX == other.inX && one.inY == other.inY &&
               one.outX == other.outX && one.outY == other.outY;
    });
}

} // namespace ka::motion
