#include "kaEvaluation.h"

#include "kaAliveGuard.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationUtils.h"
#include "kaChildList.h"
#include "kaCurveView.h"
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

/// The curves that one object contributes to one bucket, all under one key and at one frame.
struct Run {
    float key;
    float frame;
    const std::vector<kaAnimationCurve2D*>* curves;
};

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
    std::vector<const kaAnimationObject*> path;
    std::vector<Written> written;

    std::vector<Run>& bucket(Bucket which) {
        return which == Bucket::Finished ? finished : (which == Bucket::Running ? running : upcoming);
    }
    void clear() {
        finished.clear();
        running.clear();
        upcoming.clear();
        path.clear();
        written.clear();
    }

    void sample(kaAnimationCurve2D* curve, float frame);
    void sampleClamped(kaAnimationCurve2D* curve, float frame);
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

/// Visits what an object reaches at a frame, containers down to the objects that hold curves.
class kaEvaluation::Walk {
  public:
    Walk(std::vector<const kaAnimationObject*>& path, float frame, bool motionBlurOnly)
        : _path(path), _frame(frame), _motionBlurOnly(motionBlurOnly) {}

    /// `visit(bucket, key, frame to sample at, curves)`
    template <class Visit>
    void visit(const kaAnimationObject& object, Visit&& visit) {
        if (object.getTypeID() <= KA_TYPE_UNIT) {
            visitLeaf(object, visit);
            return;
        }
        // A host can bend child lists into a ring; each object is entered once on the way down.
        if (_path.size() >= KA_MAX_DEPTH || std::find(_path.begin(), _path.end(), &object) != _path.end())
            return;
        _path.push_back(&object);
        if (const kaChildList* children = object.childrenOrNull())
            children->forEach([&](const kaAnimationObject& child) { this->visit(child, visit); });
        _path.pop_back();
    }

  private:
    template <class Visit>
    void visitLeaf(const kaAnimationObject& object, Visit&& visit) {
        const Range range(object);
        const float begin = object.getBegin();
        const float end = object.getEnd();
        const float frame = object.isRepeating() ? fold(_frame, range.lo, range.hi) : _frame;
        const auto& curves = object.resolvedCurves();
        if (_motionBlurOnly) {
            if (begin <= _frame && _frame <= end)
                visit(Bucket::Running, begin, frame, curves);
        } else if (_frame < begin) {
            visit(Bucket::Upcoming, end, frame, curves);
        } else {
            visit(_frame <= end ? Bucket::Running : Bucket::Finished, begin, frame, curves);
        }
    }

    std::vector<const kaAnimationObject*>& _path;
    float _frame;
    bool _motionBlurOnly;
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

void kaEvaluation::collectCurvesWithFrame(kaAnimationObject* object, float frame,
                                          kaAnimationController::CurveFrames& finished,
                                          kaAnimationController::CurveFrames& running,
                                          kaAnimationController::CurveFrames& upcoming, bool motionBlurOnly) {
    if (!object)
        return;
    std::vector<const kaAnimationObject*> path;
    Walk(path, frame, motionBlurOnly)
        .visit(
            *object, [&](Bucket bucket, float key, float at, const std::vector<kaAnimationCurve2D*>& curves) {
                auto& target =
                    bucket == Bucket::Finished ? finished : (bucket == Bucket::Running ? running : upcoming);
                for (kaAnimationCurve2D* curve : curves)
                    if (!motionBlurOnly || curve->isMotionBlur())
                        target.emplace(key, std::make_pair(curve, at));
            });
}

void kaEvaluation::Scratch::sample(kaAnimationCurve2D* curve, float frame) {
    kaCurveView& view = curve->view();
    float value = 0.0F;
    if (!view.hasSpan() || !view.sample(frame, value))
        return;
    kaAnimationField* field = curve->resolvedField();
    if (!field)
        return;
    field->value = value;
    written.push_back({field->getId(), field});
}

/// Before its begin and after its end a curve that does not repeat is held.
void kaEvaluation::Scratch::sampleClamped(kaAnimationCurve2D* curve, float frame) {
    if (!curve->isActive())
        return;
    float at = frame;
    if (!curve->isRepeating()) {
        if (frame < curve->getBegin())
            at = curve->getBegin();
        else if (frame > curve->getEnd())
            at = curve->getEnd();
    }
    sample(curve, at);
}

void kaEvaluation::Scratch::write() {
    const kaObjectRegistry& registry = kaAnimationManager::the()->registry();
    const std::uint64_t epoch = registry.fieldEpoch();
    for (const Written& entry : written) {
        kaAnimationField* field = registry.fieldEpoch() == epoch ? entry.field : registry.findField(entry.id);
        kaAnimationUtils::setOSGFieldValue(field);
    }
}

bool kaEvaluation::evaluateObject(kaAnimationObject* object, float frame, bool motionBlurOnly) {
    if (!object)
        return true;
    const kaAliveGuard alive(*object);
    {
        const ScratchLease scratch(*this);
        Walk(scratch->path, frame, motionBlurOnly)
            .visit(*object, [&](Bucket bucket, float key, float at, const auto& curves) {
                if (!curves.empty())
                    scratch->bucket(bucket).push_back({key, at, &curves});
            });
        const auto sample = [&](kaAnimationCurve2D* curve, float at) {
            if (!motionBlurOnly || curve->isMotionBlur())
                scratch->sampleClamped(curve, at);
        };
        sortByKey(scratch->upcoming);
        sortByKey(scratch->finished);
        sortByKey(scratch->running);
        // Later writes win for a field that several curves drive: of the upcoming the nearest, then what has
        // ended, then what runs. The upcoming are walked backwards as a whole, those under one key included.
        for (auto run = scratch->upcoming.rbegin(); run != scratch->upcoming.rend(); ++run)
            for (auto curve = run->curves->rbegin(); curve != run->curves->rend(); ++curve)
                sample(*curve, run->frame);
        for (const auto* runs : {&scratch->finished, &scratch->running})
            for (const Run& run : *runs)
                for (kaAnimationCurve2D* curve : *run.curves)
                    sample(curve, run.frame);
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
