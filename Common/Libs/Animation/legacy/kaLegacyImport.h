#pragma once

#include "kaAnimationTypes.h"
#include "kaImportReport.h"
#include "kaLegacyContainers.h"
#include "kaLegacySize.h"

#include <cstddef>
#include <unordered_set>

class kaAnimationCurve2D;
class kaAnimationObject;
class kaAnimationSequence;
class kaAnimationStreak;
class kaAnimationStrip;
class kaAnimationUnit;
class kaControlPoint2D;

/// Converts the animation that older scenes carry in scene containers into registered objects. One instance
/// serves one run; the converters of `kaAnimationManager` say what becomes of each container.
///
/// Whatever the scene holds, a run ends: a clip or track that is being converted is skipped where it comes up
/// again inside itself; what would stand deeper than `KA_MAX_DEPTH` levels is left out; and containers that
/// are reached more than once are converted each time only until their repeats add up to `MinimumRepeats` and
/// `RepeatsPerContainer` for everything that the scene holds: what comes out stays in proportion to what went
/// in.
///
/// The host may change anything while a run attaches what it made or reports progress: containers are read
/// before such a call and looked up again by id after it.
class kaLegacyImport {
  public:
    /// List entries that repeated containers may add to any scene, and to a scene for each of its containers
    /// (`kaLegacySize`).
    static constexpr std::size_t MinimumRepeats = 100000;
    static constexpr std::size_t RepeatsPerContainer = 32;

    /// @param size  of what will be converted, counted beforehand.
    explicit kaLegacyImport(const kaLegacySize& size)
        : _repeatsLeft(MinimumRepeats + RepeatsPerContainer * size.count()) {}

    kaAnimationStrip* importClip(const osg::AnimationClipPtr& clip, kaAnimationStreak* parent);
    kaAnimationStreak* importTrack(const osg::AnimationTrackPtr& track, kaAnimationStrip* parent);
    kaAnimationUnit* importBlock(const osg::AnimationBlockPtr& block, kaAnimationStreak* parent);
    kaAnimationSequence* importSequence(const osg::AnimationBlockPtr& block, kaAnimationStreak* parent);
    kaAnimationCurve2D* importCurve(const osg::AnimationCurvePtr& curve, kaAnimationUnit* unit,
                                    const osg::NodePtr& node);
    static kaControlPoint2D* importPoint(const osg::AnimationControlPointPtr& point,
                                         kaAnimationCurve2D* curve);

    /// Converts the root's clips, and its blocks as animation of `camera`; then takes the attachment off the
    /// root. Without a camera the blocks are dropped and one line is printed.
    void importRoot(const osg::NodePtr& root, const osg::NodePtr& camera);

    /// Converts an inner node's blocks, lists them on the node and takes the older attachment off it.
    void importNode(const osg::NodePtr& node);

    const kaImportReport& report() const { return _report; }

  private:
    class Opened;

    // `level`: 1 for an object without parent, else one more than its parent's.
    kaAnimationStrip* clipAt(unsigned int level, const osg::AnimationClipPtr& clip,
                             kaAnimationStreak* parent);
    kaAnimationStreak* trackAt(unsigned int level, const osg::AnimationTrackPtr& track,
                               kaAnimationStrip* parent);
    kaAnimationUnit* blockAt(unsigned int level, const osg::AnimationBlockPtr& block,
                             kaAnimationStreak* parent);
    kaAnimationSequence* sequenceAt(unsigned int level, const osg::AnimationBlockPtr& block,
                                    kaAnimationStreak* parent);
    void importCameraBlock(const osg::AnimationBlockPtr& block, osg::UInt32 cameraID);
    osg::AnimationClipPtr nestedClip(osg::UInt32 id);

    bool fits(unsigned int level, unsigned int height, const char* kind, const std::string& name);
    bool mayRepeat(osg::UInt32 id, std::size_t weight, const char* kind, const std::string& name);

    kaImportReport _report;
    std::unordered_set<osg::UInt32> _open; ///< clips and tracks being converted
    std::unordered_set<osg::UInt32> _seen;
    std::size_t _repeatsLeft;
};
