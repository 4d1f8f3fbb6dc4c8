#include "kaCurveSampling.h"

#include "kaAnimationCurve2D.h"
#include "kaCurveView.h"
#include "kaSegmentIteration.h"

#include <algorithm>

namespace {

/// Gathers samples of different segments until there are enough to be taken side by side.
class Samples {
  public:
    Samples(float* values, bool* written) : _values(values), _written(written) {}

    /// How many were written, once all are taken.
    std::size_t finish() {
        flush();
        return _count;
    }

    void add(const kaSegment& segment, float frame, std::size_t place) {
        _segments[_waiting] = &segment;
        _frames[_waiting] = frame;
        _places[_waiting] = place;
        if (++_waiting == Most)
            flush();
    }

    /// Many frames of one segment, whose places follow each other.
    void addMany(const kaSegment& segment, const float* frames, std::size_t count, std::size_t place) {
        bool written[Most];
        for (std::size_t i = 0; i < count; i += Most) {
            const std::size_t part = std::min(Most, count - i);
            kaSegmentIteration::sampleMany(segment, frames + i, part, _values + place + i, written);
            for (std::size_t k = 0; k < part; ++k)
                note(place + i + k, written[k]);
        }
    }

    void addOne(kaCurveView& view, float frame, std::size_t place) {
        note(place, view.sample(frame, _values[place]));
    }

    /// @param isWritten  of a value that is in its place, or stays out of it.
    void note(std::size_t place, bool isWritten) {
        if (_written)
            _written[place] = isWritten;
        _count += isWritten ? 1 : 0;
    }

  private:
    static constexpr std::size_t Most = 32;

    void flush() {
        float values[Most];
        bool written[Most];
        kaSegmentIteration::sampleEach(_segments, _frames, _waiting, values, written);
        for (std::size_t i = 0; i < _waiting; ++i) {
            if (written[i])
                _values[_places[i]] = values[i];
            note(_places[i], written[i]);
        }
        _waiting = 0;
    }

    float* _values;
    bool* _written;
    std::size_t _count = 0;
    const kaSegment* _segments[Most];
    float _frames[Most];
    std::size_t _places[Most];
    std::size_t _waiting = 0;
};

/// Fewer frames of one segment than this share their registers with those of others.
constexpr std::size_t Run = 4;

} // namespace

std::size_t kaCurveSampling::sample(kaAnimationCurve2D* curve, const float* frames, std::size_t count,
                                    float* values, bool* written) {
    Samples samples(values, written);
    kaCurveView* view = curve ? &curve->view() : nullptr;
    for (std::size_t i = 0; i < count;) {
        const kaSegment* segment = view ? view->segmentAt(frames[i]) : nullptr;
        if (!segment || !segment->isIterated()) {
            if (view)
                samples.addOne(*view, frames[i], i);
            else
                samples.note(i, false);
            ++i;
            continue;
        }
        std::size_t end = i + 1;
        while (end < count && segment->holds(frames[end]))
            ++end;
        if (end - i >= Run)
            samples.addMany(*segment, frames + i, end - i, i);
        else
            for (std::size_t k = i; k < end; ++k)
                samples.add(*segment, frames[k], k);
        i = end;
    }
    return samples.finish();
}

std::size_t kaCurveSampling::sample(kaAnimationCurve2D* const* curves, std::size_t count, float frame,
                                    float* values, bool* written) {
    Samples samples(values, written);
    for (std::size_t i = 0; i < count; ++i) {
        if (!curves[i]) {
            samples.note(i, false);
            continue;
        }
        kaCurveView& view = curves[i]->view();
        const kaSegment* segment = view.segmentAt(frame);
        if (segment && segment->isIterated())
            samples.add(*segment, frame, i);
        else
            samples.addOne(view, frame, i);
    }
    return samples.finish();
}
