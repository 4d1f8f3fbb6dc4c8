#include "kaAnimationStrip.h"

#include "kaAnimationStreak.h"
#include "kaChildList.h"
#include "kaObjectStore.h"

#include <algorithm>

namespace {

bool isTrack(const kaAnimationObject& object) {
    return kaObjectCast<const kaAnimationStreak>(&object) != nullptr;
}

} // namespace

kaAnimationStrip::kaAnimationStrip(const std::string& name, kaUID id) : kaAnimationContainer(name, id) {}

kaAnimationStrip::kaAnimationStrip(kaAnimationStrip& source) : kaAnimationContainer(source) {
    addCopies(source);
}

kaAnimationStrip::kaAnimationStrip(const kaAnimationStrip& source, WithoutChildren /*unused*/)
    : kaAnimationContainer(source) {}

/// A clip copies its tracks alone.
bool kaAnimationStrip::copiesBelow(const kaAnimationObject& child) const {
    return isTrack(child);
}

kaAnimationObject* kaAnimationStrip::copyOf(kaAnimationObject& /*child*/) const {
    return nullptr;
}

bool kaAnimationStrip::reaches(const kaAnimationObject& child) const {
    return isTrack(child);
}

std::vector<kaAnimationStreak*> kaAnimationStrip::tracks() const {
    std::vector<kaAnimationStreak*> found;
    for (kaAnimationObject* child : getObjects())
        if (isTrack(*child))
            found.push_back(static_cast<kaAnimationStreak*>(child));
    return found;
}

// Children.

kaAnimationObject* kaAnimationStrip::addObject(kaAnimationObject* object) {
    if (!object)
        return nullptr;
    if (!isTrack(*object))
        return isLaidOut(*object) ? addTrackFor(*object) : nullptr;
    const auto number = static_cast<unsigned int>(getChildCount());
    if (!adopt(*object))
        return nullptr;
    static_cast<kaAnimationStreak*>(object)->setIndex(number);
    return object;
}

kaAnimationStreak* kaAnimationStrip::addTrackFor(kaAnimationObject& object) {
    constexpr unsigned int TrackLevel = 1;
    if (!mayAdopt(object, TrackLevel))
        return nullptr;
    kaAnimationStreak* track = kaObjectStore::make<kaAnimationStreak>("Track", kaUID{0});
    addObject(track);
    track->addObject(&object);
    return track;
}

kaAnimationObject* kaAnimationStrip::subObject(kaAnimationObject* object, bool destroy) {
    if (!object || (!isTrack(*object) && !isLaidOut(*object)))
        return nullptr;
    if (isTrack(*object) && isChild(*object))
        return release(*object, destroy);
    kaAnimationStreak* track = trackOf(object->getId());
    if (track)
        track->subObject(object, destroy);
    return track;
}

/// The first track that lists the id.
kaAnimationStreak* kaAnimationStrip::trackOf(kaUID id) const {
    const auto [owner, isOnly] = kaChildList::onlyOwnerOf(id);
    if (isOnly)
        return owner && isTrack(*owner) && isChild(*owner) ? static_cast<kaAnimationStreak*>(owner) : nullptr;
    const std::vector<kaAnimationStreak*> all = tracks();
    const auto found = std::find_if(all.begin(), all.end(), [id](const kaAnimationStreak* track) {
        return track->findObject(id).second;
    });
    return found != all.end() ? *found : nullptr;
}

kaAnimationStreak* kaAnimationStrip::insertObject(kaAnimationObject* object) {
    if (!object || !isLaidOut(*object))
        return nullptr;
    for (kaAnimationStreak* track : tracks())
        if (track->insertObject(object))
            return track;
    return addTrackFor(*object);
}

// Tracks.

std::map<unsigned int, kaAnimationStreak*> kaAnimationStrip::getStreaks() const {
    std::map<unsigned int, kaAnimationStreak*> byNumber;
    for (kaAnimationStreak* track : tracks())
        byNumber.emplace(track->getIndex(), track);
    return byNumber;
}

void kaAnimationStrip::destroyEmptyStreaks() {
    for (const auto& entry : getStreaks())
        if (!entry.second->hasChildren())
            subObject(entry.second, true);
}

void kaAnimationStrip::destroyEmptyStreaksAtEnd() {
    const auto byNumber = getStreaks();
    std::vector<kaAnimationStreak*> empty;
    for (auto count = static_cast<unsigned int>(getChildCount()); count > 0; --count) {
        const auto found = byNumber.find(count - 1);
        if (found == byNumber.end() || found->second->hasChildren())
            break;
        empty.push_back(found->second);
    }
    for (kaAnimationStreak* track : empty)
        subObject(track, true);
}
