#include <OpenSG/OSGNode.h>
#include <vector>

namespace osg {

FieldContainerType& NodeCore::getClassType() {
    static FieldContainerType& type = declareAbstractType<NodeCore>({
        describe<&NodeCore::_mfParents>("parents", FieldDescription::Internal),
    });
    return type;
}

NodeCore::NodeCore(const NodeCore& source) : Container(source) {}

bool NodeCore::getLocalMatrix(const Node&, Matrix&) const {
    return false;
}

void NodeCore::adjustVolume(DynamicVolume&) const {}

void NodeCore::onDestroy() {
    for (const NodePtr& parent : _mfParents) {
        if (parent != NullFC)
            parent->_sfCore.setValue(NodeCorePtr());
    }
    Inherited::onDestroy();
}

} // namespace osg
