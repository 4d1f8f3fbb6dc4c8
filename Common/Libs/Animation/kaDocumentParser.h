#pragma once

#include "kaAnimationExport.h"

#include <QString>
#include <string>

class QXmlAttributes;

/// Why a document was refused.
struct kaDocumentFault {
    std::string message; ///< in English, without place; empty for no fault
    int line = 0;        ///< counted from 1; 0 for the document as a whole
    int column = 0;      ///< counted from 1
};

/// Reads an animation document from end to end without building anything from it: for programs that check,
/// count or list what a file holds.
///
/// What is well-formed, and what the bytes of a file mean, is what `QDomDocument::setContent` makes of them:
/// an encoding by byte order mark or declaration, else UTF-8; of an attribute that stands twice in one
/// element the last; control characters; entity references that nothing declares, which are left out. Four
/// things differ:
///  - A file without byte order mark and declaration whose bytes are not valid UTF-8 is read as Latin-1, as
///    it was written.
///  - Entity declarations in the document type are refused: a few bytes of them can stand for any amount of
///    text.
///  - Elements nested deeper than `MaximumDepth`, and content models in the document type nested beyond
///    reason, are refused: a DOM's parser answers them with an overflow of the stack.
///  - Files larger than a limit are refused.
class KA_ANIMATION_API kaDocumentParser {
  public:
    /// The root counts as 1.
    static constexpr int MaximumDepth = 256;

    /// Is told of a document's elements from front to back, before it is known whether the rest is
    /// well-formed.
    class KA_ANIMATION_API Visitor {
      public:
        virtual ~Visitor() = default;

        /// @param depth of the element; the root's is 1.
        /// @param line on which its start tag ends, counted from 1.
        /// @param tag as it stands.
        /// @param attributes as they stand, those that stand twice included.
        virtual void beginElement(int depth, int line, const QString& tag,
                                  const QXmlAttributes& attributes) = 0;
        /// Text of the innermost open element, perhaps not all of it at once.
        virtual void text(const QString& text) = 0;
        virtual void endElement(int depth) = 0; ///< @param depth as when it began.
    };

    /// Has `visitor` told of what stands in a file.
    /// @param name of the file.
    /// @param maximumSize in bytes; of what tells no size beforehand, like a pipe, at most 1 GiB is read.
    /// @param visitor is told of elements up to the fault, should there be one.
    /// @param fault gets why; may be null. Untouched when there is none.
    /// @return whether the document is well-formed to its end.
    /// Cost: linear; about half the time of `QDomDocument::setContent`. Memory: none for the document,
    /// whatever its size.
    static bool visitFile(const QString& name, unsigned long long maximumSize, Visitor& visitor,
                          kaDocumentFault* fault = nullptr);
};
