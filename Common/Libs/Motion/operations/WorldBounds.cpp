#include "operations/WorldBounds.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace ka::motion {

namespace {

/// Rounds of widening and narrowing; and of narrowing alone, where the bound does not hold after these.
constexpr int mostRounds = 5, mostRescues = 12;

/// How much of the distance may be left over.
constexpr double goodPart = 0.9;

} // namespace

WorldBounds::WorldBounds(const osg::NodePtr& root, const CurveList& curves, std::vector<Keys> sources,
                         std::vector<double> widest, double distance)
    : _skeleton(root, curves),
      _sources(std::move(sources)),
      _widest(std::move(widest)),
      _bounds(_widest),
      _distance(distance),
      _path(_skeleton, _sources) {
    estimate();
}

void WorldBounds::estimate() {
    const std::vector<double> reaches = _path.reaches();
    for (std::size_t i = 0; i < _bounds.size(); ++i) {
        const std::size_t node = _skeleton.nodeOf(i);
        if (node == Skeleton::none)
            continue;
        const std::size_t channel = _skeleton.channelOf(i);
        // What some curves of a chain leave off, others add: a fifth of the distance each came nearest to the whole
        // on captures, and a good start saves a round of reducing everything.
        const double share = _distance / 5;
        double bound = share;
        if (channel >= 3 && reaches[node] > 0.0)
            bound = channel < 6 ? share / reaches[node] * 180.0 / M_PI : share / reaches[node];
        else if (channel >= 3)
            bound = _widest[i];
        _bounds[i] = std::min(_widest[i], bound);
    }
}

double WorldBounds::measure(const Result& result) {
    std::vector<Keys> keys;
    for (std::size_t i = 0; i < _bounds.size(); ++i)
        keys.push_back(result(i));
    _measured = _path.distances(keys);
    _worst = {};
    for (std::size_t node = 0; node < _measured.size(); ++node)
        if (!(_measured[node].most <= _worst.distance))
            _worst = {_measured[node].most, _measured[node].frame, _skeleton.nodes()[node].name};
    return _worst.distance / _distance;
}

/// For each node the largest part of the distance that it or a node below it has used up.
std::vector<double> WorldBounds::strainBelow() const {
    std::vector<double> strain(_measured.size(), 0.0);
    for (std::size_t node = strain.size(); node-- > 0;) {
        strain[node] = std::max(strain[node], _measured[node].most / _distance);
        const std::size_t above = _skeleton.nodes()[node].parent;
        if (above != Skeleton::none)
            strain[above] = std::max(strain[above], strain[node]);
    }
    return strain;
}

void WorldBounds::adapt(double part) {
    const std::vector<double> strain = strainBelow();
    for (std::size_t i = 0; i < _bounds.size(); ++i)
        if (const std::size_t node = _skeleton.nodeOf(i); node != Skeleton::none) {
            const double factor = std::clamp(part / std::max(strain[node], 1e-3), 0.3, 1.6);
            _bounds[i] = std::min(_widest[i], _bounds[i] * factor);
        }
}

bool WorldBounds::find(const Reduce& reduce, const Result& result) {
    std::vector<std::size_t> all(_bounds.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    if (!reduce(all, _bounds))
        return false;
    double used = measure(result);
    std::vector<double> good;
    for (int round = 0; round < mostRounds && !(used <= 1.0 && used >= goodPart); ++round) {
        if (used <= 1.0)
            good = _bounds;
        const std::vector<double> before = _bounds;
        adapt(0.95);
        if (_bounds == before)
            break;
        if (!reduce(all, _bounds))
            return false;
        used = measure(result);
    }
    if (used > 1.0 && !good.empty()) {
        _bounds = good;
        if (!reduce(all, _bounds))
            return false;
        used = measure(result);
    }
    for (int rescue = 0; rescue < mostRescues && used > 1.0; ++rescue) {
        adapt(0.7);
        if (!reduce(all, _bounds))
            return false;
        used = measure(result);
    }
    return true;
}

} // namespace ka::motion
