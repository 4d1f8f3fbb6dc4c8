#include "IdSelection.h"

#include <algorithm>

namespace ka::studio {

std::vector<kaUID> IdSelection::ids() const {
    std::vector<kaUID> ids(_ids.begin(), _ids.end());
    std::sort(ids.begin(), ids.end());
    return ids;
}

void IdSelection::select(const std::vector<kaUID>& ids, SelectBy how) {
    std::unordered_set<kaUID> chosen;
    if (how != SelectBy::Replacing)
        chosen = _ids;
    for (const kaUID id : ids)
        if (how == SelectBy::TakingAway || (how == SelectBy::Toggling && chosen.count(id) != 0))
            chosen.erase(id);
        else
            chosen.insert(id);
    if (chosen == _ids)
        return;
    _ids = std::move(chosen);
    emit changed();
}

SelectBy IdSelection::byModifiers(Qt::KeyboardModifiers modifiers, bool isClick) {
    if (modifiers.testFlag(Qt::ControlModifier))
        return isClick ? SelectBy::Toggling : SelectBy::TakingAway;
    return modifiers.testFlag(Qt::ShiftModifier) ? SelectBy::Adding : SelectBy::Replacing;
}

} // namespace ka::studio
