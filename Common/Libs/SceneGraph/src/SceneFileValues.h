#pragma once

#include "SceneFileLexer.h"
#include "SceneFileLog.h"

#include <OpenSG/OSGField.h>
#include <string>

namespace osg {

/// How the values of one field type stand in a scene file: exactly, unlike the text forms of Field.
/// A type that the library does not know stands there in its general text form, between quotes.
class SceneFileValues {
  public:
    /// The text of the value at `index`, without brackets.
    static void write(const Field& field, UInt32 index, std::string& out);

    /// True when the value at hand cannot be written: an empty volume has no text.
    static bool isWritable(const Field& field);

    /// Reads one value at the lexer's place into a single field, or appends it to a list.
    /// @return false when what stands there cannot begin such a value; nothing was read then. Numbers that
    /// are missing or do not fit are reported; missing ones count as 0.
    static bool read(SceneFileLexer& lexer, Field& field, SceneFileLog& log);

    /// Empties a list; a single field stays as it is.
    static void clear(Field& field);
};

} // namespace osg
