#include "cli/Options.h"

#include "base/Text.h"

#include <cmath>
#include <limits>
#include <map>

namespace ka::tools {

CLI::Validator finite() {
    const auto check = [](std::string& text) {
        const std::optional<double> value = parseNumber(text);
        if (!value || !std::isfinite(*value))
            return "'" + oneLine(text) + "' is not a finite number";
        const bool fits = std::abs(*value) <= static_cast<double>(std::numeric_limits<float>::max());
        return fits ? std::string() : "'" + oneLine(text) + "' is beyond the range of a float";
    };
    return CLI::Validator(check, "");
}

CLI::Validator aboveZero(double high) {
    const auto check = [high](std::string& text) {
        const std::optional<double> value = parseNumber(text);
        if (!value || !(*value > 0.0))
            return "'" + oneLine(text) + "' is not a number above zero";
        return *value <= high ? std::string() : "'" + oneLine(text) + "' is above " + formatNumber(high);
    };
    return CLI::Validator(check, "");
}

CLI::Validator zeroOrMore() {
    const auto check = [](std::string& text) {
        const std::optional<double> value = parseNumber(text);
        const bool fits = value && *value >= 0.0 && std::isfinite(*value);
        return fits ? std::string() : "'" + oneLine(text) + "' is not a finite number of at least 0";
    };
    return CLI::Validator(check, "");
}

CLI::Validator between(int low, int high) {
    return CLI::Range(low, high).description("");
}

void addModelOptions(CLI::App& command, ProjectFiles& files) {
    command.add_option("--fps", files.import.framesPerSecond, "frames to a second of the model")
        ->type_name("")
        ->check(aboveZero(1e6))
        ->capture_default_str();
    command
        .add_option("--tolerance", files.import.rotationTolerance,
                    "degrees that a converted rotation may be off between keys")
        ->type_name("")
        ->check(aboveZero(360))
        ->capture_default_str();
    command
        .add_option("--reader-memory", files.reader.megabytes, "megabytes that a third-party reader may use")
        ->type_name("")
        ->check(between(16, 1 << 20))
        ->capture_default_str();
    command
        .add_option("--reader-seconds", files.reader.seconds, "seconds that a third-party reader may take")
        ->type_name("")
        ->check(aboveZero(86400))
        ->capture_default_str();
}

void addProjectOptions(CLI::App& command, ProjectFiles& files) {
    command.add_option("FILE", files.file, "a model, a scene (.osg) or an animation document (.xml)")
        ->type_name("")
        ->required();
    command.add_option("--animation", files.animation, "the animation document that goes with a scene")
        ->type_name("PATH");
    addModelOptions(command, files);
}

void addFormatOption(CLI::App& command, Format& format) {
    static const std::map<std::string, Format> names{{"csv", Format::Csv}, {"json", Format::Json}};
    command.add_option("--format", format, "csv or json")
        ->type_name("csv|json")
        ->transform(CLI::CheckedTransformer(names).description(""))
        ->default_str(format == Format::Csv ? "csv" : "json");
}

void addTextFormatOption(CLI::App& command, TextFormat& format) {
    static const std::map<std::string, TextFormat> names{{"text", TextFormat::Text},
                                                         {"json", TextFormat::Json}};
    command.add_option("--format", format, "text or json")
        ->type_name("text|json")
        ->transform(CLI::CheckedTransformer(names).description(""))
        ->default_str("text");
}

void addObjectOption(CLI::App& command, std::string& object) {
    command
        .add_option("--object", object,
                    "a clip, track, block or curve by name or id (default: the first clip)")
        ->type_name("NAME");
}

void addOutputOption(CLI::App& command, std::string& path, const std::string& what) {
    command.add_option("-o,--output", path, what)->type_name("PATH")->required();
}

void addSceneOutputs(CLI::App& command, SavedFiles& outputs, const std::string& documentOption) {
    addOutputOption(command, outputs.scene, "the scene to write (.osg)");
    command.add_option(documentOption, outputs.animation, "the animation document to write (.xml)")
        ->type_name("PATH")
        ->required();
}

void addExamples(CLI::App& command, const std::vector<std::string>& lines, const std::string& remark) {
    std::string text = remark + (remark.empty() ? "" : "\n\n") + "Examples:";
    for (const std::string& line : lines)
        text += "\n  " + line;
    command.footer(text);
}

} // namespace ka::tools
