#pragma once

#include "operations/HandleShape.h"
#include "operations/SourceRuns.h"

#include <array>
#include <cstddef>
#include <vector>

namespace ka::motion {

/// Where a new curve stands: on a sample, at a value and with a slope in value per frame.
struct CurveState {
    std::size_t at = 0;
    double value = 0.0;
    double slope = 0.0;
};

/// One way to go on from a state: a segment with its handles' values.
struct SegmentChoice {
    CurveState end;
    const HandleShape* shape = nullptr;
    double outValue = 0.0, inValue = 0.0;
};

/// Looks for segments that start from a given state and pass all samples within a tolerance.
///
/// For one shape of the handles the value of the first handle follows from the slope, those of the second
/// handle and of the end are free, and every sample leaves them a strip of the plane. The strips are cut
/// along eight lines of fixed end values, side by side: what is left of them are the segments that fit.
class SegmentSearch {
  public:
    /// @param samples  outlive this. @param last  the sample at which the curve has to end on its value.
    SegmentSearch(const SourceSamples& samples, double tolerance, std::size_t last);

    /// The slope that the curve has to end with; by default any.
    void endWithSlope(double slope);

    /// The furthest sample that a segment from `from` reaches, beginning the search at `guess`. Where none
    /// reaches the next sample: `from.at`.
    std::size_t reach(const CurveState& from, std::size_t guess);
    /// The same if it lies beyond `beat`, else `from.at`: much quicker where it does not.
    std::size_t reachBeyond(const CurveState& from, std::size_t beat);

    /// Every way found from `from` to the sample `to`.
    void choices(const CurveState& from, std::size_t to, std::vector<SegmentChoice>& found);

  private:
    static constexpr std::size_t lanes = 8;
    using Lane = std::array<float, lanes>;

    /// What is left of the second handle's value, for each value of the end.
    struct Cut {
        Lane low, high;
    };

    struct Prepared {
        int step;
        float rest;
        float value;
    };

    void begin(std::size_t from, std::size_t to);
    bool prepareNext();
    bool fits(const CurveState& from, const HandleShape& shape, Cut& cut);
    bool isReached(const CurveState& from, std::size_t to);
    std::size_t bisect(const CurveState& from, std::size_t reached, std::size_t missed);

    const SourceSamples& _samples;
    double _tolerance;
    std::size_t _last;
    bool _hasEndSlope = false;
    double _endSlope = 0.0;

    // The span that is being tried.
    std::size_t _from = 0, _to = 0;
    std::size_t _stride = 0, _next = 0, _grain = 1;
    double _length = 0.0, _base = 0.0;
    std::vector<Prepared> _prepared;
    std::size_t _favourite = 0; ///< the shape that fitted last
};

} // namespace ka::motion
