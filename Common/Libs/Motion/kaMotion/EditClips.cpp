#include "operations/Containers.h"
#include "operations/CurveEdit.h"
#include "operations/MergedCurve.h"

#include <OpenSG/OSGSimpleAttachments.h>
#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>
#include <kaMotion/ClipCopy.h>
#include <kaMotion/CurveKind.h>
#include <kaMotion/EditClips.h>
#include <kaMotion/EditTime.h>
#include <kaMotion/Failure.h>
#include <kaMotion/MotionSelection.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Project.h>
#include <kaMotion/Text.h>
#include <map>

namespace ka::motion {

namespace {

std::size_t keyCount(const CurveList& curves) {
    std::size_t count = 0;
    for (const kaAnimationCurve2D* curve : curves)
        count += curve->getChildCount();
    return count;
}

/// Curves of one field in the clips that are merged, and what they are called.
struct Channel {
    std::string name;
    kaUID block = 0; ///< one that drives it, whose name the new one takes
    bool turns = false;
    std::vector<Keys> parts; ///< in the order of the clips; empty where one does not drive it
};

class Merger {
  public:
    Merger(const std::vector<kaAnimationStrip*>& clips, const MergeOptions& options) : _options(options) {
        for (std::size_t i = 0; i < clips.size(); ++i) {
            const float begin = clips[i]->getBegin(), end = clips[i]->getEnd();
            _spans.push_back({static_cast<double>(begin), static_cast<double>(end)});
            for (kaAnimationUnit* block : blocksBelow(*clips[i]))
                for (kaAnimationCurve2D* curve : block->getCurves())
                    add(*curve, *block, i, clips.size());
        }
    }

    /// @return null when cancelled.
    kaAnimationStrip* run(Listener& listener) {
        std::map<kaUID, Keys> merged;
        std::size_t done = 0;
        for (const auto& [field, channel] : _channels) {
            if (!listener.progress("merging", done++, _channels.size()))
                return nullptr;
            merged[field] = mergedCurve(channel.parts, _spans, _options.crossFade, channel.turns);
        }
        if (!listener.progress("merging", _channels.size(), _channels.size()))
            return nullptr;
        return build(merged);
    }

    std::size_t curveCount() const { return _channels.size(); }

  private:
    void add(kaAnimationCurve2D& curve, const kaAnimationUnit& block, std::size_t clip, std::size_t clips) {
        Keys keys = plainKeys(curve);
        if (keys.size() < 2 || curve.getField() == 0)
            return;
        Channel& channel = _channels[curve.getField()];
        channel.parts.resize(clips);
        channel.name = curve.getName();
        channel.block = block.getId();
        channel.turns = curveKind(&curve) == CurveKind::Rotation;
        channel.parts[clip] = std::move(keys);
    }

    kaAnimationStrip* build(const std::map<kaUID, Keys>& merged) const {
        kaAnimationManager* manager = kaAnimationManager::the();
        bool lossy = false;
        kaAnimationStrip* clip = manager->createStrip(latin1FromUtf8(_options.name, lossy), 0);
        std::map<kaUID, kaAnimationUnit*> blocks; // by the node
        std::vector<CurveEdit> edits;
        for (const auto& [field, channel] : _channels) {
            kaAnimationField* target = manager->getField(field);
            if (target == nullptr)
                continue;
            kaAnimationUnit*& block = blocks[target->nodeID];
            if (block == nullptr)
                block = manager->createUnit(manager->getUnit(channel.block)->getName(), 0);
            kaAnimationCurve2D* curve = manager->createCurve2D(target, channel.name, 0, false);
            apply({{curve, merged.at(field)}});
            block->addObject(curve);
        }
        for (const auto& [node, block] : blocks) {
            if (const osg::NodePtr owner = nodeOf(*block); owner != osg::NullFC)
                kaAnimationUtils::addAnimationObject(owner, block);
            clip->insertObject(block);
        }
        return clip;
    }

    const MergeOptions& _options;
    std::map<kaUID, Channel> _channels; ///< by the field
    std::vector<std::pair<double, double>> _spans;
};

bool isWildcard(char c) {
    return c == '*' || c == '?';
}

/// What each wildcard of the pattern from `p` on stands for in the name from `n` on: as little as will do.
bool capture(const std::string& name, std::size_t n, const std::string& match, std::size_t p,
             std::vector<std::string>& captured) {
    if (p == match.size())
        return n == name.size();
    if (!isWildcard(match[p]))
        return n < name.size() && name[n] == match[p] && capture(name, n + 1, match, p + 1, captured);
    const std::size_t most = match[p] == '?' ? std::min(n + 1, name.size()) : name.size();
    for (std::size_t end = match[p] == '?' ? n + 1 : n; end <= most; ++end) {
        captured.push_back(name.substr(n, end - n));
        if (capture(name, end, match, p + 1, captured))
            return true;
        captured.pop_back();
    }
    return false;
}

/// A node that gets another name, both in Latin-1.
struct Renaming {
    osg::NodePtr node;
    std::string before, after;
};

/// Blocks that are called after their node go along.
void apply(const std::map<osg::UInt32, Renaming>& renamings) {
    for (kaAnimationObject* object : kaAnimationManager::the()->getObjects(KA_TYPE_UNIT)) {
        const osg::NodePtr owner = nodeOf(*static_cast<kaAnimationUnit*>(object));
        const auto renaming =
            owner == osg::NullFC ? renamings.end() : renamings.find(owner.getFieldContainerId());
        if (renaming != renamings.end() && object->getName() == renaming->second.before)
            object->setName(renaming->second.after);
    }
    for (const auto& [id, renaming] : renamings) {
        osg::beginEditCP(renaming.node);
        osg::setName(renaming.node, renaming.after);
        osg::endEditCP(renaming.node);
    }
}

/// Empty containers go, and what is empty without them.
void removeEmpty(kaAnimationObject* object) {
    kaAnimationManager* manager = kaAnimationManager::the();
    while (object != nullptr && object->getTypeID() != KA_TYPE_CURVE && object->getChildCount() == 0) {
        kaAnimationObject* above = object->getParentObject();
        manager->destroyObject(object);
        object = above;
    }
}

} // namespace

OperationReport merge(const std::vector<kaAnimationStrip*>& clips, const MergeOptions& options,
                      Listener& listener) {
    std::vector<kaAnimationStrip*> chosen;
    std::copy_if(clips.begin(), clips.end(), std::back_inserter(chosen),
                 [](const kaAnimationStrip* clip) { return clip != nullptr; });
    if (chosen.size() < 2)
        throw Failure(ExitCode::Usage, "merging takes at least two clips");
    if (!(options.crossFade >= 0.0))
        throw Failure(ExitCode::Usage, "a cross-fade takes 0 frames or more");
    for (const kaAnimationStrip* clip : chosen)
        if (options.crossFade > static_cast<double>(clip->getEnd()) - static_cast<double>(clip->getBegin()))
            throw Failure(ExitCode::Usage,
                          "the cross-fade is longer than '" + oneLine(utf8FromLatin1(clip->getName())) + "'");
    OperationReport report;
    report.operation = "merge";
    for (kaAnimationStrip* clip : chosen)
        report.keysBefore += keyCount(curvesBelow({clip}));
    Merger merger(chosen, options);
    report.curves = merger.curveCount();
    kaAnimationStrip* made = merger.run(listener);
    report.isCancelled = made == nullptr;
    if (report.isCancelled)
        return report;
    report.changedCurves = report.curves;
    report.keysAfter = keyCount(curvesBelow({made}));
    report.measures.push_back({"first frame", static_cast<double>(made->getBegin()), "", "", {}, {}});
    report.measures.push_back({"last frame", static_cast<double>(made->getEnd()), "", "", {}, {}});
    if (options.removesSources)
        removeClips(chosen);
    return report;
}

OperationReport split(kaAnimationStrip* clip, const std::vector<double>& frames, bool keepsSource,
                      Listener& listener) {
    if (clip == nullptr)
        throw Failure(ExitCode::Usage, "there is no clip to split");
    const double begin = static_cast<double>(clip->getBegin()), end = static_cast<double>(clip->getEnd());
    std::vector<double> cuts{begin};
    for (const double frame : frames)
        if (frame > begin && frame < end) {
            if (!(frame > cuts.back()))
                throw Failure(ExitCode::Usage, "the frames to split at ascend");
            cuts.push_back(frame);
        }
    if (cuts.size() < 2)
        throw Failure(ExitCode::Usage, "none of the frames to split at lies within the clip, " +
                                           formatNumber(begin, 6) + " to " + formatNumber(end, 6));
    cuts.push_back(end);
    OperationReport report;
    report.operation = "split";
    report.keysBefore = keyCount(curvesBelow({clip}));
    std::vector<kaAnimationStrip*> parts;
    const std::string name = utf8FromLatin1(clip->getName());
    for (std::size_t i = 0; i + 1 < cuts.size(); ++i) {
        parts.push_back(copyClip(clip, name + " " + std::to_string(i + 1)));
        const OperationReport trimmed =
            trim(curvesBelow({parts.back()}), cuts[i], cuts[i + 1], true, listener);
        report.isCancelled = trimmed.isCancelled;
        if (report.isCancelled) {
            removeClips(parts);
            return report;
        }
        report.curves += trimmed.curves;
        report.keysAfter += trimmed.keysAfter;
        report.notes.push_back("'" + name + " " + std::to_string(i + 1) + "': frames " +
                               formatNumber(cuts[i], 6) + " to " + formatNumber(cuts[i + 1], 6));
    }
    report.changedCurves = report.curves;
    if (!keepsSource)
        removeClips({clip});
    return report;
}

std::string renamed(const std::string& name, const std::string& match, const std::string& to, bool& isMatch) {
    std::vector<std::string> captured;
    isMatch = capture(name, 0, match, 0, captured);
    if (!isMatch)
        return name;
    std::string made;
    std::size_t next = 0;
    for (const char c : to)
        if (isWildcard(c) && next < captured.size())
            made += captured[next++];
        else
            made += c;
    return made;
}

OperationReport rename(const osg::NodePtr& root, const std::string& match, const std::string& to,
                       Listener& listener) {
    if (std::count_if(to.begin(), to.end(), isWildcard) >
        std::count_if(match.begin(), match.end(), isWildcard))
        throw Failure(ExitCode::Usage, "the new name has more wildcards than the pattern");
    constexpr std::size_t mostNotes = 5;
    OperationReport report;
    report.operation = "rename";
    std::map<osg::UInt32, Renaming> renamings; // by the node's container id
    std::vector<std::string> known;
    const std::vector<osg::NodePtr> nodes = nodesBelow(root);
    for (const osg::NodePtr& node : nodes) {
        report.isCancelled = !listener.progress("renaming", known.size(), nodes.size());
        if (report.isCancelled)
            return report;
        const std::string name = nodeName(node);
        known.push_back(name);
        bool isMatch = false, lossy = false;
        const std::string made = renamed(name, match, to, isMatch);
        if (!isMatch || made == name || name.empty())
            continue;
        if (renamings.size() < mostNotes)
            report.notes.push_back("'" + name + "' is '" + made + "' now");
        renamings[node.getFieldContainerId()] = {node, latin1FromUtf8(name, lossy),
                                                 latin1FromUtf8(made, lossy)};
    }
    if (renamings.empty())
        throw Failure(ExitCode::Usage,
                      "no node is called '" + oneLine(match) + "'" + didYouMean(match, known));
    apply(renamings);
    report.measures.push_back({"nodes renamed", static_cast<double>(renamings.size()), "", "", {}, {}});
    return report;
}

OperationReport removeCurves(const CurveList& curves, Listener& listener) {
    OperationReport report;
    report.operation = "delete";
    CurveList chosen;
    for (kaAnimationCurve2D* curve : curves) {
        report.isCancelled = !listener.progress("deleting", chosen.size(), curves.size());
        if (report.isCancelled)
            return report;
        if (curve == nullptr)
            continue;
        chosen.push_back(curve);
        report.keysBefore += curve->getChildCount();
    }
    for (kaAnimationCurve2D* curve : chosen) {
        kaAnimationObject* above = curve->getParentObject();
        kaAnimationManager::the()->destroyCurve2D(curve);
        removeEmpty(above);
    }
    report.curves = report.changedCurves = chosen.size();
    return report;
}

OperationReport removeClips(const std::vector<kaAnimationStrip*>& clips, Listener& listener) {
    OperationReport report;
    report.operation = "delete";
    std::vector<kaAnimationStrip*> chosen;
    for (kaAnimationStrip* clip : clips) {
        report.isCancelled = !listener.progress("deleting", chosen.size(), clips.size());
        if (report.isCancelled)
            return report;
        if (clip == nullptr)
            continue;
        chosen.push_back(clip);
        const CurveList curves = curvesBelow({clip});
        report.curves += curves.size();
        report.keysBefore += keyCount(curves);
    }
    for (kaAnimationStrip* clip : chosen)
        kaAnimationManager::the()->destroyObject(clip);
    report.changedCurves = report.curves;
    return report;
}

} // namespace ka::motion
