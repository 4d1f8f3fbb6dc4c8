#include "Bindings.h"
#include "Call.h"
#include "References.h"

#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaControlPoint2D.h>
#include <kaMotion/CurveChoice.h>
#include <optional>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace ka::python {

namespace {

using Key = ReferenceTo<kaControlPoint2D>;
using Curve = ReferenceTo<kaAnimationCurve2D>;
using Point = std::pair<float, float>;

/// The number as a member of an enumeration of the package; as it is where no member has it.
py::object asMember(const char* enumeration, unsigned int number) {
    const py::object type = py::module_::import("kaanimation._enums").attr(enumeration);
    if (type.attr("_value2member_map_").contains(py::int_(number)))
        return type(number);
    return py::int_(number);
}

kaAnimationCurve2D* curveOf(const kaControlPoint2D& key) {
    kaAnimationObject* parent = key.getParentObject();
    return parent != nullptr && parent->getTypeID() == KA_TYPE_CURVE
               ? static_cast<kaAnimationCurve2D*>(parent)
               : nullptr;
}

/// Lets the curve and everything above it know that the key has changed.
void tellCurve(kaControlPoint2D& key) {
    if (kaAnimationCurve2D* curve = curveOf(key))
        curve->updateBy(&key, kaAnimationObject::MOVE_OBJECT, true);
}

void placeHandles(kaControlPoint2D& key) {
    kaAnimationCurve2D* curve = curveOf(key);
    key.computeTangents();
    if (curve == nullptr)
        return;
    const auto [previous, next] = curve->getPreviousAndNextPoint(&key);
    for (kaControlPoint2D* neighbour : {previous, next})
        if (neighbour != nullptr)
            neighbour->computeTangents();
}

void setPlace(const Key& self, float frame, float value) {
    kaControlPoint2D& key = self.get();
    kaAnimationCurve2D* curve = curveOf(key);
    if (curve != nullptr && frame != key.getPosition()[0] && curve->findPoint(frame) != nullptr)
        raise(ErrorKind::Refused, "the curve has a key at that frame");
    const osg::Vec2f delta(frame - key.getPosition()[0], value - key.getPosition()[1]);
    key.setPosition(frame, value);
    for (kaControlPoint2D* handle : {key.getInTangent(), key.getOutTangent()})
        if (handle != nullptr)
            handle->setPosition(handle->getPosition()[0] + delta[0], handle->getPosition()[1] + delta[1]);
    tellCurve(key); // in order again before neighbours are asked for
    placeHandles(key);
}

std::optional<Point> placeOf(const kaControlPoint2D* handle) {
    if (handle == nullptr)
        return std::nullopt;
    return Point(handle->getPosition()[0], handle->getPosition()[1]);
}

void setHandle(kaControlPoint2D& key, kaControlPoint2D* handle, std::pair<double, double> place) {
    const float frame = frameOf(place.first, "frame"), value = frameOf(place.second, "value");
    if (handle == nullptr)
        raise(ErrorKind::Refused, "the key has lost this handle");
    key.setTangentType(kaControlPoint2D::TANGENT_USER);
    handle->setPosition(frame, value);
    tellCurve(key);
}

void bindKey(py::module_& module) {
    py::class_<Key, ObjectReference> keys(module, "Key", "A point of a curve with two handles.");
    keys.def_property("frame", checked([](const Key& self) { return self.get().getPosition()[0]; }),
                      checked([](const Key& self, double frame) {
                          setPlace(self, frameOf(frame, "frame"), self.get().getPosition()[1]);
                      }),
                      "Where the key stands. Setting it takes the handles along and places them anew.");
    keys.def_property("value", checked([](const Key& self) { return self.get().getPosition()[1]; }),
                      checked([](const Key& self, double value) {
                          setPlace(self, self.get().getPosition()[0], frameOf(value, "value"));
                      }),
                      "The value there, in the unit of the curve.");
    keys.def_property(
        "in_handle", checked([](const Key& self) { return placeOf(self.get().getInTangent()); }),
        checked([](const Key& self, std::pair<double, double> place) {
            setHandle(self.get(), self.get().getInTangent(), place);
        }),
        "(frame, value) of the handle that shapes the curve before the key. Setting it makes the key "
        "Tangent.USER.");
    keys.def_property("out_handle",
                      checked([](const Key& self) { return placeOf(self.get().getOutTangent()); }),
                      checked([](const Key& self, std::pair<double, double> place) {
                          setHandle(self.get(), self.get().getOutTangent(), place);
                      }),
                      "The same for the curve behind the key.");
    keys.def_property(
        "tangent", checked([](const Key& self) { return asMember("Tangent", self.get().getTangentType()); }),
        checked([](const Key& self, unsigned int type) {
            self.get().setTangentType(type);
            placeHandles(self.get());
            tellCurve(self.get());
        }),
        "How the handles are placed, a Tangent. Setting it places them.");
    keys.def_property("length", checked([](const Key& self) {
                          return asMember("Length", self.get().getTangentLengthMode());
                      }),
                      checked([](const Key& self, unsigned int mode) {
                          self.get().setTangentLengthMode(mode);
                          placeHandles(self.get());
                          tellCurve(self.get());
                      }),
                      "How long the handles are, a Length. Setting it places them.");
}

std::vector<kaControlPoint2D*> keysOf(const kaAnimationCurve2D& curve) {
    std::vector<kaControlPoint2D*> keys;
    for (kaAnimationObject* child : curve.getObjects())
        if (child->getTypeID() == KA_TYPE_POINT)
            keys.push_back(static_cast<kaControlPoint2D*>(child));
    return keys;
}

void addEditing(py::class_<Curve, ObjectReference>& curves) {
    curves.def("add_key", checked([](const Curve& self, double frame, double value, bool replace) {
                   const float x = frameOf(frame, "frame"), y = frameOf(value, "value");
                   kaAnimationCurve2D& curve = self.get();
                   if (!self.session->manager().createCurvePoint(&curve, x, y, false, false, replace))
                       raise(ErrorKind::Refused,
                             "the curve has a key at that frame; replace=True takes its place");
                   return wrap(self.session, curve.findPoint(x));
               }),
               py::arg("frame"), py::arg("value"), py::kw_only(), py::arg("replace") = false,
               "Adds a key and places its handles and those beside it.");
    curves.def("split", checked([](const Curve& self, double frame) {
                   const float x = frameOf(frame, "frame");
                   kaAnimationCurve2D& curve = self.get();
                   if (curve.findPoint(x) != nullptr || !curve.checkInsertConstraints(x) ||
                       !self.session->manager().createCurvePoint(&curve, x, false))
                       raise(ErrorKind::Refused, "no key can be inserted at that frame");
                   return wrap(self.session, curve.findPoint(x));
               }),
               py::arg("frame"), "Adds a key on the curve itself, at the value that it has there.");
    curves.def("remove_keys", checked([](const Curve& self, double begin, double end) {
                   kaAnimationCurve2D& curve = self.get();
                   std::size_t removed = 0;
                   for (kaControlPoint2D* key : keysOf(curve)) {
                       const double frame = static_cast<double>(key->getPosition()[0]);
                       if (frame < begin || frame > end)
                           continue;
                       curve.subObject(key, true);
                       ++removed;
                   }
                   for (kaControlPoint2D* key : keysOf(curve))
                       key->computeTangents();
                   return removed;
               }),
               py::arg("begin"), py::arg("end"),
               "Destroys the keys from begin to end, both included; returns how many.");
}

void addConstraints(py::class_<Curve, ObjectReference>& curves) {
    curves.def("neighbours", checked([](const Curve& self, double frame) {
                   const auto found = self.get().neighboursByX(frameOf(frame, "frame"));
                   return py::make_tuple(wrap(self.session, found.previous), wrap(self.session, found.next));
               }),
               py::arg("frame"),
               "The keys before and after a frame, a key at that frame left out; None for none.");
    curves.def("may_insert", checked([](const Curve& self, double frame) {
                   return self.get().checkInsertConstraints(frameOf(frame, "frame"));
               }),
               py::arg("frame"),
               "Whether a key may stand there: between the facing handles of the keys around it.");
    curves.def("may_move", checked([](const Curve& self, const Key& key, double frames) {
                   return self.get().checkMoveConstraints2(&key.get(), frameOf(frames, "frames"), false);
               }),
               py::arg("key"), py::arg("frames"),
               "Whether a key with its handles may move by so many frames, between its neighbours.");
}

void addSelected(py::class_<Curve, ObjectReference>& curves) {
    curves.def("move_selected", checked([](const Curve& self, double frames, double value) {
                   const osg::Vec2f delta(frameOf(frames, "frames"), frameOf(value, "value"));
                   self.get().moveSelectedPoints(delta, false, false, true, false);
               }),
               py::arg("frames"), py::arg("value") = 0.0, "Moves the selected keys, each only where it may.");
    curves.def("set_selected_tangents", checked([](const Curve& self, unsigned int type) {
                   self.get().changeTangentsOfSelectedPoints(
                       static_cast<kaControlPoint2D::TangentMode>(type));
               }),
               py::arg("type"), "Gives the selected keys a Tangent and places their handles.");
    curves.def("remove_selected", checked([](const Curve& self) {
                   const std::size_t before = self.get().getChildCount();
                   self.get().deleteSelectedPoints(true, false);
                   return before - self.get().getChildCount();
               }),
               "Destroys the selected keys; returns how many.");
}

} // namespace

void bindCurve(py::module_& module) {
    bindKey(module);
    py::class_<Curve, ObjectReference> curves(
        module, "Curve",
        "A value as a function of time, made of keys, that drives one number of the scene.\n\n"
        ">>> import kaanimation\n"
        ">>> with kaanimation.open(kaanimation.example()) as project:\n"
        "...     curve = project.scene.find('Arm').field('rotationZ').curves[0]\n"
        "...     curve.set_keys([[0, 10], [20, 30]])\n"
        "...     key = curve.add_key(10, 25)\n"
        "...     key.tangent = kaanimation.Tangent.FLAT\n"
        "...     print(len(curve), curve.value_at(10), curve.sample([0, 20]).values.tolist())\n"
        "3 25.0 [[10.0], [30.0]]");
    curves.def("__len__", checked([](const Curve& self) { return self.get().getChildCount(); }));
    curves.def(
        "__bool__", [](const Curve&) { return true; }, "A curve without keys is there all the same.");
    curves.def_property_readonly(
        "keys", checked([](const Curve& self) { return wrapAll(self.session, keysOf(self.get())); }),
        "The keys by frame: a list as of now. For many keys at once see `get_keys`.");
    curves.def("key_at", checked([](const Curve& self, double frame) {
                   return wrap(self.session, self.get().findPoint(frameOf(frame, "frame")));
               }),
               py::arg("frame"), "The key at exactly that frame; None when there is none.");
    curves.def(
        "value_at", checked([](const Curve& self, double frame) -> std::optional<float> {
            float value = 0.0F;
            if (!kaAnimationController::the()->computeCurveValue(&self.get(), frameOf(frame, "frame"), value))
                return std::nullopt;
            return value;
        }),
        py::arg("frame"),
        "The value at one frame, as the player computes it; None where the curve has none. Before the "
        "first key it\nis the second key's: playing holds frames to the extent. For many frames see "
        "`sample`.");
    curves.def_property_readonly(
        "label", checked([](const Curve& self) { return motion::curveLabel(&self.get()); }),
        "Node and attribute, 'Hips.translationX'; the curve's own name where the node is not known.");
    curves.def_property_readonly("unit",
                                 checked([](const Curve& self) { return motion::curveUnit(&self.get()); }),
                                 "'degrees' for rotations, 'units' for lengths, '' for plain numbers.");
    curves.def_property_readonly(
        "node", checked([](const Curve& self) { return wrap(self.session, self.get().getParentOSGNode()); }),
        "The node that it moves; None when there is none.");
    curves.def_property("field", checked([](const Curve& self) -> py::object {
                            const kaAnimationField* field =
                                self.session->manager().getField(self.get().getField());
                            return field == nullptr ? py::object(py::none())
                                                    : py::cast(FieldReference{self.session, field->getId()});
                        }),
                        checked([](const Curve& self, std::optional<FieldReference> field) {
                            self.get().setAnimationField(field ? &field->get() : nullptr);
                        }),
                        "What it drives; None when that is gone. Setting it takes the field's colour.");
    curves.def_property("color", checked([](const Curve& self) {
                            const osg::Color3f& color = self.get().getColor();
                            return std::tuple(color[0], color[1], color[2]);
                        }),
                        checked([](const Curve& self, std::tuple<float, float, float> color) {
                            self.get().setColor(
                                osg::Color3f(std::get<0>(color), std::get<1>(color), std::get<2>(color)));
                        }),
                        "(red, green, blue) from 0 to 1, in which editors draw it.");
    addEditing(curves);
    addConstraints(curves);
    addSelected(curves);
}

} // namespace ka::python
