#pragma once

#include "kaAnimationTypes.h"

#include <boost/intrusive/pointer_plus_bits.hpp>
#include <cstddef>

class kaAnimationObject;

/// A child in the list of its parent, with a copy of what the list reads of it most: four to a cache line,
/// because lists are searched and shifted far more often than children change.
///
/// A key's extent is a point, so its entry holds all of it, as it was when the entry was made. Any other
/// child's is read of the child.
class kaChildEntry {
  public:
    explicit kaChildEntry(kaAnimationObject& child); ///< The child as it is now.

    kaAnimationObject* object() const { return Tagged::get_pointer(_object); }
    float begin() const { return _begin; }
    /// The begin that the entry is sorted by from now on.
    void standUnder(float begin) { _begin = begin; }
    /// Whether the child widens its parent's extent.
    bool counts() const { return has(Counts); }
    bool isSelected() const { return has(Selected); }
    bool isKey() const { return has(Key); }
    kaExtent extent() const { return isKey() ? kaExtent{_begin, _begin, _value, _value} : extentOfObject(); }

    /// Whether this and `other`, of the same child, certainly tell the same of it.
    bool tellsTheSame(const kaChildEntry& other) const {
        return isKey() && _object == other._object && _begin == other._begin && _value == other._value;
    }

    /// From here on the entry is the child's id and nothing else.
    void reduceTo(kaUID id) { _id = id; }
    kaUID id() const { return _id; } ///< after `reduceTo`

    /// Orders entries and frames.
    struct ByBegin {
        bool operator()(const kaChildEntry& a, const kaChildEntry& b) const { return a._begin < b._begin; }
        bool operator()(const kaChildEntry& entry, float frame) const { return entry._begin < frame; }
        bool operator()(float frame, const kaChildEntry& entry) const { return frame < entry._begin; }
    };

  private:
    static constexpr std::size_t Counts = 1;
    static constexpr std::size_t Selected = 2;
    static constexpr std::size_t Key = 4;
    using Tagged = boost::intrusive::pointer_plus_bits<kaAnimationObject*, 3>;

    bool has(std::size_t flag) const { return (Tagged::get_bits(_object) & flag) != 0; }
    kaExtent extentOfObject() const;

    union {
        kaAnimationObject* _object; ///< with its flags
        kaUID _id;
    };
    float _begin;
    float _value; ///< of a key
};

static_assert(sizeof(kaChildEntry) == 16, "four to a cache line");
