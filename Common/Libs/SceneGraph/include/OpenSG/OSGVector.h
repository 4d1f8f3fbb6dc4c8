#pragma once

#include <OpenSG/OSGBaseTypes.h>
#include <array>
#include <cmath>

namespace osg {

/// What vectors and points share: `N` components of type `T`, all 0 by default.
/// Components are addressed by `operator[]` without a range check.
template <class T, UInt32 N>
class KA_SCENEGRAPH_API TupleBase {
  public:
    using ValueType = T;
    static constexpr UInt32 Size = N;

    T& operator[](UInt32 i) { return _values[i]; }
    const T& operator[](UInt32 i) const { return _values[i]; }
    T* getValues() { return _values.data(); }
    const T* getValues() const { return _values.data(); }

    T& x() { return _values[0]; }
    const T& x() const { return _values[0]; }
    T& y() { return _values[1]; }
    const T& y() const { return _values[1]; }
    T& z() {
        static_assert(N > 2, "no third component");
        return _values[2];
    }
    const T& z() const {
        static_assert(N > 2, "no third component");
        return _values[2];
    }
    T& w() {
        static_assert(N > 3, "no fourth component");
        return _values[3];
    }
    const T& w() const {
        static_assert(N > 3, "no fourth component");
        return _values[3];
    }

    template <class... Ts>
    void setValues(Ts... values) {
        static_assert(sizeof...(Ts) == N, "one value per component");
        _values = {static_cast<T>(values)...};
    }
    void setNull() { _values.fill(T(0)); }

    friend bool operator==(const TupleBase& a, const TupleBase& b) { return a._values == b._values; }
    friend bool operator!=(const TupleBase& a, const TupleBase& b) { return !(a == b); }

  protected:
    TupleBase() = default;

    std::array<T, N> _values{};
};

template <class T, UInt32 N>
class KA_SCENEGRAPH_API Point;

/// A direction or a displacement.
template <class T, UInt32 N>
class KA_SCENEGRAPH_API Vector : public TupleBase<T, N> {
  public:
    Vector() = default;
    Vector(T x, T y) { this->setValues(x, y); }
    Vector(T x, T y, T z) { this->setValues(x, y, z); }
    Vector(T x, T y, T z, T w) { this->setValues(x, y, z, w); }
    explicit Vector(const T* values) {
        for (UInt32 i = 0; i < N; ++i)
            (*this)[i] = values[i];
    }

    void setValue(const Vector& other) { *this = other; }

    T dot(const Vector& other) const {
        T sum = T(0);
        for (UInt32 i = 0; i < N; ++i)
            sum += (*this)[i] * other[i];
        return sum;
    }
    T squareLength() const { return dot(*this); }
    T length() const { return std::sqrt(squareLength()); }

    /// Scales to length 1; a vector of length 0 stays as it is.
    void normalize() {
        const T size = length();
        if (size > T(0))
            *this *= T(1) / size;
    }
    Vector cross(const Vector& b) const {
        static_assert(N == 3, "only in three dimensions");
        const Vector& a = *this;
        return Vector(a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]);
    }
    void negate() { *this *= T(-1); }

    Vector& operator+=(const Vector& other) {
        for (UInt32 i = 0; i < N; ++i)
            (*this)[i] += other[i];
        return *this;
    }
    Vector& operator-=(const Vector& other) {
        for (UInt32 i = 0; i < N; ++i)
            (*this)[i] -= other[i];
        return *this;
    }
    Vector& operator*=(T factor) {
        for (UInt32 i = 0; i < N; ++i)
            (*this)[i] *= factor;
        return *this;
    }
    friend Vector operator+(Vector a, const Vector& b) { return a += b; }
    friend Vector operator-(Vector a, const Vector& b) { return a -= b; }
    friend Vector operator-(Vector a) { return a *= T(-1); }
    friend Vector operator*(Vector a, T factor) { return a *= factor; }
    friend Vector operator*(T factor, Vector a) { return a *= factor; }

    /// The point at this displacement from the origin.
    Point<T, N> addToZero() const { return Point<T, N>(this->getValues()); }
};

/// A place. Differences of points are vectors.
template <class T, UInt32 N>
class KA_SCENEGRAPH_API Point : public TupleBase<T, N> {
  public:
    Point() = default;
    Point(T x, T y) { this->setValues(x, y); }
    Point(T x, T y, T z) { this->setValues(x, y, z); }
    Point(T x, T y, T z, T w) { this->setValues(x, y, z, w); }
    explicit Point(const T* values) {
        for (UInt32 i = 0; i < N; ++i)
            (*this)[i] = values[i];
    }

    void setValue(const Point& other) { *this = other; }

    T dist(const Point& other) const { return (*this - other).length(); }

    Point& operator+=(const Vector<T, N>& by) {
        for (UInt32 i = 0; i < N; ++i)
            (*this)[i] += by[i];
        return *this;
    }
    Point& operator-=(const Vector<T, N>& by) {
        for (UInt32 i = 0; i < N; ++i)
            (*this)[i] -= by[i];
        return *this;
    }
    friend Point operator+(Point a, const Vector<T, N>& by) { return a += by; }
    friend Point operator-(Point a, const Vector<T, N>& by) { return a -= by; }
    friend Vector<T, N> operator-(const Point& a, const Point& b) { return a.subZero() - b.subZero(); }

    /// The displacement of this point from the origin.
    Vector<T, N> subZero() const { return Vector<T, N>(this->getValues()); }
};

using Vec2f = Vector<Real32, 2>;
using Vec3f = Vector<Real32, 3>;
using Vec4f = Vector<Real32, 4>;
using Pnt2f = Point<Real32, 2>;
using Pnt3f = Point<Real32, 3>;
using Pnt4f = Point<Real32, 4>;

} // namespace osg
