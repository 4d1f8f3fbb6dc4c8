#pragma once

#include <OpenSG/OSGField.h>
#include <OpenSG/OSGFieldTraits.h>
#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

namespace osg {

/// The values of a list field.
template <class T>
class MFieldVector : public std::vector<T> {
  public:
    using std::vector<T>::vector;
};

/// A field with a list of values, with the face of a vector. Use the typedefs (MFUInt64, MFNodePtr ...).
///
/// Taking the first value off costs O(1) on average: it keeps its place before the others until half of the
/// places are such. Once a host has asked for the vector itself, whose values may be looked at any time, this
/// ends.
template <class T, Int32 Namespace = 0>
class KA_SCENEGRAPH_API MField : public Field {
  public:
    using StoredType = MFieldVector<T>;
    using Traits = FieldTraits<T, Namespace>;
    using value_type = T;
    using reference = T&;
    using const_reference = const T&;
    using iterator = typename std::vector<T>::iterator;
    using const_iterator = typename std::vector<T>::const_iterator;
    using reverse_iterator = typename std::vector<T>::reverse_iterator;
    using const_reverse_iterator = typename std::vector<T>::const_reverse_iterator;

    MField() = default;
    MField(const MField& other) : Field(other), _values(other.begin(), other.end()) {}
    MField& operator=(const MField& other) {
        setValues(other);
        return *this;
    }
    ~MField() override = default;

    static const FieldType& getClassType();
    const FieldType& getType() const override { return getClassType(); }

    StoredType& getValues() { return shown(); }
    const StoredType& getValues() const { return shown(); }
    void setValues(const std::vector<T>& values) {
        if (&values == &_values)
            return;
        _values.assign(values.begin(), values.end());
        _gone = 0;
    }
    void setValues(const MField& other) {
        if (&other == this)
            return;
        _values.assign(other.begin(), other.end());
        _gone = 0;
    }
    void syncWith(const MField& other) { setValues(other); }

    std::size_t size() const { return _values.size() - _gone; }
    bool empty() const { return size() == 0; }
    void clear() {
        _values.clear();
        _gone = 0;
    }
    void reserve(std::size_t count) { _values.reserve(_gone + count); }
    void resize(std::size_t count, const T& value = T()) { _values.resize(_gone + count, value); }
    void swap(MField& other) {
        _values.swap(other._values);
        std::swap(_gone, other._gone);
        if (_shown || other._shown) {
            close();
            other.close();
        }
    }
    void push_back(const T& value) { _values.push_back(value); }
    iterator insert(iterator where, const T& value) { return _values.insert(where, value); }
    iterator erase(iterator where) { return erase(where, where + 1); }
    iterator erase(iterator first, iterator last) {
        if (!KeepsPlaces || _shown || first != begin())
            return _values.erase(first, last);
        _gone += static_cast<UInt32>(last - first);
        if (2 * std::size_t{_gone} > _values.size())
            close();
        return begin();
    }
    /// The first equal value, or end().
    iterator find(const T& value) { return std::find(begin(), end(), value); }
    const_iterator find(const T& value) const { return std::find(begin(), end(), value); }

    T& operator[](std::size_t index) { return _values[_gone + index]; }
    const T& operator[](std::size_t index) const { return _values[_gone + index]; }
    T& front() { return _values[_gone]; }
    const T& front() const { return _values[_gone]; }
    T& back() { return _values.back(); }
    const T& back() const { return _values.back(); }
    iterator begin() { return _values.begin() + static_cast<std::ptrdiff_t>(_gone); }
    iterator end() { return _values.end(); }
    const_iterator begin() const { return _values.begin() + static_cast<std::ptrdiff_t>(_gone); }
    const_iterator end() const { return _values.end(); }
    reverse_iterator rbegin() { return _values.rbegin(); }
    reverse_iterator rend() { return reverse_iterator(begin()); }
    const_reverse_iterator rbegin() const { return _values.rbegin(); }
    const_reverse_iterator rend() const { return const_reverse_iterator(begin()); }

    UInt32 getSize() const override { return static_cast<UInt32>(size()); }
    bool isEmpty() const override { return empty(); }

    void pushValueByStr(const Char8* text) override {
        T value{};
        if (Traits::read(text, value))
            _values.push_back(value);
    }
    std::string& getValueByStr(std::string& text) const override {
        for (std::size_t i = 0; i < size(); ++i) {
            if (i > 0)
                text += ", ";
            Traits::write((*this)[i], text);
        }
        return text;
    }
    std::string& getValueByStr(std::string& text, UInt32 index) const override {
        if (index < size())
            Traits::write((*this)[index], text);
        return text;
    }
    void setAbstrValue(const Field& source) override {
        if (source.getType() == getClassType())
            setValues(static_cast<const MField&>(source));
    }

    bool isPointerField() const override { return Traits::IsPointer; }
    FieldContainerPtr getPointer(UInt32 index) const override {
        if constexpr (Traits::IsPointer)
            return index < size() ? FieldContainerPtr((*this)[index]) : FieldContainerPtr();
        else
            return Field::getPointer(index);
    }
    bool pushPointer(const FieldContainerPtr& handle) override {
        if constexpr (Traits::IsPointer) {
            const T value = dynamic_pointer_cast<T>(handle);
            if ((value == NullFC) != (handle == NullFC))
                return false;
            _values.push_back(value);
            return true;
        } else {
            return Field::pushPointer(handle);
        }
    }

  private:
    /// Whether a value that has gone may stay where it is: nothing is to be freed with it.
    static constexpr bool KeepsPlaces = std::is_trivially_destructible_v<T>;

    /// The vector as it is to be from now on.
    StoredType& shown() const {
        close();
        _shown = true;
        return _values;
    }
    /// Takes the places of the values that have gone.
    void close() const {
        if (_gone > 0)
            _values.erase(_values.begin(), _values.begin() + static_cast<std::ptrdiff_t>(_gone));
        _gone = 0;
    }

    mutable StoredType _values;  ///< values that have gone, then those of the field
    mutable UInt32 _gone = 0;    ///< always 0 once shown
    mutable bool _shown = false; ///< a host may hold a reference to the vector
};

template <class T, Int32 Namespace>
const FieldType& MField<T, Namespace>::getClassType() {
    static const FieldType& type =
        *new FieldType(Traits::name(), FieldType::MULTI_FIELD, fieldContentType<T, Namespace>(),
                       [] { return std::unique_ptr<Field>(new MField); });
    return type;
}

} // namespace osg
