#pragma once

#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSceneFileMessage.h>
#include <istream>

namespace osg {

/// Reads a scene from the text of a scene file.
///
/// What does not fit is reported and left out, the rest is read: unknown types and fields, values of the
/// wrong kind, names that nothing defines, a second parent for a node. A text whose brackets do not match (a
/// file that was cut off), or that is none at all, is refused as a whole. No input makes it crash or need
/// stack in proportion to its size.
///
/// USE may come before its DEF. A DEF name becomes the name of the container, unless the writer made it up
/// (type, colon, number). In an attachment list, a number before an attachment is its binding; without, it is
/// 0.
class KA_SCENEGRAPH_API OSGLoader {
  public:
    OSGLoader() = default;
    OSGLoader(const OSGLoader&) = delete;
    OSGLoader& operator=(const OSGLoader&) = delete;
    /// Destroys the scene, unless somebody counts on it or took it.
    ~OSGLoader();

    /// The name that messages give the file.
    void setFileName(const std::string& name) { _fileName = name; }
    /// Refuse longer texts; bytes, 1 GiB by default.
    void setSizeLimit(UInt64 bytes) { _sizeLimit = bytes; }
    /// Refuse containers nested more deeply; 200 000 levels by default.
    void setDepthLimit(UInt32 levels) { _depthLimit = levels; }

    /// Reads the stream to its end.
    /// @return true when there is a scene, complete or not; see getMessages.
    bool scanStream(std::istream& stream);

    /// A new node without a name, with a Group, that holds every container of the top level: the loader's
    /// until somebody counts it or takes it. Null when the text was refused.
    const NodePtr& getRootNode() const { return _root; }
    /// The same; it is the caller's from then on.
    NodePtr takeRootNode();

    /// What the last scanStream had to say, in order; a long list is cut off.
    const SceneFileMessages& getMessages() const { return _messages; }

  private:
    void dropScene();

    std::string _fileName;
    UInt64 _sizeLimit = 1024ULL * 1024ULL * 1024ULL;
    UInt32 _depthLimit = 200000;
    NodePtr _root;
    SceneFileMessages _messages;
};

} // namespace osg
