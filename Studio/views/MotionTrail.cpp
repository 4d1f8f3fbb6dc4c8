#include "MotionTrail.h"

#include "document/PoseDrag.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <QElapsedTimer>
#include <algorithm>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>

namespace ka::studio {

namespace {

constexpr int Around = 50; ///< Frames of the way on each side.
constexpr int GhostStep = 8, GhostCount = 2;

} // namespace

void MotionTrail::clear() {
    _frames.clear();
    _next = 0;
    _way.clear();
    _keys.clear();
    _ghosts.clear();
    _keyFrames.clear();
}

void MotionTrail::begin(const Figure& figure, const std::vector<kaUID>& objects, const Span& span, int joint,
                        bool hasGhosts) {
    clear();
    if (objects.empty())
        return;
    _objects = objects;
    _now = span.now;
    _node = joint < 0 ? 0 : figure.joints()[static_cast<std::size_t>(joint)].node;
    const float middle = std::floor(_now);
    for (int i = -GhostCount; i <= GhostCount && hasGhosts; ++i)
        if (i != 0)
            _frames.push_back(
                {std::clamp(_now + static_cast<float>(i * GhostStep), span.begin, span.end), true});
    // Outwards from the playhead, so that what is drawn so far is always one line.
    const auto want = [&](float frame) {
        if (_node != 0 && frame >= span.begin && frame <= span.end)
            _frames.push_back({frame, false});
    };
    want(middle);
    for (int i = 1; i <= Around; ++i) {
        want(middle + static_cast<float>(i));
        want(middle - static_cast<float>(i));
    }
    if (_node == 0)
        return;
    for (const kaAnimationCurve2D* curve : curvesOfNode(_node))
        for (const Wanted& wanted : _frames)
            if (!wanted.isGhost && curve->findPoint(wanted.frame) != nullptr)
                _keyFrames.push_back(wanted.frame);
}

void MotionTrail::evaluate(float frame) const {
    for (const kaUID id : _objects)
        if (kaAnimationObject* object = kaAnimationManager::the()->getObject(id))
            kaAnimationController::the()->evaluateObject(object, frame, false);
}

void MotionTrail::sample(const Figure& figure, int milliseconds) {
    if (isComplete())
        return;
    QElapsedTimer since;
    since.start();
    Figure ghost;
    do {
        const Wanted wanted = _frames[_next++];
        evaluate(wanted.frame);
        if (wanted.isGhost) {
            if (ghost.joints().empty())
                ghost = figure;
            ghost.update();
            _ghosts.push_back(ghost.places());
            continue;
        }
        const auto node = osg::NodePtr::dcast(osg::FieldContainerFactory::the()->getContainer(_node));
        if (node == osg::NullFC)
            continue;
        const osg::Matrix world = node->getToWorld();
        const QVector3D place(world[3][0], world[3][1], world[3][2]);
        _way.insert(wanted.frame > _now - 0.5F ? _way.end() : _way.begin(), place);
        if (std::find(_keyFrames.begin(), _keyFrames.end(), wanted.frame) != _keyFrames.end())
            _keys.push_back(place);
    } while (!isComplete() && since.elapsed() < milliseconds);
    evaluate(_now);
}

} // namespace ka::studio
