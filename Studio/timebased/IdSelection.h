#pragma once

#include <QObject>
#include <kaAnimationTypes.h>
#include <unordered_set>
#include <vector>

namespace ka::studio {

/// How a click or a box changes a selection.
enum class SelectBy { Replacing, Adding, TakingAway, Toggling };

/// What is selected, by id: keys in one, blocks and clips in another. Views that show the same share one. An
/// id whose object has gone selects nothing, and selects it again when it comes back.
class IdSelection : public QObject {
    Q_OBJECT

  public:
    explicit IdSelection(QObject* parent = nullptr) : QObject(parent) {}

    bool contains(kaUID id) const { return _ids.count(id) != 0; }
    bool isEmpty() const { return _ids.empty(); }
    std::size_t size() const { return _ids.size(); }
    std::vector<kaUID> ids() const; ///< Ascending.

    void select(const std::vector<kaUID>& ids, SelectBy how);
    void clear() { select({}, SelectBy::Replacing); }

    /// What the modifiers held ask for: none replaces, Shift adds, Ctrl takes away or, for a click, toggles.
    static SelectBy byModifiers(Qt::KeyboardModifiers modifiers, bool isClick);

  signals:
    void changed();

  private:
    std::unordered_set<kaUID> _ids;
};

} // namespace ka::studio
