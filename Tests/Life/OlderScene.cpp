#include "OlderScene.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGTransform3D.h>
#include <algorithm>
#include <array>
#include <random>

namespace ka_older {

namespace {

constexpr std::array<const char*, MaximumCurves> ATTRIBUTES{
    "rotateX", "rotateY", "rotateZ", "translateX", "translateY", "translateZ", "scaleX", "scaleY", "scaleZ"};

/// Reach of handles set by hand, in frames. With keys on whole frames no two handles of a segment ever take
/// up two thirds of it together: there the closed formula for the time loses its leading coefficient to
/// rounding.
constexpr float HAND = 1.75F;

/// Puts scenes together; what is left to chance comes from one generator, so that a shape always gives one
/// scene.
class Maker {
  public:
    explicit Maker(const Shape& shape) : _shape(shape), _random(shape.seed) {}

    osg::NodePtr make() {
        const osg::NodePtr root = osg::Node::create();
        root->setCore(osg::Group::create());
        osg::setName(root, "older scene");
        for (unsigned int i = 0; i < _shape.nodes; ++i)
            root->addChild(makeNode("node " + std::to_string(i)));
        for (unsigned int i = 0; i < _shape.clips; ++i)
            attachmentOf(root)->addClip(makeClips("clip " + std::to_string(i)));
        return root;
    }

  private:
    osg::NodePtr makeNode(const std::string& name) {
        const osg::NodePtr node = osg::Node::create();
        node->setCore(osg::Transform3D::create());
        osg::setName(node, name);
        attachmentOf(node)->addBlock(makeBlockFor(node, name + " block", 0.0F));
        _nodes.push_back(node);
        return node;
    }

    osg::AnimationBlockPtr makeBlockFor(const osg::NodePtr& node, const std::string& name, float begin) {
        std::vector<osg::AnimationCurvePtr> curves;
        for (unsigned int i = 0; i < std::min(_shape.curvesPerNode, MaximumCurves); ++i)
            curves.push_back(ka_older::makeCurve(ATTRIBUTES[i], makeKeys(begin), node));
        return ka_older::makeBlock(name, curves, node);
    }

    /// Keys 4 to 12 whole frames apart, of every tangent type. Collapsed keys keep to curves of their own:
    /// next to another type they make a double root of time on the key, where there is no sample.
    std::vector<Key> makeKeys(float begin) {
        std::vector<Key> keys;
        const bool steps = upTo(5) == 0;
        float x = begin;
        for (unsigned int i = 0; i < _shape.keysPerCurve; ++i) {
            const float y = static_cast<float>(upTo(200)) * 0.25F - 25.0F;
            const unsigned int code = steps ? Collapsed : Broken + upTo(User - Broken);
            const float slope = static_cast<float>(upTo(8)) - 4.0F;
            keys.push_back({{x, y}, code, {x - HAND, y - slope}, {x + HAND, y + slope}});
            x += 4.0F + static_cast<float>(upTo(8));
        }
        return keys;
    }

    /// A clip with a track of one block and one event, that holds a further clip, and so on down.
    osg::AnimationClipPtr makeClips(const std::string& name) {
        osg::AnimationClipPtr inner;
        for (unsigned int level = _shape.nesting + 1; level-- > 0;) {
            const std::string title = name + " level " + std::to_string(level);
            const osg::NodePtr node = _nodes.empty() ? osg::NodePtr() : _nodes[upTo(_shape.nodes - 1)];
            // No two begins and no two ends of one chain are alike: which of them won would be left open.
            const float begin = static_cast<float>(20 * level + upTo(19)) + static_cast<float>(level) / 64.0F;
            const osg::AnimationTrackPtr track =
                ka_older::makeTrack({makeBlockFor(node, title + " block", begin)});
            track->addSequence(ka_older::makeSequence(title + " event", begin, begin + 10.0F));
            if (inner != osg::NullFC)
                track->addEntry(inner);
            inner = ka_older::makeClip(title, {track});
        }
        return inner;
    }

    /// A whole number from 0 to `most`, the same on every platform.
    unsigned int upTo(unsigned int most) { return static_cast<unsigned int>(_random() % (most + 1)); }

    Shape _shape;
    std::mt19937 _random;
    std::vector<osg::NodePtr> _nodes;
};

osg::Vec2f vectorOf(const Place& place) {
    return osg::Vec2f(place.x, place.y);
}

} // namespace

osg::AnimationControlPointPtr makePoint(const Key& key) {
    const osg::AnimationControlPointPtr point = osg::AnimationControlPoint::create();
    point->setPosition(vectorOf(key.position));
    point->setInTangent(vectorOf(key.in));
    point->setOutTangent(vectorOf(key.out));
    point->setTangentType(static_cast<osg::UInt8>(key.tangentCode));
    return point;
}

osg::AnimationCurvePtr makeCurve(const std::string& attribute, const std::vector<Key>& keys,
                                 const osg::NodePtr& node) {
    const osg::AnimationCurvePtr curve = osg::AnimationCurve::create();
    curve->setName(attribute + " curve");
    curve->setAttribute(attribute);
    curve->setNode(node);
    for (const Key& key : keys)
        curve->addPoint(makePoint(key));
    return curve;
}

osg::AnimationBlockPtr makeBlock(const std::string& name, const std::vector<osg::AnimationCurvePtr>& curves,
                                 const osg::NodePtr& node) {
    const osg::AnimationBlockPtr block = osg::AnimationBlock::create();
    block->setName(name);
    block->setNode(node);
    for (const osg::AnimationCurvePtr& curve : curves)
        block->addCurve(curve);
    return block;
}

osg::AnimationBlockPtr makeSequence(const std::string& name, float begin, float end) {
    const osg::AnimationBlockPtr sequence = makeBlock(name, {});
    sequence->setBegin(begin);
    sequence->setEnd(end);
    return sequence;
}

osg::AnimationTrackPtr makeTrack(const std::vector<osg::AnimationBlockPtr>& blocks) {
    const osg::AnimationTrackPtr track = osg::AnimationTrack::create();
    for (const osg::AnimationBlockPtr& block : blocks)
        track->addBlock(block);
    return track;
}

osg::AnimationClipPtr makeClip(const std::string& name, const std::vector<osg::AnimationTrackPtr>& tracks) {
    const osg::AnimationClipPtr clip = osg::AnimationClip::create();
    clip->setName(name);
    for (const osg::AnimationTrackPtr& track : tracks)
        clip->addTrack(track);
    return clip;
}

osg::AnimationAttachmentPtr attachmentOf(const osg::NodePtr& node) {
    const osg::UInt32 group = osg::AnimationAttachment::getClassType().getGroupId();
    osg::AnimationAttachmentPtr attachment = osg::AnimationAttachmentPtr::dcast(node->findAttachment(group));
    if (attachment == osg::NullFC) {
        attachment = osg::AnimationAttachment::create();
        node->addAttachment(attachment);
    }
    return attachment;
}

osg::NodePtr makeScene(const Shape& shape) {
    return Maker(shape).make();
}

unsigned int countNodes(const osg::NodePtr& root) {
    unsigned int count = 0;
    std::vector<osg::NodePtr> pending{root};
    while (!pending.empty()) {
        const osg::NodePtr node = pending.back();
        pending.pop_back();
        ++count;
        for (osg::UInt32 i = 0; i < node->getNChildren(); ++i)
            pending.push_back(node->getChild(i));
    }
    return count;
}

} // namespace ka_older
