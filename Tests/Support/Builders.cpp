#include "Builders.h"

#include "kaAnimationManager.h"

namespace ka_test {

namespace {

template <class Container>
Container* fill(Container* container, const std::vector<kaAnimationObject*>& objects) {
    for (kaAnimationObject* object : objects)
        container->addObject(object);
    return container;
}

} // namespace

kaControlPoint2D* makeKey(const Key& key) {
    kaControlPoint2D* point = kaAnimationManager::the()->createPoint2D(key.key.x, key.key.y, 0);
    point->setTangentType(kaControlPoint2D::TANGENT_USER);
    place(*point->getInTangent(), key.in);
    place(*point->getOutTangent(), key.out);
    return point;
}

kaAnimationCurve2D* makeCurve(const std::vector<Spot>& spots) {
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationCurve2D* curve = manager->createCurve2D(0ULL);
    for (const Spot& spot : spots)
        curve->addObject(manager->createPoint2D(spot.x, spot.y, 0));
    return curve;
}

kaAnimationCurve2D* makeCurve(const std::vector<Key>& keys) {
    kaAnimationCurve2D* curve = kaAnimationManager::the()->createCurve2D(0ULL);
    std::vector<kaControlPoint2D*> points;
    points.reserve(keys.size());
    for (const Key& key : keys)
        points.push_back(makeKey(key));
    curve->setPoints(points);
    return curve;
}

kaAnimationUnit* makeBlock(const std::vector<kaAnimationCurve2D*>& curves) {
    return fill(kaAnimationManager::the()->createUnit(0), {curves.begin(), curves.end()});
}

kaAnimationStreak* makeTrack(const std::vector<kaAnimationObject*>& objects) {
    return fill(kaAnimationManager::the()->createStreak(0), objects);
}

kaAnimationStrip* makeClip(const std::vector<kaAnimationObject*>& objects) {
    return fill(kaAnimationManager::the()->createStrip(0), objects);
}

kaAnimationUnit* makeBlock(float begin, float end) {
    return makeBlock({makeCurve(std::vector<Spot>{{begin, 0.0F}, {end, 1.0F}})});
}

kaAnimationSequence* makeSequence(const std::string& name, float begin, float end) {
    kaAnimationSequence* sequence = kaAnimationManager::the()->createSequence(name, 0);
    sequence->setBegin(begin);
    sequence->setEnd(end);
    return sequence;
}

std::vector<kaControlPoint2D*> keysOf(const kaAnimationCurve2D& curve) {
    std::vector<kaControlPoint2D*> keys;
    for (kaUID id : curve.getChildIDs())
        if (kaControlPoint2D* point = kaAnimationManager::the()->getPoint2D(id))
            keys.push_back(point);
    return keys;
}

Spot spotOf(const kaControlPoint2D& point) {
    return {point.getPosition()[0], point.getPosition()[1]};
}

void place(kaControlPoint2D& point, const Spot& spot) {
    point.setPosition(spot.x, spot.y);
}

Key keyOf(const kaControlPoint2D& point) {
    const Spot spot = spotOf(point);
    return {spot, point.getInTangent() ? spotOf(*point.getInTangent()) : spot,
            point.getOutTangent() ? spotOf(*point.getOutTangent()) : spot};
}

} // namespace ka_test
