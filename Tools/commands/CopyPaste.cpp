#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"
#include "commands/Faults.h"

#include <kaMotion/CopyPaste.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Text.h>
#include <memory>

namespace ka::tools {

namespace {

struct CopyOptions {
    ProjectFiles files;
    std::string from, to;
    SavedFiles outputs;
};

struct PasteOptions {
    ProjectFiles files;  ///< what is pasted into
    ProjectFiles source; ///< where the animation comes from
    std::string from, to;
    SavedFiles outputs;
};

void sayNotes(const Project& project) {
    for (const std::string& note : project.report().notes)
        say(note);
}

void sayPasted(const PasteReport& report, const std::string& what) {
    for (const std::string& line : report.passedBy)
        say("passed by: " + line);
    say(what + " went to " + counted(report.pasted.size(), "node"));
}

std::string describe(const CopiedAnimation& animation) {
    return counted(animation.curveCount(), "curve") + " of '" + oneLine(animation.name()) + "'";
}

ExitCode copy(const CopyOptions& options) {
    checkNames(options.outputs);
    Terminal terminal;
    const Project project(options.files, terminal);
    sayNotes(project);
    {
        const osg::NodePtr from = chosenNode(project.root(), options.from);
        const CopiedAnimation animation(from);
        sayPasted(paste(animation, project.root(), options.to, from), describe(animation));
    }
    return sayFaults(save(project.root(), options.outputs, terminal));
}

ExitCode pasteFromOther(const PasteOptions& options) {
    checkNames(options.outputs);
    Terminal terminal;
    Project project(options.source, terminal);
    sayNotes(project);
    {
        CopiedAnimation animation(chosenNode(project.root(), options.from));
        animation.detach();
        project.exchangeScene(options.files, terminal);
        sayNotes(project);
        sayPasted(paste(animation, project.root(), options.to, osg::NodePtr()), describe(animation));
    }
    return sayFaults(save(project.root(), options.outputs, terminal));
}

void addNodeOptions(Command& command, std::string& from, std::string& to) {
    command.option("--from", from, "the node to copy from, by name or by the end of its path (arm/hand)")
        .takes("NODE")
        .needed();
    command
        .option("--to", to,
                "the node to paste onto; with the wildcards * ? [...] every node that matches and has "
                "the attributes")
        .takes("NODE")
        .needed();
}

} // namespace

void addCopyCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<CopyOptions>();
    Command command(program, "copy", "Copy a node's animation to other nodes of its scene");
    addProjectOptions(command, options->files);
    addNodeOptions(command, options->from, options->to);
    addSceneOutputs(command, options->outputs, "--animation-out");
    command.examples(
        {"ka-anim copy walk.bvh --from LeftUpLeg --to RightUpLeg -o new.osg --animation-out new.xml",
         "ka-anim copy walk.bvh --from Head --to '*Finger*' -o new.osg --animation-out new.xml"},
        "What animates the other nodes already stays. A node takes the animation when it is of the same "
        "kind and has every attribute that is animated.");
    command.runs(action, [options](Output&) { return copy(*options); });
}

void addPasteCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<PasteOptions>();
    Command command(program, "paste", "Bring a node's animation over from another scene");
    addProjectOptions(command, options->files);
    command
        .option("--source", options->source.file,
                "what to copy from: a scene (.osg), or a model, read as FILE would be")
        .takes("PATH")
        .needed();
    command
        .option("--source-animation", options->source.animation,
                "the animation document that goes with the source")
        .takes("PATH");
    addNodeOptions(command, options->from, options->to);
    addSceneOutputs(command, options->outputs, "--animation-out");
    command.examples(
        {"ka-anim paste door.osg --source walk.bvh --from Hips --to door -o new.osg "
         "--animation-out new.xml",
         "ka-anim paste walk.bvh --source walk.bvh --from Hips --to '*Leg' -o new.osg "
         "--animation-out new.xml"},
        "A copy lasts no longer than the program, so copying there and pasting here are one command.");
    command.runs(action, [options](Output&) {
        options->source.import = options->files.import;
        options->source.reader = options->files.reader;
        return pasteFromOther(*options);
    });
}

} // namespace ka::tools
