#include "kaTangents.h"

#include "kaControlPoint2D.h"

#include <cmath>

namespace {

constexpr float Third = 0.33333334F;
constexpr double FixedLength = 2.0;

struct Offset {
    double x = 0.0;
    double y = 0.0;
};

/// The rise of a unit along the angle of a slope.
double riseAlong(float slope) {
    return std::tan(std::atan(static_cast<double>(slope)));
}

/// A displacement of length `length` along the angle of a slope.
Offset ofLength(double length, float slope) {
    const double angle = std::atan(static_cast<double>(slope));
    return {length * std::cos(angle), length * std::sin(angle)};
}

Offset rising(double h, float slope) {
    return {h, h * static_cast<double>(slope)};
}

Offset flat(double h) {
    return {h, 0.0};
}

/// A key between its neighbours, and how far each handle reaches from it: `in` backwards, `out` forwards.
class Placement {
  public:
    Placement(const kaControlPoint2D& key, const kaControlPoint2D* previous, const kaControlPoint2D* next)
        : _key(key.getPosition()),
          _hasPrevious(previous != nullptr),
          _hasNext(next != nullptr),
          _mode(key.getTangentLengthMode()) {
        if (previous)
            _previous = previous->getPosition();
        if (next)
            _next = next->getPosition();
    }

    kaHandles place(unsigned int type) {
        const bool known = _mode == kaControlPoint2D::LENGTH_THIRD ||
                           _mode == kaControlPoint2D::LENGTH_FIXED || _mode == kaControlPoint2D::LENGTH_HALF;
        if (known) {
            switch (type) {
            case kaControlPoint2D::TANGENT_BROKEN:
                broken();
                break;
            case kaControlPoint2D::TANGENT_FLAT:
                flatHandles();
                break;
            case kaControlPoint2D::TANGENT_SMOOTH:
                smooth();
                break;
            case kaControlPoint2D::TANGENT_FORWARD:
                forward();
                break;
            default:
                break;
            }
        }
        return {at(-1.0, _in), at(1.0, _out)};
    }

  private:
    bool both() const { return _hasPrevious && _hasNext; }
    float slopeBefore() const { return (_key[1] - _previous[1]) / (_key[0] - _previous[0]); }
    float slopeAfter() const { return (_next[1] - _key[1]) / (_next[0] - _key[0]); }
    float slopeAcross() const { return (_next[1] - _previous[1]) / (_next[0] - _previous[0]); }
    double halfBefore() const { return static_cast<double>(_key[0] - _previous[0]) * 0.5; }
    double halfAfter() const { return static_cast<double>(_next[0] - _key[0]) * 0.5; }

    /// A third of the span between the neighbours, or of the distance to the only one.
    double third() const {
        if (both())
            return static_cast<double>((_next[0] - _previous[0]) * Third);
        return static_cast<double>((_hasPrevious ? _key[0] - _previous[0] : _next[0] - _key[0]) * Third);
    }

    /// Half the distance to a neighbour, at most a third of the span between both.
    double capped(double half) const { return half > third() ? third() : half; }
    double reachBefore() const { return both() ? capped(halfBefore()) : halfToOnly(); }
    double reachAfter() const { return both() ? capped(halfAfter()) : halfToOnly(); }
    double halfToOnly() const { return _hasPrevious ? halfBefore() : halfAfter(); }

    /// Both handles on one line, as far as either may reach.
    void reachAlong(float slope) {
        const double rise = riseAlong(slope);
        _in = {reachBefore(), reachBefore() * rise};
        _out = {reachAfter(), reachAfter() * rise};
    }

    void broken() {
        switch (_mode) {
        case kaControlPoint2D::LENGTH_THIRD:
            if (both()) {
                _in = ofLength(third(), slopeBefore());
                _out = ofLength(third(), slopeAfter());
            } else {
                _in = _hasPrevious ? rising(third(), slopeBefore()) : flat(third());
                _out = _hasNext ? rising(third(), slopeAfter()) : flat(third());
            }
            break;
        case kaControlPoint2D::LENGTH_HALF:
            _in = _hasPrevious ? rising(halfBefore(), slopeBefore()) : flat(halfAfter());
            _out = _hasNext ? rising(halfAfter(), slopeAfter()) : flat(halfBefore());
            break;
        default:
            _in = _hasPrevious ? ofLength(FixedLength, slopeBefore()) : flat(FixedLength);
            _out = _hasNext ? ofLength(FixedLength, slopeAfter()) : flat(FixedLength);
            break;
        }
    }

    void flatHandles() {
        switch (_mode) {
        case kaControlPoint2D::LENGTH_THIRD:
            _in = _out = flat(third());
            break;
        case kaControlPoint2D::LENGTH_HALF:
            _in = flat(reachBefore());
            _out = flat(reachAfter());
            break;
        default:
            _in = _out = flat(FixedLength);
            break;
        }
    }

    void smooth() {
        const float slope = both() ? slopeAcross() : (_hasPrevious ? slopeBefore() : slopeAfter());
        switch (_mode) {
        case kaControlPoint2D::LENGTH_THIRD:
            _in = _out = {third(), thirdOfRise()};
            break;
        case kaControlPoint2D::LENGTH_HALF:
            if (both()) {
                reachAlong(slope);
            } else {
                _in = _out = rising(halfToOnly(), slope);
            }
            break;
        default:
            _in = _out = ofLength(FixedLength, slope);
            break;
        }
    }

    double thirdOfRise() const {
        if (both())
            return static_cast<double>((_next[1] - _previous[1]) * Third);
        return static_cast<double>((_hasPrevious ? _key[1] - _previous[1] : _next[1] - _key[1]) * Third);
    }

    void forward() {
        const float slope = _hasNext ? slopeAfter() : 0.0F;
        switch (_mode) {
        case kaControlPoint2D::LENGTH_THIRD:
            _in = _out = rising(third(), slope);
            break;
        case kaControlPoint2D::LENGTH_HALF:
            if (both()) {
                reachAlong(slope);
            } else {
                _in = _out = rising(halfToOnly(), slope);
            }
            break;
        default:
            _in = _out = _hasNext ? ofLength(FixedLength, slope) : flat(FixedLength);
            break;
        }
    }

    osg::Pnt2f at(double direction, const Offset& offset) const {
        return {static_cast<float>(static_cast<double>(_key[0]) + direction * offset.x),
                static_cast<float>(static_cast<double>(_key[1]) + direction * offset.y)};
    }

    osg::Pnt2f _key;
    osg::Pnt2f _previous{0.0F, 0.0F};
    osg::Pnt2f _next{0.0F, 0.0F};
    bool _hasPrevious;
    bool _hasNext;
    unsigned int _mode;
    Offset _in;
    Offset _out;
};

} // namespace

kaHandles kaPlaceHandles(const kaControlPoint2D& key, const kaControlPoint2D* previous,
                         const kaControlPoint2D* next) {
    return Placement(key, previous, next).place(key.getTangentType());
}
