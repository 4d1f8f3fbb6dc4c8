#include "Document.h"

#include "EditCommand.h"

#include <kaAnimationManager.h>
#include <memory>
#include <string_view>

namespace ka::studio {

Document::Document(QObject* parent) : QObject(parent) {}

bool Document::edit(const QString& name, const Scope& scope, const std::function<void()>& change) {
    Gesture gesture(*this, scope);
    change();
    return gesture.commit(name);
}

std::string Document::text() {
    std::string text;
    kaAnimationManager::the()->writeAnimations([&text](std::string_view piece) { text += piece; });
    return text;
}

void Document::announce(const std::vector<kaUID>& ids) {
    emit changed(ids);
}

void Document::announceAll() {
    emit replaced();
}

Gesture::Gesture(Document& document, const Scope& scope)
    : _document(document), _scope(scope), _before(scope) {}

Gesture::~Gesture() {
    cancel();
}

bool Gesture::commit(const QString& name) {
    if (!_isOpen)
        return false;
    _isOpen = false;
    Snapshot after = Snapshot(_scope, _before);
    Snapshot::keepDifferences(_before, after);
    if (_before.isEmpty())
        return false;
    auto command = std::make_unique<EditCommand>(_document, name, std::move(_before));
    _document.history().push(command.release()); // the stack owns it
    return true;
}

void Gesture::cancel() {
    if (!_isOpen)
        return;
    _isOpen = false;
    Snapshot after = Snapshot(_scope, _before);
    Snapshot::keepDifferences(_before, after);
    if (_before.isEmpty())
        return;
    _before.exchange();
    _document.announce(_before.objectIds());
}

} // namespace ka::studio
