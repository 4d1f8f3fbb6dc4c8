#pragma once

#include <OpenSG/OSGFieldContainerPtr.h>
#include <OpenSG/OSGFieldContainerType.h>
#include <OpenSG/OSGMField.h>
#include <OpenSG/OSGSField.h>
#include <functional>
#include <memory>
#include <utility>
#include <variant>
#include <vector>

namespace osg {

/// Receives the values of a container that are no fields (see FieldContainer::visitProperties): the name of
/// each and where it is.
using PropertyVisitor = std::function<void(const Char8* name, std::variant<Real32*, bool*> value)>;

/// An object of the scene graph: fields that can be found by name, an id under which the factory finds it,
/// and a count of references that decides how long it lives.
///
/// Containers are made by `X::create()` or by their type and are used through handles. The count starts at 0;
/// see addRefCP. A container that goes is taken out of everything that lists it (its parent's children, the
/// map that it is attached in) and counts down what it owns. All of it is for one thread.
class KA_SCENEGRAPH_API FieldContainer {
  public:
    using Ptr = FieldContainerPtr;
    static constexpr const Char8* TypeName = "FieldContainer";
    enum : UInt32 { NextFieldId = 1 };

    FieldContainer& operator=(const FieldContainer&) = delete;

    static FieldContainerType& getClassType();
#ifdef KA_STRICT_HANDLES
    static UInt16 getClassGroupId() {
        return getClassType().getGroupId();
    }
    /// Overwrites the memory and keeps it for good, so that whoever reads a container that is gone is found
    /// out; a sanitized build leaves both to the sanitizer.
    static void operator delete(void* memory, std::size_t size);
    static void* operator new(std::size_t size);
#endif
    virtual FieldContainerType& getType() = 0;
    virtual const FieldContainerType& getType() const = 0;
    UInt32 getTypeId() const {
        return getType().getId();
    }
    UInt16 getGroupId() const {
        return getType().getGroupId();
    }
    const Char8* getTypeName() const {
        return getType().getCName();
    }

    UInt32 getFieldContainerId() const {
        return _id;
    }
    Int32 getRefCount() const {
        return _refCount;
    }

    /// The field with that name or id; null if there is none. Its address stays the same as long as the
    /// container lives.
    Field* getField(const Char8* name);
    const Field* getField(const Char8* name) const;
    Field* getField(UInt32 fieldId);
    const Field* getField(UInt32 fieldId) const;

    /// A new container with the same values. Attachments and whatever else the fields mean are shared; a
    /// copied node has neither parent, children nor core.
    FieldContainerPtr shallowCopy() const;

    /// Called after fields have changed (see endEditCP), with the mask of the fields; a host's type may
    /// override it to follow changes, and calls that of its base.
    virtual void changed(BitVector whichField, UInt32 origin);

    /// Shows `visitor` every value that belongs to the container and is no field, so that a scene file can
    /// hold it. Most types have none.
    virtual void visitProperties(const PropertyVisitor& visitor);

  protected:
    FieldContainer();
    /// Copies nothing: a copy is a container of its own.
    FieldContainer(const FieldContainer&);
    virtual ~FieldContainer();

    /// Called when a copy has all its fields; counts up what it now shares.
    virtual void onCopied();

    /// Called before the container is destroyed, when handles to it are null already: takes it out of what
    /// lists it, counts down what it owns. Ends with the base's. Must not create containers.
    virtual void onDestroy();

    /// Announces that a parent has let go of `container`, as `endEditCP` does. While containers are being
    /// destroyed what the host throws in answer waits until all of them are gone.
    static void announceParents(const FieldContainerPtr& container, BitVector mask);

  private:
    friend class FieldContainerPtrBase;
    friend struct ContainerAccess;
    friend class SceneFileLinker;
    friend KA_SCENEGRAPH_API void addRefCP(const FieldContainerPtr& handle);
    friend KA_SCENEGRAPH_API void releaseRefCP(const FieldContainerPtr& handle);

    /// Destroys the container and, one after the other and not nested, whatever goes with it. What a host's
    /// `changed` or `onDestroy` throws meanwhile stops none of it; the first comes out at the end.
    static void destroy(FieldContainer* container);

    /// Counts `handle` up and, when this container goes, down again.
    void keepAlive(const FieldContainerPtr& handle);

    UInt32 _id;
    Int32 _refCount = 0;
    FieldContainer* _nextWaiting = nullptr; ///< while it waits to be destroyed
    /// What this container keeps alive without an owning field: containers that a scene file defined inside
    /// of it.
    std::unique_ptr<std::vector<FieldContainerPtr>> _kept;
};

/// Asks the container for its type, not the compiler: a host may be compiled without run-time type
/// information.
template <class BasePtrT, class ContainerT>
FCPtr<BasePtrT, ContainerT> FCPtr<BasePtrT, ContainerT>::dcast(const FieldContainerPtr& handle) {
    FieldContainer* container = handle.castable();
    if (container == nullptr ||
        !std::as_const(*container).getType().isDerivedFrom(ContainerT::getClassType()))
        return {};
    return FCPtr(static_cast<ContainerT*>(container));
}

/// Lets the declaration of a type reach the constructors of its class (see declareType), and the library ask
/// for more than its users can.
struct ContainerAccess {
    template <class Self>
    static FieldContainer* create() {
        return new Self;
    }
    template <class Self>
    static FieldContainer* copy(const FieldContainer& source) {
        auto* made = new Self(static_cast<const Self&>(source));
        static_cast<FieldContainer*>(made)->onCopied();
        return made;
    }
    static void destroy(FieldContainer* container) { FieldContainer::destroy(container); }
    static bool isGone(const FieldContainerPtrBase& handle) { return handle.isGone(); }
};

} // namespace osg
