#include "kaEvaluation.h"

#include "kaAliveGuard.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationUtils.h"
#include "kaCurveView.h"
#include "kaEdits.h"
#include "kaEvaluationPlan.h"
#include "kaFieldAccess.h"
#include "kaObjectRegistry.h"

#include <algorithm>
#include <cmath>

namespace {

/// The span that repeating and ending go by.
struct Range {
    explicit Range(const kaAnimationObject& object) : lo(object.getPlayBegin()), hi(object.getPlayEnd()) {}

    float lo;
    float hi;
};

enum class Bucket { Finished, Running, Upcoming };

/// The curves of one object in one bucket, under one key and at one frame.
struct Run {
    float key;
    float frame;
    std::size_t first;
    std::size_t count;
};

/// Plans of objects that are not played any more are let go of with the next edit beyond this many.
constexpr std::size_t ManyPlans = 64;

bool byKey(const Run& a, const Run& b) {
    return a.key < b.key;
}

void sortByKey(std::vector<Run>& runs) {
    if (!std::is_sorted(runs.begin(), runs.end(), byKey))
        std::stable_sort(runs.begin(), runs.end(), byKey);
}

} // namespace

/// Buffers of one evaluation, kept for the next.
struct kaEvaluation::Scratch {
    struct Written {
        kaUID id;
        kaAnimationField* field;
    };

    std::vector<Run> finished;
    std::vector<Run> running;
    std::vector<Run> upcoming;
    std::vector<Written> written;
    /// Before this place among `written` the scene held all values when they were sampled.
    std::size_t firstNews = 0;

    std::vector<Run>& bucket(Bucket which) {
        return which == Bucket::Finished ? finished : (which == Bucket::Running ? running : upcoming);
    }
    void clear() {
        finished.clear();
        running.clear();
        upcoming.clear();
        written.clear();
        firstNews = 0;
    }

    void sort(const Plan& plan, float frame, bool motionBlurOnly);
    void sample(Plan& plan, std::size_t index, float frame);
    void sample(kaAnimationCurve2D* curve, float frame);
    void store(kaAnimationField* field, float value);
    void write();
};

/// The buffers of the current depth of evaluation, for as long as the lease lives.
class kaEvaluation::ScratchLease {
  public:
    explicit ScratchLease(kaEvaluation& evaluation) : _evaluation(evaluation) {
        if (evaluation._depth == evaluation._scratch.size())
            evaluation._scratch.push_back(std::make_unique<Scratch>());
        _scratch = evaluation._scratch[evaluation._depth].get();
        ++evaluation._depth;
        _scratch->clear();
    }
    ScratchLease(const ScratchLease&) = delete;
    ScratchLease& operator=(const ScratchLease&) = delete;
    ~ScratchLease() { --_evaluation._depth; }

    Scratch* operator->() const { return _scratch; }
    Scratch& operator*() const { return *_scratch; }

  private:
    kaEvaluation& _evaluation;
    Scratch* _scratch;
};

kaEvaluation::kaEvaluation() = default;
kaEvaluation::~kaEvaluation() = default;

float kaEvaluation::fold(float frame, float lo, float hi) {
    const float length = hi - lo;
    if (length == 0.0F)
        return lo;
    return static_cast<float>(static_cast<double>(frame) -
                              static_cast<double>(length) *
                                  static_cast<double>(std::floor((frame - lo) / length)));
}

bool kaEvaluation::computeCurveValue(kaAnimationCurve2D* curve, float frame, float& value) {
    return curve && curve->view().sample(frame, value);
}

kaEvaluation::Plan& kaEvaluation::planOf(const kaAnimationObject& object) {
    if (_plans.size() >= ManyPlans && _plansEdits != kaEdits::count) {
        _plans.clear();
        _plansEdits = kaEdits::count;
    }
    std::unique_ptr<Plan>& plan = _plans[&object];
    if (!plan)
        plan = std::make_unique<Plan>();
    plan->refresh(object);
    return *plan;
}

/// `visit(bucket, key, frame to sample at, leaf)` for every leaf that has a part at `frame`.
template <class Visit>
void kaEvaluation::visitLeaves(const Plan& plan, float frame, bool motionBlurOnly, Visit&& visit) {
    for (const Plan::Leaf& leaf : plan.leaves) {
        float at = frame;
        if (leaf.repeating) {
            const Range range(*leaf.object);
            at = fold(frame, range.lo, range.hi);
        }
        if (motionBlurOnly) {
            if (leaf.begin <= frame && frame <= leaf.end)
                visit(Bucket::Running, leaf.begin, at, leaf);
        } else if (frame < leaf.begin) {
            visit(Bucket::Upcoming, leaf.end, at, leaf);
        } else {
            visit(frame <= leaf.end ? Bucket::Running : Bucket::Finished, leaf.begin, at, leaf);
        }
    }
}

void kaEvaluation::collectCurvesWithFrame(kaAnimationObject* object, float frame,
                                          kaAnimationController::CurveFrames& finished,
                                          kaAnimationController::CurveFrames& running,
                                          kaAnimationController::CurveFrames& upcoming, bool motionBlurOnly) {
    if (!object)
        return;
    const Plan& plan = planOf(*object);
    visitLeaves(plan, frame, motionBlurOnly, [&](Bucket bucket, float key, float at, const Plan::Leaf& leaf) {
        auto& target =
            bucket == Bucket::Finished ? finished : (bucket == Bucket::Running ? running : upcoming);
        for (std::size_t i = leaf.first; i < leaf.first + leaf.count; ++i)
            if (!motionBlurOnly || plan.curves[i].motionBlur)
                target.emplace(key, std::make_pair(plan.curves[i].curve, at));
    });
}

void kaEvaluation::Scratch::sort(const Plan& plan, float frame, bool motionBlurOnly) {
    visitLeaves(plan, frame, motionBlurOnly,
                [this](Bucket which, float key, float at, const Plan::Leaf& leaf) {
                    bucket(which).push_back({key, at, leaf.first, leaf.count});
                });
    sortByKey(upcoming);
    sortByKey(finished);
    sortByKey(running);
}

void kaEvaluation::Scratch::store(kaAnimationField* field, float value) {
    if (!field)
        return;
    field->value = value;
    if (firstNews == written.size() && kaFieldAccess::sceneHolds(*field))
        ++firstNews;
    written.push_back({field->getId(), field});
}

void kaEvaluation::Scratch::sample(Plan& plan, std::size_t index, float frame) {
    plan.fetchAhead(index, frame);
    Plan::Curve& curve = plan.curves[index];
    float value = 0.0F;
    if (curve.active && curve.sample(frame, value))
        store(curve.field, value);
}

void kaEvaluation::Scratch::sample(kaAnimationCurve2D* curve, float frame) {
    kaCurveView& view = curve->view();
    float value = 0.0F;
    if (view.hasSpan() && view.sample(frame, value))
        store(curve->resolvedField(), value);
}

/// A store, and what the host does when it is announced, can change what another field addresses, so from the
/// first news on every value is compared again.
void kaEvaluation::Scratch::write() {
    const kaObjectRegistry& registry = kaAnimationManager::the()->registry();
    const std::uint64_t epoch = registry.fieldEpoch();
    constexpr std::size_t Step = 4;
    for (std::size_t i = firstNews; i < written.size(); ++i) {
        const bool unchanged = registry.fieldEpoch() == epoch;
        if (unchanged && i + 3 * Step < written.size()) {
            kaFieldAccess::fetchRecord(*written[i + 3 * Step].field);
            kaFieldAccess::fetchBinding(*written[i + 2 * Step].field);
            kaFieldAccess::fetchTarget(*written[i + Step].field);
        }
        kaAnimationUtils::setOSGFieldValue(unchanged ? written[i].field : registry.findField(written[i].id));
    }
}

bool kaEvaluation::evaluateObject(kaAnimationObject* object, float frame, bool motionBlurOnly) {
    if (!object)
        return true;
    const kaAliveGuard alive(*object);
    {
        const ScratchLease scratch(*this);
        Plan& plan = planOf(*object);
        scratch->sort(plan, frame, motionBlurOnly);
        const auto sample = [&](std::size_t index, float at) {
            if (!motionBlurOnly || plan.curves[index].motionBlur)
                scratch->sample(plan, index, at);
        };
        // Later writes win for a field that several curves drive: of the upcoming the nearest, then what has
        // ended, then what runs. The upcoming are walked backwards as a whole, those under one key included.
        for (auto run = scratch->upcoming.rbegin(); run != scratch->upcoming.rend(); ++run)
            for (std::size_t i = run->count; i > 0; --i)
                sample(run->first + i - 1, run->frame);
        for (const auto* runs : {&scratch->finished, &scratch->running})
            for (const Run& run : *runs)
                for (std::size_t i = 0; i < run.count; ++i)
                    sample(run.first + i, run.frame);
        scratch->write();
    }
    if (alive && !(frame == object->getLastFrame())) {
        const std::vector<kaAnimationSequence*> sequences = object->getSequencesRecursive();
        if (!sequences.empty())
            kaAnimationController::the()->evaluateSequences(sequences, frame);
        if (alive)
            object->setLastFrame(frame);
    }
    if (!alive)
        return true;
    const Range range(*object);
    const float reached = object->isRepeating() ? fold(frame, range.lo, range.hi) : frame;
    return object->isReversePlay() ? reached < range.lo : reached > range.hi;
}

void kaEvaluation::evaluateCurves(std::vector<kaAnimationCurve2D*> curves, float lo, float hi, float frame,
                                  bool motionBlurOnly) {
    const auto passedOver = [motionBlurOnly](const kaAnimationCurve2D* curve) {
        return !curve || !curve->isActive() || (motionBlurOnly && !curve->isMotionBlur());
    };
    curves.erase(std::remove_if(curves.begin(), curves.end(), passedOver), curves.end());
    float at = frame;
    at = at < lo ? lo : at;
    at = at > hi ? hi : at;
    const ScratchLease scratch(*this);
    std::stable_sort(curves.begin(), curves.end(), &kaAnimationUtils::sortBeginBased);
    for (auto curve = curves.rbegin(); curve != curves.rend(); ++curve)
        if ((*curve)->getBegin() > at)
            scratch->sample(*curve, (*curve)->getBegin());
    std::stable_sort(curves.begin(), curves.end(), &kaAnimationUtils::sortEndBased);
    for (kaAnimationCurve2D* curve : curves)
        if (curve->getEnd() < at)
            scratch->sample(curve, curve->getEnd());
    for (kaAnimationCurve2D* curve : curves)
        if (curve->getBegin() <= at && at <= curve->getEnd())
            scratch->sample(curve, at);
    scratch->write();
}
