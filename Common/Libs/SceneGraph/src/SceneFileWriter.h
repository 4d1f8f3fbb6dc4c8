#pragma once

#include "SceneFilePlan.h"

#include <OpenSG/OSGFieldContainer.h>
#include <iosfwd>
#include <string>
#include <vector>

namespace osg {

/// Writes containers as the text of a scene file. Keeps its own stack, so that the depth of the tree costs
/// memory only.
class SceneFileWriter {
  public:
    /// @param indent  blanks per level.
    SceneFileWriter(std::ostream& stream, UInt32 indent) : _stream(stream), _indent(indent) {}

    void writeHeader();
    /// Writes the containers of the top level, which `plan` was made for.
    /// @return false when the stream fails.
    bool write(const std::vector<FieldContainerPtr>& tops, SceneFilePlan& plan);

  private:
    /// A container whose body is being written.
    struct Frame {
        FieldContainerPtr container;
        UInt32 fieldId = 0;               ///< the field at hand
        std::vector<SceneFileLink> links; ///< of that field
        std::size_t nextLink = 0;
        bool isInList = false;
    };

    void step(SceneFilePlan& plan);
    void writeField(const FieldDescription& description, SceneFilePlan& plan);
    void writeValues(const Field& field);
    void writeLink(const SceneFileLink& link, SceneFilePlan& plan);
    void writeProperties(FieldContainer& container);
    void open(const FieldContainerPtr& container, const SceneFilePlan& plan);
    void close();
    void startLine(std::size_t level);
    void flush();

    std::ostream& _stream;
    UInt32 _indent;
    std::string _text;
    std::vector<Frame> _stack;
    std::size_t _level = 0;
};

} // namespace osg
