#pragma once

#include <OpenSG/OSGColor.h>
#include <OpenSG/OSGContainerPtrs.h>
#include <OpenSG/OSGDataType.h>
#include <OpenSG/OSGVolume.h>
#include <map>
#include <string>
#include <type_traits>

/// @file
/// What a field must know of its values: their name and their text form.

namespace osg {

/// Attachments by key, see AttachmentContainer.
using AttachmentMap = std::map<UInt32, AttachmentPtr>;

/// @name Text forms of numbers, independent of the locale
/// @{

/// Reads numbers separated by blanks, tabs, line ends or commas; those that are missing become 0, junk reads
/// as 0.
KA_SCENEGRAPH_API void textToReals(const Char8* text, Real32* values, UInt32 count);
/// Appends the numbers in scientific notation with six decimals.
KA_SCENEGRAPH_API void realsToText(const Real32* values, UInt32 count, const Char8* separator,
                                   std::string& text);
/// The number that the text begins with, after blanks; 0 when there is none. Too large gives infinity.
KA_SCENEGRAPH_API Real64 textToReal(const Char8* text);
KA_SCENEGRAPH_API void realToText(Real64 value, std::string& text);
/// The whole number that the text begins with: decimal, 0x hexadecimal or 0 octal; limited to the type's
/// range.
KA_SCENEGRAPH_API Int64 textToInteger(const Char8* text);
KA_SCENEGRAPH_API UInt64 textToUnsigned(const Char8* text);
/// @}

/// Name and text form of a value type. This general form serves handles: named after the container, written
/// as an address, not readable. `Namespace` tells types apart that C++ does not (Time from Real64).
template <class T, Int32 Namespace = 0>
struct FieldTraits {
    static constexpr bool IsPointer = true;
    static std::string name() { return std::string(T::StoredObjectType::TypeName) + "Ptr"; }
    static bool read(const Char8*, T&);
    static void write(const T& value, std::string& text);
};

/// Reports that handles have no readable text form; @return false.
KA_SCENEGRAPH_API bool refusePointerText();
KA_SCENEGRAPH_API void pointerToText(const FieldContainerPtr& handle, std::string& text);

template <class T, Int32 Namespace>
bool FieldTraits<T, Namespace>::read(const Char8*, T&) {
    return refusePointerText();
}

template <class T, Int32 Namespace>
void FieldTraits<T, Namespace>::write(const T& value, std::string& text) {
    pointerToText(value, text);
}

/// Any arithmetic type but bool.
template <class T>
struct NumberTraits {
    static constexpr bool IsPointer = false;
    static bool read(const Char8* text, T& value) {
        if constexpr (std::is_floating_point_v<T>)
            value = static_cast<T>(textToReal(text));
        else if constexpr (std::is_signed_v<T>)
            value = static_cast<T>(textToInteger(text));
        else
            value = static_cast<T>(textToUnsigned(text));
        return true;
    }
    static void write(const T& value, std::string& text) {
        if constexpr (std::is_floating_point_v<T>)
            realToText(static_cast<Real64>(value), text);
        else
            text += std::to_string(value);
    }
};

/// Vectors and points.
template <class T>
struct TupleTraits {
    static constexpr bool IsPointer = false;
    static bool read(const Char8* text, T& value) {
        textToReals(text, value.getValues(), T::Size);
        return true;
    }
    static void write(const T& value, std::string& text) {
        realsToText(value.getValues(), T::Size, "  ", text);
    }
};

/// Colours of floats.
template <class T>
struct ColorTraits {
    static constexpr bool IsPointer = false;
    static bool read(const Char8* text, T& value) {
        textToReals(text, value.getValuesRGB(), T::Size);
        return true;
    }
    static void write(const T& value, std::string& text) {
        realsToText(value.getValuesRGB(), T::Size, " ", text);
    }
};

// clang-format off
template <> struct FieldTraits<Int8> : NumberTraits<Int8> { static std::string name() { return "Int8"; } };
template <> struct FieldTraits<UInt8> : NumberTraits<UInt8> { static std::string name() { return "UInt8"; } };
template <> struct FieldTraits<Int16> : NumberTraits<Int16> { static std::string name() { return "Int16"; } };
template <> struct FieldTraits<UInt16> : NumberTraits<UInt16> { static std::string name() { return "UInt16"; } };
template <> struct FieldTraits<Int32> : NumberTraits<Int32> { static std::string name() { return "Int32"; } };
template <> struct FieldTraits<UInt32> : NumberTraits<UInt32> { static std::string name() { return "UInt32"; } };
template <> struct FieldTraits<Int64> : NumberTraits<Int64> { static std::string name() { return "Int64"; } };
template <> struct FieldTraits<UInt64> : NumberTraits<UInt64> { static std::string name() { return "UInt64"; } };
template <> struct FieldTraits<UInt64, 1> : NumberTraits<UInt64> { static std::string name() { return "BitVector"; } };
template <> struct FieldTraits<Real32> : NumberTraits<Real32> { static std::string name() { return "Real32"; } };
template <> struct FieldTraits<Real64> : NumberTraits<Real64> { static std::string name() { return "Real64"; } };
template <> struct FieldTraits<Time, 1> : NumberTraits<Time> { static std::string name() { return "Time"; } };
template <> struct FieldTraits<Vec2f> : TupleTraits<Vec2f> { static std::string name() { return "Vec2f"; } };
template <> struct FieldTraits<Vec3f> : TupleTraits<Vec3f> { static std::string name() { return "Vec3f"; } };
template <> struct FieldTraits<Vec4f> : TupleTraits<Vec4f> { static std::string name() { return "Vec4f"; } };
template <> struct FieldTraits<Pnt2f> : TupleTraits<Pnt2f> { static std::string name() { return "Pnt2f"; } };
template <> struct FieldTraits<Pnt3f> : TupleTraits<Pnt3f> { static std::string name() { return "Pnt3f"; } };
template <> struct FieldTraits<Pnt4f> : TupleTraits<Pnt4f> { static std::string name() { return "Pnt4f"; } };
template <> struct FieldTraits<Color3f> : ColorTraits<Color3f> { static std::string name() { return "Color3f"; } };
template <> struct FieldTraits<Color4f> : ColorTraits<Color4f> { static std::string name() { return "Color4f"; } };
// clang-format on

/// TRUE or FALSE in any case at the very start of the text.
template <>
struct KA_SCENEGRAPH_API FieldTraits<bool, 2> {
    static constexpr bool IsPointer = false;
    static std::string name() { return "bool"; }
    static bool read(const Char8* text, bool& value);
    static void write(const bool& value, std::string& text);
};

/// The text itself; written between double quotes.
template <>
struct KA_SCENEGRAPH_API FieldTraits<std::string> {
    static constexpr bool IsPointer = false;
    static std::string name() { return "string"; }
    static bool read(const Char8* text, std::string& value);
    static void write(const std::string& value, std::string& text);
};

/// Axis and angle in radians.
template <>
struct KA_SCENEGRAPH_API FieldTraits<Quaternion> {
    static constexpr bool IsPointer = false;
    static std::string name() { return "Quaternion"; }
    static bool read(const Char8* text, Quaternion& value);
    static void write(const Quaternion& value, std::string& text);
};

/// 16 numbers, row by row.
template <>
struct KA_SCENEGRAPH_API FieldTraits<Matrix> {
    static constexpr bool IsPointer = false;
    static std::string name() { return "Matrix"; }
    static bool read(const Char8* text, Matrix& value);
    static void write(const Matrix& value, std::string& text);
};

/// Four numbers: centre and radius of a sphere; six: lower and upper corner of a box; any other count: no
/// change.
template <>
struct KA_SCENEGRAPH_API FieldTraits<DynamicVolume> {
    static constexpr bool IsPointer = false;
    static std::string name() { return "DynamicVolume"; }
    static bool read(const Char8* text, DynamicVolume& value);
    static void write(const DynamicVolume& value, std::string& text);
};

/// Not readable; written as the number of attachments.
template <>
struct KA_SCENEGRAPH_API FieldTraits<AttachmentMap> {
    static constexpr bool IsPointer = false;
    static std::string name() { return "AttachmentMap"; }
    static bool read(const Char8* text, AttachmentMap& value);
    static void write(const AttachmentMap& value, std::string& text);
};

/// The type of a field's values, one for single fields and lists.
template <class T, Int32 Namespace>
KA_SCENEGRAPH_API const DataType& fieldContentType() {
    static const DataType& type = *new DataType(FieldTraits<T, Namespace>::name());
    return type;
}

} // namespace osg
