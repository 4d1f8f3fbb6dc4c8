#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGFieldContainerFactory.h>

namespace osg {

bool osgInit(Int32, Char8**, UInt16, UInt16, UInt16) {
    return FieldContainerFactory::the() != nullptr;
}

bool osgExit() {
    const FieldContainerStore& store = FieldContainerStore::the();
    for (UInt32 id = 1; id < store.size(); ++id) {
        const FieldContainerPtr container = store[id];
        if (container != NullFC && container->getType().getPrototype() != container)
            ContainerAccess::destroy(&*container);
    }
    return true;
}

} // namespace osg
