#pragma once

#include "kaAnimationTypes.h"

#include <OpenSG/OSGFieldContainerPtr.h>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

class kaAnimationCurve2D;
class kaAnimationField;
class kaEvaluationPlan;
class kaSegment;

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
    /// One curve of the plan and its value.
    struct Sampled {
        std::uint32_t curve;
        float value;
    };
    struct Written {
        kaUID id;
        kaAnimationField* field;
        std::uint32_t curve; ///< of the plan, or none
    };

    void arrange(const kaEvaluationPlan& plan, float frame, bool motionBlurOnly);
    void sampleCurve(kaEvaluationPlan& plan, std::size_t curve, float frame);
    void flush(kaEvaluationPlan& plan);
    void store(kaEvaluationPlan& plan, const Sampled& sampled, const osg::FieldContainerStore& containers);
    void flushFields();
    void store(kaAnimationField& field, float value);
    void fetch(const kaEvaluationPlan* plan, std::size_t place) const;

    std::vector<Run> _finished;
    std::vector<Run> _running;
    std::vector<Run> _upcoming;
    static constexpr std::size_t Block = 64;
    /// Curves are sampled a block at a time before any is stored, while their fields are prefetched.
    std::array<Sampled, Block> _block;
    std::size_t _inBlock = 0;
    /// What of that is still to be sampled, side by side, and its places in the block.
    std::array<const kaSegment*, Block> _segments;
    std::array<float, Block> _frames;
    std::array<std::uint32_t, Block> _places;
    std::array<kaAnimationField*, Block> _fields; ///< of what is sampled beside any plan
    std::size_t _waiting = 0;
    bool _motionBlurOnly = false;
    /// All that was stored, beginning with the first value that differed from the scene's.
    std::vector<Written> _written;
};
