#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"

#include <algorithm>
#include <filesystem>
#include <kaAnimationCurve2D.h>
#include <kaMotion/Canvas.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Pictures.h>
#include <kaMotion/Text.h>
#include <memory>
#include <optional>

namespace ka::tools {

namespace {

struct PictureOptions {
    ProjectFiles files;
    std::vector<std::string> curves;
    std::string object, output;
    std::optional<double> from, to;
    bool withHandles = false;
    int count = 12;
    int width = 1600, height = 0;
};

PictureRange rangeOf(const PictureOptions& options, const std::vector<kaAnimationObject*>& objects) {
    const auto [begin, end] = frameRange(objects);
    return {static_cast<float>(options.from.value_or(static_cast<double>(begin))),
            static_cast<float>(options.to.value_or(static_cast<double>(end))),
            options.files.import.framesPerSecond};
}

/// Before the work: what cannot come out well is refused.
void check(const PictureOptions& options) {
    const std::string extension = extensionOf(options.output);
    if (!extension.empty() && extension != "png")
        throw Failure(ExitCode::Usage, "pictures are written to .png files, not " + oneLine(options.output));
}

/// @throws Failure (Usage) where the range ends before it begins.
PictureRange checkedRange(const PictureOptions& options, const std::vector<kaAnimationObject*>& objects) {
    const PictureRange range = rangeOf(options, objects);
    if (range.from > range.to)
        throw Failure(ExitCode::Usage, "frame " + formatNumber(static_cast<double>(range.from)) +
                                           " to begin with lies behind frame " +
                                           formatNumber(static_cast<double>(range.to)) + " to end with");
    return range;
}

bool hasAnyIn(const CurveList& curves, const PictureRange& range) {
    return std::any_of(curves.begin(), curves.end(), [&range](const kaAnimationCurve2D* curve) {
        return curve->getChildCount() > 0 && curve->getBegin() <= range.to && curve->getEnd() >= range.from;
    });
}

QString titleOf(const PictureOptions& options) {
    const QString file =
        QString::fromStdString(std::filesystem::path(options.files.file).filename().string());
    return options.object.empty() ? file : file + ": " + QString::fromStdString(options.object);
}

ExitCode plot(const PictureOptions& options) {
    check(options);
    Terminal terminal;
    const Project project(options.files, terminal);
    const auto objects = project.playable(options.object);
    CurveList curves = curvesBelow(objects);
    curves = options.curves.empty() ? tellingCurves(curves) : chooseCurves(curves, options.curves);
    const PictureRange range = checkedRange(options, objects);
    if (!hasAnyIn(curves, range))
        throw Failure(ExitCode::Findings, options.files.file +
                                              ": there is nothing to draw: no curve has a key " +
                                              "or a value between the first frame and the last");
    const QSize size(options.width, options.height > 0 ? options.height : options.width * 9 / 16);
    const QImage image = plotCurves(titleOf(options), curves, range, size, options.withHandles);
    replaceFile(options.output, pngBytes(image));
    say("wrote " + options.output);
    return ExitCode::Fine;
}

ExitCode render(const PictureOptions& options) {
    check(options);
    Terminal terminal;
    const Project project(options.files, terminal);
    const auto objects = project.playable(options.object);
    const QSize size(options.width,
                     options.height > 0 ? options.height : sheetHeight(options.width, options.count));
    const QImage image =
        renderFigure(titleOf(options), project, objects, checkedRange(options, objects), options.count, size);
    replaceFile(options.output, pngBytes(image));
    say("wrote " + options.output);
    return ExitCode::Fine;
}

void addPictureOptions(Command& command, PictureOptions& options) {
    addProjectOptions(command, options.files);
    addOutputOption(command, options.output, "the PNG file to write");
    addObjectOption(command, options.object);
    command.option("--from", options.from, "first frame").finite();
    command.option("--to", options.to, "last frame").finite();
    command.option("--width", options.width, "pixels").between(320, 16384).showsDefault();
    command.option("--height", options.height, "pixels (default: by the width)").between(240, 16384);
}

} // namespace

void addPlotCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<PictureOptions>();
    Command command(program, "plot", "Draw curves over time into a PNG file");
    addPictureOptions(command, *options);
    command
        .option("--curve", options->curves,
                "a curve by id, name, node or label; repeatable (default: a telling few)")
        .takes("NAME");
    command.flag("--handles", options->withHandles, "draw the handles of the keys too");
    command.examples(
        {"ka-anim plot walk.bvh -o curves.png",
         "ka-anim plot walk.bvh -o hips.png --curve Hips.translationY --from 0 --to 20 --handles"});
    command.runs(action, [options](Output&) { return plot(*options); });
}

void addRenderCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<PictureOptions>();
    Command command(program, "render", "Draw the figure at several frames into a PNG file");
    addPictureOptions(command, *options);
    command.option("--count", options->count, "how many frames to draw").between(1, 400).showsDefault();
    command.examples({"ka-anim render walk.bvh -o figure.png",
                      "ka-anim render walk.bvh -o steps.png --from 0 --to 20 --count 8 --width 1200"});
    command.runs(action, [options](Output&) { return render(*options); });
}

} // namespace ka::tools
