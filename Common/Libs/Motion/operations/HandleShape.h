#pragma once

#include <array>
#include <vector>

namespace ka::motion {

/// Where the two handles of a segment stand in time, as parts of its length, and with them the weights that
/// its four values have over the time: for each such pair a segment's value is linear in the four.
class HandleShape {
  public:
    static constexpr int steps = 256; ///< of the time, for which weights are kept
    using Weights = std::array<float, 4>;

    /// @param out  from the first key to its handle. @param in  from the second key back to its handle; both
    /// above 0 and at most 1.
    HandleShape(double out, double in);

    double out() const { return _out; }
    double in() const { return _in; }

    /// The weights at the part (step + rest) / steps of the time, rest in [0, 1).
    Weights at(int step, float rest) const {
        const Weights &a = _weights[static_cast<std::size_t>(step)],
                      &b = _weights[static_cast<std::size_t>(step) + 1];
        Weights weights;
        for (std::size_t i = 0; i < weights.size(); ++i)
            weights[i] = a[i] + rest * (b[i] - a[i]);
        return weights;
    }

    /// Whether the sampler's closed formula takes one and the same way for every frame of such a segment, and
    /// keeps its digits: no discriminant near 0, no vanishing coefficient of t³.
    bool isSampledExactly() const;

  private:
    double _out, _in;
    std::array<Weights, steps + 2> _weights{}; ///< one more than needed, so that reading ahead stays inside
};

/// The shapes that reduction chooses from, those nearest to an even run of time first: short handles turn a
/// curve quickly, long ones carry it far.
const std::vector<HandleShape>& handleShapes();

} // namespace ka::motion
