#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

class kaAnimationObject;

/// The duplicates that wait to be pasted, in the order they were copied. Owns nothing: the registry does.
///
/// An entry whose object is freed meanwhile stays as an empty place, so that the buffer counts as filled
/// until it is cleared or pasted and the host hears of it just then.
class kaCopyBuffer {
  public:
    bool empty() const { return _objects.empty(); }

    /// Puts an object at the end; one that is held already stays where it is.
    void append(kaAnimationObject& object);

    /// What is still there of the contents, in order.
    std::vector<kaAnimationObject*> objects() const;

    void clear();

    /// Called for every object that is about to be freed. Cost: nothing while the buffer is empty, else one
    /// look-up.
    void forget(kaAnimationObject* object) {
        if (!_places.empty())
            vacate(object);
    }

  private:
    void vacate(kaAnimationObject* object);

    std::vector<kaAnimationObject*> _objects; ///< null where the object is gone
    std::unordered_map<kaAnimationObject*, std::size_t> _places;
};
