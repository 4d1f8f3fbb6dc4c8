#include "operations/CurveEdit.h"
#include "operations/KeyEdits.h"
#include "operations/Skeleton.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>
#include <kaControlPoint2D.h>
#include <kaMotion/EditClips.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Retarget.h>
#include <kaMotion/Text.h>
#include <set>
#include <sstream>

namespace ka::motion {

namespace {

constexpr double mostPoses = 1e7;

Matrix3 transposed(const Matrix3& m) {
    return {{{m[0][0], m[1][0], m[2][0]}, {m[0][1], m[1][1], m[2][1]}, {m[0][2], m[1][2], m[2][2]}}};
}

Matrix3 rotationOf(const Placement& placement) {
    Matrix3 m = placement.linear;
    for (std::size_t column = 0; column < 3; ++column) {
        const double length = std::hypot(m[0][column], m[1][column], m[2][column]);
        for (std::size_t row = 0; row < 3 && length > 0.0; ++row)
            m[row][column] /= length;
    }
    return m;
}

Vec3 difference(const Vec3& a, const Vec3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

double length(const Vec3& v) {
    return std::hypot(v[0], v[1], v[2]);
}

/// The shortest turn that takes one direction to another.
Matrix3 turnBetween(const Vec3& from, const Vec3& to) {
    const double scale = length(from) * length(to);
    if (!(scale > 1e-12))
        return matrixFromQuaternion({});
    const double cosine = (from[0] * to[0] + from[1] * to[1] + from[2] * to[2]) / scale;
    if (cosine < -0.999999) // any turn by half a circle; no limb does that
        return matrixFromQuaternion({});
    return matrixFromQuaternion(
        normalized({(from[1] * to[2] - from[2] * to[1]) / scale, (from[2] * to[0] - from[0] * to[2]) / scale,
                    (from[0] * to[1] - from[1] * to[0]) / scale, 1.0 + cosine}));
}

std::string plainName(const std::string& name) {
    const std::size_t prefix = name.find_last_of(":|");
    std::string plain;
    for (const char c : prefix == name.npos ? name : name.substr(prefix + 1))
        if (std::string(" _-.").find(c) == std::string::npos)
            plain += lowerCase(c);
    return plain;
}

std::vector<double> framesOf(const std::vector<Keys>& curves) {
    std::vector<double> frames;
    for (const Keys& keys : curves)
        for (const PlainKey& key : keys)
            frames.push_back(static_cast<double>(key.x));
    std::sort(frames.begin(), frames.end());
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    if (frames.empty())
        return frames;
    const double last = frames.back();
    if (last - frames.front() > mostPoses)
        throw Failure(ExitCode::Usage, "a motion this long cannot be retargeted");
    for (double frame = std::ceil(frames.front()); frame <= last; ++frame)
        frames.push_back(frame);
    std::sort(frames.begin(), frames.end());
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    return frames;
}

class Retargeter {
  public:
    Retargeter(const SkeletonMotion& source, const osg::NodePtr& root, const RetargetOptions& options)
        : _source(source), _options(options), _skeleton(root, {}) {
        _skeleton.place(nullptr, _rest);
        map();
        findTop();
        align();
    }

    /// @return false when cancelled.
    bool bake(Listener& listener) {
        const std::size_t count = _source.frames.size();
        for (std::size_t frame = 0; frame < count; ++frame) {
            if (frame % 64 == 0 && !listener.progress("retargeting", frame, count))
                return false;
            bakeFrame(frame);
        }
        return listener.progress("retargeting", count, count);
    }

    void build(OperationReport& report);
    void tell(OperationReport& report) const;

  private:
    static constexpr std::size_t none = Skeleton::none;

    void map();
    void findTop();
    void align();
    void bakeFrame(std::size_t frame);
    double heightOver(const Vec3& top, const std::vector<Vec3>& all) const;
    std::size_t onlyMappedBelow(std::size_t node) const;

    const SkeletonMotion& _source;
    const RetargetOptions& _options;
    Skeleton _skeleton;
    std::vector<Placement> _rest;
    std::vector<std::size_t> _joints; ///< of each node its joint, or none
    std::vector<Matrix3> _alignment;  ///< of each mapped node's rest
    std::size_t _top = none;
    double _scale = 1.0;
    std::vector<std::array<std::vector<double>, 3>> _angles; ///< of each node
    std::array<std::vector<double>, 3> _way;                 ///< of the topmost one
};

void Retargeter::map() {
    const std::vector<Skeleton::Node>& nodes = _skeleton.nodes();
    _joints.assign(nodes.size(), none);
    std::set<std::size_t> taken;
    std::vector<bool> moves; // whatever stands above all that moves is no part of the skeleton
    for (std::size_t i = 0; i < _source.joints.size(); ++i) {
        const SkeletonMotion::Joint& joint = _source.joints[i];
        moves.push_back(joint.isMoved ||
                        (joint.parent >= 0 && moves[static_cast<std::size_t>(joint.parent)]));
        if (!moves.back())
            continue;
        const std::string& name = joint.name;
        std::string wanted;
        for (const auto& [from, to] : _options.names) {
            bool isMatch = false;
            const std::string made = renamed(name, from, to, isMatch);
            if (isMatch && wanted.empty())
                wanted = made;
        }
        for (std::size_t node = 0; node < nodes.size(); ++node) {
            const bool isMeant = _options.names.empty() ? !plainName(name).empty() &&
                                                              plainName(nodes[node].name) == plainName(name)
                                                        : !wanted.empty() && nodes[node].name == wanted;
            if (isMeant && nodes[node].isPlaced && _joints[node] == none && taken.insert(i).second)
                _joints[node] = i;
        }
    }
    if (taken.empty())
        throw Failure(ExitCode::Usage, "no node of the one skeleton has a counterpart in the other");
}

double Retargeter::heightOver(const Vec3& top, const std::vector<Vec3>& all) const {
    double height = 0.0;
    for (const Vec3& each : all)
        height = std::max(height, length(difference(top, each)));
    return height;
}

/// How large the one skeleton is to the other: from the topmost node to the furthest of the mapped ones.
void Retargeter::findTop() {
    std::vector<Vec3> sources, targets;
    for (std::size_t node = 0; node < _joints.size(); ++node)
        if (_joints[node] != none) {
            _top = _top == none ? node : _top;
            sources.push_back(_source.joints[_joints[node]].restPosition);
            targets.push_back(_rest[node].origin);
        }
    const double source = heightOver(sources.front(), sources), target = heightOver(targets.front(), targets);
    _scale = source > 1e-9 && target > 1e-9 ? target / source : 1.0;
}

std::size_t Retargeter::onlyMappedBelow(std::size_t node) const {
    std::size_t found = none;
    for (std::size_t other = node + 1; other < _joints.size(); ++other) {
        if (_joints[other] == none)
            continue;
        std::size_t above = _skeleton.nodes()[other].parent;
        while (above != none && above != node && _joints[above] == none)
            above = _skeleton.nodes()[above].parent;
        if (above != node)
            continue;
        if (found != none)
            return none;
        found = other;
    }
    return found;
}

void Retargeter::align() {
    _alignment.assign(_joints.size(), matrixFromQuaternion({}));
    for (std::size_t node = 0; node < _joints.size() && _options.alignsLimbs; ++node) {
        const std::size_t below = _joints[node] == none ? none : onlyMappedBelow(node);
        if (below == none)
            continue;
        _alignment[node] = turnBetween(difference(_rest[below].origin, _rest[node].origin),
                                       difference(_source.joints[_joints[below]].restPosition,
                                                  _source.joints[_joints[node]].restPosition));
    }
    _angles.resize(_joints.size());
}

void Retargeter::bakeFrame(std::size_t frame) {
    const std::vector<Skeleton::Node>& nodes = _skeleton.nodes();
    std::vector<Placement> made(nodes.size());
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const Skeleton::Node& node = nodes[i];
        Placement above = node.parent == none ? Placement() : made[node.parent];
        above = product(above, node.base);
        Placement own;
        own.origin = {node.rest[0], node.rest[1], node.rest[2]};
        own.linear = matrixFromAngles({node.rest[3], node.rest[4], node.rest[5]}, sceneOrder);
        const Matrix3 back = transposed(rotationOf(above));
        if (_joints[i] != none) {
            const SkeletonMotion::Joint& joint = _source.joints[_joints[i]];
            const Matrix3 turn = product(matrixFromQuaternion(joint.rotations[frame]),
                                         transposed(matrixFromQuaternion(joint.restRotation)));
            const Matrix3 world = product(turn, product(_alignment[i], rotationOf(_rest[i])));
            own.linear = product(back, world);
            auto& angles = _angles[i];
            const Vec3 before = angles[0].empty()
                                    ? Vec3{node.rest[3], node.rest[4], node.rest[5]}
                                    : Vec3{angles[0].back(), angles[1].back(), angles[2].back()};
            const Vec3 now = sceneAngles(own.linear, before);
            for (std::size_t axis = 0; axis < 3; ++axis)
                angles[axis].push_back(now[axis]);
        }
        if (i == _top) {
            const SkeletonMotion::Joint& joint = _source.joints[_joints[i]];
            Vec3 target = _rest[i].origin;
            for (std::size_t axis = 0; axis < 3; ++axis)
                target[axis] += _scale * (joint.positions[frame][axis] - joint.restPosition[axis]);
            own.origin = product(back, difference(target, above.origin));
            for (std::size_t axis = 0; axis < 3; ++axis)
                _way[axis].push_back(own.origin[axis]);
        }
        made[i] = node.isPlaced ? product(above, own) : above;
        for (std::size_t column = 0; column < 3 && node.isPlaced; ++column)
            for (std::size_t row = 0; row < 3; ++row)
                made[i].linear[row][column] *= node.rest[6 + column];
    }
}

void Retargeter::build(OperationReport& report) {
    kaAnimationManager* manager = kaAnimationManager::the();
    for (const char* name : {"translation", "scale"})
        if (!manager->isAnimationAttribute(name))
            manager->addAnimationAttribute(name);
    bool lossy = false;
    kaAnimationStrip* clip =
        manager->createStrip(latin1FromUtf8(_options.clip.empty() ? _source.name : _options.clip, lossy), 0);
    for (std::size_t i = 0; i < _joints.size(); ++i) {
        if (_joints[i] == none)
            continue;
        const Skeleton::Node& node = _skeleton.nodes()[i];
        kaAnimationUnit* block = manager->createUnit(latin1FromUtf8(node.name, lossy), 0);
        const auto add = [&](char kind, std::size_t axis, const std::vector<double>& values) {
            const Keys keys = keysThrough(_source.frames, values, {}, KeyShape::Straight);
            kaAnimationCurve2D* curve = manager->createCurve2D(
                node.node, std::string("Transform") + kind + "XYZ" [axis],
                { manager->createPoint2D(keys.front().x, keys.front().y, 0) }, 0, false);
            if (curve == nullptr)
                return;
            apply({{curve, keys}});
            block->addObject(curve);
            ++report.curves;
            report.keysAfter += keys.size();
        };
        for (std::size_t axis = 0; axis < 3 && i == _top; ++axis)
            add('T', axis, _way[axis]);
        for (std::size_t axis = 0; axis < 3; ++axis)
            add('R', axis, _angles[i][axis]);
        kaAnimationUtils::addAnimationObject(node.node, block);
        clip->insertObject(block);
    }
    report.changedCurves = report.curves;
}

void Retargeter::tell(OperationReport& report) const {
    const std::set<std::size_t> mapped(_joints.begin(), _joints.end());
    report.measures.push_back(
        {"nodes mapped", static_cast<double>(mapped.size() - mapped.count(none)), "", "", {}, {}});
    report.measures.push_back({"size of the target to the source", _scale, "", "", {}, {}});
    for (std::size_t i = 0; i < _source.joints.size(); ++i)
        if (_source.joints[i].isMoved && mapped.count(i) == 0)
            report.notes.push_back("'" + _source.joints[i].name + "' has no counterpart");
}

} // namespace

SkeletonMotion recordSkeleton(const osg::NodePtr& root, const CurveList& curves, const std::string& name) {
    const Skeleton skeleton(root, curves);
    std::vector<Keys> keys;
    for (const kaAnimationCurve2D* curve : curves)
        keys.push_back(plainKeys(*curve));
    SkeletonMotion motion;
    motion.name = name;
    motion.frames = framesOf(keys);
    const std::vector<Skeleton::Node>& nodes = skeleton.nodes();
    if (static_cast<double>(motion.frames.size()) * static_cast<double>(nodes.size()) > mostPoses)
        throw Failure(ExitCode::Usage,
                      "a motion this long cannot be retargeted: more than ten million poses");
    std::vector<double> values(curves.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        if (skeleton.nodeOf(i) != Skeleton::none)
            values[i] = nodes[skeleton.nodeOf(i)].rest[skeleton.channelOf(i)];
    std::vector<Placement> worlds;
    skeleton.place(values.data(), worlds);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        SkeletonMotion::Joint joint;
        joint.name = nodes[i].name;
        joint.parent = nodes[i].parent == Skeleton::none ? -1 : static_cast<int>(nodes[i].parent);
        joint.isMoved = std::any_of(nodes[i].curves.begin(), nodes[i].curves.end(),
                                    [](std::size_t curve) { return curve != Skeleton::none; });
        joint.restPosition = worlds[i].origin;
        joint.restRotation = quaternionFromMatrix(rotationOf(worlds[i]));
        motion.joints.push_back(std::move(joint));
    }
    for (const double frame : motion.frames) {
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = heldValue(keys[i], frame);
        skeleton.place(values.data(), worlds);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            motion.joints[i].positions.push_back(worlds[i].origin);
            motion.joints[i].rotations.push_back(quaternionFromMatrix(rotationOf(worlds[i])));
        }
    }
    return motion;
}

OperationReport retarget(const SkeletonMotion& source, const osg::NodePtr& root,
                         const RetargetOptions& options, Listener& listener) {
    if (source.frames.empty() || source.joints.empty() || root == osg::NullFC)
        throw Failure(ExitCode::Usage, "there is no motion to take over");
    OperationReport report;
    report.operation = "retarget";
    Retargeter retargeter(source, root, options);
    report.isCancelled = !retargeter.bake(listener);
    if (report.isCancelled)
        return report;
    retargeter.build(report);
    retargeter.tell(report);
    return report;
}

std::vector<std::pair<std::string, std::string>> parseNameTable(const std::string& text) {
    const auto trimmed = [](const std::string& word) {
        const std::size_t first = word.find_first_not_of(" \t\r"), last = word.find_last_not_of(" \t\r");
        return first == word.npos ? std::string() : word.substr(first, last - first + 1);
    };
    std::vector<std::pair<std::string, std::string>> names;
    std::istringstream lines(text);
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        line = trimmed(line);
        if (line.empty() || line.front() == '#')
            continue;
        const std::size_t sign = line.find('=');
        const std::string from = trimmed(line.substr(0, sign)),
                          to = sign == line.npos ? "" : trimmed(line.substr(sign + 1));
        if (from.empty() || to.empty())
            throw Failure(ExitCode::Unreadable,
                          "line " + std::to_string(number) + " is not of the form 'source = target'");
        names.emplace_back(from, to);
    }
    return names;
}

} // namespace ka::motion
