#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"
#include "commands/Faults.h"

#include <kaAnimationManager.h>
#include <kaMotion/Project.h>
#include <kaMotion/Saving.h>
#include <kaMotion/Text.h>
#include <memory>

namespace ka::tools {

namespace {

struct ConvertOptions {
    ProjectFiles files;
    SavedFiles saved;
};

void check(const SavedFiles& saved) {
    if (saved.scene.empty() && saved.animation.empty())
        throw Failure(ExitCode::Usage,
                      "nothing to write: name a scene with -o, a document with --animation or "
                      "both (see ka-anim convert --help)");
    checkNames(saved);
}

ExitCode convert(const ConvertOptions& options) {
    check(options.saved);
    Terminal terminal;
    const Project project(options.files, terminal);
    for (const std::string& note : project.report().notes)
        say(note);
    const std::vector<std::string> faults =
        allFaults(project.report().faults, save(project.root(), options.saved, terminal));
    for (const std::string& name : {options.saved.scene, options.saved.animation})
        if (!name.empty())
            say("wrote " + name);
    if (options.saved.animation.empty() && kaAnimationManager::the()->getObjectCount() > 0)
        say("the animation was not written: name a document for it with --animation");
    return sayFaults(faults);
}

} // namespace

void addConvertCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<ConvertOptions>();
    Command command(program, "convert", "Save a model, a scene or a document as a scene and a document");
    command.option("IN", options->files.file, "a model, a scene (.osg) or an animation document (.xml)")
        .needed();
    command.option("INDOC", options->files.animation, "the animation document that goes with a scene");
    command.option("-o,--output", options->saved.scene, "the scene to write (.osg)").takes("PATH");
    command.option("--animation", options->saved.animation, "the animation document to write").takes("PATH");
    addModelOptions(command, options->files);
    command.examples({"ka-anim convert walk.bvh -o walk.osg --animation walk.xml",
                      "ka-anim convert walk.osg walk.xml -o copy.osg --animation copy.xml"});
    command.runs(action, [options](Output&) { return convert(*options); });
}

} // namespace ka::tools
