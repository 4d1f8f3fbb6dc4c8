#pragma once

#include "KeyEdits.h"

namespace ka::studio {

/// Keys moved by hand, all by the same distance: from wherever the drag began, as often as the mouse moves.
/// In time they stop at the neighbours that stay, as a group. One step of the history at its end.
class KeyDrag {
  public:
    KeyDrag(Document& document, const Ids& keys);

    /// @param frames,value  from where the drag began.
    /// @param wholeFrames,wholeValues  whether what comes of it is rounded.
    void moveTo(float frames, float value, bool wholeFrames, bool wholeValues);
    bool commit() { return _gesture.commit(_name); }
    void cancel() { _gesture.cancel(); }

    const Ids& curves() const { return _curves; } ///< The curves that change.
    /// How far the keys have come in time: less than was asked for where a neighbour stood in the way.
    float frames() const { return _frames; }

  private:
    std::pair<float, float> freedom() const;
    bool step(float frames, float value, bool wholeFrames, bool wholeValues);

    Document& _document;
    Ids _keys, _curves;
    Gesture _gesture;
    QString _name;
    float _frames = 0.0F, _value = 0.0F;
};

/// A handle moved by hand; its key becomes one whose handles are set by hand.
class HandleDrag {
  public:
    enum class Side { In, Out };
    /// @param breakApart  whether the other handle stays; else it turns along where both were on one line.
    HandleDrag(Document& document, kaUID key, Side side, bool breakApart);

    /// @param frame,value  where the handle goes; held between its key and the neighbour.
    void moveTo(float frame, float value);
    bool commit();
    void cancel() { _gesture.cancel(); }

    kaUID curve() const { return _curve; }

  private:
    void turnOther(kaControlPoint2D& key);

    Document& _document;
    kaUID _key, _curve;
    Side _side;
    bool _isUnified = false;
    double _otherLength = 0.0; ///< of the handle across, in time
    Gesture _gesture;
};

/// Keys spread or drawn together about a fixed point, their handles with them.
class KeyScale {
  public:
    KeyScale(Document& document, const Ids& keys);

    /// @param inTime,inValue  factors; a factor in time that is not positive is left out.
    void scale(float pivotFrame, float pivotValue, float inTime, float inValue);
    bool commit();
    void cancel() { _gesture.cancel(); }

    const Ids& curves() const { return _curves; }

  private:
    struct Start {
        kaUID key;
        osg::Pnt2f position, in, out;
    };
    bool leavesOrder(float pivotFrame, float inTime) const;

    Document& _document;
    Ids _curves;
    std::vector<Start> _starts;
    Gesture _gesture;
};

} // namespace ka::studio
