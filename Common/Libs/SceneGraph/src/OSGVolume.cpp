#include <OpenSG/OSGVolume.h>
#include <algorithm>
#include <cmath>

namespace osg {

namespace {

bool isFinite(const Pnt3f& point) {
    return std::isfinite(point[0]) && std::isfinite(point[1]) && std::isfinite(point[2]);
}

} // namespace

void DynamicVolume::setBox(const Pnt3f& minimum, const Pnt3f& maximum) {
    _type = BOX_VOLUME;
    _empty = false;
    _minimum = minimum;
    _maximum = maximum;
}

void DynamicVolume::setSphere(const Pnt3f& center, Real32 radius) {
    _type = SPHERE_VOLUME;
    _empty = false;
    _minimum = center;
    _maximum = Pnt3f(radius, 0.0F, 0.0F);
}

void DynamicVolume::getBounds(Pnt3f& minimum, Pnt3f& maximum) const {
    if (_type == SPHERE_VOLUME) {
        const Vec3f radius(_maximum[0], _maximum[0], _maximum[0]);
        minimum = _minimum - radius;
        maximum = _minimum + radius;
        return;
    }
    minimum = _minimum;
    maximum = _maximum;
}

Pnt3f DynamicVolume::getCenter() const {
    if (_type == SPHERE_VOLUME)
        return _minimum;
    return _minimum + (_maximum - _minimum) * 0.5F;
}

Real32 DynamicVolume::getRadius() const {
    return _type == SPHERE_VOLUME ? _maximum[0] : 0.5F * (_maximum - _minimum).length();
}

void DynamicVolume::extendBy(const Pnt3f& point) {
    if (!isFinite(point))
        return;
    Pnt3f minimum = point;
    Pnt3f maximum = point;
    if (!_empty) {
        getBounds(minimum, maximum);
        for (UInt32 i = 0; i < 3; ++i) {
            minimum[i] = std::min(minimum[i], point[i]);
            maximum[i] = std::max(maximum[i], point[i]);
        }
    }
    setBox(minimum, maximum);
}

void DynamicVolume::extendBy(const DynamicVolume& other) {
    if (other._empty)
        return;
    Pnt3f minimum;
    Pnt3f maximum;
    other.getBounds(minimum, maximum);
    extendBy(minimum);
    extendBy(maximum);
}

void DynamicVolume::transform(const Matrix& matrix) {
    if (_empty)
        return;
    Pnt3f bounds[2];
    getBounds(bounds[0], bounds[1]);
    DynamicVolume moved;
    for (UInt32 corner = 0; corner < 8; ++corner) {
        Pnt3f point(bounds[corner & 1U][0], bounds[(corner >> 1U) & 1U][1], bounds[(corner >> 2U) & 1U][2]);
        matrix.multMatrixPnt(point, point);
        moved.extendBy(point);
    }
    *this = moved;
}

} // namespace osg
