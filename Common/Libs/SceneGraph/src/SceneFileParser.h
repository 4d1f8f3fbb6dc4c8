#pragma once

#include "SceneFileContents.h"
#include "SceneFileLexer.h"
#include "SceneFileLog.h"

namespace osg {

/// Reads the text of a scene file into SceneFileContents. Keeps its own stack, so that nesting costs memory
/// only.
class SceneFileParser {
  public:
    SceneFileParser(std::string_view text, SceneFileContents& contents, SceneFileLog& log);

    /// Containers that may stand within one another.
    void setDepthLimit(std::size_t levels) { _depthLimit = levels; }

    /// @return false when the text is not well-formed; the log says where. The contents are of no use then.
    /// Types, fields and values that do not fit are reported and passed over.
    bool parse();

  private:
    using Kind = SceneFileLexer::Kind;
    using Token = SceneFileLexer::Token;

    /// A container whose body is being read; the bottom one stands for the file.
    struct Frame {
        UInt32 item;               ///< NONE: the file, or what is passed over
        FieldContainer* container; ///< null: as above, or of unknown type
        std::string_view typeName;
        UInt32 line;
        bool isInList;     ///< between brackets of `slot`
        bool isPassedOver; ///< the list holds anything, and nothing of it counts
        UInt32 slot;
    };

    void checkHeader(std::string_view text);
    bool step();
    bool parseListEntry();
    bool parsePassedOverEntry();
    bool parseBodyEntry();
    bool parseField(const Token& name);
    bool parseReferenceField(const FieldDescription& description);
    bool parseValueField(Field& field, const Token& name);
    bool parseValueList(Field& field, const Token& name);
    void reportNoValue(const Token& name, UInt32 line, const char* consequence);
    /// @return false when the container has no such value, or no value of that kind stands there.
    bool parseProperty(const Token& name);
    bool parseReference(UInt32 slot, UInt16 binding);
    bool parseUse(UInt32 slot, UInt16 binding);
    bool openContainer(UInt32 slot, UInt16 binding, const Token& type, const Token* definition);
    FieldContainerPtr createContainer(const Token& type);
    void define(const Token& name, const Token& type, UInt32 item);
    bool passOverValue();
    bool closeFile();
    bool unexpected(const Token& token, const std::string& where);
    void openList(UInt32 slot, bool isPassedOver);
    Frame& top() { return _stack.back(); }

    SceneFileLexer _lexer;
    SceneFileContents& _contents;
    SceneFileLog& _log;
    std::vector<Frame> _stack;
    std::size_t _depthLimit = 200000;
};

/// True for the DEF names that the writer makes up where a container has no name of its own: the type, a
/// colon and a number. They are not names of containers.
bool isMadeUpName(std::string_view name, std::string_view typeName);

} // namespace osg
