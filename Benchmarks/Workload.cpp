#include "Workload.h"

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGTransform3D.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <kaAnimationController.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationStreak.h>
#include <kaAnimationUnit.h>
#include <random>
#include <string>

namespace {

constexpr float Spacing = 10.0F;

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

/// Unequal reach keeps the leading coefficient of the time polynomial away from 0.
void shapeByHand(kaControlPoint2D& key) {
    const float x = key.getPosition()[0];
    const float y = key.getPosition()[1];
    key.setTangentType(kaControlPoint2D::TANGENT_USER);
    key.getInTangent()->setPosition(x - 0.45F * Spacing, y - 0.2F);
    key.getOutTangent()->setPosition(x + 0.25F * Spacing, y + 0.3F);
}

kaControlPoint2D* key(std::size_t index) {
    const auto x = static_cast<float>(index) * Spacing;
    kaControlPoint2D* point = manager().createPoint2D(x, 10.0F * std::sin(x), 0);
    shapeByHand(*point);
    return point;
}

void addKeys(kaAnimationCurve2D& curve, std::size_t keys) {
    std::vector<kaControlPoint2D*> points;
    for (std::size_t i = 0; i < keys; ++i)
        points.push_back(key(i));
    curve.setPoints(points);
}

kaAnimationStrip* clipAround(const std::vector<kaAnimationUnit*>& units) {
    kaAnimationStreak* track = manager().createStreak(0ULL);
    for (kaAnimationUnit* unit : units)
        track->addObject(unit);
    kaAnimationStrip* clip = manager().createStrip(0ULL);
    clip->addObject(track);
    return clip;
}

} // namespace

namespace workload {

void compared(benchmark::internal::Benchmark* one) {
    one->Repetitions(10)->Unit(benchmark::kMillisecond);
}

void drawn(const char* name, void (*function)(benchmark::State& state), int most, bool each) {
    if (!std::getenv("KA_BENCH_GROWTH"))
        return;
    auto* line = benchmark::RegisterBenchmark(
        (std::string("growth/") + (each ? "each/" : "one/") + name).c_str(), function);
    for (int count = 1000; count <= most; count *= 10)
        line->Arg(count);
    line->Iterations(each ? 1 : 200)->Repetitions(2);
}

std::vector<float> randomFrames(std::size_t count, float last) {
    std::mt19937 generator(7);
    std::uniform_real_distribution<float> frame(0.0F, last);
    std::vector<float> frames(count);
    std::generate(frames.begin(), frames.end(), [&] { return frame(generator); });
    return frames;
}

kaAnimationCurve2D* curve(std::size_t keys) {
    kaAnimationCurve2D* result = manager().createCurve2D(nullptr, "Curve", 0, false);
    addKeys(*result, keys);
    return result;
}

std::vector<kaControlPoint2D*> looseKeys(std::size_t count, bool shuffled) {
    std::vector<kaControlPoint2D*> keys;
    keys.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        keys.push_back(key(i));
    if (shuffled)
        std::shuffle(keys.begin(), keys.end(), std::mt19937(11));
    return keys;
}

BoundClip boundClip(std::size_t curves, std::size_t keys) {
    BoundClip result{osg::Node::create(), nullptr, curves, static_cast<float>(keys - 1) * Spacing};
    osg::addRefCP(result.root);
    result.root->setCore(osg::Group::create());
    // The scene is there first, as where a host has loaded one.
    for (std::size_t i = 0; i < curves; i += 3) {
        osg::NodePtr node = osg::Node::create();
        node->setCore(osg::Transform3D::create());
        result.root->addChild(node);
    }
    std::vector<kaAnimationUnit*> units;
    for (std::size_t i = 0; i < curves; ++i) {
        osg::NodePtr node = result.root->getChild(i / 3);
        if (i % 3 == 0) {
            units.push_back(manager().createUnit(0ULL));
            units.back()->setNodeID(node.getFieldContainerId());
        }
        kaAnimationField* field = manager().createField(0);
        field->fcID = node->getCore().getFieldContainerId();
        field->nodeID = node.getFieldContainerId();
        field->name = "translation";
        field->valuePos = static_cast<unsigned int>(i % 3);
        field->attribute = std::string("translation") + "XYZ"[i % 3];
        kaAnimationCurve2D* bound = manager().createCurve2D(field, field->attribute, 0, false);
        addKeys(*bound, keys);
        units.back()->addObject(bound);
    }
    result.clip = clipAround(units);
    return result;
}

kaAnimationStrip* wideClip(std::size_t curves, std::size_t keys) {
    kaAnimationUnit* unit = manager().createUnit(0ULL);
    for (std::size_t i = 0; i < curves; ++i)
        unit->addObject(curve(keys));
    return clipAround({unit});
}

void clearAll() {
    kaAnimationController::the()->stop();
    kaAnimationController::the()->stopGlobal();
    manager().destroyAllObjects(true);
    for (const auto& entry : manager().getObjects())
        manager().destroyObject(entry.second);
    manager().destroyAllFields();
}

} // namespace workload
