#pragma once

#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSceneFileMessage.h>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace osg {

/// What came of reading a scene file.
struct SceneFileResult {
    /// A new node without a name, with a Group; its children are the top level of the file. Nobody counts it
    /// yet. Null when the file was refused.
    NodePtr root;
    SceneFileMessages messages;

    /// True when a message is worse than a warning: the scene is missing, or not complete.
    KA_SCENEGRAPH_API bool hasErrors() const;
    /// The one node of the top level when there is exactly one, else the root: what was written by write().
    KA_SCENEGRAPH_API NodePtr scene() const;
};

/// Reads and writes scene files. For what they hold and what becomes of faults see OSGLoader and OSGWriter.
class KA_SCENEGRAPH_API SceneFileHandler {
  public:
    static SceneFileHandler& the();

    /// @name Reading
    /// Messages go to standard error, one per line; readWithMessages hands them over instead. The root is a
    /// new node that nobody counts yet; null when there is no such file or it was refused.
    /// @param extension  the kind of file, "osg"; any other is refused.
    /// @{
    NodePtr read(const std::string& fileName);
    NodePtr read(std::istream& stream, const std::string& extension = "osg");
    SceneFileResult readWithMessages(const std::string& fileName);
    SceneFileResult readWithMessages(std::istream& stream, const std::string& fileName);
    /// @}

    /// @name Writing
    /// Writes the node and all below it. A root as reading makes it (no name or other attachment, a Group)
    /// does not stand in the file itself, only its children do: a scene that is read and written again and
    /// again stays the same. The file is written in place; who must not lose the old one writes a stream over
    /// a new file.
    /// @return false when the node is null or the file cannot be written in full.
    /// @{
    bool write(const NodePtr& node, const std::string& fileName);
    bool write(const NodePtr& node, std::ostream& stream, const std::string& extension = "osg");
    bool writeWithMessages(const NodePtr& node, std::ostream& stream, SceneFileMessages& messages);
    /// @}

  private:
    SceneFileHandler() = default;
};

} // namespace osg
