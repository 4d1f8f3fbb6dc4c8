#include "kaMotion/Exporting.h"

#include "kaMotion/CurveChoice.h"
#include "kaMotion/CurveTable.h"
#include "kaMotion/Failure.h"
#include "kaMotion/Pose.h"
#include "kaMotion/Text.h"
#include "writers/BvhWriter.h"
#include "writers/GltfWriter.h"
#include "writers/MotionExport.h"
#include "writers/SceneNodes.h"

#include <algorithm>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationScene.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <limits>

namespace ka::motion {

namespace {

constexpr double mostNumbers = 1e8;

/// What digits leave of a whole frame is no frame more.
constexpr double sameFrame = 1e-3;

/// The frames to sample.
std::vector<double> framesOf(const std::vector<kaAnimationObject*>& objects, const ExportOptions& options,
                             std::size_t numbersPerFrame) {
    const auto [begin, end] = frameRange(objects);
    const double from = options.from.value_or(std::floor(static_cast<double>(begin) + sameFrame));
    const double to = options.to.value_or(std::ceil(static_cast<double>(end) - sameFrame));
    if (to < from)
        throw Failure(ExitCode::Usage,
                      "no frame lies between " + formatNumber(from) + " and " + formatNumber(to));
    // Steps are counted, not added up, so that a thousand steps of 0.1 end where they should.
    const double count = std::floor((to - from) / options.step + 1e-9) + 1;
    if (count * static_cast<double>(std::max<std::size_t>(numbersPerFrame, 1)) > mostNumbers)
        throw Failure(ExitCode::Usage, "more than a hundred million numbers");
    std::vector<double> frames;
    for (double i = 0; i < count; ++i)
        frames.push_back(from + i * options.step);
    return frames;
}

ExportedFile exportGltf(const Project& project, const std::vector<kaAnimationObject*>& objects,
                        const ExportOptions& options, bool isBinary) {
    ExportedFile file;
    const Motion motion = describeMotion(project, objects, options.sampling, file.report);
    WrittenGltf written = writeGltf(motion, isBinary);
    file.bytes = std::move(written.bytes);
    auto& notes = file.report.notes;
    notes.insert(notes.end(), written.notes.begin(), written.notes.end());
    if (written.mergedKeys > 0)
        notes.push_back(counted(written.mergedKeys, "key") +
                        " left out because times in single precision cannot tell them apart");
    return file;
}

Vec3 vec(const std::array<float, 3>& v) {
    return {static_cast<double>(v[0]), static_cast<double>(v[1]), static_cast<double>(v[2])};
}

ExportedFile exportBvh(const Project& project, const std::vector<kaAnimationObject*>& objects,
                       const ExportOptions& options) {
    ExportedFile file;
    SceneNodes scene = describeNodes(project.root());
    const std::vector<double> frames = framesOf(objects, options, 6 * scene.nodes.size());
    SampledMotion motion;
    motion.nodes = std::move(scene.nodes);
    motion.secondsPerFrame = options.step / options.sampling.framesPerSecond;
    for (const double frame : frames) {
        evaluate(objects, static_cast<float>(frame));
        std::vector<SampledMotion::Pose> poses;
        for (const NodePose& pose : readPose(scene.sources))
            poses.push_back({vec(pose.position), vec(pose.rotation)});
        motion.frames.push_back(std::move(poses));
    }
    WrittenBvh written = writeBvh(motion, {options.order});
    file.bytes = std::move(written.text);
    file.frames = frames.size();
    file.report.nodes = motion.nodes.size();
    file.report.notes = std::move(written.notes);
    file.report.notes.insert(file.report.notes.end(), scene.notes.begin(), scene.notes.end());
    return file;
}

ExportedFile exportTable(const std::vector<kaAnimationObject*>& objects, const ExportOptions& options,
                         bool isText) {
    ExportedFile file;
    const CurveList curves = curvesBelow(objects);
    CurveTable table;
    table.framesPerSecond = options.sampling.framesPerSecond;
    table.frames = framesOf(objects, options, curves.size());
    for (const kaAnimationCurve2D* curve : curves) {
        table.columns.push_back({curveLabel(curve), curveUnit(curve)});
        file.report.keys += curve->getPoints().size();
    }
    table.values.reserve(table.frames.size() * curves.size());
    for (const double frame : table.frames)
        for (kaAnimationCurve2D* curve : curves) {
            float value = std::numeric_limits<float>::quiet_NaN();
            // As in playback, a curve keeps its first and last value outside of its span.
            const float held = std::clamp(static_cast<float>(frame),
                                          std::min(curve->getBegin(), curve->getEnd()), curve->getEnd());
            kaAnimationController::the()->computeCurveValue(curve, held, value);
            table.values.push_back(value);
        }
    file.report.curves = curves.size();
    file.frames = table.frames.size();
    file.bytes = isText ? csvOf(table) : npzOf(table);
    return file;
}

} // namespace

std::vector<kaAnimationObject*> exportedObjects() {
    std::vector<kaAnimationObject*> objects;
    for (kaAnimationStrip* clip : kaAnimationScene::clips())
        objects.push_back(clip);
    for (kaAnimationUnit* block : kaAnimationManager::the()->getSceneUnits())
        objects.push_back(block);
    return objects;
}

std::optional<ExportKind> exportKind(const std::string& path) {
    const std::string extension = extensionOf(path);
    if (extension == "glb")
        return ExportKind::Glb;
    if (extension == "gltf")
        return ExportKind::Gltf;
    if (extension == "bvh")
        return ExportKind::Bvh;
    if (extension == "csv")
        return ExportKind::Csv;
    if (extension == "npz")
        return ExportKind::Npz;
    return std::nullopt;
}

ExportedFile exportAs(ExportKind kind, const Project& project, const std::vector<kaAnimationObject*>& objects,
                      const ExportOptions& options) {
    switch (kind) {
    case ExportKind::Bvh:
        return exportBvh(project, objects, options);
    case ExportKind::Csv:
    case ExportKind::Npz:
        return exportTable(objects, options, kind == ExportKind::Csv);
    default:
        return exportGltf(project, objects, options, kind == ExportKind::Glb);
    }
}

} // namespace ka::motion
