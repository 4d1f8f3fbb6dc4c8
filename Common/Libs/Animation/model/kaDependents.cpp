#include "kaDependents.h"

#include "kaAnimationObject.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace {

struct Link {
    kaDependent* dependent;
    std::uint32_t place;
};

/// Never destroyed: objects may outlive all other statics.
using Links = std::unordered_map<const kaAnimationObject*, std::vector<Link>>;
Links& linksByObject() {
    static auto& links = *new Links;
    return links;
}

} // namespace

void kaDependents::enter(const kaAnimationObject& object, kaDependent& dependent, std::uint32_t place) {
    // Whatever of this fails for want of memory, an object with an entry says so when it goes, and one object
    // too many to be left does no harm.
    dependent._enteredFor.push_back(&object);
    std::vector<Link>& links = linksByObject()[&object];
    object._hasDependents = true;
    links.push_back({&dependent, place});
}

void kaDependents::leave(kaDependent& dependent) noexcept {
    const auto isIts = [&dependent](const Link& link) { return link.dependent == &dependent; };
    for (const kaAnimationObject* object : dependent._enteredFor) {
        const auto found = linksByObject().find(object);
        if (found == linksByObject().end())
            continue; // the object has gone
        std::vector<Link>& links = found->second;
        links.erase(std::remove_if(links.begin(), links.end(), isIts), links.end());
        if (links.empty()) {
            object->_hasDependents = false;
            linksByObject().erase(found);
        }
    }
    dependent._enteredFor.clear();
}

void kaDependents::tell(const kaAnimationObject& object, kaChange change) noexcept {
    const auto found = linksByObject().find(&object);
    if (found != linksByObject().end())
        for (const Link& link : found->second)
            link.dependent->changed(link.place, change);
}

void kaDependents::forget(const kaAnimationObject& object) noexcept {
    tell(object, kaChange::Gone);
    linksByObject().erase(&object);
    object._hasDependents = false;
}
