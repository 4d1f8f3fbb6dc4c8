#include "Arguments.h"
#include "Bindings.h"
#include "Call.h"
#include "References.h"

#include <algorithm>
#include <kaAnimationCurve2D.h>
#include <kaMotion/Canvas.h>
#include <kaMotion/Comparison.h>
#include <kaMotion/CurveCheck.h>
#include <kaMotion/DocumentReader.h>
#include <kaMotion/Failure.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Pictures.h>
#include <kaMotion/ReferenceCheck.h>
#include <kaMotion/SceneCheck.h>
#include <kaMotion/SceneFiles.h>
#include <kaMotion/SceneUpgrade.h>
#include <kaMotion/Summary.h>
#include <kaMotion/Text.h>
#include <optional>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

namespace py = pybind11;

namespace ka::python {

namespace {

using Self = const SessionPtr&;
using Projects = py::class_<Session, SessionPtr>;

motion::FindingList validate(const Path& document, const std::optional<Path>& scene) {
    motion::DocumentOutline outline;
    motion::FindingList findings;
    motion::readOutline(document.string(), outline, findings);
    const motion::ElementsById byId(outline);
    motion::checkReferences(outline, byId, findings);
    motion::checkCurves(outline, byId, findings);
    if (scene)
        motion::checkScene(scene->string(), outline, byId, findings);
    std::stable_sort(findings.begin(), findings.end(),
                     [](const motion::Finding& a, const motion::Finding& b) {
                         return a.line - 1U < b.line - 1U; // what belongs to no line comes last
                     });
    return findings;
}

void bindChecks(py::module_& module) {
    using motion::Finding;
    py::class_<Finding>(module, "Finding", "One thing that is wrong with a document.")
        .def_readonly("line", &Finding::line, "Counted from 1; 0 when no line is to blame.")
        .def_readonly("column", &Finding::column, "Counted from 1; 0 when the line says enough.")
        .def_readonly("element", &Finding::element, "'curve', ...; '' for the document as a whole.")
        .def_readonly("id", &Finding::id, "As it stands in the file.")
        .def_readonly("message", &Finding::message, "What is wrong.")
        .def("__repr__", [](const Finding& self) {
            return "<finding line " + std::to_string(self.line) + ": " + motion::oneLine(self.message) + ">";
        });
    module.def(
        "validate", checked([](const Path& document, const std::optional<Path>& scene) {
            return validate(document, scene);
        }),
        py::arg("document"), py::arg("scene") = py::none(),
        "Everything that is wrong with an animation document, in the order of its lines; with the scene that "
        "it goes\nwith also what does not fit that. No project need be open.");
}

void bindComparison(py::module_& module) {
    using motion::Comparison;
    using Summary = motion::ProjectSummary;
    py::class_<Summary>(module, "Summary", "What a project holds, as plain data that outlives it.")
        .def_property_readonly(
            "nodes", [](const Summary& self) { return self.nodes.size(); }, "How many nodes.")
        .def_property_readonly(
            "curves", [](const Summary& self) { return self.count(KA_TYPE_CURVE); }, "How many curves.")
        .def_property_readonly(
            "clips", [](const Summary& self) { return self.count(KA_TYPE_STRIP); }, "How many clips.")
        .def_readonly("keys", &Summary::keys, "How many keys.");
    using Difference = Comparison::Difference;
    py::class_<Difference>(module, "Difference", "Something that one of two projects lacks or has otherwise.")
        .def_readonly("element", &Difference::element, "'node', 'clip', 'curve', ...")
        .def_readonly("name", &Difference::name, "Its name.")
        .def_readonly("what", &Difference::what, "'range', 'presence', ...")
        .def_readonly("a", &Difference::a, "How it stands in the first; '' where it is missing.")
        .def_readonly("b", &Difference::b, "The same for the second.");
    using Error = Comparison::CurveError;
    py::class_<Error>(module, "CurveError", "How far two curves are apart, at their worst.")
        .def_readonly("node", &Error::node, "The animated node.")
        .def_readonly("attribute", &Error::attribute, "The animated number of it.")
        .def_readonly("frame", &Error::frame, "Where they are furthest apart.")
        .def_readonly("error", &Error::error, "By how much; infinite where only one has a value.");
    py::class_<Comparison>(module, "Comparison", "What two projects do not have in common.")
        .def_readonly("structure", &Comparison::structure, "A Difference for each object or node.")
        .def_readonly("values", &Comparison::values,
                      "A CurveError for each pair of curves, the largest first.")
        .def_readonly("samples", &Comparison::samples, "Pairs of values compared.");
    module.def(
        "compare", checked([](const Summary& a, const Summary& b, double tolerance) {
            return motion::compare(a, b, tolerance);
        }),
        py::arg("a"), py::arg("b"), py::kw_only(), py::arg("tolerance") = 0.0,
        "Compares two summaries: what there is, then the values of every pair of curves at every whole frame "
        "and key.\nRanges and the placing of nodes may differ by the tolerance.");
}

py::dict upgrade(Self self, const std::optional<NodeReference>& camera, const py::object& progress) {
    const osg::NodePtr top = motion::topOf(self->project().root());
    PythonListener listener(progress);
    const motion::UpgradeReport report =
        motion::upgradeScene(top, camera ? camera->get() : motion::firstCamera(top), listener);
    py::list leftOut;
    for (const kaImportReport::LeftOut& entry : report.made.leftOut)
        leftOut.append(py::make_tuple(entry.kind, motion::utf8FromLatin1(entry.name),
                                      kaImportReport::text(entry.reason)));
    py::dict result;
    result["clips"] = report.made.clips;
    result["tracks"] = report.made.tracks;
    result["blocks"] = report.made.blocks + report.made.cameraBlocks;
    result["sequences"] = report.made.sequences;
    result["curves"] = report.made.curves;
    result["keys"] = report.made.keys;
    result["camera"] = report.camera.empty() ? py::object(py::none()) : py::cast(report.camera);
    result["left_out"] = leftOut;
    return result;
}

void writePicture(const QImage& image, const Path& path) {
    if (motion::extensionOf(path.string()) != "png")
        raise(ErrorKind::Usage, "pictures are written to .png files");
    writeFile(path, motion::pngBytes(image));
}

motion::PictureRange pictureRange(const std::vector<kaAnimationObject*>& objects, OptionalFrame begin,
                                  OptionalFrame end) {
    const auto [from, to] = rangeOf(objects, begin, end);
    return {from, to, 25.0};
}

QSize sizeOf(int width, int height) {
    if (width < 100 || width > 20000 || height < 0 || height > 20000)
        throw py::value_error("a picture is 100 to 20000 pixels wide and at most 20000 high");
    return {width, height > 0 ? height : width * 9 / 16};
}

void addPictures(Projects& projects) {
    projects.def(
        "draw_curves",
        checked([](Self self, const Path& path, const std::vector<std::string>& names, OptionalFrame begin,
                   OptionalFrame end, int width, int height, const std::string& title) {
            const auto objects = self->project().playable("");
            const motion::CurveList curves = motion::curvesBelow(objects);
            const auto chosen =
                names.empty() ? motion::tellingCurves(curves) : motion::chooseCurves(curves, names);
            writePicture(motion::plotCurves(QString::fromStdString(title), chosen,
                                            pictureRange(objects, begin, end), sizeOf(width, height), false),
                         path);
        }),
        py::arg("path"), py::arg("names") = py::tuple(), py::kw_only(), py::arg("begin") = py::none(),
        py::arg("end") = py::none(), py::arg("width") = 1600, py::arg("height") = 0, py::arg("title") = "",
        "Writes a picture (.png) of curves over frames; without names of a few that tell most. Needs no "
        "matplotlib.");
    projects.def(
        "draw_figure",
        checked([](Self self, const Path& path, int count, std::optional<double> begin,
                   std::optional<double> end, int width, const std::string& title) {
            if (count < 1 || count > 1000)
                throw py::value_error("count must be 1 to 1000");
            const auto objects = self->project().playable("");
            writePicture(motion::renderFigure(QString::fromStdString(title), self->project(), objects,
                                              pictureRange(objects, begin, end), count,
                                              sizeOf(width, motion::sheetHeight(width, count))),
                         path);
        }),
        py::arg("path"), py::arg("count") = 12, py::kw_only(), py::arg("begin") = py::none(),
        py::arg("end") = py::none(), py::arg("width") = 1600, py::arg("title") = "",
        "Writes a picture (.png) of the figure at frames spread evenly. The scene is left at the last of "
        "them.");
}

} // namespace

void bindOperations(py::module_& module) {
    bindChecks(module);
    bindComparison(module);
    auto projects = py::reinterpret_borrow<Projects>(module.attr("Project"));
    projects.def("summary", checked([](Self self) { return motion::summarize(self->project()); }),
                 "What it holds, to be compared with another project's once this one is closed.");
    projects.def(
        "upgrade",
        checked([](Self self, const std::optional<NodeReference>& camera, const py::object& progress) {
            return upgrade(self, camera, progress);
        }),
        py::arg("camera") = py::none(), py::kw_only(), py::arg("progress") = py::none(),
        "Converts the animation that an older scene carries in itself; `save` then writes scene and "
        "document. camera:\nthe node that takes the old camera's animation, the first camera unless told. "
        "Returns counts of what was made,\nand what was left out.");
    addPictures(projects);
}

} // namespace ka::python
