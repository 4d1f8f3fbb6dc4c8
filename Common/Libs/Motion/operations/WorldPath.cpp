#include "operations/WorldPath.h"

#include "operations/CurveEdit.h"

#include <algorithm>
#include <cmath>

namespace ka::motion {

namespace {

double distance(const std::array<float, 3>& a, const Vec3& b) {
    double sum = 0.0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double apart = static_cast<double>(a[axis]) - b[axis];
        sum += apart * apart;
    }
    return std::sqrt(sum);
}

} // namespace

WorldPath::WorldPath(const Skeleton& skeleton, const std::vector<std::vector<PlainKey>>& curves)
    : _skeleton(skeleton) {
    double begin = HUGE_VAL, end = -HUGE_VAL;
    for (const std::vector<PlainKey>& keys : curves)
        if (!keys.empty()) {
            begin = std::min(begin, static_cast<double>(keys.front().x));
            end = std::max(end, static_cast<double>(keys.back().x));
        }
    if (!(begin <= end))
        return;
    _begin = begin;
    _step = std::max(0.25, std::ceil((end - begin) / mostFrames * 4) / 4);
    _count = static_cast<std::size_t>(std::floor((end - begin) / _step)) + 1;
    _positions.reserve(_count * skeleton.nodes().size());
    walk(curves, [this](std::size_t, const std::vector<Placement>& worlds) {
        for (const Placement& world : worlds)
            _positions.push_back({static_cast<float>(world.origin[0]), static_cast<float>(world.origin[1]),
                                  static_cast<float>(world.origin[2])});
    });
}

template <class Visit>
void WorldPath::walk(const std::vector<std::vector<PlainKey>>& curves, const Visit& visit) const {
    std::vector<double> values(curves.size());
    std::vector<Placement> worlds;
    for (std::size_t i = 0; i < _count; ++i) {
        const double frame = _begin + static_cast<double>(i) * _step;
        for (std::size_t curve = 0; curve < curves.size(); ++curve)
            values[curve] = heldValue(curves[curve], frame);
        _skeleton.place(values.data(), worlds);
        visit(i, worlds);
    }
}

std::vector<WorldPath::Distance>
WorldPath::distances(const std::vector<std::vector<PlainKey>>& curves) const {
    std::vector<Distance> all(_skeleton.nodes().size());
    walk(curves, [&](std::size_t i, const std::vector<Placement>& worlds) {
        for (std::size_t node = 0; node < worlds.size(); ++node) {
            const double apart = distance(_positions[i * worlds.size() + node], worlds[node].origin);
            if (!(apart <= all[node].most))
                all[node] = {apart, _begin + static_cast<double>(i) * _step};
        }
    });
    return all;
}

std::vector<double> WorldPath::reaches() const {
    const std::vector<Skeleton::Node>& nodes = _skeleton.nodes();
    std::vector<double> reaches(nodes.size(), 0.0);
    // Every eighth measurement is enough for a lever's length, which only chooses where to begin.
    for (std::size_t i = 0; i < _count; i += 8)
        for (std::size_t node = 0; node < nodes.size(); ++node) {
            const std::array<float, 3>& at = _positions[i * nodes.size() + node];
            const Vec3 origin{static_cast<double>(at[0]), static_cast<double>(at[1]),
                              static_cast<double>(at[2])};
            for (std::size_t above = nodes[node].parent; above != Skeleton::none; above = nodes[above].parent)
                reaches[above] =
                    std::max(reaches[above], distance(_positions[i * nodes.size() + above], origin));
        }
    return reaches;
}

} // namespace ka::motion
