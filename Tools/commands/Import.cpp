#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"
#include "commands/Faults.h"

#include <kaMotion/Saving.h>
#include <kaMotion/Text.h>
#include <memory>
#include <nlohmann/json.hpp>

namespace ka::tools {

namespace {

struct ImportCommandOptions {
    ProjectFiles files;
    SavedFiles outputs; ///< both empty: the report alone
    bool strict = false;
    bool asJson = false;
};

std::string reportAsJson(const ImportReport& report, const std::vector<std::string>& faults) {
    nlohmann::ordered_json document{{"framesPerSecond", shortened(report.framesPerSecond)},
                                    {"nodes", report.nodes},
                                    {"meshes", report.meshes},
                                    {"triangles", report.triangles},
                                    {"cameras", report.cameras},
                                    {"lights", report.lights},
                                    {"clips", report.clips},
                                    {"blocks", report.blocks},
                                    {"curves", report.curves},
                                    {"keys", report.keys},
                                    {"addedKeys", report.addedKeys},
                                    {"mergedKeys", report.mergedKeys},
                                    {"worstDifference", shortened(report.worstDifference)},
                                    {"worstCurve", report.worstCurve},
                                    {"worstFrame", shortened(report.worstFrame)},
                                    {"worstRotation", shortened(report.worstRotation)},
                                    {"worstRotationNode", report.worstRotationNode},
                                    {"rotationTolerance", report.rotationTolerance},
                                    {"unreachedSegments", report.unreachedSegments},
                                    {"faults", faults},
                                    {"findings", report.findings},
                                    {"notes", report.notes}};
    return document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

void sayReport(const ImportReport& report) {
    for (const std::string& note : report.notes)
        say(note);
    say(counted(report.nodes, "node") + ", " +
        (report.meshes == 0 ? std::string()
                            : counted(report.meshes, report.meshes == 1 ? "mesh" : "meshe") + " of " +
                                  counted(report.triangles, "triangle") + ", ") +
        (report.cameras == 0 ? std::string() : counted(report.cameras, "camera") + ", ") +
        (report.lights == 0 ? std::string() : counted(report.lights, "light") + ", ") +
        counted(report.clips, "clip") + ", " + counted(report.blocks, "block") + ", " +
        counted(report.curves, "curve") + ", " + counted(report.keys, "key"));
    say(report.worstCurve.empty()
            ? std::string("no curve differs from the source by more than the digits of a document")
            : "curves differ from the source by at most " + formatNumber(report.worstDifference, 2) +
                  " of their range: " + report.worstCurve + " at frame " + formatNumber(report.worstFrame));
    if (report.worstRotation > 0.0)
        say("converted rotations differ between keys by at most " + formatNumber(report.worstRotation, 2) +
            " degrees (" + report.worstRotationNode +
            "; asked for: " + formatNumber(report.rotationTolerance, 3) + "), for which " +
            counted(report.addedKeys, "key") + " had to be added");
}

ExitCode import(const ImportCommandOptions& options, Output& output) {
    const bool isKept = !options.outputs.scene.empty();
    if (isKept)
        checkNames(options.outputs);
    Terminal terminal;
    const Project project(options.files, terminal);
    std::vector<std::string> faults = project.report().faults;
    if (isKept)
        faults = allFaults(std::move(faults), save(project.root(), options.outputs, terminal));
    sayReport(project.report());
    const ExitCode found = sayFaults(faults);
    if (options.files.import.framesPerSecond == 0.0)
        say(formatNumber(project.framesPerSecond(), 6) + " frames a second, as the model has them");
    if (options.asJson)
        output.write(reportAsJson(project.report(), faults));
    return options.strict && project.report().findings > 0 ? ExitCode::Findings : found;
}

} // namespace

void addImportCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<ImportCommandOptions>();
    Command command(program, "import", "Turn a model's motion into editable curves");
    command.option("MODEL", options->files.file, "a .bvh, .gltf, .glb or any other model file").needed();
    const Command::Option scene =
        command.option("-o,--output", options->outputs.scene, "the scene to write (.osg)").takes("PATH");
    const Command::Option document =
        command.option("--animation", options->outputs.animation, "the animation document to write (.xml)")
            .takes("PATH");
    // One without the other would lose what the model holds.
    scene.needs(document);
    document.needs(scene);
    addModelOptions(command, options->files);
    command.flag("--strict", options->strict, "end with code 1 when the file holds damage");
    command.flag("--json", options->asJson, "print the report as JSON");
    command.examples({"ka-anim import walk.bvh -o walk.osg --animation walk.xml",
                      "ka-anim import walk.bvh --fps 30 --strict --json"},
                     "Without files to write it reports what an import makes of the model.");
    command.runs(action, [options](Output& output) { return import(*options, output); });
}

} // namespace ka::tools
