#include <OpenSG/OSGChangeList.h>

namespace osg {

namespace {

bool readWriteDefault = false;

template <class T>
void append(std::vector<T>& list, const std::vector<T>& more) {
    list.insert(list.end(), more.begin(), more.end());
}

} // namespace

ChangeList::ChangeList() : _readOnly(!readWriteDefault) {}

void ChangeList::setReadWriteDefault(bool readWrite) {
    readWriteDefault = readWrite;
}

void ChangeList::addChanged(const FieldContainerPtr& container, BitVector mask) {
    if (!_readOnly && container != NullFC)
        _changed.emplace_back(container.getFieldContainerId(), mask);
}

void ChangeList::record(std::vector<UInt32>& list, const FieldContainerPtr& container) {
    if (!_readOnly && container != NullFC)
        list.push_back(container.getFieldContainerId());
}

void ChangeList::record(std::vector<UInt32>& list, UInt32 id) {
    if (!_readOnly)
        list.push_back(id);
}

bool ChangeList::empty() const {
    return _changed.empty() && _addRefd.empty() && _subRefd.empty() && _created.empty() && _destroyed.empty();
}

void ChangeList::clearAll() {
    _changed.clear();
    _addRefd.clear();
    _subRefd.clear();
    _created.clear();
    _destroyed.clear();
}

void ChangeList::merge(const ChangeList& other) {
    const ChangeList copy = other; // a list may be merged with itself
    append(_changed, copy._changed);
    append(_addRefd, copy._addRefd);
    append(_subRefd, copy._subRefd);
    append(_created, copy._created);
    append(_destroyed, copy._destroyed);
}

void ChangeList::swap(ChangeList& other) {
    _changed.swap(other._changed);
    _addRefd.swap(other._addRefd);
    _subRefd.swap(other._subRefd);
    _created.swap(other._created);
    _destroyed.swap(other._destroyed);
}

} // namespace osg
