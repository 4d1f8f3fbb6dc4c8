#pragma once

#include <OpenSG/OSGSceneFileMessage.h>
#include <string>
#include <string_view>

namespace osg {

/// Collects messages, as many as anybody would read: a file with a fault in every line says so a limited
/// number of times.
class SceneFileLog {
  public:
    void setFile(std::string file) { _file = std::move(file); }
    void add(SceneFileMessage::Severity severity, UInt32 line, std::string text);
    void warning(UInt32 line, std::string text) { add(SceneFileMessage::Warning, line, std::move(text)); }
    void error(UInt32 line, std::string text) { add(SceneFileMessage::Error, line, std::move(text)); }
    /// @return false, for the caller to hand on.
    bool fatal(UInt32 line, std::string text);

    const SceneFileMessages& messages() const { return _messages; }
    void clear();

  private:
    std::string _file;
    SceneFileMessages _messages;
    bool _isFull = false;
};

/// `text` between quotes for a message: shortened, and with everything unprintable as \xNN.
std::string quotedForMessage(std::string_view text);

} // namespace osg
