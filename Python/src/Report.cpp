#include "Bindings.h"
#include "Call.h"

#include <kaMotion/ImportReport.h>
#include <kaMotion/OperationReport.h>
#include <kaMotion/Retarget.h>
#include <pybind11/numpy.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace ka::python {

namespace {

void bindOperationReport(py::module_& module) {
    using motion::Measure;
    using motion::OperationReport;
    py::class_<Measure>(module, "Measure", "A number that an operation has found.")
        .def_readonly("name", &Measure::name, "What was measured, in words.")
        .def_readonly("value", &Measure::value, "How much.")
        .def_readonly("unit", &Measure::unit, "'degrees', 'units', 'frames' or ''.")
        .def_readonly("where", &Measure::where, "The curve or node it was found on; '' when it is of all.")
        .def_readonly("frame", &Measure::frame, "When; None when it is of no single frame.")
        .def_readonly("allowed", &Measure::allowed, "The bound that was asked for; None without one.");
    py::class_<OperationReport>(module, "Report",
                                "What an operation on motion did; str() gives a few lines.\n\n"
                                ">>> import kaanimation\n"
                                ">>> with kaanimation.open(kaanimation.example()) as project:\n"
                                "...     report = project.clips[0].reduce(rotation=1)\n"
                                ">>> report.operation, report.keys_before, report.keys_after < 40\n"
                                "('reduce', 66, True)")
        .def_readonly("operation", &OperationReport::operation, "Its name.")
        .def_readonly("cancelled", &OperationReport::isCancelled,
                      "Whether its progress function gave it up; then nothing was changed.")
        .def_readonly("dry", &OperationReport::isDry, "Whether nothing was to be changed.")
        .def_readonly("curves", &OperationReport::curves, "Curves that it worked on.")
        .def_readonly("changed_curves", &OperationReport::changedCurves,
                      "Of them those that are different now.")
        .def_readonly("keys_before", &OperationReport::keysBefore, "Keys of the curves that it worked on.")
        .def_readonly("keys_after", &OperationReport::keysAfter, "The same, afterwards.")
        .def_readonly("measures", &OperationReport::measures, "What was found out.")
        .def_readonly("notes", &OperationReport::notes, "What its user ought to know, a line each.")
        .def_readonly("faults", &OperationReport::faults, "What could not be kept to, a line each.")
        .def("json", &OperationReport::json, "The whole of it as one JSON object.")
        .def("__str__", &OperationReport::text)
        .def("__repr__", [](const OperationReport& self) {
            return "<report of " + self.operation + ": " + std::to_string(self.changedCurves) + " of " +
                   std::to_string(self.curves) + " curves changed>";
        });
}

void bindImportReport(py::module_& module) {
    using Report = motion::ImportReport;
    py::class_<Report>(module, "ImportReport", "What became of the model that a project was opened from.")
        .def_readonly("nodes", &Report::nodes, "Of its hierarchy.")
        .def_readonly("cameras", &Report::cameras, "Nodes that carry a camera.")
        .def_readonly("lights", &Report::lights, "Nodes that carry a light.")
        .def_readonly("meshes", &Report::meshes, "Meshes, of one material each.")
        .def_readonly("triangles", &Report::triangles, "In all meshes.")
        .def_readonly("clips", &Report::clips, "One for each take.")
        .def_readonly("blocks", &Report::blocks, "One for each moved node of each take.")
        .def_readonly("curves", &Report::curves, "In all blocks.")
        .def_readonly("keys", &Report::keys, "On all curves.")
        .def_readonly("added_keys", &Report::addedKeys,
                      "Keys that the model does not have, for rotations to keep their way between keys.")
        .def_readonly("merged_keys", &Report::mergedKeys,
                      "Keys left out because a document cannot tell their frames apart.")
        .def_readonly("worst_difference", &Report::worstDifference,
                      "The largest difference between a curve and its source, as a part of its range.")
        .def_readonly("worst_curve", &Report::worstCurve, "Which curve's that is; '' without any.")
        .def_readonly("worst_frame", &Report::worstFrame, "Where on that curve.")
        .def_readonly("worst_rotation", &Report::worstRotation,
                      "Degrees that a converted rotation is off between keys at most.")
        .def_readonly("worst_rotation_node", &Report::worstRotationNode, "Which node's; '' without any.")
        .def_readonly("rotation_tolerance", &Report::rotationTolerance, "Degrees that were asked for.")
        .def_readonly("unreached_segments", &Report::unreachedSegments,
                      "Segments beyond that tolerance, because they cannot be split further.")
        .def_readonly("notes", &Report::notes, "What could not be carried over, a line each.")
        .def_readonly("findings", &Report::findings, "How many of the notes are damage in the file.")
        .def_readonly("faults", &Report::faults, "Curves that do not do what is promised, a line each.");
}

/// Rows of plain numbers as an array.
template <class Row, class Write>
py::array_t<double> rows(const std::vector<Row>& all, py::ssize_t width, Write&& write) {
    py::array_t<double> array({static_cast<py::ssize_t>(all.size()), width});
    double* at = array.mutable_data();
    for (const Row& row : all)
        at = write(row, at);
    return array;
}

double* writeQuaternion(const motion::Quaternion& q, double* at) {
    for (const double part : {q.x, q.y, q.z, q.w})
        *at++ = part;
    return at;
}

void bindSkeleton(py::module_& module) {
    using Skeleton = motion::SkeletonMotion;
    using Joint = Skeleton::Joint;
    py::class_<Joint>(module, "Joint", "One node of a recorded skeleton.")
        .def_readonly("name", &Joint::name, "Of the node.")
        .def_readonly("parent", &Joint::parent, "Its place in `Skeleton.joints`; -1 for none.")
        .def_readonly("moved", &Joint::isMoved, "Whether any curve places it.")
        .def_property_readonly(
            "rest_position", [](const Joint& self) { return self.restPosition; },
            "[x, y, z] in the world, as the scene stood.")
        .def_property_readonly(
            "rest_rotation",
            [](const Joint& self) {
                std::array<double, 4> parts{};
                writeQuaternion(self.restRotation, parts.data());
                return parts;
            },
            "[x, y, z, w] in the world, as the scene stood.")
        .def_property_readonly(
            "positions",
            [](const Joint& self) {
                return rows(self.positions, 3, [](const motion::Vec3& position, double* at) {
                    return std::copy(position.begin(), position.end(), at);
                });
            },
            "In the world: an array (frames, 3).")
        .def_property_readonly(
            "rotations", [](const Joint& self) { return rows(self.rotations, 4, &writeQuaternion); },
            "In the world, as quaternions x, y, z, w: an array (frames, 4).");
    py::class_<Skeleton>(module, "Skeleton", "A skeleton in motion as plain data that outlives its project.")
        .def_readonly("name", &Skeleton::name, "Of the clip.")
        .def_readonly("frames", &Skeleton::frames, "Where its poses were taken down.")
        .def_readonly("joints", &Skeleton::joints, "Its nodes, those above first.");
}

} // namespace

void bindReports(py::module_& module) {
    bindOperationReport(module);
    bindImportReport(module);
    bindSkeleton(module);
}

} // namespace ka::python
