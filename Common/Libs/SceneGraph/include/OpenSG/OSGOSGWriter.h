#pragma once

#include <OpenSG/OSGFieldContainerPtr.h>
#include <OpenSG/OSGSceneFileMessage.h>
#include <ostream>
#include <vector>

namespace osg {

/// Writes containers, with everything that belongs to them, as the text of a scene file; OSGLoader reads it
/// back without any loss: every float comes back bit for bit, every string byte by byte.
///
/// Containers that are met more than once are written once, with a DEF name (their own, or one made up of
/// type, colon and number), and are meant by USE elsewhere. USE may come before DEF where a container refers
/// to one that belongs somewhere later in the file. The same scene gives the same bytes in every process.
///
/// Values that are no fields (see FieldContainer::visitProperties) stand behind the fields, in the same form.
/// Fields marked internal, attachments marked internal and empty volumes are left out.
class KA_SCENEGRAPH_API OSGWriter {
  public:
    /// @param indent  blanks per level.
    explicit OSGWriter(std::ostream& stream, UInt32 indent = 2);

    /// Writes the header and the containers as the top level of the file.
    /// @return false when the stream fails.
    bool write(const FieldContainerPtr& container);
    bool write(const std::vector<FieldContainerPtr>& containers);

    /// What the last write had to say: references to nodes outside of what was written.
    const SceneFileMessages& getMessages() const { return _messages; }

  private:
    std::ostream& _stream;
    UInt32 _indent;
    SceneFileMessages _messages;
};

} // namespace osg
