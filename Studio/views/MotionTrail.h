#pragma once

#include "space/Figure.h"

#include <cstddef>

namespace ka::studio {

/// The way of a joint around a frame, with its keys, and the figure some frames before and after: found by evaluating
/// there, a little at a time, so that a large scene holds nothing up.
class MotionTrail {
  public:
    struct Span {
        float now = 0.0F, begin = 0.0F, end = 0.0F; ///< frames
    };

    /// Begins anew.
    /// @param joint  of the figure whose way is wanted; -1 for none.
    void begin(const Figure& figure, const std::vector<kaUID>& objects, const Span& span, int joint,
               bool hasGhosts);
    void clear();
    bool isComplete() const { return _next == _frames.size(); }
    /// Goes on for some milliseconds, and leaves the scene as the objects have it at the frame where it began.
    void sample(const Figure& figure, int milliseconds);

    /// From the first frame to the last of those that are known.
    const std::vector<QVector3D>& way() const { return _way; }
    const std::vector<QVector3D>& keys() const { return _keys; } ///< Where on it a key stands.
    const std::vector<std::vector<QVector3D>>& ghosts() const { return _ghosts; } ///< Places of all joints.

  private:
    struct Wanted {
        float frame;
        bool isGhost;
    };

    void evaluate(float frame) const;

    std::vector<kaUID> _objects;
    std::vector<Wanted> _frames; ///< the nearest first
    std::size_t _next = 0;
    float _now = 0.0F;
    unsigned int _node = 0;
    std::vector<float> _keyFrames;
    std::vector<QVector3D> _way, _keys;
    std::vector<std::vector<QVector3D>> _ghosts;
};

} // namespace ka::studio
