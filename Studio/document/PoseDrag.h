#pragma once

#include "KeyEdits.h"

#include <array>

class kaAnimationCurve2D;

namespace ka::studio {

/// The curves that move a node, whatever they drive on it.
std::vector<kaAnimationCurve2D*> curvesOfNode(unsigned int node);
/// The node's angles about X, Y and Z, in degrees; zeros where it has none.
std::array<float, 3> rotationOfNode(unsigned int node);

/// A node posed by hand at one frame: what it is moved and turned by becomes keys of its curves. One step of
/// the history at its end.
class PoseDrag {
  public:
    /// @param autoKey  whether keys are set where there are none; else only those that stand at the frame
    /// change.
    PoseDrag(Document& document, unsigned int node, float frame, bool autoKey);

    /// Whether anything can come of it: a curve that has a key at the frame, or may be given one.
    bool canKey() const;

    void translate(const std::array<float, 3>& by); ///< In the space of the node's parent.
    void rotate(const std::array<float, 3>& by);    ///< Degrees, added to the angles about X, Y and Z.
    bool commit();
    void cancel() { _gesture.cancel(); }

  private:
    void add(const std::array<kaUID, 3>& curves, const std::array<float, 3>& by);

    Document& _document;
    float _frame;
    bool _autoKey;
    std::array<kaUID, 3> _translations{}, _rotations{}; ///< curves for X, Y and Z; 0 where there is none
    Gesture _gesture;
};

} // namespace ka::studio
