#include "kaLegacyImport.h"

#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaAnimationUtils.h"
#include "kaControlPoint2D.h"
#include "kaHierarchy.h"
#include "kaNodeFields.h"
#include "kaObjectStore.h"
#include "kaOpenSGUtils.h"
#include "kaSceneNodes.h"
#include "kaWeak.h"

#include <cstdio>
#include <optional>

namespace {

using Reason = kaImportReport::Reason;

/// Levels that a block takes: itself, its curves and their keys.
constexpr unsigned int BLOCK_HEIGHT = 3;
/// A clip puts what is no track on a track of its own.
constexpr unsigned int BELOW_A_CLIP = 2;

/// The level at which a child of `parent` stands. Parent ids that a host has bent into a ring count as too
/// deep.
unsigned int levelBelow(const kaAnimationObject* parent) {
    return 1 + kaHierarchy::depthOf(parent);
}

/// The parent that is to take in what a conversion makes, unless the host destroys it meanwhile.
class Receiver {
  public:
    explicit Receiver(kaAnimationObject* parent) : _parent(parent) {}
    void take(kaAnimationObject* object) const {
        kaAnimationObject* parent = _parent.get();
        if (object && parent)
            parent->addObject(object);
    }

  private:
    kaWeak<kaAnimationObject> _parent;
};

/// Calls `convert` for every id as long as the object that takes the results is there.
template <class Convert>
void forEachWhile(const kaWeak<kaAnimationObject>& alive, const kaContainerIDs& ids, Convert&& convert) {
    for (osg::UInt32 id : ids) {
        if (!alive)
            return;
        convert(id);
    }
}

std::size_t weight(std::size_t listed, const std::string& name) {
    return 1 + listed + name.size() / kaLegacySize::NameBytesPerContainer;
}

osg::AnimationAttachmentPtr attachmentOf(const osg::NodePtr& node) {
    return osg::AnimationAttachmentPtr::dcast(kaAnimationUtils::getOldAnimationAttachment(node));
}

/// Takes the attachment off its node, unless the host did.
void removeAttachment(osg::UInt32 nodeID, osg::UInt32 attachmentID) {
    const osg::NodePtr node = kaSceneNodes::find(nodeID);
    const osg::AnimationAttachmentPtr attachment = attachmentOf(node);
    if (attachment == osg::NullFC || attachment.getFieldContainerId() != attachmentID)
        return;
    node->subAttachment(attachment);
    kaOpenSGUtils::announceChange(node, osg::AttachmentContainer::AttachmentsFieldMask);
}

} // namespace

/// A clip or track while it is being converted.
class kaLegacyImport::Opened {
  public:
    Opened(kaLegacyImport& import, osg::UInt32 id, const char* kind, const std::string& name)
        : _import(import), _id(id), _first(import._open.insert(id).second) {
        if (!_first)
            import._report.leaveOut(kind, name, Reason::Ring);
    }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;
    ~Opened() {
        if (_first)
            _import._open.erase(_id);
    }

    /// Whether the container was not being converted already.
    explicit operator bool() const { return _first; }

  private:
    kaLegacyImport& _import;
    osg::UInt32 _id;
    bool _first;
};

bool kaLegacyImport::fits(unsigned int level, unsigned int height, const char* kind,
                          const std::string& name) {
    const bool fitting = level + height - 1 <= KA_MAX_DEPTH;
    if (!fitting)
        _report.leaveOut(kind, name, Reason::TooDeep);
    return fitting;
}

bool kaLegacyImport::mayRepeat(osg::UInt32 id, std::size_t weight, const char* kind,
                               const std::string& name) {
    if (_seen.insert(id).second)
        return true;
    if (weight > _repeatsLeft) {
        _report.leaveOut(kind, name, Reason::TooManyRepeats);
        return false;
    }
    _repeatsLeft -= weight;
    return true;
}

/// An entry among nested clips, null when it is something else.
osg::AnimationClipPtr kaLegacyImport::nestedClip(osg::UInt32 id) {
    const auto clip = kaFindContainer<osg::AnimationClipPtr>(id);
    if (clip == osg::NullFC)
        _report.leaveOut("clip", "", Reason::NotAClip);
    return clip;
}

kaAnimationStrip* kaLegacyImport::importClip(const osg::AnimationClipPtr& clip, kaAnimationStreak* parent) {
    return clipAt(levelBelow(parent), clip, parent);
}

kaAnimationStreak* kaLegacyImport::importTrack(const osg::AnimationTrackPtr& track,
                                               kaAnimationStrip* parent) {
    return trackAt(levelBelow(parent), track, parent);
}

kaAnimationUnit* kaLegacyImport::importBlock(const osg::AnimationBlockPtr& block, kaAnimationStreak* parent) {
    return blockAt(levelBelow(parent), block, parent);
}

kaAnimationSequence* kaLegacyImport::importSequence(const osg::AnimationBlockPtr& block,
                                                    kaAnimationStreak* parent) {
    return sequenceAt(levelBelow(parent), block, parent);
}

kaAnimationStrip* kaLegacyImport::clipAt(unsigned int level, const osg::AnimationClipPtr& clip,
                                         kaAnimationStreak* parent) {
    if (clip == osg::NullFC)
        return nullptr;
    const osg::UInt32 id = clip.getFieldContainerId();
    const std::string& name = kaNameOf(clip);
    const Opened opened(*this, id, "clip", name);
    if (!opened || !fits(level, 1, "clip", name) ||
        !mayRepeat(id, weight(kaListedIn(clip), name), "clip", name))
        return nullptr;
    const kaLegacyClip source(clip);
    const Receiver receiver(parent);
    kaAnimationStrip* strip = kaObjectStore::make<kaAnimationStrip>(source.name, kaUID{0});
    if (!strip)
        return nullptr;
    const kaWeak<kaAnimationObject> alive(*strip);
    const Receiver self(strip);
    forEachWhile(alive, source.blocks, [&](osg::UInt32 block) {
        self.take(blockAt(level + BELOW_A_CLIP, kaFindContainer<osg::AnimationBlockPtr>(block), nullptr));
    });
    forEachWhile(alive, source.nested, [&](osg::UInt32 nested) {
        self.take(clipAt(level + BELOW_A_CLIP, nestedClip(nested), nullptr));
    });
    forEachWhile(alive, source.tracks, [&](osg::UInt32 track) {
        trackAt(level + 1, kaFindContainer<osg::AnimationTrackPtr>(track), strip);
    });
    if (!alive)
        return nullptr;
    strip->setFlipped(source.flipped);
    strip->setRepeating(source.repeating);
    strip->setMotionBlur(source.motionBlur);
    ++_report.clips;
    receiver.take(strip);
    return strip;
}

kaAnimationStreak* kaLegacyImport::trackAt(unsigned int level, const osg::AnimationTrackPtr& track,
                                           kaAnimationStrip* parent) {
    if (track == osg::NullFC)
        return nullptr;
    const osg::UInt32 id = track.getFieldContainerId();
    const Opened opened(*this, id, "track", "");
    if (!opened || !fits(level, 1, "track", "") || !mayRepeat(id, weight(kaListedIn(track), ""), "track", ""))
        return nullptr;
    const kaLegacyTrack source(track);
    const Receiver receiver(parent);
    kaAnimationStreak* streak = kaObjectStore::make<kaAnimationStreak>("Track", kaUID{0});
    if (!streak)
        return nullptr;
    const kaWeak<kaAnimationObject> alive(*streak);
    forEachWhile(alive, source.blocks, [&](osg::UInt32 block) {
        blockAt(level + 1, kaFindContainer<osg::AnimationBlockPtr>(block), streak);
    });
    forEachWhile(alive, source.sequences, [&](osg::UInt32 sequence) {
        sequenceAt(level + 1, kaFindContainer<osg::AnimationBlockPtr>(sequence), streak);
    });
    forEachWhile(alive, source.nested,
                 [&](osg::UInt32 nested) { clipAt(level + 1, nestedClip(nested), streak); });
    if (!alive)
        return nullptr;
    streak->setActive(source.active);
    streak->setMotionBlur(source.motionBlur);
    streak->setFlipped(source.flipped);
    ++_report.tracks;
    receiver.take(streak);
    return streak;
}

/// The block's node id is set only after its curves: they see the one that the new block was made with.
kaAnimationUnit* kaLegacyImport::blockAt(unsigned int level, const osg::AnimationBlockPtr& block,
                                         kaAnimationStreak* parent) {
    if (block == osg::NullFC)
        return nullptr;
    const osg::UInt32 id = block.getFieldContainerId();
    const std::string& name = kaNameOf(block);
    if (!fits(level, BLOCK_HEIGHT, "block", name) ||
        !mayRepeat(id, weight(kaListedIn(block), name), "block", name))
        return nullptr;
    const kaLegacyBlock source(block);
    const Receiver receiver(parent);
    kaAnimationUnit* unit = kaObjectStore::make<kaAnimationUnit>(source.name, kaUID{0});
    if (!unit)
        return nullptr;
    const kaWeak<kaAnimationObject> alive(*unit);
    forEachWhile(alive, source.curves, [&](osg::UInt32 curve) {
        importCurve(kaFindContainer<osg::AnimationCurvePtr>(curve), unit, osg::NodePtr());
    });
    if (!alive)
        return nullptr;
    unit->setNodeID(source.nodeID);
    unit->setRepeating(source.repeating);
    unit->setMotionBlur(source.motionBlur);
    unit->setFlipped(source.flipped);
    ++_report.blocks;
    receiver.take(unit);
    return unit;
}

kaAnimationSequence* kaLegacyImport::sequenceAt(unsigned int level, const osg::AnimationBlockPtr& block,
                                                kaAnimationStreak* parent) {
    if (block == osg::NullFC)
        return nullptr;
    const std::string& name = kaNameOf(block);
    if (!fits(level, 1, "sequence", name) ||
        !mayRepeat(block.getFieldContainerId(), weight(0, name), "sequence", name))
        return nullptr;
    kaAnimationSequence* sequence = kaObjectStore::make<kaAnimationSequence>(name, kaUID{0});
    if (!sequence)
        return nullptr;
    sequence->setBegin(block->getBegin());
    sequence->setEnd(block->getEnd());
    sequence->setActive(true);
    ++_report.sequences;
    if (parent)
        parent->addObject(sequence);
    return sequence;
}

namespace {

/// The node that a curve animates: the one asked for, the curve's own, the block's, the curve's fallback, in
/// this order.
osg::NodePtr nodeOf(const kaLegacyCurve& curve, const kaAnimationUnit& unit, const osg::NodePtr& node) {
    if (node != osg::NullFC)
        return node;
    for (osg::UInt32 id : {curve.nodeID, osg::UInt32{unit.getNodeID()}, curve.fallbackID})
        if (const osg::NodePtr found = kaSceneNodes::find(id); found != osg::NullFC)
            return found;
    return osg::NodePtr();
}

} // namespace

kaAnimationCurve2D* kaLegacyImport::importCurve(const osg::AnimationCurvePtr& curve, kaAnimationUnit* unit,
                                                const osg::NodePtr& node) {
    if (!unit || curve == osg::NullFC)
        return nullptr;
    // Read only where it is converted: a curve may be listed without end.
    const std::string& attribute = curve->getAttribute().empty() ? kaNameOf(curve) : curve->getAttribute();
    if (!mayRepeat(curve.getFieldContainerId(), weight(kaListedIn(curve), kaNameOf(curve)), "curve",
                   attribute))
        return nullptr;
    const kaLegacyCurve source(curve);
    const osg::NodePtr target = nodeOf(source, *unit, node);
    if (target == osg::NullFC) {
        _report.leaveOut("curve", source.attributeName(), Reason::NoNode);
        return nullptr;
    }
    const kaWeak<kaAnimationObject> alive(*unit);
    kaAnimationField* field = kaNodeFields::find(target, source.attributeName());
    if (!field)
        _report.leaveOut("curve", source.attributeName(), Reason::NoAttribute);
    if (!field || !alive)
        return nullptr;
    kaAnimationCurve2D* imported = kaObjectStore::make<kaAnimationCurve2D>(field, field->attribute, kaUID{0});
    if (!imported)
        return nullptr;
    for (osg::UInt32 point : source.points)
        importPoint(kaFindContainer<osg::AnimationControlPointPtr>(point), imported);
    unit->addObject(imported);
    ++_report.curves;
    _report.keys += imported->getChildCount();
    return imported;
}

kaControlPoint2D* kaLegacyImport::importPoint(const osg::AnimationControlPointPtr& point,
                                              kaAnimationCurve2D* curve) {
    if (point == osg::NullFC)
        return nullptr;
    const kaLegacyPoint source(point);
    kaControlPoint2D* imported = kaObjectStore::make<kaControlPoint2D>(source.position[0], source.position[1],
                                                                       "Point", kaUID{0}, false);
    if (!imported)
        return nullptr;
    if (imported->getInTangent())
        imported->getInTangent()->setPosition(source.inTangent);
    if (imported->getOutTangent())
        imported->getOutTangent()->setPosition(source.outTangent);
    imported->setTangentType(kaAnimationUtils::convertTangentType(source.tangentType));
    if (curve)
        curve->addObject(imported);
    return imported;
}

void kaLegacyImport::importRoot(const osg::NodePtr& root, const osg::NodePtr& camera) {
    const osg::AnimationAttachmentPtr found = attachmentOf(root);
    if (found == osg::NullFC)
        return;
    const kaLegacyAttachment attachment(found);
    const osg::UInt32 rootID = kaSceneNodes::idOf(root);
    const osg::UInt32 cameraID = kaSceneNodes::idOf(camera);
    for (osg::UInt32 clip : attachment.clips)
        clipAt(1, kaFindContainer<osg::AnimationClipPtr>(clip), nullptr);
    if (cameraID == 0)
        std::printf("Error importing old camera animations! No perspective camera found!\n");
    for (osg::UInt32 block : attachment.blocks)
        importCameraBlock(kaFindContainer<osg::AnimationBlockPtr>(block), cameraID);
    removeAttachment(rootID, attachment.id);
    ++_report.nodes;
}

/// The camera decides the node, whatever the block and its curves say.
void kaLegacyImport::importCameraBlock(const osg::AnimationBlockPtr& block, osg::UInt32 cameraID) {
    if (block == osg::NullFC)
        return;
    if (kaSceneNodes::find(cameraID) == osg::NullFC) {
        _report.leaveOut("block", kaNameOf(block), Reason::NoCamera);
        return;
    }
    const std::string& name = kaNameOf(block);
    if (!mayRepeat(block.getFieldContainerId(), weight(kaListedIn(block), name), "block", name))
        return;
    const kaLegacyBlock source(block);
    kaAnimationUnit* unit = kaObjectStore::make<kaAnimationUnit>(source.name, kaUID{0});
    if (!unit)
        return;
    const kaWeak<kaAnimationObject> alive(*unit);
    forEachWhile(alive, source.curves, [&](osg::UInt32 curve) {
        if (const osg::NodePtr camera = kaSceneNodes::find(cameraID); camera != osg::NullFC)
            importCurve(kaFindContainer<osg::AnimationCurvePtr>(curve), unit, camera);
    });
    if (!alive)
        return;
    unit->setNodeID(cameraID);
    unit->setRepeating(source.repeating);
    unit->setMotionBlur(source.motionBlur);
    unit->setFlipped(source.flipped);
    ++_report.cameraBlocks;
    kaAnimationUtils::addAnimationObject(kaSceneNodes::find(cameraID), unit);
}

void kaLegacyImport::importNode(const osg::NodePtr& node) {
    const osg::AnimationAttachmentPtr found = attachmentOf(node);
    if (found == osg::NullFC)
        return;
    const kaLegacyAttachment attachment(found);
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    for (osg::UInt32 clip : attachment.clips)
        if (const auto container = kaFindContainer<osg::AnimationClipPtr>(clip); container != osg::NullFC)
            _report.leaveOut("clip", kaNameOf(container), Reason::OnInnerNode);
    kaAnimationUtils::createAnimationAttachment(node, true);
    for (osg::UInt32 block : attachment.blocks)
        if (kaAnimationUnit* unit = blockAt(1, kaFindContainer<osg::AnimationBlockPtr>(block), nullptr))
            kaAnimationUtils::addAnimationObject(kaSceneNodes::find(nodeID), unit);
    removeAttachment(nodeID, attachment.id);
    ++_report.nodes;
}
