#include "scene/SceneFiles.h"

#include "base/Failure.h"
#include "base/Text.h"
#include "import/ConfinedFolder.h"
#include "scene/ModuleCalls.h"

#include <OpenSG/OSGSceneFileHandler.h>
#include <QString>
#include <filesystem>
#include <kaAnimationManager.h>
#include <kaFileWriter.h>
#include <kaXmlPreflight.h>
#include <sstream>

namespace ka::tools {

namespace {

constexpr std::size_t largestFile = std::size_t{1} << 30;

std::string sceneText(const osg::NodePtr& root) {
    std::ostringstream text;
    osg::SceneFileMessages messages;
    if (!osg::SceneFileHandler::the().writeWithMessages(root, text, messages))
        throw Failure(ExitCode::OutputFailed, "the scene cannot be written");
    return text.str();
}

QByteArray documentText() {
    const HushedModule hushed;
    const QString text = kaAnimationManager::the()->createAnimationXML();
    if (text.isEmpty())
        throw Failure(ExitCode::OutputFailed, "the animation is too large for one document");
    return text.toLatin1();
}

/// @throws Failure (Unreadable) unless there is something to be read.
void expectContents(const std::string& file) {
    const ConfinedFolder plainFile(file);
    std::error_code error;
    if (std::filesystem::is_empty(file, error))
        throw unreadable(file, "the file is empty");
}

/// Loading only says no; a second look says where and why.
Failure whyUnreadable(const std::string& file) {
    kaXmlPreflight::Fault fault;
    kaXmlPreflight::readFile(QString::fromStdString(file), kaAnimationManager::getMaximumFileSize(), &fault);
    const std::string place =
        fault.line > 0 ? ":" + std::to_string(fault.line) + ":" + std::to_string(fault.column) : "";
    return unreadable(file + place, oneLine(fault.message));
}

} // namespace

bool isScene(const std::string& path) {
    return extensionOf(path) == "osg";
}

bool isDocument(const std::string& path) {
    return extensionOf(path) == "xml";
}

std::string contentsOf(const std::string& file) {
    expectContents(file);
    const ConfinedFolder folder(file);
    std::optional<std::string> bytes = folder.read(folder.modelName(), largestFile);
    if (!bytes)
        throw unreadable(file, "cannot be read, or larger than 1 GiB");
    return std::move(*bytes);
}

osg::NodePtr readScene(const std::string& file, ImportReport& report) {
    if (!isScene(file))
        throw unreadable(file, "not a scene (.osg)");
    std::istringstream bytes(contentsOf(file));
    const osg::SceneFileResult result = osg::SceneFileHandler::the().readWithMessages(bytes, file);
    for (const osg::SceneFileMessage& message : result.messages) {
        if (result.root == osg::NullFC && message.severity == osg::SceneFileMessage::Fatal)
            throw Failure(ExitCode::Unreadable, oneLine(message.toString(), 400));
        report.notes.push_back(oneLine(message.toString(), 400));
        report.findings += message.severity == osg::SceneFileMessage::Warning ? 0 : 1;
    }
    if (result.root == osg::NullFC)
        throw unreadable(file, "not a scene");
    return result.root;
}

osg::NodePtr topOf(const osg::NodePtr& root) {
    return root->getNChildren() == 1 ? root->getChild(0) : root;
}

void readDocument(const std::string& file) {
    if (!isDocument(file))
        throw unreadable(file, "not an animation document (.xml)");
    expectContents(file);
    const HushedModule hushed;
    const ModuleProgress progress("reading animation");
    if (!kaAnimationManager::the()->loadAnimations(QString::fromUtf8(file.c_str()), true))
        throw whyUnreadable(file);
}

void checkOutputs(const SceneOutputs& outputs) {
    if (!isScene(outputs.scene))
        throw Failure(ExitCode::Usage, "scenes are written to .osg files, not " + oneLine(outputs.scene));
    if (!isDocument(outputs.document))
        throw Failure(ExitCode::Usage,
                      "animation documents are written to .xml files, not " + oneLine(outputs.document));
}

void writeSceneAndDocument(const osg::NodePtr& root, const SceneOutputs& outputs) {
    const std::string scene = sceneText(root);
    const QByteArray document = documentText();
    kaFileWriter documentFile(outputs.document), sceneFile(outputs.scene);
    documentFile.write({document.constData(), static_cast<std::size_t>(document.size())});
    sceneFile.write(scene);
    for (kaFileWriter* file : {&documentFile, &sceneFile})
        if (!file->getError().empty())
            throw Failure(ExitCode::OutputFailed, file->getError());
    for (kaFileWriter* file : {&documentFile, &sceneFile})
        if (!file->commit())
            throw Failure(ExitCode::OutputFailed, file->getError());
}

} // namespace ka::tools
