#include "kaEvaluationPass.h"

#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaCurveView.h"
#include "kaEdits.h"
#include "kaEvaluationPlan.h"
#include "kaFieldAccess.h"
#include "kaObjectRegistry.h"
#include "kaSegment.h"
#include "kaSegmentIteration.h"

#include <algorithm>
#include <cstring>

/// Gathers steps until there are as many as are sampled at a time.
class kaEvaluationPass::SideBySide {
  public:
    void add(const kaSegment& segment, Step& step) {
        _segments[_count] = &segment;
        _frames[_count] = step.number;
        _steps[_count] = &step;
        if (++_count == Side)
            finish();
    }

    void finish() {
        float values[Side];
        bool written[Side];
        kaSegmentIteration::sampleEach(_segments, _frames, _count, values, written);
        for (std::size_t i = 0; i < _count; ++i) {
            _steps[i]->number = values[i];
            if (!written[i])
                _steps[i]->curve = NoCurve;
        }
        _count = 0;
    }

  private:
    static constexpr std::size_t Side = 8;

    const kaSegment* _segments[Side];
    float _frames[Side];
    Step* _steps[Side];
    std::size_t _count = 0;
};

namespace {

/// How far ahead of a write its memory is asked for.
constexpr std::size_t Ahead = 8;

bool sameBits(float a, float b) {
    return std::memcmp(&a, &b, sizeof(a)) == 0;
}

} // namespace

void kaEvaluationPass::clear() {
    _finished.clear();
    _running.clear();
    _upcoming.clear();
    _inBlock = 0;
    _written.clear();
}

/// Later writes win for a field that several curves drive: of the upcoming the nearest, then what has ended,
/// then what runs. The upcoming are walked backwards as a whole, those under one key included.
void kaEvaluationPass::arrange(const kaEvaluationPlan& plan, float frame, bool motionBlurOnly) {
    using Part = kaEvaluationPlan::Part;
    plan.forEachPart(
        frame, motionBlurOnly, [this](Part part, float key, float at, const kaEvaluationPlan::Leaf& leaf) {
            std::vector<Run>& runs =
                part == Part::Finished ? _finished : (part == Part::Running ? _running : _upcoming);
            runs.push_back({key, at, leaf.first, leaf.count});
        });
    const auto byKey = [](const Run& a, const Run& b) { return a.key < b.key; };
    for (std::vector<Run>* runs : {&_upcoming, &_finished, &_running})
        if (!std::is_sorted(runs->begin(), runs->end(), byKey))
            std::stable_sort(runs->begin(), runs->end(), byKey);
}

void kaEvaluationPass::sample(kaEvaluationPlan& plan, float frame, bool motionBlurOnly) {
    _motionBlurOnly = motionBlurOnly;
    arrange(plan, frame, motionBlurOnly);
    for (auto run = _upcoming.rbegin(); run != _upcoming.rend(); ++run)
        for (std::size_t i = run->count; i > 0; --i)
            add(plan, run->first + i - 1, run->frame);
    for (const std::vector<Run>* runs : {&_finished, &_running})
        for (const Run& run : *runs)
            for (std::size_t i = 0; i < run.count; ++i)
                add(plan, run.first + i, run.frame);
    flush(plan);
}

inline void kaEvaluationPass::add(kaEvaluationPlan& plan, std::size_t curve, float frame) {
    _block[_inBlock] = {static_cast<std::uint32_t>(curve), frame};
    if (++_inBlock == _block.size())
        flush(plan);
}

void kaEvaluationPass::flush(kaEvaluationPlan& plan) {
    sampleBlock(plan);
    for (std::size_t i = 0; i < _inBlock; ++i)
        if (_block[i].curve != NoCurve)
            store(plan, _block[i]);
    _inBlock = 0;
}

/// Asks for the memory of the whole block before it touches any.
void kaEvaluationPass::sampleBlock(kaEvaluationPlan& plan) {
    const bool comparing = _written.empty();
    for (std::size_t i = 0; i < _inBlock; ++i) {
        Step& step = _block[i];
        const kaEvaluationPlan::Curve& curve = plan.curves[step.curve];
        if (!curve.active || !curve.field || (_motionBlurOnly && !curve.motionBlur)) {
            step.curve = NoCurve;
            continue;
        }
        __builtin_prefetch(curve.field, 1);
        if (comparing)
            curve.glance.fetchNumber();
        if (curve.isInside(step.number))
            plan.fetchSegment(step.curve, step.number);
    }
    SideBySide sides;
    for (std::size_t i = 0; i < _inBlock; ++i)
        if (_block[i].curve != NoCurve)
            sample(plan, _block[i], sides);
    sides.finish();
}

inline void kaEvaluationPass::sample(kaEvaluationPlan& plan, Step& step, SideBySide& sides) {
    const kaSegment* segment =
        plan.curves[step.curve].isInside(step.number) ? plan.segmentAt(step.curve, step.number) : nullptr;
    if (segment && segment->isIterated())
        sides.add(*segment, step);
    else if (!plan.sample(step.curve, step.number, step.number))
        step.curve = NoCurve;
}

inline void kaEvaluationPass::store(kaEvaluationPlan& plan, const Step& step) {
    kaEvaluationPlan::Curve& curve = plan.curves[step.curve];
    kaAnimationField& field = *curve.field;
    if (!sameBits(field.value, step.number)) // memory that stays clean need not be written back
        field.value = step.number;
    if (!_written.empty() || !curve.glance.serves(field) || curve.glance.differs(field))
        _written.push_back({field.getId(), &field, step.curve});
}

void kaEvaluationPass::sample(kaAnimationCurve2D& curve, float frame) {
    kaCurveView& view = curve.view();
    kaAnimationField* field = curve.resolvedField();
    float value = 0.0F;
    if (!field || !view.hasSpan() || !view.sample(frame, value))
        return;
    field->value = value;
    _written.push_back({field->getId(), field, NoCurve});
}

inline void kaEvaluationPass::fetch(const kaEvaluationPlan& plan, std::size_t place) const {
    if (place + Ahead >= _written.size())
        return;
    const Written& written = _written[place + Ahead];
    __builtin_prefetch(written.field);
    if (written.curve != NoCurve)
        plan.curves[written.curve].glance.fetch();
}

/// A store, and what the host does when it is announced, can change what another field addresses, so every
/// value is compared again. Once the object model has been edited, which includes fields that come or go, the
/// plan is left alone and fields are found by id.
void kaEvaluationPass::write(kaEvaluationPlan* plan) {
    const kaObjectRegistry& registry = kaObjectRegistry::the();
    const std::uint64_t edits = kaEdits::count;
    for (std::size_t i = 0; i < _written.size(); ++i) {
        const Written written = _written[i];
        if (kaEdits::count != edits) {
            if (kaAnimationField* field = registry.findField(written.id))
                kaFieldAccess::write(*field);
            continue;
        }
        if (plan)
            fetch(*plan, i);
        kaFieldGlance* glance = written.curve != NoCurve ? &plan->curves[written.curve].glance : nullptr;
        if (glance && glance->serves(*written.field))
            glance->write(*written.field);
        else
            kaFieldAccess::write(*written.field);
    }
}
