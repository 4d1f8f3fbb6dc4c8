#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"

#include <cmath>
#include <kaMotion/Columns.h>
#include <kaMotion/Comparison.h>
#include <kaMotion/Text.h>
#include <memory>
#include <nlohmann/json.hpp>

namespace ka::tools {

namespace {

using Json = nlohmann::ordered_json;

struct DiffOptions {
    ProjectFiles a, b;
    double tolerance = 1e-3;
    TextFormat format = TextFormat::Text;
};

std::string curveName(const Comparison::CurveError& curve) {
    return oneLine(curve.node.empty() ? curve.attribute : curve.node + "." + curve.attribute);
}

std::string asText(const DiffOptions& options, const Comparison& comparison) {
    std::string text;
    Columns structure("llll");
    for (const auto& difference : comparison.structure) {
        const bool isPresence = difference.what == "presence";
        const std::string side = difference.b.empty() ? "only in A" : "only in B";
        const std::string& extent = difference.b.empty() ? difference.a : difference.b;
        structure.add(
            {difference.element, oneLine(difference.name),
             isPresence ? side + oneLine(extent.substr(std::string("present").size())) : difference.what,
             isPresence ? "" : oneLine(difference.a) + " | " + oneLine(difference.b)});
    }
    if (!structure.isEmpty())
        text += counted(comparison.structure.size(), "difference") + " of structure (A | B)\n" +
                structure.text(2);
    Columns values("lrll");
    std::size_t apart = 0;
    for (const auto& curve : comparison.values) {
        if (!(curve.error > options.tolerance))
            break;
        ++apart;
        values.add({curveName(curve), formatNumber(curve.error, 3),
                    "at frame " + formatNumber(static_cast<double>(curve.frame)),
                    oneLine(curve.a) + " | " + oneLine(curve.b)});
    }
    if (apart > 0)
        text += counted(apart, "curve") + " of " + std::to_string(comparison.values.size()) +
                " differ by more than " + formatNumber(options.tolerance) + " (A | B)\n" + values.text(2);
    return text;
}

/// JSON has no infinity.
Json finiteNumber(double value) {
    return std::isfinite(value) ? Json(shortened(value)) : Json(nullptr);
}

std::string asJson(const DiffOptions& options, const Comparison& comparison) {
    Json structure = Json::array(), values = Json::array();
    for (const auto& difference : comparison.structure)
        structure.push_back({{"element", difference.element},
                             {"name", difference.name},
                             {"what", difference.what},
                             {"a", difference.a},
                             {"b", difference.b}});
    for (const auto& curve : comparison.values)
        if (curve.error > 0.0)
            values.push_back({{"node", curve.node},
                              {"attribute", curve.attribute},
                              {"error", finiteNumber(curve.error)},
                              {"frame", shortened(static_cast<double>(curve.frame))},
                              {"a", curve.a},
                              {"b", curve.b}});
    const Json document{{"a", options.a.file},
                        {"b", options.b.file},
                        {"tolerance", options.tolerance},
                        {"differ", !comparison.isEmpty(options.tolerance)},
                        {"structure", structure},
                        {"curves", comparison.values.size()},
                        {"samples", comparison.samples},
                        {"values", values}};
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

void saySummary(const DiffOptions& options, const Comparison& comparison) {
    const std::string compared = counted(comparison.values.size(), "curve") + " compared at " +
                                 counted(comparison.samples, "frame") + " in all";
    if (comparison.values.empty() || comparison.values.front().error == 0.0)
        return say(compared + (comparison.values.empty() ? "" : ", all equal"));
    const auto& worst = comparison.values.front();
    say(compared + ", at worst " + formatNumber(worst.error, 3) + " apart at frame " +
        formatNumber(static_cast<double>(worst.frame)) + ": " + curveName(worst) +
        (worst.error > options.tolerance ? "" : " (within the tolerance)"));
}

ProjectSummary summaryOf(const ProjectFiles& files) {
    Terminal terminal;
    const Project project(files, terminal);
    return summarize(project);
}

ExitCode diff(const DiffOptions& options, Output& output) {
    // One after the other: there is one registry.
    const ProjectSummary a = summaryOf(options.a), b = summaryOf(options.b);
    const Comparison comparison = compare(a, b, options.tolerance);
    output.write(options.format == TextFormat::Json ? asJson(options, comparison)
                                                    : asText(options, comparison));
    output.finish();
    saySummary(options, comparison);
    return comparison.isEmpty(options.tolerance) ? ExitCode::Fine : ExitCode::Findings;
}

} // namespace

void addDiffCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<DiffOptions>();
    Command command(program, "diff", "Compare what two files hold and the values that their curves give");
    command.option("A", options->a.file, "a model, a scene (.osg) or an animation document (.xml)").needed();
    command.option("B", options->b.file, "the other").needed();
    command.option("--animation-a", options->a.animation, "the animation document that goes with scene A")
        .takes("PATH");
    command.option("--animation-b", options->b.animation, "the animation document that goes with scene B")
        .takes("PATH");
    command.option("--by", options->tolerance, "what frames and values may differ by")
        .zeroOrMore()
        .showsDefault();
    addTextFormatOption(command, options->format);
    addModelOptions(command, options->a);
    command.examples({"ka-anim diff walk.bvh walk.osg --animation-b walk.xml",
                      "ka-anim diff walk.xml copy.xml --format json"});
    command.runs(action, [options](Output& output) {
        options->b.import = options->a.import;
        options->b.reader = options->a.reader;
        return diff(*options, output);
    });
}

} // namespace ka::tools
