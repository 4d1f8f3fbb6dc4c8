#pragma once

#include <OpenSG/OSGMField.h>
#include <memory>
#include <unordered_map>

namespace osg {

/// Adds and removes entries of a list of parents in constant time, however many there are: a core or an
/// attachment may be shared by all nodes of a scene. A short list is simply searched; a long one gets an
/// index. The order of the list means nothing.
class ParentIndex {
  public:
    ParentIndex() = default;
    /// A copy of what has parents has none itself.
    ParentIndex(const ParentIndex&) {}
    ParentIndex& operator=(const ParentIndex&) = delete;

    template <class HandleT>
    void add(MField<HandleT>& parents, const HandleT& parent) {
        parents.push_back(parent);
        const std::size_t place = parents.size() - 1;
        if (_places != nullptr)
            _places->emplace(parent.getFieldContainerId(), place);
        else if (parents.size() > SEARCHED)
            build(parents);
    }

    /// Removes one entry with that id; nothing happens when there is none.
    template <class HandleT>
    void remove(MField<HandleT>& parents, UInt32 id) {
        const std::size_t place = find(parents, id);
        if (place == parents.size())
            return;
        const std::size_t last = parents.size() - 1;
        if (_places != nullptr) {
            forget(id, place);
            if (place != last) {
                const UInt32 moved = parents[last].getFieldContainerId();
                forget(moved, last);
                _places->emplace(moved, place);
            }
        }
        parents[place] = parents[last];
        parents.resize(last);
        if (last == 0)
            _places.reset();
    }

  private:
    static constexpr std::size_t SEARCHED = 32;

    template <class HandleT>
    void build(const MField<HandleT>& parents) {
        _places = std::make_unique<std::unordered_multimap<UInt32, std::size_t>>();
        for (std::size_t i = 0; i < parents.size(); ++i)
            _places->emplace(parents[i].getFieldContainerId(), i);
    }

    template <class HandleT>
    std::size_t find(const MField<HandleT>& parents, UInt32 id) const {
        if (_places != nullptr) {
            const auto found = _places->find(id);
            return found == _places->end() ? parents.size() : found->second;
        }
        std::size_t place = 0;
        while (place < parents.size() && parents[place].getFieldContainerId() != id)
            ++place;
        return place;
    }

    void forget(UInt32 id, std::size_t place) {
        const auto range = _places->equal_range(id);
        for (auto entry = range.first; entry != range.second; ++entry) {
            if (entry->second == place) {
                _places->erase(entry);
                return;
            }
        }
    }

    std::unique_ptr<std::unordered_multimap<UInt32, std::size_t>> _places;
};

} // namespace osg
