#include "Bindings.h"
#include "Call.h"
#include "References.h"

#include <kaAnimationCurve2D.h>
#include <kaAnimationStrip.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/EditClips.h>
#include <kaMotion/EditTime.h>
#include <kaMotion/Filter.h>
#include <kaMotion/Loop.h>
#include <kaMotion/Mirror.h>
#include <kaMotion/Reduce.h>
#include <kaMotion/Retarget.h>
#include <optional>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace ka::python {

namespace {

using motion::OperationReport;
using Self = const ObjectReference&;
using Objects = py::class_<ObjectReference>;
using Projects = py::class_<Session, SessionPtr>;
using Clip = ReferenceTo<kaAnimationStrip>;

motion::CurveList curvesOf(Self self) {
    return motion::curvesBelow({&self.object()});
}

osg::NodePtr rootOf(Self self) {
    return self.session->project().root();
}

std::vector<kaAnimationStrip*> stripsOf(const std::vector<Clip>& clips) {
    std::vector<kaAnimationStrip*> strips;
    for (const Clip& clip : clips)
        strips.push_back(&clip.get());
    return strips;
}

void bindReport(py::module_& module) {
    using motion::Measure;
    py::class_<Measure>(module, "Measure", "A number that an operation has found.")
        .def_readonly("name", &Measure::name, "What was measured, in words.")
        .def_readonly("value", &Measure::value, "How much.")
        .def_readonly("unit", &Measure::unit, "'degrees', 'units', 'frames' or ''.")
        .def_readonly("where", &Measure::where, "The curve or node it was found on; '' when it is of all.")
        .def_readonly("frame", &Measure::frame, "When; None when it is of no single frame.")
        .def_readonly("allowed", &Measure::allowed, "The bound that was asked for; None without one.");
    py::class_<OperationReport>(module, "Report", "What an operation on motion did; str() gives a few lines.")
        .def_readonly("operation", &OperationReport::operation, "Its name.")
        .def_readonly("curves", &OperationReport::curves, "Curves that it worked on.")
        .def_readonly("changed_curves", &OperationReport::changedCurves,
                      "Of them those that are different now.")
        .def_readonly("keys_before", &OperationReport::keysBefore, "Keys of the curves that it worked on.")
        .def_readonly("keys_after", &OperationReport::keysAfter, "The same, afterwards.")
        .def_readonly("measures", &OperationReport::measures, "What was found out.")
        .def_readonly("notes", &OperationReport::notes, "What its user ought to know, a line each.")
        .def_readonly("faults", &OperationReport::faults, "What could not be kept to, a line each.")
        .def("__str__", &OperationReport::text);
}

void addThinning(Objects& objects) {
    objects.def(
        "reduce",
        checked([](Self self, double rotation, double translation, double scale, double value,
                   std::optional<double> world, bool corners, bool dropConstant, bool dry,
                   const py::object& progress) {
            motion::ReduceOptions options;
            options.rotation = rotation;
            options.translation = translation;
            options.scale = scale;
            options.value = value;
            options.world = world;
            options.allowsCorners = corners;
            options.dropsConstant = dropConstant;
            options.isDry = dry;
            PythonListener listener(progress);
            return motion::reduce(curvesOf(self), rootOf(self), options, listener);
        }),
        py::kw_only(), py::arg("rotation") = 0.5, py::arg("translation") = 0.1, py::arg("scale") = 0.001,
        py::arg("value") = 0.001, py::arg("world") = py::none(), py::arg("corners") = false,
        py::arg("drop_constant") = false, py::arg("dry") = false, py::arg("progress") = py::none(),
        "Thins the keys of all curves below to few that stay within the bounds, each in the unit of its "
        "curve. world:\nno node's origin may move further than this. dry: only report.");
    objects.def("smooth", checked([](Self self, double cutOff, double framesPerSecond) {
                    return motion::smooth(curvesOf(self), {cutOff, framesPerSecond});
                }),
                py::arg("cut_off") = 6.0, py::kw_only(), py::arg("frames_per_second") = 25.0,
                "Takes quick jitter off all curves below, by a low-pass of that many hertz that moves "
                "nothing in time.");
    objects.def(
        "remove_flips", checked([](Self self) { return motion::removeFlips(curvesOf(self)); }),
        "Takes the flips out of rotations: each key gets the angles nearest to those of the key before it.");
    objects.def("remove_peaks", checked([](Self self, std::size_t reach, double sensitivity, double least) {
                    return motion::removePeaks(curvesOf(self), {reach, sensitivity, least});
                }),
                py::kw_only(), py::arg("reach") = 3, py::arg("sensitivity") = 4.0, py::arg("least") = 0.5,
                "Puts single keys that leap out of line back into it.");
    objects.def("change_values", checked([](Self self, double factor, double offset) {
                    return motion::changeValues(curvesOf(self), factor, offset);
                }),
                py::arg("factor") = 1.0, py::arg("offset") = 0.0,
                "Every value v becomes factor * v + offset.");
}

void addTiming(Objects& objects) {
    using motion::RootMotion;
    objects.def("trim", checked([](Self self, double begin, double end, bool toStart) {
                    return motion::trim(curvesOf(self), begin, end, toStart);
                }),
                py::arg("begin"), py::arg("end"), py::kw_only(), py::arg("to_start") = false,
                "Cuts all curves below to those frames, exactly; to_start: begin becomes frame 0.");
    objects.def(
        "retime",
        checked([](Self self, double scale, double shift, const std::vector<std::pair<double, double>>& map) {
            motion::Retiming retiming;
            retiming.scale = scale;
            retiming.shift = shift;
            retiming.map = map;
            return motion::retime(curvesOf(self), retiming);
        }),
        py::kw_only(), py::arg("scale") = 1.0, py::arg("shift") = 0.0, py::arg("map") = py::tuple(),
        "Moves motion in time. map: pairs of a frame before and after, applied first.");
    objects.def("play_backwards", checked([](Self self) { return motion::reverse(curvesOf(self)); }),
                "Turns time round between the first and the last frame of all curves below.");
    objects.def("resample", checked([](Self self, double every) {
                    motion::Resampling resampling;
                    resampling.every = every;
                    return motion::resample(curvesOf(self), resampling);
                }),
                py::arg("every") = 1.0, "Gives all curves below keys so many frames apart, and no others.");
    objects.def("loop", checked([](Self self, double seam, const std::string& root) {
                    if (root != "closed" && root != "kept" && root != "taken out")
                        raise(ErrorKind::Usage, "root is 'closed', 'kept' or 'taken out'");
                    const RootMotion way = root == "closed" ? RootMotion::Closed
                                           : root == "kept" ? RootMotion::Kept
                                                            : RootMotion::TakenOut;
                    return motion::loop(curvesOf(self), rootOf(self), {seam, way});
                }),
                py::arg("seam") = 10.0, py::kw_only(), py::arg("root") = "closed",
                "Makes motion end as it begins, by leading it there over the last frames. root: the topmost "
                "node's way "
                "is\n'closed', 'kept' or 'taken out'.");
    objects.def(
        "mirror", checked([](Self self, int axis) {
            motion::MirrorOptions options;
            options.axis = axis;
            return motion::mirror(curvesOf(self), rootOf(self), options);
        }),
        py::arg("axis") = 0,
        "Has the left do what the right did; axis: the world's that left and right lie along, 0, 1, 2.");
}

void addClips(Projects& projects) {
    projects.def(
        "merge_clips",
        checked([](const SessionPtr& self, const std::vector<Clip>& clips, double crossFade,
                   const std::string& name) {
            self->project();
            return motion::merge(stripsOf(clips), {crossFade, name, false});
        }),
        py::arg("clips"), py::kw_only(), py::arg("cross_fade") = 0.0, py::arg("name") = "merged",
        "Makes a new clip that plays clips one after the other; cross_fade: frames in which they overlap.");
    projects.def(
        "split_clip",
        checked([](const SessionPtr& self, const Clip& clip, const std::vector<double>& frames, bool keep) {
            self->project();
            return motion::split(&clip.get(), frames, keep);
        }),
        py::arg("clip"), py::arg("frames"), py::kw_only(), py::arg("keep") = false,
        "Cuts a clip at frames into clips that each begin at frame 0; keep: the clip itself stays.");
    projects.def("rename_nodes",
                 checked([](const SessionPtr& self, const std::string& match, const std::string& to) {
                     return motion::rename(self->project().root(), match, to);
                 }),
                 py::arg("match"), py::arg("to"), "Renames nodes by name or pattern: 'rig:*' to '*'.");
    projects.def("retarget",
                 checked([](const SessionPtr& self, const motion::SkeletonMotion& skeleton,
                            const std::vector<std::pair<std::string, std::string>>& names) {
                     motion::RetargetOptions options;
                     options.names = names;
                     return motion::retarget(skeleton, self->project().root(), options);
                 }),
                 py::arg("skeleton"), py::arg("names") = py::tuple(),
                 "A new clip in which the nodes move as a recorded skeleton did. names: pairs of a name "
                 "there and here.");
}

} // namespace

void bindMotionOperations(py::module_& module) {
    bindReport(module);
    py::class_<motion::SkeletonMotion>(module, "Skeleton",
                                       "A skeleton in motion as plain data that outlives its "
                                       "project.")
        .def_readonly("name", &motion::SkeletonMotion::name, "Of the clip.")
        .def_readonly("frames", &motion::SkeletonMotion::frames, "Where its poses were taken down.");
    auto objects = py::reinterpret_borrow<Objects>(module.attr("Object"));
    addThinning(objects);
    addTiming(objects);
    objects.def(
        "record_skeleton",
        checked([](Self self) { return motion::recordSkeleton(rootOf(self), curvesOf(self), "motion"); }),
        "Takes the poses of all curves below down, for `Project.retarget` of another project. The scene must "
        "hold the\nrest pose.");
    auto projects = py::reinterpret_borrow<Projects>(module.attr("Project"));
    addClips(projects);
}

} // namespace ka::python
