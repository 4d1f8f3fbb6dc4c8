#include "kaSegment.h"

#include "kaSegmentFormula.h"

static_assert(sizeof(kaSegment) == 64, "one cache line");

bool kaSampleSegment(const kaSegmentPoints& points, float frame, float& value) {
    return kaSegmentFormula::sample(points, frame, value);
}
