#pragma once

#include "kaAnimationTypes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

class kaAnimationCurve2D;
class kaAnimationField;
class kaEvaluationPlan;

/// One evaluation on its way from frames to values in the scene, with buffers that are kept for the next.
///
/// All values are sampled and stored in their fields first, then the fields are written in the same order.
class kaEvaluationPass {
  public:
    void clear();

    /// Samples what `plan` holds at `frame`.
    void sample(kaEvaluationPlan& plan, float frame, bool motionBlurOnly);
    /// Samples one curve beside any plan.
    void sample(kaAnimationCurve2D& curve, float frame);

    /// Writes all that was sampled since `clear`. Calls out.
    void write(kaEvaluationPlan* plan);

  private:
    static constexpr std::uint32_t NoCurve = 0xFFFFFFFF;

    /// The curves of one object that are sampled at one frame, and the number that they are ordered by.
    struct Run {
        float key;
        float frame;
        std::size_t first;
        std::size_t count;
    };
    /// One curve of the plan at one frame; once sampled its value, or no curve where there is none.
    struct Step {
        std::uint32_t curve;
        float number;
    };
    struct Written {
        kaUID id;
        kaAnimationField* field;
        std::uint32_t curve; ///< of the plan, or none
    };
    class SideBySide;

    void arrange(const kaEvaluationPlan& plan, float frame, bool motionBlurOnly);
    void add(kaEvaluationPlan& plan, std::size_t curve, float frame);
    void flush(kaEvaluationPlan& plan);
    void sampleBlock(kaEvaluationPlan& plan);
    static void sample(kaEvaluationPlan& plan, Step& step, SideBySide& sides);
    void store(kaEvaluationPlan& plan, const Step& step);
    void fetch(const kaEvaluationPlan& plan, std::size_t place) const;

    std::vector<Run> _finished;
    std::vector<Run> _running;
    std::vector<Run> _upcoming;
    /// What is sampled before it is stored: the fields come from memory meanwhile.
    std::array<Step, 64> _block;
    std::size_t _inBlock = 0;
    bool _motionBlurOnly = false;
    /// From the first value on that the scene did not hold when it was stored.
    std::vector<Written> _written;
};
