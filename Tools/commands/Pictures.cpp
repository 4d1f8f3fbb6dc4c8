#include "cli/Film.h"
#include "cli/Interrupt.h"
#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"

#include <algorithm>
#include <filesystem>
#include <kaAnimationCurve2D.h>
#include <kaMotion/Canvas.h>
#include <kaMotion/Failure.h>
#include <kaMotion/ModelReader.h>
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
    FigureOptions figure;
    std::string film;
};

PictureRange rangeOf(const PictureOptions& options, const Project& project,
                     const std::vector<kaAnimationObject*>& objects) {
    const auto [begin, end] = frameRange(objects);
    return {static_cast<float>(options.from.value_or(static_cast<double>(begin))),
            static_cast<float>(options.to.value_or(static_cast<double>(end))), project.framesPerSecond()};
}

/// Before the work: what cannot come out well is refused.
void check(const PictureOptions& options) {
    const std::string extension = extensionOf(options.output);
    if (!extension.empty() && extension != "png")
        throw Failure(ExitCode::Usage, "pictures are written to .png files, not " + oneLine(options.output));
}

/// @throws Failure (Usage) where the range ends before it begins.
PictureRange checkedRange(const PictureOptions& options, const Project& project,
                          const std::vector<kaAnimationObject*>& objects) {
    const PictureRange range = rangeOf(options, project, objects);
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

/// With the clip that is shown, whoever chose it.
QString titleOf(const PictureOptions& options, const std::vector<kaAnimationObject*>& objects) {
    QString title = titleOf(options);
    for (const kaAnimationObject* object : objects)
        if (options.object.empty() && object->getTypeID() == KA_TYPE_STRIP && !object->getName().empty())
            title += ": " + QString::fromStdString(oneLine(utf8FromLatin1(object->getName())));
    return title;
}

ExitCode plot(const PictureOptions& options) {
    check(options);
    Terminal terminal;
    const Project project(options.files, terminal);
    const auto objects = project.playable(options.object);
    CurveList curves = curvesBelow(objects);
    curves = options.curves.empty() ? tellingCurves(curves) : chooseCurves(curves, options.curves);
    const PictureRange range = checkedRange(options, project, objects);
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

/// @return whether it was finished.
bool film(const PictureOptions& options, const Project& project,
          const std::vector<kaAnimationObject*>& objects, const FigureOptions& figure, Terminal& terminal) {
    Film film(options.film, project.framesPerSecond());
    if (!film.isFilm())
        say("ffmpeg is not installed: the film becomes a folder of pictures");
    constexpr int shape[] = {16, 9};
    const int height = options.height > 0 ? options.height : options.width * shape[1] / shape[0];
    const QSize size(options.width / 2 * 2, height / 2 * 2);
    const bool isWhole =
        filmFigure(titleOf(options, objects), project, objects, checkedRange(options, project, objects), size,
                   figure, terminal, [&](const QImage& picture) {
                       film.add(picture);
                       return !Interrupt::came();
                   });
    if (isWhole)
        say("wrote " + film.finish());
    return isWhole;
}

ExitCode render(const PictureOptions& options) {
    check(options);
    const Interrupt interrupt;
    Terminal terminal;
    const Project project(options.files, terminal);
    const auto objects = project.playable(options.object);
    if (options.output.empty() && options.film.empty())
        throw Failure(ExitCode::Usage, "there is nothing to write: neither -o nor --film");
    FigureOptions figure = options.figure;
    // A model is turned when it is read.
    figure.isZUp = options.files.import.isZUp && !isModel(options.files.file);
    const QSize size(options.width,
                     options.height > 0 ? options.height : sheetHeight(options.width, options.count));
    if (!options.film.empty() && !film(options, project, objects, figure, terminal))
        throw Failure(ExitCode::Findings, "stopped before the film was whole; nothing was written");
    if (options.output.empty())
        return ExitCode::Fine;
    const QImage image = renderFigure(titleOf(options, objects), project, objects,
                                      checkedRange(options, project, objects), options.count, size, figure);
    replaceFile(options.output, pngBytes(image));
    say("wrote " + options.output);
    return ExitCode::Fine;
}

void addPictureOptions(Command& command, PictureOptions& options) {
    addProjectOptions(command, options.files);
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
    addOutputOption(command, options->output, "the PNG file to write");
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
    command.option("-o,--output", options->output, "the PNG file to write").takes("PATH");
    command
        .option("--film", options->film,
                "a film to write (.mp4), all whole frames, through ffmpeg; without it, a folder of pictures")
        .takes("PATH");
    command.choice(
        "--show", options->figure.show,
        {{"auto", FigureShow::Auto},
         {"meshes", FigureShow::Meshes},
         {"boxes", FigureShow::Boxes},
         {"bones", FigureShow::Bones},
         {"axes", FigureShow::Axes}},
        "what of the scene is drawn; auto: meshes where there are any, else bones, with axes where bones "
        "stand still");
    command.option("--turn", options->figure.view.turn, "degrees about the vertical from which it is seen")
        .finite()
        .showsDefault();
    command.option("--tilt", options->figure.view.tilt, "degrees above the ground from which it is seen")
        .finite()
        .showsDefault();
    command.option("--count", options->count, "how many frames to draw").between(1, 400).showsDefault();
    command.examples({"ka-anim render walk.bvh -o figure.png",
                      "ka-anim render walk.bvh -o steps.png --from 0 --to 20 --count 8 --width 1200",
                      "ka-anim render walk.bvh --film film.mp4 --turn -30 --tilt 25 --width 640"});
    command.runs(action, [options](Output&) { return render(*options); });
}

} // namespace ka::tools
