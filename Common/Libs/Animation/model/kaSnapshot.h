#pragma once

#include "kaAnimationField.h"
#include "kaAnimationObject.h"
#include "kaObjectRegistry.h"

#include <cstdint>
#include <utility>
#include <vector>

/// Objects or fields to be visited one by one, while each visit may lead out to the host and free any of
/// them: who has left the registry meanwhile is passed over. Nulls and keys are not taken in.
///
/// Cost: one comparison per element while nothing comes or goes, else one look-up.
template <class Element>
class kaSnapshot {
  public:
    explicit kaSnapshot(const std::vector<Element*>& elements) : _epoch(epoch(registry(), null())) {
        _entries.reserve(elements.size());
        for (Element* element : elements)
            if (element && isWatched(*element))
                _entries.emplace_back(element->getId(), element);
    }

    /// @return how many were visited.
    template <class Visit>
    unsigned int visit(Visit&& visit) const {
        unsigned int count = 0;
        for (const Entry& entry : _entries) {
            if (!isThere(entry))
                continue;
            visit(*entry.second);
            ++count;
        }
        return count;
    }

    /// The first from `place` on that is still there, and moves `place` behind it; null at the end.
    Element* next(std::size_t& place) const {
        while (place < _entries.size()) {
            const Entry& entry = _entries[place++];
            if (isThere(entry))
                return entry.second;
        }
        return nullptr;
    }

  private:
    using Entry = std::pair<kaUID, Element*>;

    static const kaObjectRegistry& registry() { return kaObjectRegistry::the(); }
    static Element* null() { return nullptr; }

    // The registry's epoch does not count keys.
    static bool isWatched(const kaAnimationObject& object) { return object.getTypeID() != KA_TYPE_POINT; }
    static bool isWatched(const kaAnimationField& /*field*/) { return true; }

    static std::uint64_t epoch(const kaObjectRegistry& registry, const kaAnimationObject*) {
        return registry.epoch();
    }
    static std::uint64_t epoch(const kaObjectRegistry& registry, const kaAnimationField*) {
        return registry.fieldEpoch();
    }
    static bool holds(const kaObjectRegistry& registry, kaUID id, const kaAnimationObject* object) {
        return registry.find(id) == object;
    }
    static bool holds(const kaObjectRegistry& registry, kaUID id, const kaAnimationField* field) {
        return registry.findField(id) == field;
    }

    bool isThere(const Entry& entry) const {
        return epoch(registry(), null()) == _epoch || holds(registry(), entry.first, entry.second);
    }

    std::vector<Entry> _entries;
    std::uint64_t _epoch;
};
