#include <OpenSG/OSGThread.h>

namespace osg {

namespace {

ChangeList*& currentList() {
    static ChangeList* list = new ChangeList;
    return list;
}

} // namespace

ChangeList* PThreadBase::getCurrentChangeList() {
    return currentList();
}

void PThreadBase::setCurrentChangeList(ChangeList* list) {
    currentList() = list;
}

} // namespace osg
