#include "Run.h"
#include "kaAnimationTypes.h"

#include <algorithm>

namespace ka_model {

namespace {

std::string named(const kaAnimationObject& object) {
    return "object " + std::to_string(object.getId());
}

std::string checkChildren(const kaAnimationObject& object) {
    for (const kaAnimationObject* child : object.getObjects())
        if (child != &object && child->getParent() != object.getId())
            return named(object) + " lists " + named(*child) + ", which names another parent";
    return {};
}

std::string checkAncestors(const kaAnimationObject& object) {
    unsigned int depth = 0;
    for (const kaAnimationObject* level = object.getParentObject(); level; level = level->getParentObject())
        if (++depth > KA_MAX_DEPTH)
            return named(object) + " stands in a ring or too deep";
    return {};
}

} // namespace

/// What holds of the module by itself, whatever the model says, unless a host wrote ids, parents or lists.
std::string Run::checkInvariants() const {
    if (!_tame)
        return {};
    for (const auto& entry : manager().getObjects()) {
        const kaAnimationObject& object = *entry.second;
        if (object.getId() != entry.first)
            return named(object) + " is registered under " + std::to_string(entry.first);
        for (const std::string& fault : {checkChildren(object), checkAncestors(object)})
            if (!fault.empty())
                return fault;
    }
    return {};
}

bool Run::isListed(const Object& object) const {
    return std::any_of(_alive.begin(), _alive.end(), [&object](const Object* lister) {
        return lister != &object && World::isChild(*lister, object.id);
    });
}

} // namespace ka_model
