#include "Arguments.h"
#include "Bindings.h"
#include "Call.h"
#include "References.h"
#include "Sampling.h"
#include "WorldPositions.h"

#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaMotion/CurveChoice.h>
#include <limits>
#include <numeric>
#include <pybind11/numpy.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace ka::python {

namespace {

using Frames = py::array_t<float, py::array::c_style | py::array::forcecast>;
using Columns = py::array_t<float, py::array::f_style>;
using Curve = ReferenceTo<kaAnimationCurve2D>;

/// A row of `get_keys` and `set_keys`.
struct KeyRow {
    float frame, value, in_frame, in_value, out_frame, out_value;
    std::uint32_t tangent, length;
};

/// @throws ValueError unless it is one number or a row of them.
void requireRow(const Frames& frames) {
    if (frames.ndim() > 1)
        throw py::value_error("frames must be a row of numbers, not an array of " +
                              std::to_string(frames.ndim()) + " dimensions");
}

py::object sampleCurves(const SessionPtr& session, const motion::CurveList& curves, const Frames& frames,
                        bool hold) {
    requireRow(frames);
    const auto count = static_cast<std::size_t>(frames.size());
    Columns values({frames.size(), static_cast<py::ssize_t>(curves.size())});
    std::vector<float> held;
    py::list names, units;
    for (std::size_t i = 0; i < curves.size(); ++i) {
        sampleColumn(*curves[i], frames.data(), count, hold, held, values.mutable_data() + i * count);
        names.append(motion::curveLabel(curves[i]));
        units.append(motion::curveUnit(curves[i]));
    }
    const py::object samples = py::module_::import("kaanimation._samples").attr("Samples");
    return samples(values, frames.attr("reshape")(-1), py::tuple(names), py::tuple(units),
                   py::tuple(wrapAll(session, curves)));
}

/// The column of that name as floats or numbers; nothing when the array has none.
template <class Number>
std::optional<py::array_t<Number, py::array::c_style | py::array::forcecast>> column(const py::array& table,
                                                                                     const char* name) {
    if (!table.dtype().attr("names").contains(name))
        return std::nullopt;
    return py::array_t<Number, py::array::c_style | py::array::forcecast>(table[name]);
}

std::vector<KeyRow> rowsOfPairs(const py::array& table) {
    const Frames pairs(table);
    if (pairs.ndim() != 2 || pairs.shape(1) != 2)
        throw py::value_error(
            "keys are a structured array with fields 'frame' and 'value', or an array of shape "
            "(n, 2)");
    std::vector<KeyRow> rows(static_cast<std::size_t>(pairs.shape(0)));
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i] = {pairs.data()[2 * i],
                   pairs.data()[2 * i + 1],
                   0,
                   0,
                   0,
                   0,
                   kaControlPoint2D::TANGENT_SMOOTH,
                   kaControlPoint2D::LENGTH_HALF};
    return rows;
}

/// What the array says, with smooth handles where it says nothing of handles.
std::vector<KeyRow> rowsOf(const py::array& table) {
    if (table.dtype().attr("names").is_none())
        return rowsOfPairs(table);
    if (table.ndim() != 1)
        throw py::value_error("a structured array of keys has one dimension");
    const auto frame = column<float>(table, "frame"), value = column<float>(table, "value");
    if (!frame || !value)
        throw py::value_error("a structured array of keys has fields 'frame' and 'value'");
    const auto inFrame = column<float>(table, "in_frame"), inValue = column<float>(table, "in_value");
    const auto outFrame = column<float>(table, "out_frame"), outValue = column<float>(table, "out_value");
    const auto tangent = column<std::uint32_t>(table, "tangent"),
               length = column<std::uint32_t>(table, "length");
    const int handles = int(bool(inFrame)) + int(bool(inValue)) + int(bool(outFrame)) + int(bool(outValue));
    if (handles != 0 && handles != 4)
        throw py::value_error("handles take all four of 'in_frame', 'in_value', 'out_frame' and 'out_value'");
    std::vector<KeyRow> rows(static_cast<std::size_t>(table.size()));
    const std::uint32_t type =
        handles == 4 ? kaControlPoint2D::TANGENT_USER : kaControlPoint2D::TANGENT_SMOOTH;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i] = {frame->data()[i], value->data()[i], 0, 0, 0, 0, type, kaControlPoint2D::LENGTH_HALF};
        if (handles == 4) {
            rows[i].in_frame = inFrame->data()[i];
            rows[i].in_value = inValue->data()[i];
            rows[i].out_frame = outFrame->data()[i];
            rows[i].out_value = outValue->data()[i];
        }
        if (tangent)
            rows[i].tangent = tangent->data()[i];
        if (length)
            rows[i].length = length->data()[i];
        if (handles == 0 && rows[i].tangent == kaControlPoint2D::TANGENT_USER)
            throw py::value_error("key " + std::to_string(i) + " is Tangent.USER, and no handles are given");
    }
    return rows;
}

/// @throws ValueError for what no curve can hold: numbers that are not finite, two keys at one frame.
void requireKeys(const std::vector<KeyRow>& rows) {
    std::vector<std::uint32_t> order(rows.size());
    std::iota(order.begin(), order.end(), 0U);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const KeyRow& row = rows[i];
        const float sum = row.frame * 0.0F + row.value * 0.0F + row.in_frame * 0.0F + row.in_value * 0.0F +
                          row.out_frame * 0.0F + row.out_value * 0.0F;
        if (sum != 0.0F)
            throw py::value_error("key " + std::to_string(i) + " is not finite");
    }
    const auto byFrame = [&rows](std::uint32_t a, std::uint32_t b) { return rows[a].frame < rows[b].frame; };
    if (!std::is_sorted(order.begin(), order.end(), byFrame))
        std::stable_sort(order.begin(), order.end(), byFrame);
    for (std::size_t i = 1; i < order.size(); ++i)
        if (rows[order[i - 1]].frame == rows[order[i]].frame)
            throw py::value_error("keys " + std::to_string(order[i - 1]) + " and " +
                                  std::to_string(order[i]) + " are at one frame");
}

std::vector<kaControlPoint2D*> makeKeys(kaAnimationManager& manager, const std::vector<KeyRow>& rows) {
    std::vector<kaControlPoint2D*> keys;
    keys.reserve(rows.size());
    for (const KeyRow& row : rows) {
        kaControlPoint2D* key = manager.createPoint2D(row.frame, row.value, 0);
        key->setTangentType(row.tangent);
        key->setTangentLengthMode(row.length);
        if (row.tangent == kaControlPoint2D::TANGENT_USER) {
            key->getInTangent()->setPosition(row.in_frame, row.in_value);
            key->getOutTangent()->setPosition(row.out_frame, row.out_value);
        }
        keys.push_back(key);
    }
    return keys;
}

void setKeys(const Curve& self, const py::array& table) {
    kaAnimationCurve2D& curve = self.get();
    kaAnimationManager& manager = self.session->manager();
    const std::vector<KeyRow> rows = rowsOf(table);
    requireKeys(rows);
    const std::vector<kaUID> former = curve.getChildIDs();
    if (rows.empty()) {
        for (const kaUID id : former)
            curve.subObject(manager.getObject(id), true);
        return;
    }
    curve.setPoints(makeKeys(manager, rows));
    for (const kaUID id : former)
        if (kaAnimationObject* key = manager.getObject(id)) {
            key->setParent(0);
            manager.destroyObject(key);
        }
}

py::array_t<KeyRow> getKeys(const Curve& self) {
    const std::vector<kaAnimationObject*> keys = self.get().getObjects();
    py::array_t<KeyRow> table(static_cast<py::ssize_t>(keys.size()));
    KeyRow* row = table.mutable_data();
    for (kaAnimationObject* object : keys) {
        const auto* key = static_cast<kaControlPoint2D*>(object);
        const osg::Pnt2f place = key->getPosition();
        const osg::Pnt2f in = key->getInTangent() ? key->getInTangent()->getPosition() : place;
        const osg::Pnt2f out = key->getOutTangent() ? key->getOutTangent()->getPosition() : place;
        *row++ = {place[0],
                  place[1],
                  in[0],
                  in[1],
                  out[0],
                  out[1],
                  key->getTangentType(),
                  key->getTangentLengthMode()};
    }
    return table;
}

/// Frame by frame through the scene. What fires on the way may destroy any of the objects and nodes.
void evaluatePositions(const SessionPtr& session, const float* frames, std::size_t count,
                       const std::vector<ObjectReference>& objects, WorldPositions& positions, float* at) {
    for (std::size_t i = 0; i < count && !Call::hasFailed(); ++i) {
        std::vector<kaAnimationObject*> still;
        for (const ObjectReference& object : objects)
            if (kaAnimationObject* found = session->manager().getObject(object.id))
                still.push_back(found);
        motion::evaluate(still, frames[i]);
        at = positions.read(at);
    }
}

py::array_t<float> positionsAt(const SessionPtr& session, const Frames& frames,
                               const std::vector<ObjectReference>& objects,
                               const std::vector<NodeReference>& nodes) {
    requireRow(frames);
    const auto count = static_cast<std::size_t>(frames.size());
    for (std::size_t i = 0; i < count; ++i)
        frameOf(static_cast<double>(frames.data()[i]), "frame");
    WorldPositions positions(nodes);
    py::array_t<float> result({frames.size(), static_cast<py::ssize_t>(nodes.size()), py::ssize_t(3)});
    const std::vector<kaAnimationObject*> evaluated = objectsOf(objects);
    // Nobody looks on between the frames of a script's own project, only at the last.
    std::optional<SampledPoses> poses;
    if (count > 1 && !session->isHosted())
        poses = SampledPoses::of(evaluated);
    if (poses && poses->sample(frames.data(), count)) {
        positions.read(*poses, count, result.mutable_data());
        motion::evaluate(evaluated, frames.data()[count - 1]);
    } else {
        evaluatePositions(session, frames.data(), count, objects, positions, result.mutable_data());
    }
    return result;
}

std::vector<ObjectReference> referencesTo(const SessionPtr& session,
                                          const std::vector<kaAnimationObject*>& objects) {
    std::vector<ObjectReference> references;
    for (const kaAnimationObject* object : objects)
        references.push_back({session, object->getId()});
    return references;
}

std::vector<NodeReference> placedNodes(const SessionPtr& session) {
    std::vector<NodeReference> references;
    for (const osg::NodePtr& node : session->project().placedNodes())
        references.push_back({session, node.getFieldContainerId()});
    return references;
}

} // namespace

void bindArrays(py::module_& module) {
    PYBIND11_NUMPY_DTYPE(KeyRow, frame, value, in_frame, in_value, out_frame, out_value, tangent, length);
    module.attr("KEY_DTYPE") = py::dtype::of<KeyRow>();

    auto bases = py::reinterpret_borrow<py::class_<ObjectReference>>(module.attr("Object"));
    bases.def(
        "sample", checked([](const ObjectReference& self, const Frames& frames, bool hold) {
            return sampleCurves(self.session, motion::curvesBelow({&self.object()}), frames, hold);
        }),
        py::arg("frames"), py::kw_only(), py::arg("hold") = true,
        "Samples all curves at or below the object: a Samples of shape (frames, curves), float32, columns "
        "by\nlabel, with names and units. Where a curve has no value stands nan.\n\n"
        "hold: outside its extent a curve keeps its first and last value, as when it plays. Without, "
        "frames\nare taken as they are: before the first key stands the second key's value.");
    auto curves = py::reinterpret_borrow<py::class_<Curve, ObjectReference>>(module.attr("Curve"));
    curves.def(
        "set_keys", checked([](const Curve& self, const py::object& keys) {
            const py::array table = py::array::ensure(keys);
            if (!table) {
                PyErr_Clear();
                throw py::type_error("keys must be an array, or what NumPy makes one of");
            }
            setKeys(self, table);
        }),
        py::arg("keys"),
        "Replaces all keys, in any order, by those of a structured array with the fields of KEY_DTYPE, or "
        "of an\narray of (frame, value). 'frame' and 'value' must be there; without handles they are "
        "smooth, with handles and\nno 'tangent' they are Tangent.USER. Nothing is changed by an array "
        "that has two keys at one frame or a number\nthat is not finite: ValueError says which.");
    curves.def("get_keys", checked([](const Curve& self) { return getKeys(self); }),
               "All keys by frame as a structured array with the fields of KEY_DTYPE, a copy.");
    auto projects = py::reinterpret_borrow<py::class_<Session, SessionPtr>>(module.attr("Project"));
    projects.def(
        "world_positions",
        checked([](const SessionPtr& self, const Frames& frames,
                   std::optional<std::vector<ObjectReference>> objects,
                   std::optional<std::vector<NodeReference>> nodes) {
            if (!objects)
                objects = referencesTo(self, self->project().playable(""));
            if (!nodes)
                nodes = placedNodes(self);
            return positionsAt(self, frames, *objects, *nodes);
        }),
        py::arg("frames"), py::kw_only(), py::arg("objects") = py::none(), py::arg("nodes") = py::none(),
        "Where nodes stand in the world: an array (frames, nodes, 3), float32.\n\n"
        "objects: what is evaluated, all that plays unless told. nodes: `scene.placed_nodes` unless told. "
        "The\nscene is left at the last of the frames; sequences fire as they do when playing.");
}

} // namespace ka::python
