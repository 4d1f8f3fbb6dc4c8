#pragma once

#include "LifeFixture.h"
#include "OlderScene.h"
#include "kaImportReport.h"

#include <gmock/gmock.h>

namespace ka_test {

/// Older containers in hand, and a transform node to animate.
class ImportFixture : public LifeFixture {
  protected:
    /// Two keys on the first and the last frame, smooth.
    static std::vector<ka_older::Key> twoKeys(float begin = 0.0F, float end = 10.0F) {
        return {{{begin, 1.0F}}, {{end, 2.0F}}};
    }
    /// A curve that turns `node` about x.
    static osg::AnimationCurvePtr turning(const osg::NodePtr& node) {
        return ka_older::makeCurve("rotateX", twoKeys(), node);
    }
    static osg::UInt32 idOf(const osg::NodePtr& node) { return node.getFieldContainerId(); }

    static kaAnimationField* fieldOf(const kaAnimationCurve2D* curve) {
        return manager().getField(curve->getField());
    }

    /// Container id of the node that the curve animates.
    static osg::UInt32 nodeOf(const kaAnimationCurve2D* curve) {
        return static_cast<osg::UInt32>(fieldOf(curve)->nodeID);
    }

    template <class Object>
    static std::vector<Object*> all(unsigned int type) {
        std::vector<Object*> objects;
        for (const auto& entry : manager().getObjects())
            if (entry.second->getTypeID() == type)
                objects.push_back(static_cast<Object*>(entry.second));
        return objects;
    }
    static bool hasOlderAttachment(const osg::NodePtr& node) {
        return kaAnimationUtils::getOldAnimationAttachment(node) != osg::NullFC;
    }

    osg::NodePtr node = scene.addTransform("node");
};

} // namespace ka_test
