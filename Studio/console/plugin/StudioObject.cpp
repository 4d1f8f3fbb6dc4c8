#include "StudioObject.h"

#include "Interpreter.h"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace ka::studio {

namespace {

/// The window around the console.
struct StudioObject {
    Interpreter* interpreter;
    py::object package;

    /// @throws RuntimeError when the window is gone.
    StudioForPython& get() const {
        if (interpreter->studio() == nullptr)
            throw std::runtime_error("the window has been closed");
        return *interpreter->studio();
    }

    /// What is still there of these, as the package's objects.
    py::list wrap(const std::vector<kaUID>& ids) const {
        py::list list;
        const py::object project = package.attr("current")();
        for (const kaUID id : ids)
            try {
                if (!project.is_none())
                    list.append(project[py::int_(id)]);
            } catch (py::error_already_set& error) {
                if (!error.matches(PyExc_ReferenceError))
                    throw;
            }
        return list;
    }

    static std::vector<kaUID> idsOf(const py::iterable& objects) {
        std::vector<kaUID> ids;
        for (const py::handle object : objects)
            ids.push_back(object.attr("id").cast<kaUID>());
        return ids;
    }
};

using Self = const StudioObject&;

} // namespace

py::object makeStudioObject(Interpreter& interpreter, const py::object& package) {
    py::module_ scope = py::module_::import("types").attr("ModuleType")("ka_studio");
    py::class_<StudioObject>(scope, "Studio", "The studio's window: its playhead, its selection, playing.")
        .def_property(
            "frame", [](Self self) { return self.get().frame(); },
            [](Self self, float frame) { self.get().setFrame(frame); }, "The frame that the playhead shows.")
        .def_property_readonly(
            "playing", [](Self self) { return self.get().isPlaying(); }, "Whether the timeline plays.")
        .def(
            "play", [](Self self, bool reverse) { self.get().play(reverse); }, py::arg("reverse") = false,
            "Plays from where the playhead is.")
        .def(
            "pause", [](Self self) { self.get().pause(); }, "Stays where it is.")
        .def_property(
            "keys", [](Self self) { return self.wrap(self.get().selectedKeys()); },
            [](Self self, const py::iterable& keys) { self.get().selectKeys(StudioObject::idsOf(keys)); },
            "The keys that are selected; set it to select others.")
        .def_property(
            "objects", [](Self self) { return self.wrap(self.get().selectedBars()); },
            [](Self self, const py::iterable& bars) { self.get().selectBars(StudioObject::idsOf(bars)); },
            "The blocks, clips and events that are selected; set it to select others.")
        .def_property_readonly(
            "curves", [](Self self) { return self.wrap(self.get().shownCurves()); },
            "The curves that the editor shows.")
        .def("__repr__", [](Self) { return "<the studio>"; });
    return py::cast(StudioObject{&interpreter, package});
}

} // namespace ka::studio
