#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"

#include <algorithm>
#include <kaMotion/CurveCheck.h>
#include <kaMotion/DocumentReader.h>
#include <kaMotion/ReferenceCheck.h>
#include <kaMotion/SceneCheck.h>
#include <kaMotion/Text.h>
#include <memory>
#include <nlohmann/json.hpp>

namespace ka::tools {

namespace {

struct ValidateOptions {
    std::string document, scene;
    TextFormat format = TextFormat::Text;
};

/// In the order of the file; what belongs to no line comes last.
void sortByLine(FindingList& findings) {
    std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
        return a.line - 1U < b.line - 1U; // 0 becomes the largest
    });
}

std::string asLine(const std::string& document, const Finding& finding) {
    std::string line = printedPath(document);
    for (const std::uint32_t number : {finding.line, finding.column})
        if (number > 0)
            line += ":" + std::to_string(number);
    line += ": ";
    if (!finding.element.empty())
        line += finding.element + (finding.id.empty() ? "" : " " + oneLine(finding.id, 40)) + ": ";
    return line + finding.message + "\n";
}

std::string asJson(const Finding& finding) {
    nlohmann::ordered_json entry{{"line", finding.line}};
    if (finding.column > 0)
        entry["column"] = finding.column;
    entry["element"] = finding.element;
    entry["id"] = finding.id;
    entry["message"] = finding.message;
    return entry.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void writeJson(const ValidateOptions& options, std::size_t elements, const FindingList& findings,
               Output& output) {
    const nlohmann::json document = options.document;
    output.write("{\"document\":" + document.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) +
                 ",\"elements\":" + std::to_string(elements) + ",\"findings\":[");
    const char* separator = "\n";
    for (const Finding& finding : findings) {
        output.write(separator + asJson(finding));
        separator = ",\n";
    }
    output.write(findings.empty() ? "]}\n" : "\n]}\n");
}

ExitCode validate(const ValidateOptions& options, Output& output) {
    DocumentOutline outline;
    FindingList findings;
    readOutline(options.document, outline, findings);
    const ElementsById byId(outline);
    checkReferences(outline, byId, findings);
    checkCurves(outline, byId, findings);
    if (!options.scene.empty())
        checkScene(options.scene, outline, byId, findings);
    sortByLine(findings);
    if (options.format == TextFormat::Json)
        writeJson(options, outline.elements.size(), findings, output);
    else
        for (const Finding& finding : findings)
            output.write(asLine(options.document, finding));
    output.finish();
    say(counted(outline.elements.size(), "element") + ", " +
        (findings.empty() ? std::string("nothing wrong") : counted(findings.size(), "finding")));
    return findings.empty() ? ExitCode::Fine : ExitCode::Findings;
}

} // namespace

void addValidateCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<ValidateOptions>();
    Command command(program, "validate", "Look for everything that is wrong with a document");
    command.option("DOC", options->document, "an animation document").needed();
    command.option("--scene", options->scene, "the scene (.osg) that the document goes with").takes("PATH");
    addTextFormatOption(command, options->format);
    command.examples(
        {"ka-anim validate walk.xml", "ka-anim validate walk.xml --scene walk.osg --format json"});
    command.runs(action, [options](Output& output) { return validate(*options, output); });
}

} // namespace ka::tools
