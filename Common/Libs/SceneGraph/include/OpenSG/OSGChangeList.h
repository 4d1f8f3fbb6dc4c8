#pragma once

#include <OpenSG/OSGFieldContainerPtr.h>
#include <utility>
#include <vector>

namespace osg {

/// The changes made to containers, in the order in which they were recorded; nothing is merged. A list is
/// read-only at first and then records nothing.
class KA_SCENEGRAPH_API ChangeList {
  public:
    using ChangedEntry = std::pair<UInt32, BitVector>; ///< container id, mask of its fields
    using changed_const_iterator = std::vector<ChangedEntry>::const_iterator;
    using idrefd_const_iterator = std::vector<UInt32>::const_iterator;

    ChangeList();

    /// Whether lists made from now on, and the current one if none was made yet, start out recording.
    static void setReadWriteDefault(bool readWrite = true);

    bool isReadOnly() const { return _readOnly; }
    void setReadOnly(bool readOnly) { _readOnly = readOnly; }

    /// Null is ignored, as is everything while the list is read-only.
    void addChanged(const FieldContainerPtr& container, BitVector mask);
    void addAddRefd(const FieldContainerPtr& container) { record(_addRefd, container); }
    void addSubRefd(const FieldContainerPtr& container) { record(_subRefd, container); }
    void addCreated(UInt32 id) { record(_created, id); }
    void addDestroyed(UInt32 id) { record(_destroyed, id); }

    changed_const_iterator beginChanged() const { return _changed.begin(); }
    changed_const_iterator endChanged() const { return _changed.end(); }
    UInt32 sizeChanged() const { return static_cast<UInt32>(_changed.size()); }
    idrefd_const_iterator beginAddRefd() const { return _addRefd.begin(); }
    idrefd_const_iterator endAddRefd() const { return _addRefd.end(); }
    UInt32 sizeAddRefd() const { return static_cast<UInt32>(_addRefd.size()); }
    idrefd_const_iterator beginSubRefd() const { return _subRefd.begin(); }
    idrefd_const_iterator endSubRefd() const { return _subRefd.end(); }
    UInt32 sizeSubRefd() const { return static_cast<UInt32>(_subRefd.size()); }
    idrefd_const_iterator beginCreated() const { return _created.begin(); }
    idrefd_const_iterator endCreated() const { return _created.end(); }
    UInt32 sizeCreated() const { return static_cast<UInt32>(_created.size()); }
    idrefd_const_iterator beginDestroyed() const { return _destroyed.begin(); }
    idrefd_const_iterator endDestroyed() const { return _destroyed.end(); }
    UInt32 sizeDestroyed() const { return static_cast<UInt32>(_destroyed.size()); }

    bool empty() const;
    void clearAll();
    /// Appends the entries of `other`, whether this list is read-only or not.
    void merge(const ChangeList& other);
    /// Exchanges the entries.
    void swap(ChangeList& other);
    /// There is one copy of the scene only, so nothing is left to apply.
    void apply() {}
    void applyAndClear() { clearAll(); }

  private:
    void record(std::vector<UInt32>& list, const FieldContainerPtr& container);
    void record(std::vector<UInt32>& list, UInt32 id);

    bool _readOnly;
    std::vector<ChangedEntry> _changed;
    std::vector<UInt32> _addRefd;
    std::vector<UInt32> _subRefd;
    std::vector<UInt32> _created;
    std::vector<UInt32> _destroyed;
};

} // namespace osg
