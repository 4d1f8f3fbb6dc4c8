#include "SceneFiles.h"

#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <sstream>

namespace ka_test {

std::string ReadScene::report() const {
    std::string text;
    for (const osg::SceneFileMessage& message : messages)
        text += message.toString() + "\n";
    return text;
}

ReadScene readScene(const std::string& text) {
    std::istringstream stream(text);
    osg::SceneFileResult result = osg::SceneFileHandler::the().readWithMessages(stream, "test.osg");
    return {result.root, result.messages};
}

ReadScene readBody(const std::string& body) {
    return readScene("#OSG V1.0 \n" + body);
}

std::string writeScene(const osg::NodePtr& node) {
    std::ostringstream stream;
    osg::SceneFileMessages messages;
    osg::SceneFileHandler::the().writeWithMessages(node, stream, messages);
    return stream.str();
}

osg::NodePtr findNode(const osg::NodePtr& root, const std::string& name) {
    osg::NodePtr found;
    osg::traverse(root, [&](osg::NodePtr& node) {
        const char* own = osg::getName(node);
        if (own == nullptr || name != own)
            return osg::Action::Continue;
        found = node;
        return osg::Action::Quit;
    });
    return found;
}

} // namespace ka_test
