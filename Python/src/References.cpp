#include "References.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationSequence.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaMotion/Text.h>
#include <limits>

namespace py = pybind11;

namespace ka::python {

kaAnimationObject& ObjectReference::object() const {
    kaAnimationObject* found = session->manager().getObject(id);
    if (found == nullptr)
        raiseGone(id, "object");
    return *found;
}

bool ObjectReference::isAlive() const {
    return session->isOpen() && session->manager().getObject(id) != nullptr;
}

kaAnimationField& FieldReference::get() const {
    kaAnimationField* field = session->manager().getField(id);
    if (field == nullptr)
        raiseGone(id, "field");
    return *field;
}

osg::NodePtr NodeReference::get() const {
    session->project();
    osg::NodePtr node = osg::NodePtr::dcast(osg::FieldContainerFactory::the()->getContainer(id));
    if (node == osg::NullFC)
        raiseGone(id, "node");
    return node;
}

py::object wrap(const SessionPtr& session, const kaAnimationObject* object) {
    if (object == nullptr)
        return py::none();
    const kaUID id = object->getId();
    switch (object->getTypeID()) {
    case KA_TYPE_POINT:
        return py::cast(ReferenceTo<kaControlPoint2D>(session, id));
    case KA_TYPE_CURVE:
        return py::cast(ReferenceTo<kaAnimationCurve2D>(session, id));
    case KA_TYPE_UNIT:
        return py::cast(ReferenceTo<kaAnimationUnit>(session, id));
    case KA_TYPE_STREAK:
        return py::cast(ReferenceTo<kaAnimationStreak>(session, id));
    case KA_TYPE_STRIP:
        return py::cast(ReferenceTo<kaAnimationStrip>(session, id));
    case KA_TYPE_SEQUENCE:
        return py::cast(ReferenceTo<kaAnimationSequence>(session, id));
    default:
        return py::cast(ObjectReference{session, id});
    }
}

py::object wrap(const SessionPtr& session, const osg::NodePtr& node) {
    if (node == osg::NullFC)
        return py::none();
    return py::cast(NodeReference{session, node.getFieldContainerId()});
}

void raiseGone(kaUID id, const char* what) {
    raise(ErrorKind::Gone, std::string(what) + " " + std::to_string(id) + " has been destroyed");
}

std::string toLatin1(const std::string& text) {
    bool lossy = false;
    std::string bytes = motion::latin1FromUtf8(text, lossy);
    if (lossy || bytes.find('\0') != std::string::npos)
        throw py::value_error("a name holds characters of Latin-1 alone, and no zero character");
    return bytes;
}

float frameOf(double frame, const char* what) {
    if (!(std::abs(frame) <= static_cast<double>(std::numeric_limits<float>::max())))
        throw py::value_error(std::string(what) + " must be a finite number that a float holds");
    return static_cast<float>(frame);
}

} // namespace ka::python
