#include "check/WrittenCheck.h"

#include <OpenSG/OSGSceneFileHandler.h>
#include <kaAnimationManager.h>
#include <kaAnimationXmlOutput.h>
#include <kaFile.h>
#include <kaFileWriter.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Saving.h>
#include <kaMotion/SceneFiles.h>
#include <kaMotion/Text.h>
#include <memory>
#include <string_view>

namespace ka::motion {

namespace {

Failure outputFailed(const kaFileWriter& file) {
    return {ExitCode::OutputFailed, file.getError()};
}

/// @return the outline of what was written.
DocumentOutline writeDocument(kaFileWriter& file, Listener& listener) {
    kaAnimationXmlTextOutput text([&file](std::string_view piece) { file.write(piece); });
    text.documentType("ORVA");
    DocumentOutline outline;
    OutlineOutput output(text, outline);
    kaAnimationManager::the()->describeAnimations(output, [&listener](std::size_t done, std::size_t total) {
        listener.progress("writing", done, total);
    });
    return outline;
}

void writeScene(const osg::NodePtr& root, const std::string& name, kaFileWriter& file) {
    osg::SceneFileMessages messages;
    const bool isWritten = osg::SceneFileHandler::the().writeWithMessages(root, file.getStream(), messages);
    if (!file.getError().empty())
        throw outputFailed(file);
    for (const osg::SceneFileMessage& message : messages)
        if (message.severity != osg::SceneFileMessage::Warning)
            throw unreadable(name, oneLine(message.text));
    if (!isWritten)
        throw Failure(ExitCode::OutputFailed, name + ": the scene cannot be written");
}

/// @throws Failure (Usage) when the one would take the other's place.
void expectTwoFiles(const SavedFiles& files) {
    if (!files.scene.empty() && !files.animation.empty() && kaFile::isSameFile(files.scene, files.animation))
        throw Failure(ExitCode::Usage, "the scene and the animation document would be one file: " +
                                           printedPath(files.scene) + " and " + printedPath(files.animation));
}

} // namespace

void checkNames(const SavedFiles& files) {
    if (!files.scene.empty() && !isScene(files.scene))
        throw Failure(ExitCode::Usage, "scenes are written to .osg files, not " + printedPath(files.scene));
    if (!files.animation.empty() && !isDocument(files.animation))
        throw Failure(ExitCode::Usage,
                      "animation documents are written to .xml files, not " + printedPath(files.animation));
    expectTwoFiles(files);
}

std::vector<std::string> save(const osg::NodePtr& root, const SavedFiles& files, Listener& listener) {
    expectTwoFiles(files); // links may have been made since
    std::unique_ptr<kaFileWriter> scene, animation;
    DocumentOutline written;
    if (!files.scene.empty()) {
        scene = std::make_unique<kaFileWriter>(files.scene);
        writeScene(root, files.scene, *scene);
    }
    if (!files.animation.empty()) {
        animation = std::make_unique<kaFileWriter>(files.animation);
        written = writeDocument(*animation, listener);
        if (!animation->getError().empty())
            throw outputFailed(*animation);
    }
    // What is still to be written must find room before the first of them takes its place.
    for (kaFileWriter* file : {scene.get(), animation.get()})
        if (file != nullptr && !file->getStream().flush())
            throw outputFailed(*file);
    for (kaFileWriter* file : {scene.get(), animation.get()}) {
        if (file != nullptr && !file->commit())
            throw outputFailed(*file);
        if (file != nullptr && !file->getWarning().empty())
            listener.note(file->getWarning());
    }
    return checkWritten(written, listener);
}

} // namespace ka::motion
