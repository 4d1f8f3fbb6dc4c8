#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"

#include <chrono>
#include <filesystem>
#include <kaMotion/Canvas.h>
#include <kaMotion/Pictures.h>
#include <kaMotion/Text.h>
#include <memory>

namespace ka::tools {

namespace {

struct DemoOptions {
    ProjectFiles files;
    std::string folder = "out";
};

struct Playback {
    std::size_t frames = 0;
    double seconds = 0.0;
};

/// Every whole frame of the objects, one after the other.
Playback playThrough(const std::vector<kaAnimationObject*>& objects) {
    const auto [begin, end] = frameRange(objects);
    Progress progress("playing");
    Playback playback;
    const auto start = std::chrono::steady_clock::now();
    for (float frame = begin; frame <= end; frame += 1.0F) {
        evaluate(objects, frame);
        ++playback.frames;
        progress.set(static_cast<std::size_t>(frame - begin), static_cast<std::size_t>(end - begin));
    }
    playback.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return playback;
}

std::string summary(const ImportReport& report, const Playback& playback, double framesPerSecond) {
    const double length = static_cast<double>(playback.frames) / framesPerSecond;
    const double perSecond =
        playback.seconds > 0.0 ? static_cast<double>(playback.frames) / playback.seconds : 0.0;
    const auto line = [](const char* what, const std::string& value) {
        return std::string(what) + std::string(14 - std::string(what).size(), ' ') + value + "\n";
    };
    return line("nodes", std::to_string(report.nodes)) + line("curves", std::to_string(report.curves)) +
           line("keys", std::to_string(report.keys)) +
           line("frames", std::to_string(playback.frames) + " (" + formatNumber(length, 3) + " s at " +
                              formatNumber(framesPerSecond, 4) + " frames a second)") +
           line("evaluations",
                formatNumber(std::round(perSecond), 6) + " frames a second, " +
                    formatNumber(std::round(perSecond * static_cast<double>(report.curves)), 6) +
                    " curves a second");
}

void write(const std::filesystem::path& path, const QImage& image) {
    replaceFile(path.string(), pngBytes(image));
    say("wrote " + path.string());
}

ExitCode demo(const DemoOptions& options, Output& output) {
    Terminal terminal;
    const Project project(options.files, terminal);
    const auto objects = project.playable("");
    const Playback playback = playThrough(objects);
    const double fps = project.framesPerSecond();
    output.write(summary(project.report(), playback, fps));
    std::error_code error;
    std::filesystem::create_directories(options.folder, error);
    if (error)
        throw Failure(ExitCode::OutputFailed, options.folder + ": " + error.message());
    const auto [begin, end] = frameRange(objects);
    const std::filesystem::path folder(options.folder), model(options.files.file);
    const QString name = QString::fromStdString(model.filename().string());
    write(folder / "curves.png",
          plotCurves(name + ": some of its curves", tellingCurves(curvesBelow(objects)), {begin, end, fps},
                     {1600, 900}, false));
    write(folder / "figure.png", renderFigure(name + ": twelve frames", project, objects, {begin, end, fps},
                                              12, {1600, sheetHeight(1600, 12)}));
    return ExitCode::Fine;
}

} // namespace

void addDemoCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<DemoOptions>();
    options->files.file = "/usr/share/assimp/models/BVH/01_03.bvh";
    Command command(program, "demo", "Import a motion capture, play it and draw it");
    command.option("FILE", options->files.file, "a model").showsDefault();
    addModelOptions(command, options->files);
    command.option("-o,--output", options->folder, "the folder for the pictures")
        .takes("PATH")
        .showsDefault();
    command.examples({"ka-anim demo walk.bvh", "ka-anim demo walk.bvh --fps 30 -o pictures"});
    command.runs(action, [options](Output& output) { return demo(*options, output); });
}

} // namespace ka::tools
