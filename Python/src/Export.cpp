#include "Bindings.h"
#include "Call.h"
#include "References.h"

#include <filesystem>
#include <kaFile.h>
#include <kaMotion/Exporting.h>
#include <kaMotion/Text.h>
#include <optional>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

namespace py = pybind11;

namespace ka::python {

namespace {

using Path = std::filesystem::path;
using Objects = std::optional<std::vector<ObjectReference>>;

struct Range {
    std::optional<double> begin, end;
    double step;
};

std::vector<std::string> exportTo(const SessionPtr& session, const Path& path, const Objects& objects,
                                  const Range& range, double framesPerSecond, double tolerance) {
    const std::optional<motion::ExportKind> kind = motion::exportKind(path.string());
    if (!kind)
        raise(ErrorKind::Usage, "motion is handed on as .glb, .gltf, .bvh, .csv or .npz");
    for (const double number : {framesPerSecond, tolerance, range.step})
        if (!(number > 0.0) || !(number < 1e6))
            throw py::value_error("fps, tolerance and step must be above 0 and below a million");
    motion::ExportOptions options;
    options.sampling.framesPerSecond = framesPerSecond;
    options.sampling.tolerance = tolerance;
    options.from = range.begin;
    options.to = range.end;
    options.step = range.step;
    std::vector<kaAnimationObject*> chosen;
    if (objects)
        for (const ObjectReference& object : *objects)
            chosen.push_back(&object.object());
    const motion::ExportedFile file =
        motion::exportAs(*kind, session->project(), objects ? chosen : motion::exportedObjects(), options);
    std::string error, warning;
    if (!kaFile::writeSafely(path.string(), file.bytes, error, warning))
        raise(ErrorKind::Output, error);
    return file.report.notes;
}

} // namespace

void bindExport(py::module_& module) {
    auto projects = py::reinterpret_borrow<py::class_<Session, SessionPtr>>(module.attr("Project"));
    projects.def(
        "export",
        checked([](const SessionPtr& self, const Path& path, const Objects& objects,
                   std::optional<double> begin, std::optional<double> end, double step,
                   double framesPerSecond, double tolerance) {
            return exportTo(self, path, objects, {begin, end, step}, framesPerSecond, tolerance);
        }),
        py::arg("path"), py::arg("objects") = py::none(), py::kw_only(), py::arg("begin") = py::none(),
        py::arg("end") = py::none(), py::arg("step") = 1.0, py::arg("frames_per_second") = 25.0,
        py::arg("tolerance") = 0.01,
        "Hands the motion on as .glb, .gltf, .bvh, .csv or .npz, replaced as a whole or not at all. Returns "
        "a line for\neach thing that such a file cannot hold. begin, end, step: frames sampled, for all but "
        "glTF. tolerance: degrees\nthat a rotation of glTF may be off. Except for glTF the scene is left at "
        "the last frame.");
}

} // namespace ka::python
