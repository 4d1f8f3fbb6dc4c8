#pragma once

#include <OpenSG/OSGBaseTypes.h>
#include <array>

namespace osg {

/// A colour of `N` components (3: red, green, blue; 4: and alpha), all 0 by default. Float components are
/// meant to lie in [0, 1] but are not held to it; byte components run from 0 to 255.
template <class T, UInt32 N>
class KA_SCENEGRAPH_API ColorBase {
  public:
    using ValueType = T;
    static constexpr UInt32 Size = N;

    ColorBase() = default;
    ColorBase(T red, T green, T blue) : _values{red, green, blue} {
        static_assert(N == 3, "alpha is missing");
    }
    ColorBase(T red, T green, T blue, T alpha) : _values{red, green, blue, alpha} {}

    T& operator[](UInt32 i) { return _values[i]; }
    const T& operator[](UInt32 i) const { return _values[i]; }
    T* getValuesRGB() { return _values.data(); }
    const T* getValuesRGB() const { return _values.data(); }

    T& red() { return _values[0]; }
    T red() const { return _values[0]; }
    T& green() { return _values[1]; }
    T green() const { return _values[1]; }
    T& blue() { return _values[2]; }
    T blue() const { return _values[2]; }
    T& alpha() {
        static_assert(N == 4, "no alpha");
        return _values[3];
    }
    T alpha() const {
        static_assert(N == 4, "no alpha");
        return _values[3];
    }

    template <class... Ts>
    void setValuesRGB(Ts... values) {
        static_assert(sizeof...(Ts) == 3, "red, green, blue");
        setFirst(static_cast<T>(values)...);
    }
    template <class... Ts>
    void setValuesRGBA(Ts... values) {
        static_assert(sizeof...(Ts) == 4 && N == 4, "red, green, blue, alpha");
        _values = {static_cast<T>(values)...};
    }

    friend bool operator==(const ColorBase& a, const ColorBase& b) { return a._values == b._values; }
    friend bool operator!=(const ColorBase& a, const ColorBase& b) { return !(a == b); }

  private:
    void setFirst(T red, T green, T blue) {
        _values[0] = red;
        _values[1] = green;
        _values[2] = blue;
    }

    std::array<T, N> _values{};
};

using Color3f = ColorBase<Real32, 3>;
using Color4f = ColorBase<Real32, 4>;
using Color3ub = ColorBase<UInt8, 3>;
using Color4ub = ColorBase<UInt8, 4>;

} // namespace osg
