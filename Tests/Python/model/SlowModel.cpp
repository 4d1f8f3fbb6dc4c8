// The slow model of the random edits for Python: ids in, plain values out.
#include "Model.h"

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace ka_model {

namespace {

Object& get(const World& world, Id id) {
    Object* object = world.find(id);
    if (object == nullptr)
        throw py::key_error("no object " + std::to_string(id));
    return *object;
}

Id idOf(const Object* object) {
    return object == nullptr ? 0 : object->id;
}

py::dict stateOf(const World& world, Id id) {
    const Object& object = get(world, id);
    py::dict state;
    state["begin"] = object.begin();
    state["end"] = object.end();
    state["minimum"] = object.minimum();
    state["maximum"] = object.maximum();
    state["parent"] = idOf(world.parentOf(object));
    state["active"] = object.active;
    state["repeating"] = object.repeating;
    state["flipped"] = object.flipped;
    state["trimmed"] = object.trimmed;
    std::vector<Id> children;
    for (const Object* child : world.childrenOf(object))
        children.push_back(child->id);
    state["children"] = children;
    return state;
}

using Row = std::tuple<float, float, float, float, float, float, unsigned int>;

std::vector<Row> keysOf(const World& world, Id id) {
    std::vector<Row> rows;
    for (const Object* key : world.childrenOf(get(world, id)))
        rows.emplace_back(key->position.x, key->position.y, key->in->position.x, key->in->position.y,
                          key->out->position.x, key->out->position.y, key->tangentType);
    return rows;
}

std::optional<float> sample(const World& world, Id curve, float frame) {
    const Value value = world.sample(get(world, curve), frame);
    return value.returned && value.written ? std::optional(value.value) : std::nullopt;
}

} // namespace

} // namespace ka_model

PYBIND11_MODULE(ka_slow_model, module) {
    using namespace ka_model;
    py::class_<World>(module, "World")
        .def(py::init([] {
            auto world = std::make_unique<World>();
            world->generator = 1;
            return world;
        }))
        .def("create",
             [](World& world, unsigned int type, Id id) {
                 switch (type) {
                 case CURVE:
                     world.createCurve(id);
                     break;
                 default:
                     world.createContainer(static_cast<Type>(type), id);
                 }
             })
        .def("create_sequence",
             [](World& world, Id id, float begin, float end) {
                 Object* sequence = world.createSequence("s", id);
                 sequence->setBegin(begin);
                 sequence->setEnd(end);
             })
        .def("exists", [](const World& world, Id id) { return world.find(id) != nullptr; })
        .def("state", &stateOf)
        .def("keys", &keysOf)
        .def("sample", &sample)
        .def("add", [](World& world, Id to,
                       Id id) { return idOf(world.addObject(&get(world, to), &get(world, id))); })
        .def("remove", [](World& world, Id from,
                          Id id) { return idOf(world.subObject(&get(world, from), &get(world, id), false)); })
        .def("insert",
             [](World& world, Id to, Id id) {
                 Object& container = get(world, to);
                 return container.type == STREAK ? Id(world.insertIntoTrack(&container, &get(world, id)))
                                                 : idOf(world.insertIntoClip(&container, &get(world, id)));
             })
        .def("may_adopt",
             [](const World& world, Id to, Id id) { return world.mayAdopt(get(world, to), get(world, id)); })
        .def("add_key",
             [](World& world, Id curve, float x, float y, bool replace) {
                 return world.createCurvePoint(&get(world, curve), {x, y}, false, false, replace);
             })
        .def("set_keys",
             [](World& world, Id curve, const std::vector<std::pair<float, float>>& places) {
                 // One by one into a new list, then the former ones go: no neighbour of theirs is told.
                 std::vector<Object*> former = world.childrenOf(get(world, curve)), points;
                 for (const auto& [x, y] : places)
                     points.push_back(world.createPoint({x, y}, 0));
                 world.setPoints(&get(world, curve), points);
                 for (Object* key : former) {
                     key->parent = 0;
                     world.destroyPoint(key);
                 }
             })
        .def("destroy", [](World& world, Id id) { world.destroy(&get(world, id)); })
        .def("move", [](World& world, Id id, float by) { world.move(&get(world, id), by, true); })
        .def("move_begin", [](World& world, Id id, float to) { world.moveBegin(&get(world, id), to, true); })
        .def("move_end", [](World& world, Id id, float to) { world.moveEnd(&get(world, id), to, true); })
        .def("trim_begin", [](World& world, Id id, float to) { world.trimBegin(&get(world, id), to, true); })
        .def("trim_end", [](World& world, Id id, float to) { world.trimEnd(&get(world, id), to, true); })
        .def("flip", [](World& world, Id id) { world.flip(&get(world, id)); })
        .def("set_active", [](World& world, Id id, bool to) { world.setActive(&get(world, id), to); })
        .def("set_repeating", [](World& world, Id id, bool to) { world.setRepeating(&get(world, id), to); });
}
