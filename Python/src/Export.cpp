#include "Arguments.h"
#include "Bindings.h"
#include "Call.h"

#include <algorithm>
#include <kaMotion/Exporting.h>
#include <kaMotion/Text.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

namespace py = pybind11;

namespace ka::python {

namespace {

/// @throws UsageError unless it is X, Y and Z, each once.
motion::EulerOrder orderOf(const std::string& word) {
    std::string sorted = word;
    std::sort(sorted.begin(), sorted.end());
    if (sorted != "XYZ")
        raise(ErrorKind::Usage, "rotation_order takes X, Y and Z, each once");
    motion::EulerOrder order{};
    std::transform(word.begin(), word.end(), order.begin(), [](char axis) { return axis - 'X'; });
    return order;
}

/// Without a choice: glTF holds every clip, the other kinds hold one motion, that which plays.
std::vector<kaAnimationObject*> exported(const SessionPtr& session, motion::ExportKind kind,
                                         const OptionalObjects& objects) {
    using Kind = motion::ExportKind;
    if (!objects && (kind == Kind::Glb || kind == Kind::Gltf))
        return motion::exportedObjects();
    return objectsOrPlayable(session, objects);
}

std::vector<std::string> exportTo(const SessionPtr& session, const Path& path, const OptionalObjects& objects,
                                  const motion::ExportOptions& options) {
    const std::optional<motion::ExportKind> kind = motion::exportKind(path.string());
    if (!kind)
        raise(ErrorKind::Usage, "motion is handed on as .glb, .gltf, .bvh, .csv or .npz");
    const auto chosen = exported(session, *kind, objects);
    const motion::ExportedFile file = motion::exportAs(*kind, session->project(), chosen, options);
    writeFile(path, file.bytes);
    std::vector<std::string> notes = file.report.notes;
    const std::size_t all = motion::exportedObjects().size();
    if (!objects && chosen.size() < all)
        notes.push_back("the file holds one animation: " + motion::counted(all - chosen.size(), "clip") +
                        " left out (choose with objects)");
    return notes;
}

} // namespace

void bindExport(py::module_& module) {
    auto projects = py::reinterpret_borrow<py::class_<Session, SessionPtr>>(module.attr("Project"));
    projects.def(
        "export",
        checked([](const SessionPtr& self, const Path& path, const OptionalObjects& objects,
                   OptionalFrame begin, OptionalFrame end, double step, double framesPerSecond,
                   double tolerance, const std::string& rotationOrder) {
            motion::ExportOptions options;
            options.sampling.framesPerSecond = positive(framesPerSecond, "frames_per_second");
            options.sampling.tolerance = positive(tolerance, "tolerance");
            options.order = orderOf(rotationOrder);
            options.from = begin;
            options.to = end;
            options.step = positive(step, "step");
            return exportTo(self, path, objects, options);
        }),
        py::arg("path"), py::arg("objects") = py::none(), py::kw_only(), py::arg("begin") = py::none(),
        py::arg("end") = py::none(), py::arg("step") = 1.0, py::arg("frames_per_second") = 25.0,
        py::arg("tolerance") = 0.01, py::arg("rotation_order") = "ZYX",
        "Hands the motion on as .glb, .gltf, .bvh, .csv or .npz, replaced as a whole or not at all. Returns "
        "a line for\neach thing that such a file cannot hold.\n\n"
        "objects: all clips for glTF, what plays for the others, unless told. begin, end, step: frames "
        "sampled, for all but\nglTF. tolerance: degrees that a rotation of glTF may be off. rotation_order: "
        "of the channels of BVH, the axis that\nis turned about last first. Except for glTF the scene is "
        "left at the last frame.");
}

} // namespace ka::python
