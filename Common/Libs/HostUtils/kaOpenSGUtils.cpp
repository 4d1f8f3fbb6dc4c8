#include "kaOpenSGUtils.h"

#include "kaMessageBus.h"

#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGThread.h>
#include <utility>

void kaOpenSGUtils::call(std::string_view name, const kaMessage& message, int flags) {
    kaMessageBus::the().call(name, message, flags);
}

void kaOpenSGUtils::call(const kaMessage& message, int flags) {
    call(message.getName(), message, flags);
}

bool kaOpenSGUtils::hasListeners(std::string_view name) {
    return kaMessageBus::the().hasListeners(name);
}

kaMessageListener kaOpenSGUtils::addListener(std::string_view name, kaMessageCallback callback) {
    return kaMessageBus::the().add(name, std::move(callback));
}

void kaOpenSGUtils::announceChange(const osg::FieldContainerPtr& container, osg::BitVector mask) {
    if (container == osg::NullFC) {
        return;
    }
    if (osg::ChangeList* changes = osg::PThreadBase::getCurrentChangeList()) {
        changes->addChanged(container, mask);
    }
    if (!osg::FieldContainerPtr::_ignore_change) {
        container->changed(mask, osg::ChangedOrigin::External);
    }
}
