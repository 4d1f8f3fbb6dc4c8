#pragma once

#include "kaAnimationTypes.h"

#include <algorithm>
#include <vector>

class kaAnimationObject;

/// One level of a walk down from container to container; lives on the stack. It is false for a container that
/// is being walked already and beyond `KA_MAX_DEPTH` levels, so that child lists that a host has bent into a
/// ring or written deeper than containers accept are walked within bounds.
class kaDescent {
  public:
    using Path = std::vector<const kaAnimationObject*>;

    /// `path` is that of one kind of walk and empty between walks.
    kaDescent(Path& path, const kaAnimationObject& container)
        : _path(path),
          _entered(path.size() < KA_MAX_DEPTH &&
                   std::find(path.begin(), path.end(), &container) == path.end()) {
        if (_entered)
            _path.push_back(&container);
    }
    kaDescent(const kaDescent&) = delete;
    kaDescent& operator=(const kaDescent&) = delete;
    ~kaDescent() {
        if (_entered)
            _path.pop_back();
    }

    explicit operator bool() const { return _entered; }

  private:
    Path& _path;
    bool _entered;
};
