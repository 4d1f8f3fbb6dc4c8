#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"

#include <algorithm>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/CurveTable.h>
#include <kaMotion/Text.h>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

namespace ka::tools {

namespace {

enum class SampleFormat { Csv, Json, Npz };

struct SampleOptions {
    ProjectFiles files;
    std::vector<std::string> curves;
    std::string object;
    std::optional<double> from, to;
    double step = 1.0;
    SampleFormat format = SampleFormat::Csv;
};

constexpr double mostSamples = 1e9, mostTableNumbers = 1e8;

/// A cell of a table: in quotes where it holds what would end it.
std::string cell(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == text.npos)
        return text;
    std::string quoted = "\"";
    for (const char c : text)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

/// What a curve belongs to, once for all of its samples.
struct Origin {
    std::string id, clip, node, attribute, unit;

    explicit Origin(kaAnimationCurve2D* curve) : id(std::to_string(curve->getId())), unit(curveUnit(curve)) {
        const kaAnimationObject* top = curve;
        while (const kaAnimationObject* above = top->getParentObject())
            top = above;
        if (top->getTypeID() == KA_TYPE_STRIP)
            clip = utf8FromLatin1(top->getName());
        const osg::NodePtr owner = curve->getParentOSGNode();
        node = owner == osg::NullFC ? std::string() : nodeName(owner);
        attribute = curveLabel(curve);
        if (!node.empty() && attribute.compare(0, node.size() + 1, node + ".") == 0)
            attribute.erase(0, node.size() + 1);
    }
};

/// Writes one line for each sample; the brackets around them depend on the format.
class SampleWriter {
  public:
    SampleWriter(Output& output, SampleFormat format)
        : _output(output), _isJson(format == SampleFormat::Json) {
        _output.write(_isJson ? "[" : "curve,frame,value,clip,node,attribute,unit\n");
    }

    void begin(const Origin& origin) {
        using Json = nlohmann::ordered_json;
        const Json names{{"clip", origin.clip},
                         {"node", origin.node},
                         {"attribute", origin.attribute},
                         {"unit", origin.unit}};
        _start = _isJson ? "{\"curve\":\"" + origin.id + "\",\"frame\":" : origin.id + ",";
        _end = _isJson ? "," + names.dump(-1, ' ', false, Json::error_handler_t::replace).substr(1)
                       : "," + cell(origin.clip) + "," + cell(origin.node) + "," + cell(origin.attribute) +
                             "," + cell(origin.unit) + "\n";
    }

    void write(float frame, bool hasValue, float value) {
        const std::string at = formatNumber(static_cast<double>(frame));
        const std::string number = hasValue ? formatNumber(static_cast<double>(value)) : "";
        if (!_isJson)
            return _output.write(_start + at + "," + number + _end);
        const bool isNumber = hasValue && std::isfinite(value);
        // Ids have 64 bits, which many readers of JSON keep in a double.
        _output.write((_isFirst ? "\n" : ",\n") + _start + at + ",\"value\":" + (isNumber ? number : "null") +
                      _end);
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
    std::string _start, _end; ///< of each line of the curve
};

void sampleCurve(kaAnimationCurve2D* curve, const SampleOptions& options, SampleWriter& writer) {
    const double from = options.from.value_or(static_cast<double>(curve->getBegin()));
    const double to = options.to.value_or(static_cast<double>(curve->getEnd()));
    writer.begin(Origin(curve));
    // Steps are counted, not added up, so that a thousand steps of 0.1 end where they should.
    const double count = std::floor((to - from) / options.step + 1e-9);
    if (count > mostSamples)
        throw Failure(ExitCode::Usage, "more than a billion samples of one curve");
    for (double i = 0; i <= count; ++i) {
        const auto frame = static_cast<float>(from + i * options.step);
        float value = 0.0F;
        const bool hasValue = kaAnimationController::the()->computeCurveValue(curve, frame, value);
        writer.write(frame, hasValue, value);
    }
}

/// One table for all curves: from the first frame of any to the last, without a value outside of a curve's span.
CurveTable tableOf(const CurveList& curves, const SampleOptions& options, double framesPerSecond) {
    CurveTable table;
    table.framesPerSecond = framesPerSecond;
    double from = HUGE_VAL, to = -HUGE_VAL;
    for (const kaAnimationCurve2D* curve : curves) {
        from = std::min(from, static_cast<double>(curve->getBegin()));
        to = std::max(to, static_cast<double>(curve->getEnd()));
        table.columns.push_back({curveLabel(curve), curveUnit(curve)});
    }
    from = options.from.value_or(from);
    to = options.to.value_or(to);
    const double count = from <= to ? std::floor((to - from) / options.step + 1e-9) + 1 : 0.0;
    if (count * static_cast<double>(std::max<std::size_t>(curves.size(), 1)) > mostTableNumbers)
        throw Failure(ExitCode::Usage, "more than a hundred million samples");
    for (double i = 0; i < count; ++i) {
        table.frames.push_back(from + i * options.step);
        for (kaAnimationCurve2D* curve : curves) {
            float value = 0.0F;
            const bool hasValue = kaAnimationController::the()->computeCurveValue(
                curve, static_cast<float>(table.frames.back()), value);
            table.values.push_back(hasValue ? value : std::numeric_limits<float>::quiet_NaN());
        }
    }
    return table;
}

ExitCode sample(const SampleOptions& options, Output& output) {
    if (options.format == SampleFormat::Npz && output.isTerminal())
        throw Failure(ExitCode::Usage, "npz is binary: send it to a file with > samples.npz");
    Terminal terminal;
    const Project project(options.files, terminal);
    CurveList curves = curvesBelow(project.playable(options.object));
    // A document may hold curves that nothing plays.
    if (curves.empty() && options.object.empty())
        curves = allCurves();
    if (!options.curves.empty())
        curves = chooseCurves(curves, options.curves);
    if (options.format == SampleFormat::Npz) {
        output.write(npzOf(tableOf(curves, options, project.framesPerSecond())));
        return ExitCode::Fine;
    }
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
    command.choice("--format", options->format,
                   {{"csv", SampleFormat::Csv}, {"json", SampleFormat::Json}, {"npz", SampleFormat::Npz}},
                   "csv, json, or npz: a NumPy archive with a column for each curve");
    command.examples({"ka-anim sample walk.bvh --curve Hips.translationX",
                      "ka-anim sample walk.bvh --curve Hips --from 0 --to 10 --step 0.5 --format json",
                      "ka-anim sample walk.bvh --format npz > walk.npz"});
    command.runs(action, [options](Output& output) { return sample(*options, output); });
}

} // namespace ka::tools
