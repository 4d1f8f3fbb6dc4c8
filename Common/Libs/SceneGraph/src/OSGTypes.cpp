#include <OpenSG/OSGFieldFactory.h>
#include <string>

/// @file
/// Data types, field types and the factory of fields.

namespace osg {

namespace {

UInt32 nextTypeId() {
    static UInt32 last = 0;
    return ++last;
}

/// "bool" is held by an SFBool.
std::string fieldName(std::string contentName, FieldType::Cardinality cardinality) {
    if (!contentName.empty() && contentName[0] >= 'a' && contentName[0] <= 'z')
        contentName[0] = static_cast<char>(contentName[0] - 'a' + 'A');
    return (cardinality == FieldType::SINGLE_FIELD ? "SF" : "MF") + contentName;
}

} // namespace

TypeBase::TypeBase(std::string name, std::string parentName)
    : _id(nextTypeId()), _name(std::move(name)), _parentName(std::move(parentName)) {}

TypeBase::~TypeBase() = default;

DataType::DataType(std::string name, std::string parentName)
    : TypeBase(std::move(name), std::move(parentName)) {}

DataType::~DataType() = default;

FieldType::FieldType(const std::string& contentName, Cardinality cardinality, const DataType& content,
                     CreateField create)
    : DataType(fieldName(contentName, cardinality)),
      _content(content),
      _cardinality(cardinality),
      _create(create) {
    FieldFactory::the().add(*this);
}

FieldType::~FieldType() = default;

std::unique_ptr<Field> FieldType::createField() const {
    return _create();
}

FieldFactory& FieldFactory::the() {
    static FieldFactory& factory = *new FieldFactory;
    return factory;
}

const FieldType* FieldFactory::getFieldType(UInt32 id) const {
    const auto found = _byId.find(id);
    return found == _byId.end() ? nullptr : found->second;
}

const FieldType* FieldFactory::getFieldType(const Char8* name) const {
    if (name == nullptr)
        return nullptr;
    const auto found = _byName.find(name);
    return found == _byName.end() ? nullptr : found->second;
}

std::unique_ptr<Field> FieldFactory::createField(UInt32 id) const {
    const FieldType* type = getFieldType(id);
    return type == nullptr ? nullptr : type->createField();
}

std::unique_ptr<Field> FieldFactory::createField(const Char8* name) const {
    const FieldType* type = getFieldType(name);
    return type == nullptr ? nullptr : type->createField();
}

void FieldFactory::add(const FieldType& type) {
    _byId.emplace(type.getId(), &type);
    _byName.emplace(type.getCName(), &type);
}

} // namespace osg
