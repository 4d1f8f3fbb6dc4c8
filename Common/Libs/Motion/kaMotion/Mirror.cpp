#include "operations/EachCurve.h"
#include "operations/Skeleton.h"

#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Mirror.h>
#include <kaMotion/Text.h>
#include <map>

namespace ka::motion {

namespace {

constexpr std::size_t shortWord = 2;

constexpr bool isLetter(char c) {
    return lowerCase(c) >= 'a' && lowerCase(c) <= 'z';
}

/// "_L" stands at the end of a name, "L_" at its begin.
std::size_t placeOf(const std::string& word, const std::string& name) {
    if (word.empty() || word.size() > name.size())
        return std::string::npos;
    if (word.size() > shortWord)
        return name.find(word);
    const bool isAtEnd = name.compare(name.size() - word.size(), word.size(), word) == 0;
    if (isAtEnd && isLetter(word.back()))
        return name.size() - word.size();
    return isLetter(word.front()) && name.compare(0, word.size(), word) == 0 ? 0 : std::string::npos;
}

Matrix3 transposed(const Matrix3& m) {
    Matrix3 t{};
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            t[row][column] = m[column][row];
    return t;
}

/// The axes of a placement, without their lengths.
Matrix3 rotationOf(const Placement& placement) {
    Matrix3 m = placement.linear;
    for (std::size_t column = 0; column < 3; ++column) {
        const double length = std::hypot(m[0][column], m[1][column], m[2][column]);
        for (std::size_t row = 0; row < 3 && length > 0.0; ++row)
            m[row][column] /= length;
    }
    return m;
}

class Mirror {
  public:
    Mirror(CurveWork& work, const osg::NodePtr& root, const MirrorOptions& options)
        : _work(work), _skeleton(root, work.curves()), _axis(static_cast<std::size_t>(options.axis)) {
        findPartners(options);
        std::vector<double> rest(work.curves().size());
        for (std::size_t i = 0; i < rest.size(); ++i)
            if (_skeleton.nodeOf(i) != Skeleton::none)
                rest[i] = _skeleton.nodes()[_skeleton.nodeOf(i)].rest[_skeleton.channelOf(i)];
        _skeleton.place(rest.data(), _rest);
    }

    bool isSymmetric() const {
        for (std::size_t i = 0; i < _partners.size(); ++i)
            if (isMoved(i) &&
                angleBetween(reflected(rotationOf(_rest[i])), rotationOf(_rest[_partners[i]])) > 0.05)
                return false;
        return true;
    }

    /// Curves change places and signs.
    void exchange() {
        for (std::size_t i = 0; i < _work.curves().size(); ++i) {
            const std::size_t node = _skeleton.nodeOf(i);
            if (node == Skeleton::none || _work.sources()[i].empty())
                continue;
            const std::size_t channel = _skeleton.channelOf(i), axis = channel % 3;
            const std::size_t other = _skeleton.nodes()[_partners[node]].curves[channel];
            const bool isNegated = channel < 3 ? axis == _axis : channel < 6 && axis != _axis;
            _work.set(i, withValues(_work.sources()[other], isNegated ? -1.0 : 1.0, 0.0));
        }
    }

    /// Everything in the world, frame by frame. @return false when cancelled.
    bool bake(Listener& listener);

    std::size_t pairs() const {
        std::size_t count = 0;
        for (std::size_t i = 0; i < _partners.size(); ++i)
            count += isMoved(i) && _partners[i] > i ? 1 : 0;
        return count;
    }
    const std::vector<std::string>& notes() const { return _notes; }

  private:
    bool isMoved(std::size_t node) const {
        const auto& curves = _skeleton.nodes()[node].curves;
        return std::any_of(curves.begin(), curves.end(), [](std::size_t i) { return i != Skeleton::none; });
    }

    Matrix3 reflected(Matrix3 m) const {
        for (std::size_t i = 0; i < 3; ++i) {
            m[_axis][i] = -m[_axis][i];
            m[i][_axis] = -m[i][_axis];
        }
        return m;
    }

    void findPartners(const MirrorOptions& options) {
        const std::vector<Skeleton::Node>& nodes = _skeleton.nodes();
        std::multimap<std::string, std::size_t> byName;
        for (std::size_t i = 0; i < nodes.size(); ++i)
            byName.emplace(nodes[i].name, i);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            _partners.push_back(i);
            const std::string wanted = mirroredName(nodes[i].name, options);
            if (wanted == nodes[i].name || !isMoved(i))
                continue;
            const auto found = byName.find(wanted);
            if (found != byName.end() && haveSameChannels(i, found->second))
                _partners.back() = found->second;
            else
                _notes.push_back(
                    "'" + nodes[i].name + "' is mirrored by itself: '" + wanted + "' " +
                    (found == byName.end() ? "is missing" : "is not animated in the same channels"));
        }
        // Both sides have to agree.
        for (std::size_t i = 0; i < _partners.size(); ++i)
            if (_partners[_partners[i]] != i)
                _partners[i] = i;
    }

    bool haveSameChannels(std::size_t a, std::size_t b) const {
        const auto &one = _skeleton.nodes()[a].curves, &other = _skeleton.nodes()[b].curves;
        for (std::size_t channel = 0; channel < Skeleton::channels; ++channel)
            if ((one[channel] == Skeleton::none) != (other[channel] == Skeleton::none))
                return false;
        return true;
    }

    struct Baked {
        std::vector<double> frames;
        std::vector<std::vector<double>> values; ///< of each curve at each frame
    };

    std::vector<double> frames() const;
    void mirrorFrame(const std::vector<Placement>& worlds, const std::vector<double>& values,
                     Baked& baked) const;

    CurveWork& _work;
    Skeleton _skeleton;
    std::size_t _axis;
    std::vector<std::size_t> _partners;
    std::vector<Placement> _rest;
    std::vector<std::string> _notes;
};

std::vector<double> Mirror::frames() const {
    std::vector<double> frames;
    for (std::size_t i = 0; i < _work.curves().size(); ++i)
        if (_skeleton.nodeOf(i) != Skeleton::none)
            for (const PlainKey& key : _work.sources()[i])
                frames.push_back(static_cast<double>(key.x));
    std::sort(frames.begin(), frames.end());
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    return frames;
}

/// The mirrored world, node after node from the top, and what the channels have to be for it.
void Mirror::mirrorFrame(const std::vector<Placement>& worlds, const std::vector<double>& values,
                         Baked& baked) const {
    const std::vector<Skeleton::Node>& nodes = _skeleton.nodes();
    std::vector<Placement> made(nodes.size());
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const Skeleton::Node& node = nodes[i];
        const std::size_t partner = _partners[i];
        Placement above = node.parent == Skeleton::none ? Placement() : made[node.parent];
        above = product(above, node.base);
        const Matrix3 back = transposed(rotationOf(above));
        const auto channel = [&](std::size_t number) {
            const std::size_t curve = node.curves[number];
            return curve == Skeleton::none ? node.rest[number] : values[curve];
        };
        Placement own;
        Matrix3 turned = matrixFromAngles({channel(3), channel(4), channel(5)}, sceneOrder);
        Vec3 moved{channel(0), channel(1), channel(2)};
        if (node.curves[3] != Skeleton::none && node.curves[4] != Skeleton::none &&
            node.curves[5] != Skeleton::none) {
            const Matrix3 correction =
                product(transposed(reflected(rotationOf(_rest[partner]))), rotationOf(_rest[i]));
            turned = product(back, product(reflected(rotationOf(worlds[partner])), correction));
            const Vec3 before =
                baked.frames.empty() || baked.values[node.curves[3]].empty()
                    ? Vec3{0, 0, 0}
                    : Vec3{baked.values[node.curves[3]].back(), baked.values[node.curves[4]].back(),
                           baked.values[node.curves[5]].back()};
            const Vec3 angles = sceneAngles(turned, before);
            for (std::size_t axis = 0; axis < 3; ++axis)
                baked.values[node.curves[3 + axis]].push_back(angles[axis]);
        }
        if (node.curves[0] != Skeleton::none || node.curves[1] != Skeleton::none ||
            node.curves[2] != Skeleton::none) {
            Vec3 target = worlds[partner].origin;
            target[_axis] = -target[_axis];
            for (std::size_t axis = 0; axis < 3; ++axis)
                target[axis] -= above.origin[axis];
            moved = product(back, target);
            for (std::size_t axis = 0; axis < 3; ++axis)
                if (node.curves[axis] != Skeleton::none)
                    baked.values[node.curves[axis]].push_back(moved[axis]);
        }
        own.linear = turned;
        own.origin = moved;
        made[i] = product(above, own);
    }
}

bool Mirror::bake(Listener& listener) {
    Baked baked;
    baked.values.resize(_work.curves().size());
    const std::vector<double> all = frames();
    std::vector<double> values(_work.curves().size());
    std::vector<Placement> worlds;
    for (std::size_t f = 0; f < all.size(); ++f) {
        if (f % 64 == 0 && !listener.progress("mirroring", f, all.size()))
            return false;
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = heldValue(_work.sources()[i], all[f]);
        _skeleton.place(values.data(), worlds);
        mirrorFrame(worlds, values, baked);
        baked.frames.push_back(all[f]);
    }
    for (std::size_t i = 0; i < values.size(); ++i)
        if (baked.values[i].size() == all.size() && !all.empty())
            _work.set(i, keysThrough(all, baked.values[i], {}, KeyShape::Straight));
    return listener.progress("mirroring", all.size(), all.size());
}

} // namespace

std::string mirroredName(const std::string& name, const MirrorOptions& options) {
    for (const auto& [left, right] : options.sides)
        for (const auto& [from, to] : {std::pair(left, right), std::pair(right, left)})
            if (const std::size_t place = placeOf(from, name); place != std::string::npos)
                return std::string(name).replace(place, from.size(), to);
    return name;
}

OperationReport mirror(const CurveList& curves, const osg::NodePtr& root, const MirrorOptions& options,
                       Listener& listener) {
    if (options.axis < 0 || options.axis > 2)
        throw Failure(ExitCode::Usage, "the axis across the mirror is X, Y or Z");
    if (root == osg::NullFC)
        throw Failure(ExitCode::Usage, "mirroring needs the scene");
    CurveWork work("mirror", curves);
    Mirror mirror(work, root, options);
    OperationReport& report = work.report();
    report.notes = mirror.notes();
    report.measures.push_back(
        {"pairs of nodes that changed sides", static_cast<double>(mirror.pairs()), "", "", {}, {}});
    if (mirror.isSymmetric()) {
        mirror.exchange();
    } else {
        report.notes.emplace_back(
            "the nodes' axes are no mirror images at rest: mirrored in the world at every key");
        if (!mirror.bake(listener))
            return work.cancel();
    }
    return work.finish();
}

} // namespace ka::motion
