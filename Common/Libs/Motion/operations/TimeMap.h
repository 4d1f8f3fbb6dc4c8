#pragma once

#include <kaMotion/EditTime.h>
#include <utility>
#include <vector>

namespace ka::motion {

/// Frames that become others, evenly between chosen ones.
class TimeMap {
  public:
    using Pairs = std::vector<std::pair<double, double>>;

    /// @param pairs  frames before and after, both ascending, at least two.
    explicit TimeMap(Pairs pairs) : _pairs(std::move(pairs)) {}

    /// What the frames of a motion become when its speed changes: times are the integral of the inverse of a
    /// speed that is straight between the given ones, which is a logarithm, taken at every half frame.
    static TimeMap ofSpeed(const Pairs& speed, double begin, double end);

    double at(double frame) const;
    /// The pace at which frames follow each other from `frame` on.
    double paceAfter(double frame) const;
    const Pairs& pairs() const { return _pairs; }

  private:
    std::size_t segmentOf(double frame) const;

    Pairs _pairs;
};

} // namespace ka::motion
