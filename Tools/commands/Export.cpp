#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"

#include <algorithm>
#include <kaMotion/Exporting.h>
#include <kaMotion/Text.h>
#include <memory>
#include <nlohmann/json.hpp>

namespace ka::tools {

namespace {

struct ExportCommandOptions {
    ProjectFiles files;
    std::string output;
    std::string object;
    std::string order = "ZYX";
    ExportOptions how;
    bool asJson = false;
};

EulerOrder orderOf(const std::string& word) {
    EulerOrder order{};
    std::string sorted = word;
    std::sort(sorted.begin(), sorted.end());
    if (sorted != "XYZ")
        throw Failure(ExitCode::Usage,
                      "--order takes X, Y and Z, each once, not '" + oneLine(word, 20) + "'");
    std::transform(word.begin(), word.end(), order.begin(), [](char axis) { return axis - 'X'; });
    return order;
}

std::vector<kaAnimationObject*> chosenObjects(const Project& project, const ExportCommandOptions& options,
                                              ExportKind kind, std::vector<std::string>& notes) {
    const std::vector<kaAnimationObject*> all = exportedObjects();
    if (!options.object.empty() || kind == ExportKind::Csv || kind == ExportKind::Npz ||
        kind == ExportKind::Bvh) {
        std::vector<kaAnimationObject*> chosen = project.playable(options.object);
        if (options.object.empty() && chosen.size() < all.size())
            notes.push_back("the file holds one animation: " + counted(all.size() - chosen.size(), "clip") +
                            " left out (choose with --object)");
        return chosen;
    }
    return all;
}

void sayReport(const ExportedFile& file, const std::string& output, double tolerance) {
    for (const std::string& note : file.report.notes)
        say(note);
    const SamplingReport& channels = file.report.channels;
    if (channels.keys > 0) {
        say(counted(channels.exact, "segment") + " kept as they are, " + std::to_string(channels.resampled) +
            " resampled to " + formatNumber(tolerance, 3) + " degrees: " + counted(channels.keys, "key") +
            ", rotations off by at most " + formatNumber(channels.worstRotation, 2) +
            " degrees, other values by " + formatNumber(channels.worstPart, 2) + " of their range");
        if (channels.jumps > 0)
            say(counted(channels.jumps, "end") +
                " of holds among other segments became steep lines of 1/512 frame");
        if (channels.unreached > 0)
            say(counted(channels.unreached, "piece") + " beyond the tolerance cannot be split further");
    }
    if (file.frames > 0)
        say(counted(file.frames, "frame") + " sampled");
    say("wrote " + output);
}

std::string reportAsJson(const ExportedFile& file) {
    const SamplingReport& channels = file.report.channels;
    const nlohmann::ordered_json document{{"bytes", file.bytes.size()},
                                          {"nodes", file.report.nodes},
                                          {"curves", file.report.curves},
                                          {"sourceKeys", file.report.keys},
                                          {"frames", file.frames},
                                          {"keys", channels.keys},
                                          {"exactSegments", channels.exact},
                                          {"resampledSegments", channels.resampled},
                                          {"jumps", channels.jumps},
                                          {"unreached", channels.unreached},
                                          {"worstRotation", shortened(channels.worstRotation)},
                                          {"worstPart", shortened(channels.worstPart)},
                                          {"notes", file.report.notes}};
    return document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

ExitCode exportMotion(const ExportCommandOptions& options, Output& output) {
    const std::optional<ExportKind> kind = exportKind(options.output);
    if (!kind)
        throw Failure(ExitCode::Usage, "exports are .glb, .gltf, .bvh, .csv or .npz files, not " +
                                           printedPath(options.output));
    ExportOptions how = options.how;
    how.order = orderOf(options.order);
    // The other half is left to whoever turns quaternions into angles again.
    how.sampling.tolerance = options.files.import.rotationTolerance / 2;
    const Project project(options.files);
    how.sampling.framesPerSecond = project.framesPerSecond();
    std::vector<std::string> notes = project.report().notes;
    const auto objects = chosenObjects(project, options, *kind, notes);
    ExportedFile file = exportAs(*kind, project, objects, how);
    file.report.notes.insert(file.report.notes.begin(), notes.begin(), notes.end());
    replaceFile(options.output, file.bytes);
    sayReport(file, options.output, how.sampling.tolerance);
    if (options.asJson)
        output.write(reportAsJson(file));
    return file.report.channels.unreached > 0 ? ExitCode::Findings : ExitCode::Fine;
}

} // namespace

void addExportCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<ExportCommandOptions>();
    Command command(program, "export", "Hand a motion on as glTF, BVH, CSV or NumPy");
    addProjectOptions(command, options->files);
    addOutputOption(command, options->output, "the file to write: .glb, .gltf, .bvh, .csv or .npz");
    addObjectOption(command, options->object);
    command.option("--order", options->order, "BVH: order of the rotation channels")
        .takes("AXES")
        .showsDefault();
    command.option("--from", options->how.from, "BVH and tables: first frame (default: the object's own)")
        .finite();
    command.option("--to", options->how.to, "BVH and tables: last frame (default: the object's own)")
        .finite();
    command.option("--step", options->how.step, "BVH and tables: frames from sample to sample")
        .aboveZero()
        .showsDefault();
    command.flag("--json", options->asJson, "print the report as JSON");
    command.examples(
        {"ka-anim export walk.osg --animation walk.xml -o walk.glb",
         "ka-anim export walk.fbx --fps 30 -o walk.bvh --order ZXY", "ka-anim export walk.bvh -o walk.npz"},
        "glTF gets an animation for each clip. Curves that glTF cannot hold as they are get more keys: "
        "rotations stay within half of --tolerance, which leaves the other half to a reader that turns "
        "them into angles again, other values within the same angle, in radians, of the distance that "
        "they cover.");
    command.runs(action, [options](Output& output) { return exportMotion(*options, output); });
}

} // namespace ka::tools
