#include "kaEvaluation.h"

#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaCurveView.h"
#include "kaEdits.h"
#include "kaEvaluationPass.h"
#include "kaEvaluationPlan.h"
#include "kaFold.h"
#include "kaObjectGroup.h"
#include "kaWeak.h"

#include <algorithm>

namespace {

/// The span that repeating and ending go by.
struct Range {
    explicit Range(const kaAnimationObject& object) : lo(object.getPlayBegin()), hi(object.getPlayEnd()) {}

    float lo;
    float hi;
};

/// Nothing for null.
void fetchLines(const void* address, std::size_t bytes) {
    constexpr std::size_t Line = 64;
    const auto* first = static_cast<const char*>(address);
    for (std::size_t i = 0; first && i < bytes; i += Line)
        __builtin_prefetch(first + i, 1);
}

/// No plan is let go of below this many.
constexpr std::size_t ManyPlans = 64;

} // namespace

/// The pass of the current depth of evaluation, for as long as the lease lives.
class kaEvaluation::PassLease {
  public:
    explicit PassLease(kaEvaluation& evaluation) : _evaluation(evaluation) {
        if (evaluation._depth == evaluation._passes.size())
            evaluation._passes.push_back(std::make_unique<kaEvaluationPass>());
        _pass = evaluation._passes[evaluation._depth].get();
        ++evaluation._depth;
        _pass->clear();
    }
    PassLease(const PassLease&) = delete;
    PassLease& operator=(const PassLease&) = delete;
    ~PassLease() { --_evaluation._depth; }

    kaEvaluationPass* operator->() const { return _pass; }

  private:
    kaEvaluation& _evaluation;
    kaEvaluationPass* _pass;
};

kaEvaluation::kaEvaluation(SequenceSink sequences) : _plansAtSweep(ManyPlans), _sequences(sequences) {}
kaEvaluation::~kaEvaluation() = default;

bool kaEvaluation::computeCurveValue(kaAnimationCurve2D* curve, float frame, float& value) {
    return curve && curve->view().sample(frame, value);
}

kaEvaluationPlan& kaEvaluation::planOf(const kaAnimationObject& object) {
    if (_depth == 0 && (_orphans > 0 || _plans.size() >= _plansAtSweep))
        sweepPlans();
    kaEvaluationPlan* kept = keptPlanOf(object);
    kaEvaluationPlan& found = kept ? *kept : madePlanOf(object);
    keepPlanOf(object, nullptr); // should memory run out
    found.refresh(object);
    keepPlanOf(object, &found);
    found.lastUse = ++_uses;
    return found;
}

/// Found without a look-up where the object has room for its address.
kaEvaluationPlan* kaEvaluation::keptPlanOf(const kaAnimationObject& object) {
    return object._group ? object._group->plan : nullptr;
}

kaEvaluationPlan& kaEvaluation::madePlanOf(const kaAnimationObject& object) {
    std::unique_ptr<kaEvaluationPlan>& plan = _plans[&object];
    if (!plan)
        plan = std::make_unique<kaEvaluationPlan>(_orphans);
    return *plan;
}

void kaEvaluation::keepPlanOf(const kaAnimationObject& object, kaEvaluationPlan* plan) {
    if (object._group)
        object._group->plan = plan;
}

/// Lets go of the plans of objects that have gone or that memory ran out for, and of those that were not used
/// while each of the others was used twice: their objects are not played any more.
void kaEvaluation::sweepPlans() {
    const std::uint64_t recent = 2 * static_cast<std::uint64_t>(_plans.size());
    for (auto plan = _plans.begin(); plan != _plans.end();) {
        const auto current = plan++;
        const kaEvaluationPlan* found = current->second.get();
        if (found && !found->isOrphaned() && _uses - found->lastUse <= recent)
            continue;
        if (found && found->hasObject())
            keepPlanOf(*current->first, nullptr);
        _plans.erase(current);
    }
    _orphans = 0;
    _plansAtSweep = std::max(ManyPlans, 2 * _plans.size());
}

void kaEvaluation::fetchObject(const void* address) {
    fetchLines(address, sizeof(kaAnimationObject));
}

void kaEvaluation::fetch(const kaAnimationObject& object, std::size_t step) {
    const kaAnimationObject::Group* group = object._group.get();
    const kaEvaluationPlan* plan = step < 3 ? keptPlanOf(object) : nullptr;
    if (step == 3 && group) {
        __builtin_prefetch(&group->sequences);
        __builtin_prefetch(&group->playback, 1);
        __builtin_prefetch(&group->children);
    } else if (step == 2 && group) {
        fetchLines(group->playback.get(), sizeof(*group->playback));
        fetchLines(plan, sizeof(*plan));
    } else if (plan) {
        __builtin_prefetch(plan->leaves.data());
        __builtin_prefetch(plan->curves.data());
    }
}

void kaEvaluation::collectCurvesWithFrame(kaAnimationObject* object, float frame, CurveFrames& finished,
                                          CurveFrames& running, CurveFrames& upcoming, bool motionBlurOnly) {
    if (!object)
        return;
    using Part = kaEvaluationPlan::Part;
    const kaEvaluationPlan& plan = planOf(*object);
    plan.forEachPart(
        frame, motionBlurOnly, [&](Part part, float key, float at, const kaEvaluationPlan::Leaf& leaf) {
            auto& target = part == Part::Finished ? finished : (part == Part::Running ? running : upcoming);
            for (std::size_t i = leaf.first; i < leaf.first + leaf.count; ++i)
                if (!motionBlurOnly || plan.isMotionBlur(i))
                    target.emplace(key, std::make_pair(plan.objects[i], at));
        });
}

bool kaEvaluation::evaluateObject(kaAnimationObject* object, float frame, bool motionBlurOnly) {
    if (!object)
        return true;
    const kaWeak<kaAnimationObject> alive(*object);
    {
        kaEvaluationPlan& plan = planOf(*object);
        const PassLease pass(*this);
        pass->sample(plan, frame, motionBlurOnly);
        pass->write(&plan);
    }
    if (alive && !(frame == object->getLastFrame())) {
        const std::vector<kaAnimationSequence*> sequences = object->getSequencesRecursive();
        if (!sequences.empty())
            _sequences(sequences, frame);
        if (alive)
            object->setLastFrame(frame);
    }
    if (!alive)
        return true;
    const Range range(*object);
    const float reached = object->isRepeating() ? kaFold(frame, range.lo, range.hi) : frame;
    return object->isReversePlay() ? reached < range.lo : reached > range.hi;
}

namespace {

/// A curve with what it is ordered by.
struct TimedCurve {
    float begin;
    float end;
    kaAnimationCurve2D* curve;
};

/// Equal and incomparable ones stay in their order.
template <class Before>
void sortStably(std::vector<TimedCurve>& curves, Before&& before) {
    if (!std::is_sorted(curves.begin(), curves.end(), before))
        std::stable_sort(curves.begin(), curves.end(), before);
}

/// How far ahead of its use a curve is asked for.
constexpr std::size_t CurvesAhead = 12;

std::vector<TimedCurve> timedCurves(const std::vector<kaAnimationCurve2D*>& curves, bool motionBlurOnly) {
    std::vector<TimedCurve> timed;
    timed.reserve(curves.size());
    for (std::size_t i = 0; i < curves.size(); ++i) {
        if (i + CurvesAhead < curves.size())
            fetchLines(curves[i + CurvesAhead], sizeof(kaAnimationCurve2D));
        kaAnimationCurve2D* curve = curves[i];
        if (curve && curve->isActive() && (!motionBlurOnly || curve->isMotionBlur()))
            timed.push_back({curve->getBegin(), curve->getEnd(), curve});
    }
    return timed;
}

} // namespace

/// Asks for what sampling the curves from `place` on will read.
void kaEvaluation::fetchCurves(const kaAnimationCurve2D* soon, const kaAnimationCurve2D* next) {
    fetchLines(soon, soon ? sizeof(*soon) : 0);
    if (!next)
        return;
    fetchLines(next->_view.get(), sizeof(kaCurveView));
    fetchLines(next->_resolvedField, sizeof(kaAnimationField));
}

void kaEvaluation::evaluateCurves(const std::vector<kaAnimationCurve2D*>& curves, float lo, float hi,
                                  float frame, bool motionBlurOnly) {
    std::vector<TimedCurve> timed = timedCurves(curves, motionBlurOnly);
    float at = frame;
    at = at < lo ? lo : at;
    at = at > hi ? hi : at;
    const PassLease pass(*this);
    const auto ahead = [&timed](std::size_t place) {
        return place < timed.size() ? timed[place].curve : nullptr;
    };
    sortStably(timed, [](const TimedCurve& a, const TimedCurve& b) { return a.begin < b.begin; });
    for (auto one = timed.rbegin(); one != timed.rend(); ++one)
        if (one->begin > at)
            pass->sample(*one->curve, one->begin);
    sortStably(timed, [](const TimedCurve& a, const TimedCurve& b) { return a.end < b.end; });
    for (const TimedCurve& one : timed)
        if (one.end < at)
            pass->sample(*one.curve, one.end);
    for (std::size_t i = 0; i < timed.size(); ++i) {
        fetchCurves(ahead(i + CurvesAhead), ahead(i + CurvesAhead / 2));
        if (timed[i].begin <= at && at <= timed[i].end)
            pass->sample(*timed[i].curve, at);
    }
    pass->write(nullptr);
}
