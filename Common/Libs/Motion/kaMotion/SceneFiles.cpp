#include "project/ModuleCalls.h"
#include "readers/ConfinedFolder.h"

#include <OpenSG/OSGSceneFileHandler.h>
#include <QString>
#include <filesystem>
#include <kaAnimationManager.h>
#include <kaAnimationObject.h>
#include <kaFileWriter.h>
#include <kaLoadReport.h>
#include <kaMotion/DocumentOutline.h>
#include <kaMotion/Failure.h>
#include <kaMotion/SceneFiles.h>
#include <kaMotion/Text.h>
#include <sstream>

namespace ka::motion {

namespace {

constexpr std::size_t largestFile = std::size_t{1} << 30;

/// @throws Failure (Unreadable) unless there is something to be read.
void expectContents(const std::string& file) {
    const ConfinedFolder plainFile(file);
    std::error_code error;
    if (std::filesystem::is_empty(file, error))
        throw unreadable(file, "the file is empty");
}

/// The element that an id of the registry stands for, as findings name it.
std::string named(kaUID id) {
    const kaAnimationObject* object = kaAnimationManager::the()->getObject(id);
    return std::string(kindName(object ? static_cast<Kind>(object->getTypeID()) : Kind::None)) + " " +
           std::to_string(id);
}

/// Which links of the document loading left out.
void noteLeftOut(Listener& listener) {
    constexpr std::size_t mostLines = 20;
    const kaLoadReport& report = kaLoadReport::last();
    std::size_t told = 0;
    for (const kaLoadReport::Link& link : report.leftOut) {
        if (++told > mostLines)
            break;
        const bool isTooDeep = link.reason == kaLoadReport::Reason::TooDeep;
        listener.note(named(link.container) + ": " + named(link.child) + " is left out: " +
                      (isTooDeep ? "nested deeper than " + std::to_string(KA_MAX_DEPTH) + " levels"
                                 : std::string("it contains what it would stand in")));
    }
    if (report.leftOutCount > mostLines)
        listener.note("... and " + counted(report.leftOutCount - mostLines, "more link") + " left out");
}

Failure whyUnreadable(const std::string& file) {
    const kaDocumentFault& fault = kaAnimationManager::getLoadFault();
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

void readDocument(const std::string& file, Listener& listener) {
    if (!isDocument(file))
        throw unreadable(file, "not an animation document (.xml)");
    expectContents(file);
    const HushedModule hushed;
    const ModuleProgress progress("reading animation", listener);
    if (!kaAnimationManager::the()->loadAnimations(QString::fromUtf8(file.c_str()), true))
        throw whyUnreadable(file);
    noteLeftOut(listener);
}

} // namespace ka::motion
