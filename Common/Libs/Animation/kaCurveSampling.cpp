#include "kaCurveSampling.h"

#include "kaAnimationCurve2D.h"
#include "kaCurveView.h"
#include "kaSegmentIteration.h"

#include <algorithm>

namespace {

/// Gathers samples of segments, whose places follow each other, until there are enough to be taken side by
/// side.
class Samples {
  public:
    static constexpr std::size_t Most = 64;

    /// @param values, written  the places, counted from 0; `written` may be null.
    Samples(float* values, bool* written) : _values(values), _written(written) {}

    /// How many were written, once all are taken.
    std::size_t finish() {
        flush();
        return _count;
    }

    void add(const kaSegment& segment, float frame) {
        _segments[_waiting] = &segment;
        _frames[_waiting] = frame;
        if (++_waiting == Most)
            flush();
    }

    void addOne(kaCurveView& view, float frame) {
        flush();
        note(view.sample(frame, _values[_done]));
    }

    void addNone() {
        flush();
        note(false);
    }

  private:
    void note(bool isWritten) {
        if (_written)
            _written[_done] = isWritten;
        _count += isWritten ? 1 : 0;
        ++_done;
    }

    void flush() {
        bool own[Most];
        bool* written = _written ? _written + _done : own;
        kaSegmentIteration::sampleEach(_segments, _frames, _waiting, _values + _done, written);
        _count += static_cast<std::size_t>(std::count(written, written + _waiting, true));
        _done += _waiting;
        _waiting = 0;
    }

    float* _values;
    bool* _written;
    std::size_t _done = 0; ///< places
    std::size_t _count = 0;
    const kaSegment* _segments[Most];
    float _frames[Most];
    std::size_t _waiting = 0;
};

/// Goes along the segments of packed keys while frames do so, and else looks every frame up.
class Cursor {
  public:
    explicit Cursor(const kaCurveView& view) : _view(view) {}

    const kaSegment* segmentAt(float frame) {
        if (_follows) {
            if (_segment->contains(frame))
                return _segment;
            if (_segment + 1 < _view.segmentsEnd() && _segment[1].contains(frame))
                return ++_segment;
        }
        const kaSegment* former = _segment;
        _segment = _view.packedSegmentAt(frame);
        _follows = _segment && former && (_segment == former || _segment == former + 1);
        return _segment;
    }

  private:
    const kaCurveView& _view;
    const kaSegment* _segment = nullptr;
    bool _follows = false;
};

} // namespace

std::size_t kaCurveSampling::sample(kaAnimationCurve2D* curve, const float* frames, std::size_t count,
                                    float* values, bool* written) {
    Samples samples(values, written);
    if (!curve) {
        for (std::size_t i = 0; i < count; ++i)
            samples.addNone();
        return samples.finish();
    }
    kaCurveView& view = curve->view();
    Cursor cursor(view);
    for (std::size_t i = 0; i < count; ++i) {
        if (const kaSegment* segment = view.isPacked() ? cursor.segmentAt(frames[i]) : nullptr)
            samples.add(*segment, frames[i]);
        else
            samples.addOne(view, frames[i]);
    }
    return samples.finish();
}

std::size_t kaCurveSampling::sample(kaAnimationCurve2D* const* curves, std::size_t count, float frame,
                                    float* values, bool* written) {
    Samples samples(values, written);
    for (std::size_t i = 0; i < count; ++i) {
        if (!curves[i]) {
            samples.addNone();
            continue;
        }
        kaCurveView& view = curves[i]->view();
        if (const kaSegment* segment = view.isPacked() ? view.segmentAt(frame) : nullptr)
            samples.add(*segment, frame);
        else
            samples.addOne(view, frame);
    }
    return samples.finish();
}
