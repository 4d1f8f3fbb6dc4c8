#include "writers/WeightRows.h"

#include <algorithm>

namespace ka::motion {

namespace {

using Channel = MotionChannel<1>;

bool haveSameTimes(const Channel& a, const Channel& b) {
    return a.interpolation == b.interpolation &&
           std::equal(a.keys.begin(), a.keys.end(), b.keys.begin(), b.keys.end(),
                      [](const auto& left, const auto& right) { return left.time == right.time; });
}

double valueAt(const Channel& channel, double time) {
    const auto& keys = channel.keys;
    const auto after = std::upper_bound(keys.begin(), keys.end(), time,
                                        [](double at, const MotionKey<1>& key) { return at < key.time; });
    if (after == keys.begin() || after == keys.end())
        return after == keys.begin() ? keys.front().value[0] : keys.back().value[0];
    const MotionKey<1>&from = *(after - 1), &to = *after;
    const double span = to.time - from.time, t = (time - from.time) / span;
    if (channel.interpolation == Interpolation::Step)
        return from.value[0];
    if (channel.interpolation == Interpolation::Linear)
        return from.value[0] + (to.value[0] - from.value[0]) * t;
    const double square = t * t, cube = square * t;
    return (2 * cube - 3 * square + 1) * from.value[0] + (cube - 2 * square + t) * span * from.outTangent[0] +
           (3 * square - 2 * cube) * to.value[0] + (cube - square) * span * to.inTangent[0];
}

/// Enough for straight lines between them to follow the channel.
void addTimes(const Channel& channel, std::vector<double>& times) {
    constexpr int pieces = 8;
    constexpr double jump = 1e-4; // seconds
    for (std::size_t i = 0; i < channel.keys.size(); ++i) {
        const double time = channel.keys[i].time;
        times.push_back(time);
        if (i == 0)
            continue;
        const double before = channel.keys[i - 1].time;
        if (channel.interpolation == Interpolation::Step)
            times.push_back(std::max(before, time - jump));
        for (int j = 1; j < pieces && channel.interpolation == Interpolation::Cubic; ++j)
            times.push_back(before + (time - before) * j / pieces);
    }
}

void append(WeightRows& rows, double time, double shift) {
    rows.times.push_back(std::max(0.0F, static_cast<float>(time + shift)));
}

} // namespace

WeightRows weightRows(const std::vector<Channel>& weights, const std::vector<float>& rest, double shift) {
    std::vector<Channel> all(rest.size());
    const Channel* first = nullptr;
    for (std::size_t i = 0; i < std::min(all.size(), weights.size()); ++i)
        all[i] = weights[i];
    for (const Channel& channel : all)
        first = first == nullptr && !channel.keys.empty() ? &channel : first;
    WeightRows rows;
    if (first == nullptr)
        return rows;
    const bool areAlike = std::all_of(all.begin(), all.end(), [&](const Channel& channel) {
        return channel.keys.empty() || haveSameTimes(channel, *first);
    });
    if (!areAlike) {
        std::vector<double> times;
        for (const Channel& channel : all)
            addTimes(channel, times);
        std::sort(times.begin(), times.end());
        for (const double time : times) {
            if (!rows.times.empty() && !(static_cast<float>(time + shift) > rows.times.back()))
                continue;
            append(rows, time, shift);
            for (std::size_t i = 0; i < all.size(); ++i)
                rows.values.push_back(all[i].keys.empty() ? rest[i]
                                                          : static_cast<float>(valueAt(all[i], time)));
        }
        return rows;
    }
    rows.interpolation = first->interpolation;
    for (std::size_t k = 0; k < first->keys.size(); ++k) {
        append(rows, first->keys[k].time, shift);
        const auto addRow = [&](const std::array<double, 1> MotionKey<1>::*part, bool isValue) {
            for (std::size_t i = 0; i < all.size(); ++i)
                rows.values.push_back(all[i].keys.empty() ? (isValue ? rest[i] : 0.0F)
                                                          : static_cast<float>((all[i].keys[k].*part)[0]));
        };
        if (rows.interpolation == Interpolation::Cubic)
            addRow(&MotionKey<1>::inTangent, false);
        addRow(&MotionKey<1>::value, true);
        if (rows.interpolation == Interpolation::Cubic)
            addRow(&MotionKey<1>::outTangent, false);
    }
    return rows;
}

} // namespace ka::motion
