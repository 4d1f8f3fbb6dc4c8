#pragma once

#include "kaAnimationExport.h"
#include "kaAnimationXmlRecord.h"

#include <QString>
#include <optional>
#include <string>

class QXmlAttributes;

/// The first look at a document: reads it from end to end without building a DOM and says whether it is one,
/// so that nothing is created from a document that is not well-formed.
///
/// What is well-formed, and what the bytes of a file mean, is what `QDomDocument::setContent` makes of them:
/// an encoding by byte order mark or declaration, else UTF-8; of an attribute that stands twice in one
/// element the last; control characters; entity references that nothing declares, which are left out. Four
/// things differ:
///  - A file without byte order mark and without a declaration that names an encoding is read as Latin-1, as
///    it was written, where its bytes are not valid UTF-8.
///  - Entity declarations in the document type are refused: a few bytes of them can stand for any amount of
///  text.
///  - Elements nested deeper than `MaximumDepth`, and content models in the document type nested beyond
///  reason, are
///    refused: a DOM's parser answers them with an overflow of the stack.
///  - Files larger than a limit are refused.
///
/// Cost: linear; about half the time of `QDomDocument::setContent`, memory for the record.
class KA_ANIMATION_API kaXmlPreflight {
  public:
    /// The root counts as 1.
    static constexpr int MaximumDepth = 256;

    /// Why a document was refused.
    struct Fault {
        std::string message;
        int line = 0; ///< counted from 1; 0 for the document as a whole
        int column = 0;
    };

    /// Is told of a document's elements from front to back, before it is known whether the rest is
    /// well-formed.
    class KA_ANIMATION_API Visitor {
      public:
        virtual ~Visitor() = default;

        /// @param depth of the element; the root's is 1.
        /// @param line on which its start tag ends, counted from 1.
        /// @param attributes as they stand, those that stand twice included.
        virtual void beginElement(int depth, int line, const QString& tag,
                                  const QXmlAttributes& attributes) = 0;
        /// Text of the innermost open element, perhaps not all of it at once.
        virtual void text(const QString& text) = 0;
        virtual void endElement(int depth) = 0;
    };

    /// The elements below the root, or nothing and, where asked for, why.
    /// @{
    static std::optional<kaAnimationXmlRecord> readText(const QString& text, Fault* fault = nullptr);
    /// @param maximumSize in bytes; of what tells no size beforehand, like a pipe, at most 1 GiB is read.
    static std::optional<kaAnimationXmlRecord> readFile(const QString& name, unsigned long long maximumSize,
                                                        Fault* fault = nullptr);
    /// @}

    /// Has `visitor` told of what stands in a file. Memory: none for the document, whatever its size.
    /// @return whether the document is well-formed to its end.
    static bool visitFile(const QString& name, unsigned long long maximumSize, Visitor& visitor,
                          Fault* fault = nullptr);
};
