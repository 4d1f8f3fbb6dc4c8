#include "Lifetime.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGFieldContainerFactory.h>

namespace osg {

bool isStarted = false;
bool isExiting = false;

bool osgInit(Int32, Char8**, UInt16, UInt16, UInt16) {
    isStarted = true;
    FieldContainerFactory* factory = FieldContainerFactory::the();
    for (auto type = factory->beginTypes(); type != factory->endTypes(); ++type)
        type->second->getPrototype(); // of types that were declared before
    return true;
}

bool osgExit() {
    isExiting = true;
    const FieldContainerStore& store = FieldContainerStore::the();
    for (UInt32 id = 1; id < store.size(); ++id) {
        const FieldContainerPtr container = store[id];
        if (container != NullFC && container->getType().getPrototype() != container)
            ContainerAccess::destroy(&*container);
    }
    isExiting = false;
    return true;
}

} // namespace osg
