#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"

#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/Text.h>
#include <memory>
#include <optional>

namespace ka::tools {

namespace {

struct SampleOptions {
    ProjectFiles files;
    std::vector<std::string> curves;
    std::string object;
    std::optional<double> from, to;
    double step = 1.0;
    Format format = Format::Csv;
};

constexpr double mostSamples = 1e9;

/// Writes one line for each sample; the brackets around them depend on the format.
class SampleWriter {
  public:
    SampleWriter(Output& output, Format format) : _output(output), _isJson(format == Format::Json) {
        _output.write(_isJson ? "[" : "curve,frame,value\n");
    }

    void write(kaUID curve, float frame, bool hasValue, float value) {
        const std::string id = std::to_string(curve), at = formatNumber(static_cast<double>(frame));
        const std::string number = hasValue ? formatNumber(static_cast<double>(value)) : "";
        if (!_isJson)
            return _output.write(id + "," + at + "," + number + "\n");
        const bool isNumber = hasValue && std::isfinite(value);
        // Ids have 64 bits, which many readers of JSON keep in a double.
        _output.write((_isFirst ? "\n" : ",\n") + ("{\"curve\":\"" + id) + "\",\"frame\":" + at +
                      ",\"value\":" + (isNumber ? number : "null") + "}");
        _isFirst = false;
    }

    void finish() {
        if (_isJson)
            _output.write(_isFirst ? "]\n" : "\n]\n");
    }

  private:
    Output& _output;
    bool _isJson;
    bool _isFirst = true;
};

void sampleCurve(kaAnimationCurve2D* curve, const SampleOptions& options, SampleWriter& writer) {
    const double from = options.from.value_or(static_cast<double>(curve->getBegin()));
    const double to = options.to.value_or(static_cast<double>(curve->getEnd()));
    // Steps are counted, not added up, so that a thousand steps of 0.1 end where they should.
    const double count = std::floor((to - from) / options.step + 1e-9);
    if (count > mostSamples)
        throw Failure(ExitCode::Usage, "more than a billion samples of one curve");
    for (double i = 0; i <= count; ++i) {
        const auto frame = static_cast<float>(from + i * options.step);
        float value = 0.0F;
        const bool hasValue = kaAnimationController::the()->computeCurveValue(curve, frame, value);
        writer.write(curve->getId(), frame, hasValue, value);
    }
}

ExitCode sample(const SampleOptions& options, Output& output) {
    Terminal terminal;
    const Project project(options.files, terminal);
    CurveList curves = curvesBelow(project.playable(options.object));
    // A document may hold curves that nothing plays.
    if (curves.empty() && options.object.empty())
        curves = allCurves();
    if (!options.curves.empty())
        curves = chooseCurves(curves, options.curves);
    SampleWriter writer(output, options.format);
    for (kaAnimationCurve2D* curve : curves)
        sampleCurve(curve, options, writer);
    writer.finish();
    return ExitCode::Fine;
}

} // namespace

void addSampleCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<SampleOptions>();
    Command command(program, "sample", "Print the values of curves at many frames");
    addProjectOptions(command, options->files);
    command
        .option("--curve", options->curves,
                "a curve by id, name, node or label such as Hips.translationX; repeatable")
        .takes("NAME");
    addObjectOption(command, options->object);
    command.option("--from", options->from, "first frame (default: each curve's own)").finite();
    command.option("--to", options->to, "last frame (default: each curve's own)").finite();
    command.option("--step", options->step, "frames from sample to sample").aboveZero().showsDefault();
    addFormatOption(command, options->format);
    command.examples({"ka-anim sample walk.bvh --curve Hips.translationX",
                      "ka-anim sample walk.bvh --curve Hips --from 0 --to 10 --step 0.5 --format json"});
    command.runs(action, [options](Output& output) { return sample(*options, output); });
}

} // namespace ka::tools
