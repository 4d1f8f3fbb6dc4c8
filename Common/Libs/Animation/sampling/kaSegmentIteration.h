#pragma once

#include "kaSegment.h"

#include <cstddef>
#include <string>

/// The iteration that gives most samples: of one segment or of many, in vector registers as wide as the
/// processor's, for which the code is chosen when the program runs.
///
/// The environment variable `KA_VECTOR_TARGET` names the instruction set to use instead (`targetNames`);
/// samples are the same floats with each.
namespace kaSegmentIteration {

/// `kaSegmentFormula::sample`.
bool sample(const kaSegment& segment, float frame, float& value);

/// The same where the iteration leaves no doubt. @return whether `value` was written.
bool sampleWithoutFormula(const kaSegment& segment, float frame, float& value);

/// `count` samples, of `segments[i]` at `frames[i]`: segments of any kind, many of them the same or none.
/// Where nothing is written the value is left alone. @param written whether each was, as of `sample`.
void sampleEach(const kaSegment* const* segments, const float* frames, std::size_t count, float* values,
                bool* written);

/// The instruction sets that this processor and this build have, the best one first, separated by blanks.
std::string targetNames();
/// That in use.
const char* targetName();
/// Uses the one of that name from now on; null: the one that the variable names, else the best. @return
/// whether there is one.
bool setTarget(const char* name);

} // namespace kaSegmentIteration
