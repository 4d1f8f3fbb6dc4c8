#pragma once

#include "operations/CurveReduction.h"
#include "operations/SegmentSearch.h"
#include "operations/SourceRuns.h"

#include <optional>
#include <vector>

namespace ka::motion {

/// What a run has to begin and end with, beside its values; nothing where any slope will do.
struct RunEnds {
    std::optional<double> startSlope, endSlope;
};

/// Thins the keys of one stretch of a curve that moves.
class RunReduction {
  public:
    /// @param source, bound  outlive this. @param samples  of the run.
    RunReduction(const std::vector<PlainKey>& source, const SourceRun& run, SourceSamples samples,
                 const CurveBound& bound);

    /// Appends the run's new keys to `reduced`, whose last key is the run's first, and notes how far they are
    /// off.
    /// @return false when cancelled.
    bool run(const RunEnds& ends, const KeepGoing& keepGoing, ReducedCurve& reduced);

  private:
    /// A way to go on, and how far the segment after it reaches.
    struct Step {
        SegmentChoice choice;
        std::size_t reach = 0;
    };

    /// A segment as it is written, and how far it is off there.
    struct Written {
        PlainKey from, to;
        CurveState end;
        double worst = 0.0;
        float worstFrame = 0.0F;
    };

    std::size_t lastSample() const { return _samples.frames.size() - 1; }
    bool mayTurn(std::size_t sample) const;
    void addSlopes(CurveState state, std::vector<CurveState>& states) const;
    CurveState bestStart(const CurveState& plain, bool isFixed);
    void addSteps(const SegmentChoice& choice, bool isFirstThere, std::vector<SegmentChoice>& steps) const;
    std::vector<SegmentChoice> candidates(const CurveState& from, std::size_t reach);
    std::vector<Step> bestSteps(const std::vector<SegmentChoice>& candidates);
    double followedBy(const CurveState& state) const;
    std::optional<Written> write(const PlainKey& from, const SegmentChoice& choice) const;
    void measure(Written& written, std::size_t from) const;
    std::size_t nextKey(std::size_t sample) const;
    bool mayFollowSource(const CurveState& state) const;
    void keepSource(ReducedCurve& reduced) const;
    Written ownSegment(const PlainKey& from, std::size_t at) const;
    Written next(const PlainKey& from, const CurveState& state, std::size_t& guess);

    const std::vector<PlainKey>& _source;
    SourceRun _run;
    SourceSamples _samples;
    const CurveBound& _bound;
    double _tolerance; ///< that is aimed at, a little less than the bound
    SegmentSearch _search;
    std::optional<double> _endSlope;
    std::vector<bool> _turns; ///< for each sample: whether it is a key that may stay a corner
};

} // namespace ka::motion
