#pragma once

#include <OpenSG/OSGFieldContainer.h>
#include <type_traits>

/// @file
/// How a container type is declared. A complete type of a host's own:
///
///     class Wind : public osg::Container<Wind, osg::Attachment> {
///       public:
///         static constexpr const osg::Char8* TypeName = "Wind";
///         enum : osg::UInt32 { StrengthFieldId = Inherited::NextFieldId, NextFieldId };
///         static osg::FieldContainerType& getClassType() {
///             static auto& type = osg::declareType<Wind>({
///                 osg::describe<&Wind::_sfStrength>("strength"),
///             });
///             return type;
///         }
///         osg::Real32 getStrength() const { return _sfStrength.getValue(); }
///
///       private:
///         friend struct osg::ContainerAccess;
///         osg::SFReal32 _sfStrength;
///     };
///
/// The type is known to the factory from the first call of getClassType on. Field ids follow the order of the
/// descriptions; the enum only names them.

namespace osg {

/// What every container class has besides its fields: `Self` derives from `Container<Self, Parent>` instead
/// of from `Parent`.
template <class Self, class ParentT, class HandleT = FCPtr<typename ParentT::Ptr, Self>>
class KA_SCENEGRAPH_API Container : public ParentT {
  public:
    using Inherited = ParentT;
    using Ptr = HandleT;

    FieldContainerType& getType() override { return Self::getClassType(); }
    const FieldContainerType& getType() const override { return Self::getClassType(); }
    static UInt32 getClassTypeId() { return Self::getClassType().getId(); }
    // With strict handles only FieldContainer has it, and answers with its own group whatever the class.
#ifndef KA_STRICT_HANDLES
    static UInt16 getClassGroupId() {
        return Self::getClassType().getGroupId();
    }
#endif

    /// A copy of the prototype; null for an abstract type. Nobody counts it yet: hand it to an owner, or
    /// count it.
    static Ptr create() {
        return Ptr::dcast(Self::getClassType().createFieldContainer());
    }
    static Ptr createEmpty() {
        return Ptr::dcast(Self::getClassType().createEmptyFieldContainer());
    }

  protected:
    Container() = default;
    Container(const Container&) = default;
    ~Container() override = default;
};

namespace detail {

template <class T>
struct MemberPointer;
template <class ClassT, class MemberT>
struct MemberPointer<MemberT ClassT::*> {
    using Class = ClassT;
    using FieldT = MemberT;
};

template <class Self>
constexpr FieldContainerType::Kind kindOf() {
    if constexpr (std::is_base_of_v<Node, Self>)
        return FieldContainerType::Kind::Node;
    else if constexpr (std::is_base_of_v<NodeCore, Self>)
        return FieldContainerType::Kind::NodeCore;
    else if constexpr (std::is_base_of_v<Attachment, Self>)
        return FieldContainerType::Kind::Attachment;
    else
        return FieldContainerType::Kind::Other;
}

template <class Self>
FieldContainerType& declare(FieldContainerType::Makers makers, const Char8* groupName,
                            std::initializer_list<FieldDescription> fields) {
    auto& type = *new FieldContainerType(Self::TypeName, &Self::Inherited::getClassType(), groupName,
                                         kindOf<Self>(), makers, fields);
    assert(type.getNumFieldDescs() + 1 == Self::NextFieldId && "the enum of field ids and the fields differ");
    return type;
}

} // namespace detail

/// Describes the field that is the data member `Member`, with Flags of FieldDescription.
template <auto Member>
FieldDescription describe(const Char8* name, UInt32 flags = FieldDescription::Plain) {
    using FieldT = typename detail::MemberPointer<decltype(Member)>::FieldT;
    using Class = typename detail::MemberPointer<decltype(Member)>::Class;
    return FieldDescription(
        name, FieldT::getClassType(),
        [](FieldContainer& container) -> Field* { return &(static_cast<Class&>(container).*Member); }, flags);
}

/// Makes the type of class `Self` from its name (`Self::TypeName`), its parent class and its own fields. To
/// be called once, by `Self::getClassType()`.
/// @param groupName  the group the type belongs to; null: one of its own.
template <class Self>
FieldContainerType& declareType(std::initializer_list<FieldDescription> fields,
                                const Char8* groupName = nullptr) {
    return detail::declare<Self>({&ContainerAccess::create<Self>, &ContainerAccess::copy<Self>}, groupName,
                                 fields);
}

/// The same for a class that only others derive from.
template <class Self>
FieldContainerType& declareAbstractType(std::initializer_list<FieldDescription> fields) {
    return detail::declare<Self>({}, nullptr, fields);
}

} // namespace osg
