#pragma once

#include "Snapshot.h"

#include <QObject>
#include <QString>
#include <QUndoStack>
#include <functional>
#include <optional>

namespace ka::studio {

/// What is open: everything that is registered, and the history of what was done to it. There is one at a
/// time, because the registry is one.
///
/// Views read the registry as they like and change it through `Gesture` alone, so that every change has a
/// name, can be undone, and comes back under the ids it had.
class Document : public QObject {
    Q_OBJECT

  public:
    explicit Document(QObject* parent = nullptr);

    QUndoStack& history() { return _history; }
    const QUndoStack& history() const { return _history; }

    /// One step that is done at once.
    /// @param name  of the step, as users read it.
    /// @param scope  whatever `change` changes.
    /// @return whether anything changed; where nothing did, no step is kept.
    bool edit(const QString& name, const Scope& scope, const std::function<void()>& change);

    /// The animation as its file would be.
    static std::string text();

    /// Says that these objects have changed, to whoever shows them; `Gesture` does.
    void announce(const std::vector<kaUID>& ids);
    /// Says that nothing is as it was: another file is open.
    void announceAll();

  signals:
    /// Ids of what has changed; some may be gone.
    void changed(const std::vector<kaUID>& ids);
    /// Everything is another.
    void replaced();

  private:
    QUndoStack _history;
};

/// A change in progress, like the dragging of a key: it may change what is in its scope again and again, and
/// becomes one step of the history, or nothing, at its end.
class Gesture {
  public:
    /// Notes how things are.
    Gesture(Document& document, const Scope& scope);
    ~Gesture(); ///< Takes back what was neither committed nor cancelled.
    Gesture(const Gesture&) = delete;
    Gesture& operator=(const Gesture&) = delete;

    /// Takes in what was made since it began.
    void includeNew(kaUID id) { _scope.objects.push_back(id); }
    /// Makes one step of what has changed. @return whether anything has. Nothing may follow.
    bool commit(const QString& name);
    /// Puts everything back as it was. Nothing may follow.
    void cancel();

    /// How things were when it began.
    const Snapshot& before() const { return _before; }

  private:
    Document& _document;
    Scope _scope;
    Snapshot _before;
    bool _isOpen = true;
};

} // namespace ka::studio
