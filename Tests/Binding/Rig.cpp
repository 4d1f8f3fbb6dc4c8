#include "Rig.h"

#include "kaAnimationUtils.h"

#include <OpenSG/OSGThread.h>

namespace binding_test {

using osg::describe;

void Watch::note(osg::FieldContainer& container, osg::BitVector mask, osg::UInt32 origin) {
    calls.push_back({container.getFieldContainerId(), mask, origin});
    if (const std::function<void()> once = std::exchange(answer, nullptr))
        once();
}

Watch& watch() {
    static Watch instance;
    return instance;
}

osg::FieldContainerType& Rig::getClassType() {
    static auto& type = osg::declareType<Rig>({
        describe<&Rig::vec3f>("vec3f"),
        describe<&Rig::rotateVec3f>("rotateVec3f"),
        describe<&Rig::vec2f>("vec2f"),
        describe<&Rig::rotateVec2f>("rotateVec2f"),
        describe<&Rig::real32>("real32"),
        describe<&Rig::rotateReal32>("rotateReal32"),
        describe<&Rig::color4f>("color4f"),
        describe<&Rig::rotateColor4f>("rotateColor4f"),
        describe<&Rig::color3f>("color3f"),
        describe<&Rig::rotateColor3f>("rotateColor3f"),
        describe<&Rig::pnt4f>("pnt4f"),
        describe<&Rig::rotatePnt4f>("rotatePnt4f"),
        describe<&Rig::pnt3f>("pnt3f"),
        describe<&Rig::rotatePnt3f>("rotatePnt3f"),
        describe<&Rig::pnt2f>("pnt2f"),
        describe<&Rig::rotatePnt2f>("rotatePnt2f"),
        describe<&Rig::vec4f>("vec4f"),
        describe<&Rig::rotateVec4f>("rotateVec4f"),
        describe<&Rig::real64>("real64"),
        describe<&Rig::rotateReal64>("rotateReal64"),
        describe<&Rig::fieldOfView>("fieldOfView"),
        describe<&Rig::matrix>("matrix"),
        describe<&Rig::rotateMatrix>("rotateMatrix"),
        describe<&Rig::int32>("int32"),
        describe<&Rig::uint8>("uint8"),
        describe<&Rig::flag>("flag"),
        describe<&Rig::reals>("reals"),
        describe<&Rig::vectors>("vectors"),
        describe<&Rig::tintColor>("tintColor"),
    });
    return type;
}

void Rig::changed(osg::BitVector mask, osg::UInt32 origin) {
    Inherited::changed(mask, origin);
    watch().note(*this, mask, origin);
}

osg::FieldContainerType& WatchedNode::getClassType() {
    static auto& type = osg::declareType<WatchedNode>({});
    return type;
}

void WatchedNode::changed(osg::BitVector mask, osg::UInt32 origin) {
    Inherited::changed(mask, origin);
    watch().note(*this, mask, origin);
}

osg::FieldContainerType& WatchedCamera::getClassType() {
    static auto& type = osg::declareType<WatchedCamera>({});
    return type;
}

void WatchedCamera::changed(osg::BitVector mask, osg::UInt32 origin) {
    Inherited::changed(mask, origin);
    watch().note(*this, mask, origin);
}

Recorder::Recorder() : _former(osg::PThreadBase::getCurrentChangeList()) {
    _list.setReadOnly(false);
    osg::PThreadBase::setCurrentChangeList(&_list);
}

Recorder::~Recorder() {
    osg::PThreadBase::setCurrentChangeList(_former);
}

std::vector<std::pair<osg::UInt32, osg::BitVector>> Recorder::take() {
    std::vector<std::pair<osg::UInt32, osg::BitVector>> entries(_list.beginChanged(), _list.endChanged());
    _list.clearAll();
    return entries;
}

kaAnimationField* makeField(const osg::FieldContainerPtr& container, const std::string& name,
                            unsigned int valuePos) {
    kaAnimationField* field = kaAnimationManager::the()->createField(0);
    field->fcID = container.getFieldContainerId();
    field->name = name;
    field->attribute = name;
    field->valuePos = valuePos;
    return field;
}

kaAnimationField* makeNodeField(const osg::NodePtr& node, const std::string& attribute) {
    kaAnimationField* field = makeField(node, attribute);
    field->nodeID = node.getFieldContainerId();
    return field;
}

bool write(kaAnimationField* field, float value) {
    field->value = value;
    return kaAnimationUtils::setOSGFieldValue(field);
}

std::vector<std::string> attributesOf(const std::vector<kaAnimationField*>& fields) {
    std::vector<std::string> attributes;
    for (const kaAnimationField* field : fields)
        attributes.push_back(field->attribute);
    return attributes;
}

} // namespace binding_test
