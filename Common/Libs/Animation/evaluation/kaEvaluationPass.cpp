#include "kaEvaluationPass.h"

#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaCurveView.h"
#include "kaEdits.h"
#include "kaEvaluationPlan.h"
#include "kaFieldAccess.h"
#include "kaFieldBinding.h"
#include "kaObjectRegistry.h"
#include "kaSceneAccess.h"
#include "kaSegment.h"
#include "kaSegmentIteration.h"

#include <algorithm>
#include <cstring>

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
    _waiting = 0;
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
            sampleCurve(plan, run->first + i - 1, run->frame);
    for (const std::vector<Run>* runs : {&_finished, &_running})
        for (const Run& run : *runs)
            for (std::size_t i = 0; i < run.count; ++i)
                sampleCurve(plan, run.first + i, run.frame);
    flush(plan);
}

/// Samples, or finds the segment to be sampled with others, and asks for the memory of what is looked at when
/// the value is stored.
inline void kaEvaluationPass::sampleCurve(kaEvaluationPlan& plan, std::size_t curve, float frame) {
    const kaEvaluationPlan::Curve& planned = plan.curves[curve];
    if (!planned.field || (_motionBlurOnly && !plan.isMotionBlur(curve)))
        return;
    __builtin_prefetch(planned.field, 1);
    planned.cache.fetchNumber();
    Sampled& sampled = _block[_inBlock];
    sampled.curve = static_cast<std::uint32_t>(curve);
    if (const kaSegment* segment = planned.isInside(frame) ? plan.segmentAt(curve, frame) : nullptr) {
        _segments[_waiting] = segment;
        _frames[_waiting] = frame;
        _places[_waiting] = static_cast<std::uint32_t>(_inBlock);
        ++_waiting;
    } else if (!plan.sample(curve, frame, sampled.value)) {
        return;
    }
    if (++_inBlock == Block)
        flush(plan);
}

void kaEvaluationPass::flush(kaEvaluationPlan& plan) {
    std::array<float, Block> values;
    std::array<bool, Block> written;
    kaSegmentIteration::sampleEach(_segments.data(), _frames.data(), _waiting, values.data(), written.data());
    for (std::size_t i = 0; i < _waiting; ++i) {
        Sampled& sampled = _block[_places[i]];
        sampled.value = values[i];
        if (!written[i])
            sampled.curve = NoCurve;
    }
    _waiting = 0;
    const osg::FieldContainerStore& containers = kaSceneAccess::store();
    for (std::size_t i = 0; i < _inBlock; ++i)
        if (_block[i].curve != NoCurve)
            store(plan, _block[i], containers);
    _inBlock = 0;
}

inline void kaEvaluationPass::store(kaEvaluationPlan& plan, const Sampled& sampled,
                                    const osg::FieldContainerStore& containers) {
    kaEvaluationPlan::Curve& curve = plan.curves[sampled.curve];
    kaAnimationField& field = *curve.field;
    if (!sameBits(field.value, sampled.value)) // memory that stays clean need not be written back
        field.value = sampled.value;
    if (!_written.empty() || !curve.cache.serves(field, containers) || curve.cache.differs(field))
        _written.push_back({field.getId(), &field, sampled.curve});
}

void kaEvaluationPass::sample(kaAnimationCurve2D& curve, float frame) {
    kaCurveView& view = curve.view();
    kaAnimationField* field = curve.resolvedField();
    if (!field || !view.hasSpan())
        return;
    if (const kaSegment* segment = view.isPacked() ? view.segmentAt(frame) : nullptr) {
        _segments[_waiting] = segment;
        _frames[_waiting] = frame;
        _fields[_waiting] = field;
        if (++_waiting == Block)
            flushFields();
        return;
    }
    flushFields();
    float value = 0.0F;
    if (view.sample(frame, value))
        store(*field, value);
}

/// What was sampled beside any plan.
void kaEvaluationPass::flushFields() {
    std::array<float, Block> values;
    std::array<bool, Block> written;
    kaSegmentIteration::sampleEach(_segments.data(), _frames.data(), _waiting, values.data(), written.data());
    for (std::size_t i = 0; i < _waiting; ++i)
        if (written[i])
            store(*_fields[i], values[i]);
    _waiting = 0;
}

void kaEvaluationPass::store(kaAnimationField& field, float value) {
    field.value = value;
    _written.push_back({field.getId(), &field, NoCurve});
}

inline void kaEvaluationPass::fetch(const kaEvaluationPlan* plan, std::size_t place) const {
    if (place + Ahead >= _written.size())
        return;
    const Written& written = _written[place + Ahead];
    __builtin_prefetch(written.field);
    if (plan && written.curve != NoCurve)
        plan->curves[written.curve].cache.fetch();
    else
        kaFieldBinding::fetch(*written.field);
}

/// A store, and what the host does when it is announced, can change what another field addresses, so every
/// value is compared again. Once the object model has been edited, which includes fields that come or go, the
/// plan is left alone and fields are found by id.
void kaEvaluationPass::write(kaEvaluationPlan* plan) {
    flushFields();
    const kaObjectRegistry& registry = kaObjectRegistry::the();
    const osg::FieldContainerStore& containers = kaSceneAccess::store();
    const std::uint64_t edits = kaEdits::count;
    for (std::size_t i = 0; i < _written.size(); ++i) {
        const Written written = _written[i];
        if (kaEdits::count != edits) {
            if (kaAnimationField* field = registry.findField(written.id))
                kaFieldAccess::write(*field);
            continue;
        }
        fetch(plan, i);
        kaFieldCache* cache = written.curve != NoCurve ? &plan->curves[written.curve].cache : nullptr;
        if (cache && cache->serves(*written.field, containers))
            cache->write(*written.field, containers);
        else
            kaFieldAccess::write(*written.field);
    }
}
