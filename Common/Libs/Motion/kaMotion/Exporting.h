#pragma once

#include <kaMotion/ExportReport.h>
#include <kaMotion/Project.h>
#include <kaMotion/Rotation.h>
#include <optional>
#include <string>

#pragma GCC visibility push(default)
namespace ka::motion {

/// The kinds of file that a motion can be handed on as.
enum class ExportKind { Glb, Gltf, Bvh, Csv, Npz };

/// How a file is made.
struct ExportOptions {
    SamplingOptions sampling;      ///< for glTF; its frame rate counts for all
    EulerOrder order = sceneOrder; ///< of the rotation channels of BVH
    std::optional<double>
        from; ///< frame, for all but glTF; else the last whole one at or before the objects' begin
    std::optional<double> to; ///< frame, for all but glTF; else the first whole one at or after their end
    double step = 1.0;        ///< frames from sample to sample, for all but glTF
};

/// What an export without a choice of objects takes: every clip by name, and the blocks that stand by
/// themselves.
std::vector<kaAnimationObject*> exportedObjects();

/// The kind that a file's extension stands for; nothing for another one.
std::optional<ExportKind> exportKind(const std::string& path);

/// A file that is ready to be written, and what it cannot hold.
struct ExportedFile {
    std::string bytes;      ///< the whole of it
    ExportReport report;    ///< what it holds and lacks
    std::size_t frames = 0; ///< that were sampled; none for glTF
};

/// Makes a file of what is registered. Evaluates the objects: except for glTF, the scene is left at the last
/// frame.
/// @param kind  of the file.
/// @param project  what is open.
/// @param objects  for BVH, csv and npz evaluated together; glTF makes an animation of each clip.
/// @param options  how.
/// @throws Failure (Usage) for more than a hundred million numbers, (Unreadable) when nothing moves and the
/// kind holds nothing else.
ExportedFile exportAs(ExportKind kind, const Project& project, const std::vector<kaAnimationObject*>& objects,
                      const ExportOptions& options);

} // namespace ka::motion
#pragma GCC visibility pop
