#pragma once

#include "kaAnimationExport.h"

#include <QDomElement>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Receives elements as a writer describes them, from front to back. Names are ASCII, values Latin-1 bytes.
class KA_ANIMATION_API kaAnimationXmlOutput {
  public:
    virtual ~kaAnimationXmlOutput() = default;

    /// An element begins, inside the innermost one that has not ended.
    virtual void beginElement(const char* tag) = 0;
    /// Of the element begun last, which has neither text nor children yet.
    virtual void attribute(const char* name, std::string_view value) = 0;
    /// The whole content of the element begun last, never empty.
    virtual void text(std::string_view text) = 0;
    /// The innermost element ends.
    virtual void endElement() = 0;
};

/// Makes a DOM element.
class KA_ANIMATION_API kaAnimationXmlDomOutput final : public kaAnimationXmlOutput {
  public:
    /// @param document  makes the elements; outlives this.
    explicit kaAnimationXmlDomOutput(QDomDocument& document) : _document(document) {}

    void beginElement(const char* tag) override; ///< @copydoc kaAnimationXmlOutput::beginElement
    void attribute(const char* name, std::string_view value) override;
    void text(std::string_view text) override;
    void endElement() override; ///< @copydoc kaAnimationXmlOutput::endElement

    /// The outermost element that was ended last, attached to nothing.
    const QDomElement& element() const { return _ended; }

  private:
    QDomDocument& _document;
    std::vector<QDomElement> _open;
    QDomElement _ended;
};

/// Makes Latin-1 text: what `QDomDocument::toString(1)` gives for the same elements, with the attributes in
/// the order in which they came.
class KA_ANIMATION_API kaAnimationXmlTextOutput final : public kaAnimationXmlOutput {
  public:
    /// Receives the text piece by piece.
    using Sink = std::function<void(std::string_view)>;

    /// @param sink  what it throws comes back to whoever describes the elements.
    explicit kaAnimationXmlTextOutput(Sink sink) : _sink(std::move(sink)) {}

    /// The declaration of a document type of that name, before the root.
    void documentType(const char* name);
    void beginElement(const char* tag) override; ///< @copydoc kaAnimationXmlOutput::beginElement
    void attribute(const char* name, std::string_view value) override;
    void text(std::string_view text) override;
    void endElement() override; ///< @copydoc kaAnimationXmlOutput::endElement

  private:
    /// What stands at the end of the text.
    enum class Last { StartTag, Text, Line };

    void appendEscaped(std::string_view text, bool isAttribute);
    void indent();
    void flush();

    Sink _sink;
    std::string _buffer;
    std::vector<const char*> _open;
    Last _last = Last::Line;
};
