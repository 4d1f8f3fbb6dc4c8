#pragma once

#include <OpenSG/OSGField.h>
#include <OpenSG/OSGFieldTraits.h>

namespace osg {

/// A field with one value. Use the typedefs (SFReal32, SFVec3f ...): they carry the right second argument.
template <class T, Int32 Namespace = 0>
class KA_SCENEGRAPH_API SField : public Field {
  public:
    using StoredType = T;
    using Traits = FieldTraits<T, Namespace>;

    SField() = default;
    explicit SField(const T& value) : _value(value) {}

    static const FieldType& getClassType();
    const FieldType& getType() const override { return getClassType(); }

    T& getValue() { return _value; }
    const T& getValue() const { return _value; }
    void setValue(const T& value) { _value = value; }
    void setValue(const SField& other) { _value = other._value; }
    void syncWith(const SField& other) { _value = other._value; }

    UInt32 getSize() const override { return 1; }
    bool isEmpty() const override { return false; }

    void pushValueByStr(const Char8* text) override { Traits::read(text, _value); }
    std::string& getValueByStr(std::string& text) const override {
        text.clear();
        Traits::write(_value, text);
        return text;
    }
    std::string& getValueByStr(std::string& text, UInt32 index) const override {
        return index == 0 ? getValueByStr(text) : text;
    }
    void setAbstrValue(const Field& source) override {
        if (source.getType() == getClassType())
            _value = static_cast<const SField&>(source)._value;
    }

    bool isPointerField() const override { return Traits::IsPointer; }
    FieldContainerPtr getPointer(UInt32 index) const override {
        if constexpr (Traits::IsPointer)
            return index == 0 ? FieldContainerPtr(_value) : FieldContainerPtr();
        else
            return Field::getPointer(index);
    }
    bool pushPointer(const FieldContainerPtr& handle) override {
        if constexpr (Traits::IsPointer) {
            const T value = dynamic_pointer_cast<T>(handle);
            if ((value == NullFC) != (handle == NullFC))
                return false;
            _value = value;
            return true;
        } else {
            return Field::pushPointer(handle);
        }
    }

  private:
    T _value{};
};

template <class T, Int32 Namespace>
const FieldType& SField<T, Namespace>::getClassType() {
    static const FieldType& type =
        *new FieldType(Traits::name(), FieldType::SINGLE_FIELD, fieldContentType<T, Namespace>(),
                       [] { return std::unique_ptr<Field>(new SField); });
    return type;
}

} // namespace osg
