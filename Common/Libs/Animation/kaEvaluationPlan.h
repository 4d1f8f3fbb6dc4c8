#pragma once

#include "kaAnimationTypes.h"
#include "kaCurveView.h"
#include "kaEvaluation.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class kaAnimationField;

/// What evaluating one object reads of everything below it, side by side in the order of the walk, so that a
/// frame of an unedited clip touches no object but the fields. Made anew after any edit of the object model
/// (`kaEdits`).
class kaEvaluation::Plan {
  public:
    /// An object that holds curves (a block, a curve), which are all sampled at one frame.
    struct Leaf {
        const kaAnimationObject* object;
        float begin;
        float end;
        std::size_t first; ///< of its curves among all
        std::size_t count;
        bool repeating;
    };

    struct Curve {
        /// What sampling where the curve is held gives.
        enum class Held : unsigned char { Unknown, Nothing, Value };

        /// Samples at a frame that is held to the curve's extent unless the curve repeats.
        /// @return whether `value` was written.
        bool sample(float frame, float& value) {
            if (isInside(frame))
                return sampleView(frame, value);
            const std::size_t side = frame < begin ? 0 : 1;
            if (held[side] == Held::Unknown)
                hold(side);
            value = heldValue[side];
            return held[side] == Held::Value;
        }

        bool isInside(float frame) const { return repeating || !(frame < begin || frame > end); }

        kaAnimationCurve2D* curve;
        kaCurveView* view;
        kaAnimationField* field; ///< null when the curve's field is not registered
        float begin;
        float end;
        float heldValue[2]; ///< at the begin, at the end
        Held held[2];
        bool active;
        bool repeating;
        bool motionBlur;

      private:
        void hold(std::size_t side);
        bool sampleView(float frame, float& value) const {
            return view->hasSpan() && view->sample(frame, value);
        }
    };

    /// Brings the plan up to date. Cost: a compare, or after an edit a walk of everything below the object.
    void refresh(const kaAnimationObject& object);

    /// Starts fetching from memory what sampling and writing the curves after the one at `index` will touch.
    void fetchAhead(std::size_t index, float frame) const;

    std::vector<Leaf> leaves;
    std::vector<Curve> curves;

  private:
    void visit(const kaAnimationObject& object);
    void addLeaf(const kaAnimationObject& object);

    std::vector<const kaAnimationObject*> _path;
    std::uint64_t _edits = 0;
};
