#pragma once

#include "Snapshot.h"

#include <QUndoCommand>

namespace ka::studio {

class Document;

/// A step of the history that has been done already. It holds the one of its two sides that is not in the
/// registry, and exchanges the two.
class EditCommand : public QUndoCommand {
  public:
    /// @param before  how what differs was before the step.
    EditCommand(Document& document, const QString& name, Snapshot before);

    void undo() override;
    void redo() override; ///< The first time, by the history when it takes the command, nothing but the news.

  private:
    void exchange();

    Document& _document;
    Snapshot _other;
    bool _isDone = true;
};

} // namespace ka::studio
