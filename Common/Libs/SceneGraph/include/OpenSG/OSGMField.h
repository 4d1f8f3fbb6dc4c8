#pragma once

#include <OpenSG/OSGField.h>
#include <OpenSG/OSGFieldTraits.h>
#include <algorithm>
#include <vector>

namespace osg {

/// The values of a list field.
template <class T>
class MFieldVector : public std::vector<T> {
  public:
    using std::vector<T>::vector;
};

/// A field with a list of values, with the face of a vector. Use the typedefs (MFUInt64, MFNodePtr ...).
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

    static const FieldType& getClassType();
    const FieldType& getType() const override { return getClassType(); }

    StoredType& getValues() { return _values; }
    const StoredType& getValues() const { return _values; }
    void setValues(const std::vector<T>& values) { _values.assign(values.begin(), values.end()); }
    void setValues(const MField& other) { _values = other._values; }
    void syncWith(const MField& other) { _values = other._values; }

    std::size_t size() const { return _values.size(); }
    bool empty() const { return _values.empty(); }
    void clear() { _values.clear(); }
    void reserve(std::size_t count) { _values.reserve(count); }
    void resize(std::size_t count, const T& value = T()) { _values.resize(count, value); }
    void swap(MField& other) { _values.swap(other._values); }
    void push_back(const T& value) { _values.push_back(value); }
    iterator insert(iterator where, const T& value) { return _values.insert(where, value); }
    iterator erase(iterator where) { return _values.erase(where); }
    iterator erase(iterator first, iterator last) { return _values.erase(first, last); }
    /// The first equal value, or end().
    iterator find(const T& value) { return std::find(_values.begin(), _values.end(), value); }
    const_iterator find(const T& value) const { return std::find(_values.begin(), _values.end(), value); }

    T& operator[](std::size_t index) { return _values[index]; }
    const T& operator[](std::size_t index) const { return _values[index]; }
    T& front() { return _values.front(); }
    const T& front() const { return _values.front(); }
    T& back() { return _values.back(); }
    const T& back() const { return _values.back(); }
    iterator begin() { return _values.begin(); }
    iterator end() { return _values.end(); }
    const_iterator begin() const { return _values.begin(); }
    const_iterator end() const { return _values.end(); }
    reverse_iterator rbegin() { return _values.rbegin(); }
    reverse_iterator rend() { return _values.rend(); }
    const_reverse_iterator rbegin() const { return _values.rbegin(); }
    const_reverse_iterator rend() const { return _values.rend(); }

    UInt32 getSize() const override { return static_cast<UInt32>(_values.size()); }
    bool isEmpty() const override { return _values.empty(); }

    void pushValueByStr(const Char8* text) override {
        T value{};
        if (Traits::read(text, value))
            _values.push_back(value);
    }
    std::string& getValueByStr(std::string& text) const override {
        for (std::size_t i = 0; i < _values.size(); ++i) {
            if (i > 0)
                text += ", ";
            Traits::write(_values[i], text);
        }
        return text;
    }
    std::string& getValueByStr(std::string& text, UInt32 index) const override {
        if (index < _values.size())
            Traits::write(_values[index], text);
        return text;
    }
    void setAbstrValue(const Field& source) override {
        if (source.getType() == getClassType())
            _values = static_cast<const MField&>(source)._values;
    }

    bool isPointerField() const override { return Traits::IsPointer; }
    FieldContainerPtr getPointer(UInt32 index) const override {
        if constexpr (Traits::IsPointer)
            return index < _values.size() ? FieldContainerPtr(_values[index]) : FieldContainerPtr();
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
    StoredType _values;
};

template <class T, Int32 Namespace>
const FieldType& MField<T, Namespace>::getClassType() {
    static const FieldType& type =
        *new FieldType(Traits::name(), FieldType::MULTI_FIELD, fieldContentType<T, Namespace>(),
                       [] { return std::unique_ptr<Field>(new MField); });
    return type;
}

} // namespace osg
