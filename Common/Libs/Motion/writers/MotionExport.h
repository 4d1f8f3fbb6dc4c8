#pragma once

#include "kaMotion/Project.h"
#include "writers/ChannelSampling.h"

#include <string>
#include <vector>

class kaAnimationObject;

namespace ka::motion {

/// Describes a project's scene and animation as plain data that writers take: every node at and below the
/// top, and one take for each of `objects`; those that are no clips share one.
///
/// Curves of a field that nothing else drives are taken as they are (@see sampleVector). What repeats, and a
/// field that several curves drive, is evaluated twice a frame over the object's span. Attributes other than
/// translation, rotation and scale are left out and told in the notes. The scene's values count as the rest
/// transform, so an export should precede evaluation.
Motion describeMotion(const Project& project, const std::vector<kaAnimationObject*>& objects,
                      const SamplingOptions& options, ExportReport& report);

} // namespace ka::motion
