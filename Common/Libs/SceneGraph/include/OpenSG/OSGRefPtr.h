#pragma once

#include <OpenSG/OSGContainerPtrs.h>

namespace osg {

/// A handle that counts: keeps its container alive as long as the handle lives (unless somebody counts down
/// more than they counted up; it is null then).
template <class HandleT>
class RefPtr {
  public:
    RefPtr() = default;
    RefPtr(const NullFieldContainerPtr&) {}
    RefPtr(const HandleT& handle) : _handle(handle) { addRefCP(_handle); }
    RefPtr(const RefPtr& other) : RefPtr(other._handle) {}
    RefPtr(RefPtr&& other) noexcept : _handle(other._handle) { other._handle = HandleT(); }
    ~RefPtr() { subRefCP(_handle); }

    RefPtr& operator=(const RefPtr& other) { return *this = other._handle; }
    RefPtr& operator=(RefPtr&& other) noexcept {
        if (this != &other) {
            *this = other._handle;
            other = NullFC;
        }
        return *this;
    }
    RefPtr& operator=(const HandleT& handle) {
        setRefdCP(_handle, handle);
        return *this;
    }
    RefPtr& operator=(const NullFieldContainerPtr&) {
        subRefCP(_handle);
        return *this;
    }

    operator const HandleT&() const { return _handle; }
    const HandleT& get() const { return _handle; }
    auto* operator->() const { return _handle.operator->(); }
    auto& operator*() const { return *_handle; }
    explicit operator bool() const { return _handle != NullFC; }
    bool operator!() const { return _handle == NullFC; }

    friend bool operator==(const RefPtr& a, const RefPtr& b) { return a._handle == b._handle; }
    friend bool operator!=(const RefPtr& a, const RefPtr& b) { return a._handle != b._handle; }
    friend bool operator==(const RefPtr& a, const NullFieldContainerPtr&) { return a._handle == NullFC; }
    friend bool operator!=(const RefPtr& a, const NullFieldContainerPtr&) { return a._handle != NullFC; }
    friend bool operator<(const RefPtr& a, const RefPtr& b) { return a._handle < b._handle; }

  private:
    HandleT _handle;
};

using NodeRefPtr = RefPtr<NodePtr>;
using NodeCoreRefPtr = RefPtr<NodeCorePtr>;
using FieldContainerRefPtr = RefPtr<FieldContainerPtr>;
using AttachmentRefPtr = RefPtr<AttachmentPtr>;
using GroupRefPtr = RefPtr<GroupPtr>;
using TransformRefPtr = RefPtr<TransformPtr>;
using MaterialRefPtr = RefPtr<MaterialPtr>;
using GeometryRefPtr = RefPtr<GeometryPtr>;

} // namespace osg
