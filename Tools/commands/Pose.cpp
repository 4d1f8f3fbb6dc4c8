#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"

#include <kaMotion/Pose.h>
#include <kaMotion/Text.h>
#include <memory>
#include <nlohmann/json.hpp>

namespace ka::tools {

namespace {

struct PoseOptions {
    ProjectFiles files;
    std::string object;
    double frame = 0.0;
    Format format = Format::Json;
};

using Json = nlohmann::ordered_json;

Json triple(const std::array<float, 3>& v) {
    return Json::array({shortened(static_cast<double>(v[0])), shortened(static_cast<double>(v[1])),
                        shortened(static_cast<double>(v[2]))});
}

std::string asJson(double frame, const std::vector<NodePose>& poses) {
    Json nodes = Json::array();
    for (const NodePose& pose : poses)
        nodes.push_back({{"name", pose.name},
                         {"translation", triple(pose.translation)},
                         {"rotation", triple(pose.rotation)},
                         {"scale", triple(pose.scale)},
                         {"position", triple(pose.position)}});
    const Json document{{"frame", frame}, {"nodes", nodes}};
    return document.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

/// Quoted where a comma, a quote or a line break would be taken for structure.
std::string csvText(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == text.npos)
        return text;
    std::string quoted = "\"";
    for (const char c : text)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

std::string asCsv(double frame, const std::vector<NodePose>& poses) {
    std::string text = "frame,name,translationX,translationY,translationZ,rotationX,rotationY,rotationZ,"
                       "scaleX,scaleY,scaleZ,positionX,positionY,positionZ\n";
    for (const NodePose& pose : poses) {
        text += formatNumber(frame) + "," + csvText(pose.name);
        for (const auto* part : {&pose.translation, &pose.rotation, &pose.scale, &pose.position})
            for (const float value : *part)
                text += "," + formatNumber(static_cast<double>(value));
        text += "\n";
    }
    return text;
}

ExitCode pose(const PoseOptions& options, Output& output) {
    Terminal terminal;
    const Project project(options.files, terminal);
    evaluate(project.playable(options.object), static_cast<float>(options.frame));
    const std::vector<NodePose> poses = readPose(project.placedNodes());
    output.write(options.format == Format::Json ? asJson(options.frame, poses) : asCsv(options.frame, poses));
    return ExitCode::Fine;
}

} // namespace

void addPoseCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<PoseOptions>();
    Command command(program, "pose", "Print how every node stands at one frame");
    addProjectOptions(command, options->files);
    command.option("--frame", options->frame, "the frame").finite().needed();
    addObjectOption(command, options->object);
    addFormatOption(command, options->format);
    command.examples({"ka-anim pose walk.bvh --frame 12.5", "ka-anim pose walk.bvh --frame 0 --format csv"});
    command.runs(action, [options](Output& output) { return pose(*options, output); });
}

} // namespace ka::tools
