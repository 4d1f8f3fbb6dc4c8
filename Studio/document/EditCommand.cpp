#include "EditCommand.h"

#include "Document.h"

#include <utility>

namespace ka::studio {

EditCommand::EditCommand(Document& document, const QString& name, Snapshot before)
    : QUndoCommand(name), _document(document), _other(std::move(before)) {}

void EditCommand::undo() {
    exchange();
    _isDone = false;
}

void EditCommand::redo() {
    if (_isDone)
        _document.announce(_other.objectIds());
    else
        exchange();
    _isDone = true;
}

void EditCommand::exchange() {
    _other = _other.exchange();
    _document.announce(_other.objectIds());
}

} // namespace ka::studio
