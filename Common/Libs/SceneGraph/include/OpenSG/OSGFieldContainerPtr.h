#pragma once

#include <OpenSG/OSGFieldContainerBase.h>
#include <cassert>
#include <cstddef>
#include <functional>
#include <vector>

/// @file
/// Handles of containers, the store that knows which containers are alive, and the counting of references.

namespace osg {

class KA_SCENEGRAPH_API FieldContainer;
class KA_SCENEGRAPH_API FieldContainerPtr;

/// The type of NullFC, which turns into a null handle of any type and compares with every handle.
struct KA_SCENEGRAPH_API NullFieldContainerPtr {};

/// The null handle.
inline constexpr NullFieldContainerPtr NullFC{};

/// What all handles have in common: the container's address and its id, 16 bytes, cheap to copy.
///
/// A handle does not keep its container alive and does not notice when it goes; but it can be asked at any
/// time. Every test for null (`h == NullFC`, `!h`, `if (h)`) looks the id up in the store, and since ids are
/// never used twice, a handle whose container is gone is null from then on. Only `->` and `*` do not ask
/// (debug builds do): they need a handle that is not null.
///
/// Handles compare equal when they mean the same container, whatever their types, or when both are null.
/// `<` orders by id, that is, by age.
///
/// With KA_STRICT_HANDLES a handle is an address and nothing else, as it is in the published library: tests
/// for null, `==` and `<` compare addresses, so a handle whose container is gone is not null; its id and its
/// count are read from the container. To read a null handle or one whose container is gone ends the program.
class KA_SCENEGRAPH_API FieldContainerPtrBase {
  public:
    /// The id; 0 for a default-constructed handle. Of a container that is gone, the id that it had.
#ifdef KA_STRICT_HANDLES
    UInt32 getFieldContainerId() const;
#else
    UInt32 getFieldContainerId() const {
        return _id;
    }
#endif

    /// The number of references that are counted (see addRefCP); 0 for null.
    Int32 getRefCount() const;

    explicit operator bool() const {
        return !isNull();
    }
    bool operator!() const {
        return isNull();
    }

    friend bool operator==(const FieldContainerPtrBase& a, const FieldContainerPtrBase& b) {
#ifdef KA_STRICT_HANDLES
        return a._container == b._container;
#else
        return a._id == b._id || (a.isNull() && b.isNull());
#endif
    }
    friend bool operator!=(const FieldContainerPtrBase& a, const FieldContainerPtrBase& b) {
        return !(a == b);
    }
    friend bool operator<(const FieldContainerPtrBase& a, const FieldContainerPtrBase& b) {
#ifdef KA_STRICT_HANDLES
        return std::less<>()(a._container, b._container);
#else
        return a._id < b._id;
#endif
    }
    friend bool operator==(const FieldContainerPtrBase& a, const NullFieldContainerPtr&) {
        return a.isNull();
    }
    friend bool operator!=(const FieldContainerPtrBase& a, const NullFieldContainerPtr&) {
        return !a.isNull();
    }
    friend bool operator==(const NullFieldContainerPtr&, const FieldContainerPtrBase& b) {
        return b.isNull();
    }
    friend bool operator!=(const NullFieldContainerPtr&, const FieldContainerPtrBase& b) {
        return !b.isNull();
    }
    friend bool operator<(const FieldContainerPtrBase&, const NullFieldContainerPtr&) {
        return false;
    }
    friend bool operator<(const NullFieldContainerPtr&, const FieldContainerPtrBase& b) {
        return !b.isNull();
    }

  protected:
    friend struct ContainerAccess;
    FieldContainerPtrBase() = default;
    explicit FieldContainerPtrBase(FieldContainer* container);

    /// True when the handle is null or, unless handles are strict, its container is gone.
    inline bool isNull() const;
    /// True when the handle is null or its container is gone, or about to be (FieldContainer::onDestroy).
    inline bool isGone() const;
#ifdef KA_STRICT_HANDLES
    /// The container, whose memory is there; anything else ends the program with a message.
    FieldContainer* readable() const;
#endif

    FieldContainer* _container = nullptr;
    UInt32 _id = 0;
};

/// Handle of any container.
class KA_SCENEGRAPH_API FieldContainerPtr : public FieldContainerPtrBase {
  public:
    using StoredObjectType = FieldContainer;
    using ObjectType = FieldContainerPtr;
    using Inherited = FieldContainerPtrBase;

    FieldContainerPtr() = default;
    FieldContainerPtr(const NullFieldContainerPtr&) {}
    explicit FieldContainerPtr(FieldContainer& container) : FieldContainerPtrBase(&container) {}
    explicit FieldContainerPtr(FieldContainer* container) : FieldContainerPtrBase(container) {}

    FieldContainer* operator->() const { return checked(); }
    FieldContainer& operator*() const { return *checked(); }

    /// The container's address; null when the handle is null or (see isNull) the container is gone.
    FieldContainer* getCPtr() const { return isNull() ? nullptr : _container; }

    /// The host sets this while it makes changes that nobody is to be told of. The library itself does not
    /// read it: whoever calls FieldContainer::changed directly is meant to.
    static bool _ignore_change;

  protected:
    FieldContainer* checked() const {
#ifdef KA_STRICT_HANDLES
        return readable();
#else
        assert(!isNull() && "the handle is null or its container is gone");
        return _container;
#endif
    }
    /// What a cast may look at: the container, null for a null handle.
    FieldContainer* castable() const {
        return isNull() ? nullptr : checked();
    }

  private:
    friend class FieldContainerStore;
    friend class NodePtr;
    template <class BasePtrT, class ContainerT>
    friend class FCPtr;
};

/// All containers by id: slot 0 is null, each new container takes the next slot, and a container that goes
/// leaves null there for good. Reads like a constant vector of handles.
class KA_SCENEGRAPH_API FieldContainerStore {
  public:
    static const FieldContainerStore& the() { return *_the; }

    std::size_t size() const { return _slots.size(); }
    bool empty() const { return false; }
    /// No range check: `id` must be less than size().
    const FieldContainerPtr& operator[](UInt32 id) const { return _slots[id]; }
    auto begin() const { return _slots.begin(); }
    auto end() const { return _slots.end(); }

    /// True when the container that drew this id still exists. Any number may be asked.
    bool isAlive(UInt32 id) const { return id < _slots.size() && _slots[id]._container != nullptr; }

  private:
    friend class FieldContainer;
    FieldContainerStore();
    static FieldContainerStore* makeStore();

    UInt32 add(FieldContainer* container);
    void remove(UInt32 id) { _slots[id] = FieldContainerPtr(); }

    static FieldContainerStore* const _the;
    std::vector<FieldContainerPtr> _slots;
};

inline bool FieldContainerPtrBase::isGone() const {
    return _container == nullptr || !FieldContainerStore::the().isAlive(_id);
}

inline bool FieldContainerPtrBase::isNull() const {
#ifdef KA_STRICT_HANDLES
    return _container == nullptr;
#else
    return isGone();
#endif
}

/// Handle of a container of type `ContainerT`; `BasePtrT` is the handle of the type that it derives from, so
/// that handles convert to the handles of base types as pointers do.
template <class BasePtrT, class ContainerT>
class KA_SCENEGRAPH_API FCPtr : public BasePtrT {
  public:
    using StoredObjectType = ContainerT;
    using ObjectType = FCPtr;
    using Inherited = BasePtrT;

    FCPtr() = default;
    FCPtr(const NullFieldContainerPtr&) {}
    explicit FCPtr(ContainerT& container) : BasePtrT(container) {}
    explicit FCPtr(ContainerT* container) : BasePtrT(container) {}

    /// The same container as the handle of this type; null when it is of another type or `handle` is null.
    static FCPtr dcast(const FieldContainerPtr& handle); // defined with the containers

    ContainerT* operator->() const { return static_cast<ContainerT*>(this->checked()); }
    ContainerT& operator*() const { return *static_cast<ContainerT*>(this->checked()); }
    ContainerT* getCPtr() const { return static_cast<ContainerT*>(FieldContainerPtr::getCPtr()); }
};

/// @name Counting references
/// A new container has count 0. Who keeps a handle for long counts it up; the count that falls to 0 or below
/// destroys the container at once. All ignore null, and (unless handles are strict) those whose container is
/// gone.
/// @{
KA_SCENEGRAPH_API void addRefCP(const FieldContainerPtr& handle);

/// Counts down; destroys the container when the count was 1 or 0.
KA_SCENEGRAPH_API void releaseRefCP(const FieldContainerPtr& handle);

/// Counts down as releaseRefCP does, and makes `handle` null.
template <class HandleT>
void subRefCP(HandleT& handle) {
    const FieldContainerPtr kept = handle;
    handle = HandleT();
    releaseRefCP(kept);
}
inline void subRefCP(const FieldContainerPtr& handle) {
    releaseRefCP(handle);
}

/// Makes `slot` hold `value`, counting `value` up and what it held before down.
template <class SlotT, class HandleT>
void setRefdCP(SlotT& slot, const HandleT& value) {
    const FieldContainerPtr before = slot;
    addRefCP(value);
    slot = value;
    releaseRefCP(before);
}

/// Counts down what `slot` holds and makes it null.
template <class SlotT>
void clearRefCP(SlotT& slot) {
    subRefCP(slot);
}

inline void addRef(const FieldContainerPtr& handle) {
    addRefCP(handle);
}
inline void subRef(const FieldContainerPtr& handle) {
    releaseRefCP(handle);
}
inline Int32 getRefCount(const FieldContainerPtr& handle) {
    return handle.getRefCount();
}
/// @}

/// The id; 0 for null and for a container that is gone.
inline UInt32 getContainerId(const FieldContainerPtr& handle) {
    return handle == NullFC ? 0 : handle.getFieldContainerId();
}

template <class HandleT>
auto getCPtr(const HandleT& handle) {
    return handle.getCPtr();
}

/// The same as `TargetT::dcast`.
template <class TargetT>
TargetT dynamic_pointer_cast(const FieldContainerPtr& handle) {
    return TargetT::dcast(handle);
}
template <>
inline FieldContainerPtr dynamic_pointer_cast<FieldContainerPtr>(const FieldContainerPtr& handle) {
    return handle;
}

/// @name Editing
/// An edit of fields stands between beginEditCP and endEditCP with the mask of the fields that change. All
/// ignore null.
/// @{

/// Does nothing in this library; announces the intention to edit.
KA_SCENEGRAPH_API void beginEditCP(const FieldContainerPtr& handle, BitVector mask = FieldBits::AllFields,
                                   UInt32 origin = ChangedOrigin::External);
/// Records (container, mask) in the current change list and calls FieldContainer::changed.
KA_SCENEGRAPH_API void endEditCP(const FieldContainerPtr& handle, BitVector mask = FieldBits::AllFields,
                                 UInt32 origin = ChangedOrigin::External);
/// Only calls FieldContainer::changed.
KA_SCENEGRAPH_API void changedCP(const FieldContainerPtr& handle, BitVector mask = FieldBits::AllFields,
                                 UInt32 origin = ChangedOrigin::External);
/// Only records in the current change list.
KA_SCENEGRAPH_API void endEditNotChangedCP(const FieldContainerPtr& handle,
                                           BitVector mask = FieldBits::AllFields,
                                           UInt32 origin = ChangedOrigin::External);

/// Begins an edit and ends it with the scope.
class CPEditor {
  public:
    explicit CPEditor(const FieldContainerPtr& handle, BitVector mask = FieldBits::AllFields)
        : _handle(handle), _mask(mask) {
        beginEditCP(_handle, _mask);
    }
    CPEditor(const CPEditor&) = delete;
    CPEditor& operator=(const CPEditor&) = delete;
    ~CPEditor() { endEditCP(_handle, _mask); }

  private:
    FieldContainerPtr _handle;
    BitVector _mask;
};
/// @}

} // namespace osg
