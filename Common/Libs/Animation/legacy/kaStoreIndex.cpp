#include "kaStoreIndex.h"

#include <OpenSG/OSGFieldContainerFactory.h>

osg::UInt32 kaStoreIndex::idOf(const osg::FieldContainerPtr& handle) {
    const osg::FieldContainer* address = handle.getCPtr();
    if (!address)
        return 0;
    catchUp();
    const auto found = _ids.find(address);
    if (found == _ids.end())
        return 0;
    const auto& store = *osg::FieldContainerFactory::the()->getFieldContainerStore();
    const osg::FieldContainerPtr& slot = store[found->second];
    if (slot != osg::NullFC && slot.getCPtr() == address)
        return found->second;
    _ids.erase(found);
    return 0;
}

/// Of containers that had the same address one after the other the youngest counts.
void kaStoreIndex::catchUp() {
    const auto& store = *osg::FieldContainerFactory::the()->getFieldContainerStore();
    for (; _next < store.size(); ++_next)
        if (store[_next] != osg::NullFC)
            _ids[store[_next].getCPtr()] = _next;
}
