#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"
#include "commands/Faults.h"

#include <kaMotion/NodeChoice.h>
#include <kaMotion/SceneFiles.h>
#include <kaMotion/SceneUpgrade.h>
#include <kaMotion/Text.h>
#include <memory>
#include <nlohmann/json.hpp>

namespace ka::tools {

namespace {

struct UpgradeOptions {
    ProjectFiles files;
    SavedFiles outputs;
    std::string camera;
    TextFormat format = TextFormat::Text;
    bool strict = false;
};

using Json = nlohmann::ordered_json;

/// What one kind of older container is called, how many there were, and what they became.
struct Line {
    const char* kind;
    std::size_t found;
    const char* becomes;
    std::size_t made;
};

std::vector<Line> linesOf(const UpgradeReport& report) {
    const OlderContent& found = report.found;
    const kaImportReport& made = report.made;
    return {{"clip", found.clips, "clip", made.clips},
            {"track", found.tracks, "track", made.tracks},
            {"block", found.blocks, "block", made.blocks + made.cameraBlocks},
            {"sequence", found.sequences, "sequence", made.sequences},
            {"curve", found.curves, "curve", made.curves},
            {"control point", found.points, "key", made.keys}};
}

std::string reportAsText(const UpgradeReport& report) {
    std::string text;
    for (const Line& line : linesOf(report)) {
        const std::string found = counted(line.found, line.kind);
        text += found + std::string(found.size() < 20 ? 20 - found.size() : 1, ' ') + "became " +
                counted(line.made, line.becomes) + "\n";
    }
    if (!report.camera.empty())
        text += counted(report.made.cameraBlocks, "block") + " of the camera went to '" +
                oneLine(report.camera) + "'\n";
    for (const UpgradedNode& node : report.nodes)
        text += "'" + oneLine(node.path) + "': " + counted(node.blocks, "block") + ", " +
                counted(node.curves, "curve") + ", " + counted(node.keys, "key") + "\n";
    if (report.found.overlaid > 0)
        text += "left out: " + counted(report.found.overlaid, "control point") +
                ": a later one of the curve has the same frame\n";
    for (const kaImportReport::LeftOut& entry : report.made.leftOut)
        text += "left out: " + entry.kind + " '" + oneLine(utf8FromLatin1(entry.name)) +
                "': " + kaImportReport::text(entry.reason) + "\n";
    const std::size_t more = report.made.leftOutCount - report.made.leftOut.size();
    return more == 0 ? text : text + "left out: " + std::to_string(more) + " more\n";
}

std::string reportAsJson(const UpgradeReport& report) {
    const OlderContent& older = report.found;
    const kaImportReport& import = report.made;
    const Json found{{"nodes", older.nodes},   {"clips", older.clips},         {"tracks", older.tracks},
                     {"blocks", older.blocks}, {"sequences", older.sequences}, {"curves", older.curves},
                     {"points", older.points}, {"overlaid", older.overlaid}};
    const Json made{{"nodes", import.nodes},
                    {"clips", import.clips},
                    {"tracks", import.tracks},
                    {"blocks", import.blocks + import.cameraBlocks},
                    {"cameraBlocks", import.cameraBlocks},
                    {"sequences", import.sequences},
                    {"curves", import.curves},
                    {"keys", import.keys}};
    Json nodes = Json::array(), leftOut = Json::array();
    for (const UpgradedNode& node : report.nodes)
        nodes.push_back(
            {{"path", node.path}, {"blocks", node.blocks}, {"curves", node.curves}, {"keys", node.keys}});
    for (const kaImportReport::LeftOut& entry : report.made.leftOut)
        leftOut.push_back({{"kind", entry.kind},
                           {"name", utf8FromLatin1(entry.name)},
                           {"reason", kaImportReport::text(entry.reason)}});
    const Json document{{"found", found},
                        {"made", made},
                        {"camera", report.camera.empty() ? Json() : Json(report.camera)},
                        {"nodes", nodes},
                        {"leftOutCount", import.leftOutCount},
                        {"leftOut", leftOut}};
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

ExitCode upgrade(const UpgradeOptions& options, Output& output) {
    checkNames(options.outputs);
    if (!isScene(options.files.file))
        throw unreadable(options.files.file, "not a scene (.osg)");
    Terminal terminal;
    const Project project(options.files, terminal);
    for (const std::string& note : project.report().notes)
        say(note);
    const osg::NodePtr top = topOf(project.root());
    const osg::NodePtr camera = options.camera.empty() ? firstCamera(top) : chosenNode(top, options.camera);
    const UpgradeReport report = upgradeScene(top, camera, terminal);
    const std::vector<std::string> faults = save(project.root(), options.outputs, terminal);
    output.write(options.format == TextFormat::Json ? reportAsJson(report) : reportAsText(report));
    if (report.found.nodes == 0)
        say(options.files.file + " carries no older animation: there was nothing to convert");
    const ExitCode found = sayFaults(faults);
    return options.strict && report.made.leftOutCount + report.found.overlaid > 0 ? ExitCode::Findings
                                                                                  : found;
}

} // namespace

void addUpgradeCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<UpgradeOptions>();
    Command command(program, "upgrade",
                    "Convert the animation that an older scene carries inside itself into a document");
    command.option("OLD", options->files.file, "a scene (.osg) of an older version").needed();
    addSceneOutputs(command, options->outputs, "--animation");
    command
        .option("--camera", options->camera,
                "the node that takes the old camera's animation (default: the first camera)")
        .takes("NODE");
    addTextFormatOption(command, options->format);
    command.flag("--strict", options->strict, "end with code 1 when anything was left out");
    command.examples({"ka-anim upgrade door.osg -o new.osg --animation new.xml",
                      "ka-anim upgrade door.osg -o new.osg --animation new.xml --strict --format json"});
    command.runs(action, [options](Output& output) { return upgrade(*options, output); });
}

} // namespace ka::tools
