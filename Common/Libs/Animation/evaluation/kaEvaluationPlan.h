#pragma once

#include "kaAnimationObject.h"
#include "kaDependents.h"
#include "kaFieldCache.h"
#include "kaFold.h"
#include "kaSegment.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class kaAnimationField;
class kaCurveView;

/// A flat copy of what evaluation reads of everything below one object, in the order of the walk, so that a frame
/// of an unedited clip touches no objects but the fields. It observes the objects that it was made from
/// (`kaDependents`), so that edits elsewhere do not invalidate it. A changed curve or block is read again; after
/// a change of structure the plan is rebuilt.
class kaEvaluationPlan final : public kaDependent {
  public:
    /// @param gone  is counted up when the object that the plan was made for goes.
    explicit kaEvaluationPlan(std::size_t& gone) : _gone(gone) {}
    kaEvaluationPlan(const kaEvaluationPlan&) = delete;
    kaEvaluationPlan& operator=(const kaEvaluationPlan&) = delete;
    ~kaEvaluationPlan() { kaDependents::leave(*this); }

    /// An object that holds curves (a block, a curve), which are all sampled at one frame.
    struct Leaf {
        const kaAnimationObject* object;
        float begin;
        float end;
        std::size_t first; ///< of its curves among all
        std::size_t count;
        bool repeating;
    };

    /// Where a leaf stands at a frame.
    enum class Part { Finished, Running, Upcoming };

    /// What every frame reads of a curve: one cache line.
    struct alignas(64) Curve {
        bool isInside(float frame) const { return !(frame < begin || frame > end); }

        /// Null where nothing is sampled: the curve is switched off, or its field is not registered.
        kaAnimationField* field;
        kaFieldCache cache;
        float begin; ///< of the frames that are clamped; of a repeating one minus infinity
        float end;   ///< and plus infinity
    };

    /// Brings the plan up to date. Cost: a few compares; after edits of curves and blocks in their places
    /// that of reading those again; after any other edit of what the plan was made of a walk of everything
    /// below the object.
    void refresh(const kaAnimationObject& object);
    void changed(std::uint32_t place, kaChange change) noexcept override;

    std::uint64_t lastUse = 0; ///< for the owner
    bool isOrphaned() const { return _orphaned; }
    /// Whether the object is certainly there: the plan would have been told.
    bool hasObject() const { return _told && !_orphaned; }

    /// `visit(part, key to order by, frame to sample at, leaf)` for every leaf that has a part at `frame`.
    template <class Visit>
    void forEachPart(float frame, bool motionBlurOnly, Visit&& visit) const;

    /// The segment of a curve that holds `frame`, which is inside its extent; null where none does and
    /// `sample` is to be asked. The pointer is good until the next call for that curve.
    const kaSegment* segmentAt(std::size_t curve, float frame) {
        kaSegment& current = _segments[curve];
        return current.contains(frame) ? &current : findSegment(curve, frame);
    }

    /// Samples a curve at a frame, clamped to its extent unless it repeats. @return whether `value` was
    /// written.
    bool sample(std::size_t curve, float frame, float& value) {
        const Curve& sampled = curves[curve];
        if (sampled.isInside(frame))
            return sampleInside(curve, frame, value);
        EndValue& end = _endValues[2 * curve + (frame < sampled.begin ? 0 : 1)];
        if (end.state == EndValue::State::Unknown)
            sampleEnd(curve, frame, end);
        value = end.value;
        return end.state == EndValue::State::Value;
    }

    /// Whether a curve is sampled for motion blur.
    bool isMotionBlur(std::size_t curve) const { return _blurred[curve]; }

    std::vector<Leaf> leaves;
    std::vector<Curve> curves;
    std::vector<kaAnimationCurve2D*> objects; ///< of `curves`

  private:
    /// What sampling at one end of a curve gives.
    struct EndValue {
        enum class State : unsigned char { Unknown, Nothing, Value };

        float value = 0.0F;
        State state = State::Unknown;
    };

    /// Where a curve was sampled last among its segments.
    struct Place {
        const kaSegment* segment = nullptr;
        const kaSegment* end = nullptr; ///< behind the last one
    };

    /// The number under which the plan is told of an object that is neither a curve nor a leaf.
    static constexpr std::uint32_t NoPlace = 0xFFFFFFFF;
    static constexpr std::uint32_t RootPlace = 0xFFFFFFFE; ///< that of the evaluated object

    void remake(const kaAnimationObject& object);
    void readAgain();
    void readCurve(std::size_t curve);
    void readLeaf(Leaf& leaf) const;
    void readField(std::size_t curve);
    void forgetKeys(std::size_t curve);
    void readFields();
    kaCurveView& viewOf(std::size_t curve);
    void visit(const kaAnimationObject& top);
    void addLeaf(const kaAnimationObject& object);
    const kaSegment* findSegment(std::size_t curve, float frame);
    bool sampleInside(std::size_t curve, float frame, float& value);
    void sampleEnd(std::size_t curve, float frame, EndValue& end);

    std::vector<bool> _blurred;       ///< of each curve
    std::vector<kaSegment> _segments; ///< of each curve a copy of the one sampled last
    std::vector<Place> _places;
    std::vector<EndValue> _endValues; ///< of each curve at the begin and at the end
    /// Curves, then leaves, that have changed; there is room for all.
    std::vector<std::uint32_t> _touched;
    std::vector<bool> _isTouched;
    std::size_t& _gone;
    bool _orphaned = false;
    bool _told = false; ///< of the object's end; not after memory has run out
    bool _stale = true; ///< what is below has changed
    bool _rereadsAll =
        false; ///< some key list does not know its keys: after any edit all are asked for again
    bool _lacksCurves = false;  ///< an id below names no registered curve: one that comes may be it
    std::uint64_t _edits = 0;   ///< for `_rereadsAll`
    std::uint64_t _objects = 0; ///< the registry's epoch, for `_lacksCurves`
    std::uint64_t _fields = 0;  ///< the registry's epoch of fields
};

template <class Visit>
void kaEvaluationPlan::forEachPart(float frame, bool motionBlurOnly, Visit&& visit) const {
    for (const Leaf& leaf : leaves) {
        const float at =
            leaf.repeating ? kaFold(frame, leaf.object->getPlayBegin(), leaf.object->getPlayEnd()) : frame;
        if (motionBlurOnly) {
            if (leaf.begin <= frame && frame <= leaf.end)
                visit(Part::Running, leaf.begin, at, leaf);
        } else if (frame < leaf.begin) {
            visit(Part::Upcoming, leaf.end, at, leaf);
        } else {
            visit(frame <= leaf.end ? Part::Running : Part::Finished, leaf.begin, at, leaf);
        }
    }
}
