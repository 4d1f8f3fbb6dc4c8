#include "SceneFileWriter.h"

#include <OpenSG/OSGOSGWriter.h>

namespace osg {

OSGWriter::OSGWriter(std::ostream& stream, UInt32 indent) : _stream(stream), _indent(indent) {}

bool OSGWriter::write(const FieldContainerPtr& container) {
    return write(std::vector<FieldContainerPtr>{container});
}

bool OSGWriter::write(const std::vector<FieldContainerPtr>& containers) {
    SceneFileLog log;
    SceneFilePlan plan(containers, log);
    SceneFileWriter writer(_stream, _indent);
    writer.writeHeader();
    const bool isWritten = writer.write(containers, plan);
    if (!isWritten)
        log.fatal(0, "the stream cannot be written");
    _messages = log.messages();
    return isWritten;
}

} // namespace osg
