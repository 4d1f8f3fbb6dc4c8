#include "operations/TimeMap.h"

#include <algorithm>
#include <cmath>

namespace ka::motion {

namespace {

double speedAt(const TimeMap::Pairs& speed, double frame) {
    const auto right = std::upper_bound(speed.begin(), speed.end(), frame,
                                        [](double wanted, const auto& pair) { return wanted < pair.first; });
    if (right == speed.begin())
        return speed.front().second;
    if (right == speed.end())
        return speed.back().second;
    const auto left = right - 1;
    return left->second +
           (right->second - left->second) * (frame - left->first) / (right->first - left->first);
}

/// The time that it takes to pass `frames` while the speed goes evenly from `a` to `b`.
double timeFor(double frames, double a, double b) {
    const double ratio = b / a;
    return std::abs(ratio - 1.0) < 1e-9 ? frames / a : frames * std::log(ratio) / (b - a);
}

} // namespace

TimeMap TimeMap::ofSpeed(const Pairs& speed, double begin, double end) {
    constexpr double step = 0.5;
    std::vector<double> frames{begin};
    for (double frame = std::floor(begin / step) * step + step; frame < end; frame += step)
        frames.push_back(frame);
    for (const auto& [frame, factor] : speed)
        if (frame > begin && frame < end)
            frames.push_back(frame);
    frames.push_back(std::max(end, begin + step));
    std::sort(frames.begin(), frames.end());
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    Pairs pairs{{begin, begin}};
    for (std::size_t i = 1; i < frames.size(); ++i)
        pairs.emplace_back(frames[i], pairs.back().second + timeFor(frames[i] - frames[i - 1],
                                                                    speedAt(speed, frames[i - 1]),
                                                                    speedAt(speed, frames[i])));
    return TimeMap(pairs);
}

std::size_t TimeMap::segmentOf(double frame) const {
    const auto right = std::upper_bound(_pairs.begin(), _pairs.end(), frame,
                                        [](double wanted, const auto& pair) { return wanted < pair.first; });
    const auto at = static_cast<std::size_t>(right - _pairs.begin());
    return std::clamp<std::size_t>(at, 1, _pairs.size() - 1) - 1;
}

double TimeMap::paceAfter(double frame) const {
    const std::size_t i = segmentOf(frame);
    return (_pairs[i + 1].second - _pairs[i].second) / (_pairs[i + 1].first - _pairs[i].first);
}

double TimeMap::at(double frame) const {
    const std::size_t i = segmentOf(frame);
    return _pairs[i].second + (frame - _pairs[i].first) * paceAfter(frame);
}

} // namespace ka::motion
