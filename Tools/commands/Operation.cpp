#include "commands/Operation.h"

#include "cli/Interrupt.h"
#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"
#include "commands/Faults.h"

#include <algorithm>
#include <kaMotion/ClipCopy.h>
#include <kaMotion/Saving.h>
#include <kaMotion/Text.h>
#include <memory>

namespace ka::tools {

namespace {

struct OperationLine {
    ProjectFiles files;
    MotionSelection selection;
    SavedFiles outputs;
    std::string copy;
    std::vector<std::string> then;
    bool isDry = false;
    TextFormat format = TextFormat::Text;
};

/// Whose work ends when the user wishes.
class EndingTerminal : public Terminal {
  public:
    bool progress(const std::string& what, std::size_t done, std::size_t total) override {
        Terminal::progress(what, done, total);
        return !Interrupt::came();
    }
};

std::vector<Operation> allOperations() {
    std::vector<Operation> operations = curveOperations();
    const std::vector<Operation> more = clipOperations();
    operations.insert(operations.end(), more.begin(), more.end());
    return operations;
}

void addSelectionOptions(Command& command, MotionSelection& selection) {
    command
        .option("--clip", selection.clips,
                "only this clip, by name or id; * ? [...] stand for others; repeatable")
        .takes("NAME");
    command
        .option("--node", selection.nodes,
                "only what moves this node, by name or the end of its path; as --clip")
        .takes("NODE");
    command
        .option("--curve", selection.curves,
                "only this curve, such as Hips.translationX or 'rotation*'; as --clip")
        .takes("NAME");
}

/// One operation with its options read, and what it is to work on.
struct Link {
    RunOperation run;
    MotionSelection selection;
};

/// @param text  "reduce --rotation 1": an operation with its options.
Link linkOf(const std::string& text, Output& output) {
    const std::string name = text.substr(0, text.find(' '));
    std::vector<std::string> names;
    for (const Operation& operation : allOperations())
        names.push_back(operation.name);
    if (std::find(names.begin(), names.end(), name) == names.end())
        throw Failure(ExitCode::Usage,
                      "no operation is called '" + oneLine(name) + "'" + didYouMean(name, names));
    Action chosen;
    std::shared_ptr<Link> found;
    readLine(text, [&](CLI::App& program) {
        for (const Operation& operation : allOperations()) {
            Command command(program, operation.name, operation.description);
            auto link = std::make_shared<Link>();
            link->run = operation.declare(command);
            addSelectionOptions(command, link->selection);
            command.runs(chosen, [&found, link](Output&) {
                found = link;
                return ExitCode::Fine;
            });
        }
    });
    chosen(output);
    return *found;
}

void checkOutputs(const OperationLine& line) {
    if (!line.isDry && line.outputs.animation.empty())
        throw Failure(ExitCode::Usage,
                      "nothing to write: name a scene with -o and a document with --animation, "
                      "or ask for a --dry-run");
    checkNames(line.outputs);
}

ExitCode run(const OperationLine& line, const RunOperation& operation, Output& output) {
    checkOutputs(line);
    std::vector<Link> chain{{operation, line.selection}};
    for (const std::string& text : line.then)
        chain.push_back(linkOf(text, output));
    const Interrupt interrupt;
    EndingTerminal terminal;
    for (const Link& link : chain)
        if (link.run.prepare)
            link.run.prepare(line.files, terminal);
    Project project(line.files, terminal);
    for (const std::string& note : project.report().notes)
        say(note);
    if (!line.copy.empty())
        chain.front().selection.clips = copyClips(selectedClips(line.selection), line.copy);
    std::vector<OperationReport> reports;
    std::vector<std::string> faults;
    for (const Link& link : chain) {
        OperationReport report = link.run.run({project, link.selection, terminal});
        if (report.isCancelled)
            throw Failure(ExitCode::Findings, report.operation + " cancelled: nothing was written");
        report.isDry = line.isDry;
        faults.insert(faults.end(), report.faults.begin(), report.faults.end());
        reports.push_back(std::move(report));
    }
    if (!line.isDry)
        faults = allFaults(faults, save(project.root(), line.outputs, terminal));
    if (line.format == TextFormat::Json)
        output.write(reports.size() == 1 ? reports.front().json() : jsonOf(reports));
    else
        for (const OperationReport& report : reports)
            output.write(report.text());
    return sayFaults(faults);
}

void addCommand(CLI::App& program, Action& action, const Operation& operation) {
    auto line = std::make_shared<OperationLine>();
    Command command(program, operation.name, operation.description);
    command.option("FILE", line->files.file, "a model, a scene (.osg) or an animation document (.xml)")
        .needed();
    command.option("DOC", line->files.animation, "the animation document that goes with a scene");
    const RunOperation run = operation.declare(command);
    addSelectionOptions(command, line->selection);
    command.option("--copy", line->copy, "leave the clips as they are and work on copies of this name")
        .takes("NAME");
    command
        .option("--then", line->then,
                "another operation afterwards, with its options: 'reduce --rotation 1'; repeatable")
        .takes("OPERATION");
    command.flag("--dry-run", line->isDry, "say what would be done and write nothing");
    command.option("-o,--output", line->outputs.scene, "the scene to write (.osg)").takes("PATH");
    command.option("--animation", line->outputs.animation, "the animation document to write (.xml)")
        .takes("PATH");
    addTextFormatOption(command, line->format);
    addModelOptions(command, line->files);
    command.examples(operation.examples, operation.remark);
    command.runs(action, [line, run = run](Output& output) { return tools::run(*line, run, output); });
}

} // namespace

void addOperationCommands(CLI::App& program, Action& action) {
    for (const Operation& operation : allOperations())
        addCommand(program, action, operation);
}

} // namespace ka::tools
