#pragma once

#include <OpenSG/OSGRefPtr.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <string>

namespace ka_test {

/// A scene that was read, kept as long as this lives.
struct ReadScene {
    osg::NodeRefPtr root;
    osg::SceneFileMessages messages;

    /// All messages, one per line.
    std::string report() const;
    /// The only child of the root.
    osg::NodePtr only() const { return root->getChild(0); }
};

ReadScene readScene(const std::string& text);

/// The same with the header line in front.
ReadScene readBody(const std::string& body);

std::string writeScene(const osg::NodePtr& node);

/// The node with that name in the tree; null when there is none.
osg::NodePtr findNode(const osg::NodePtr& root, const std::string& name);

} // namespace ka_test
