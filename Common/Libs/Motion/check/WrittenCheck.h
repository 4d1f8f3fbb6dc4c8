#pragma once

#include <kaAnimationXmlOutput.h>
#include <kaMotion/DocumentOutline.h>
#include <kaMotion/Listener.h>
#include <string>
#include <vector>

namespace ka::motion {

/// Makes the outline of a document while it is written, from the very text that goes into the file, and hands
/// everything on.
class OutlineOutput final : public kaAnimationXmlOutput {
  public:
    /// Both outlive this.
    OutlineOutput(kaAnimationXmlOutput& output, DocumentOutline& outline)
        : _output(output), _outline(outline) {}

    void beginElement(const char* tag) override;
    void attribute(const char* name, std::string_view value) override;
    void text(std::string_view text) override;
    void endElement() override;

  private:
    bool isEntry() const { return _depth == 2; }
    bool isChild() const { return _depth == 3; }

    kaAnimationXmlOutput& _output;
    DocumentOutline& _outline;
    int _depth = 0;
    char _place = 0; ///< of the element begun last: the first letter of its tag
};

/// Samples every curve of a document as opening it will give it against the registered curve of the same id.
/// @return a line for each curve that is not what was meant or has no value somewhere in its span, with its
///         name and the frame; empty when all is well. Cost: O(n log n), a few samples for each key that the
///         document does not hold exactly.
/// @param listener  hears of every element, as "checking"; it cannot end the check.
std::vector<std::string> checkWritten(const DocumentOutline& written, Listener& listener = Listener::none());

} // namespace ka::motion
