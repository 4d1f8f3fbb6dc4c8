#include "SceneFilePlan.h"

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGLoader.h>
#include <OpenSG/OSGOSGWriter.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <algorithm>
#include <cstdio>
#include <fstream>

namespace osg {

namespace {

bool isScene(const std::string& extension) {
    return extension == "osg" || extension == ".osg";
}

NodePtr report(SceneFileResult result) {
    for (const SceneFileMessage& message : result.messages)
        std::fprintf(stderr, "%s\n", message.toString().c_str());
    return result.root;
}

SceneFileResult refusal(const std::string& fileName, const std::string& text) {
    return {NodePtr(), {{SceneFileMessage::Fatal, fileName, 0, text}}};
}

bool hasVisibleAttachments(const AttachmentContainer& container) {
    const AttachmentMap& map = container.getAttachments();
    return std::any_of(map.begin(), map.end(),
                       [](const auto& entry) { return !entry.second->getInternal(); });
}

/// True for a node that says nothing beyond its children: what reading puts on top of every file.
bool isPlainRoot(const NodePtr& node) {
    const NodeCorePtr core = node->getCore();
    return node->getType() == Node::getClassType() && !hasVisibleAttachments(*node) &&
           node->getTravMask() == 0xFFFFFFFFU && core != NullFC && core->getType() == Group::getClassType() &&
           core->getParents().size() == 1 && !hasVisibleAttachments(*core);
}

/// The top level of the file that holds `node`.
std::vector<FieldContainerPtr> topsOf(const NodePtr& node) {
    if (!isPlainRoot(node))
        return {node};
    SceneFileLog unused;
    const SceneFilePlan plan({node}, unused);
    if (!plan.nameOf(node).empty() || !plan.nameOf(node->getCore()).empty()) // somebody refers to it
        return {node};
    const MFNodePtr& children = *node->getMFChildren();
    return {children.begin(), children.end()};
}

} // namespace

bool SceneFileResult::hasErrors() const {
    return std::any_of(messages.begin(), messages.end(), [](const SceneFileMessage& message) {
        return message.severity != SceneFileMessage::Warning;
    });
}

NodePtr SceneFileResult::scene() const {
    return root != NullFC && root->getNChildren() == 1 ? root->getChild(0) : root;
}

SceneFileHandler& SceneFileHandler::the() {
    static SceneFileHandler handler;
    return handler;
}

NodePtr SceneFileHandler::read(const std::string& fileName) {
    return report(readWithMessages(fileName));
}

NodePtr SceneFileHandler::read(std::istream& stream, const std::string& extension) {
    if (!isScene(extension))
        return report(refusal("", "files of the kind \"" + extension + "\" cannot be read"));
    return report(readWithMessages(stream, ""));
}

SceneFileResult SceneFileHandler::readWithMessages(const std::string& fileName) {
    std::ifstream stream(fileName, std::ios::binary);
    if (!stream)
        return refusal(fileName, "cannot be opened");
    return readWithMessages(stream, fileName);
}

SceneFileResult SceneFileHandler::readWithMessages(std::istream& stream, const std::string& fileName) {
    OSGLoader loader;
    loader.setFileName(fileName);
    loader.scanStream(stream);
    return {loader.takeRootNode(), loader.getMessages()};
}

bool SceneFileHandler::write(const NodePtr& node, const std::string& fileName) {
    if (node == NullFC)
        return false;
    std::ofstream stream(fileName, std::ios::binary | std::ios::trunc);
    if (!stream || !write(node, stream))
        return false;
    stream.close();
    return !stream.fail();
}

bool SceneFileHandler::write(const NodePtr& node, std::ostream& stream, const std::string& extension) {
    if (!isScene(extension))
        return false;
    SceneFileMessages messages;
    const bool isWritten = writeWithMessages(node, stream, messages);
    for (const SceneFileMessage& message : messages)
        std::fprintf(stderr, "%s\n", message.toString().c_str());
    return isWritten;
}

bool SceneFileHandler::writeWithMessages(const NodePtr& node, std::ostream& stream,
                                         SceneFileMessages& messages) {
    if (node == NullFC)
        return false;
    OSGWriter writer(stream);
    const bool isWritten = writer.write(topsOf(node));
    messages = writer.getMessages();
    return isWritten;
}

} // namespace osg
