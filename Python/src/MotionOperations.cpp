#include "Bindings.h"
#include "Call.h"
#include "References.h"

#include <kaAnimationCurve2D.h>
#include <kaMotion/CurveChoice.h>
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

using Self = const ObjectReference&;
using Objects = py::class_<ObjectReference>;
using Pairs = std::vector<std::pair<double, double>>;
using NamePairs = std::vector<std::pair<std::string, std::string>>;

osg::NodePtr rootOf(Self self) {
    return self.session->project().root();
}

/// Runs an operation on all curves below an object.
template <class Run>
motion::OperationReport operate(Self self, const py::object& progress, Run&& run) {
    PythonListener listener(progress);
    return run(motion::curvesBelow({&self.object()}), listener);
}

/// What stands for a word of Python. @throws UsageError with the words that there are.
template <class Value>
Value meaningOf(const std::string& word, const char* what,
                const std::vector<std::pair<std::string, Value>>& meanings) {
    std::string words;
    for (const auto& [name, value] : meanings) {
        if (name == word)
            return value;
        words += (words.empty() ? "'" : ", '") + name + "'";
    }
    raise(ErrorKind::Usage, std::string(what) + " is one of " + words);
}

void addThinning(Objects& objects) {
    objects.def(
        "reduce",
        checked([](Self self, double rotation, double translation, double scale, double value,
                   std::optional<double> world, bool corners, bool dropConstant, double shortestHold,
                   bool dry, const py::object& progress) {
            motion::ReduceOptions options;
            options.rotation = rotation;
            options.translation = translation;
            options.scale = scale;
            options.value = value;
            options.world = world;
            options.allowsCorners = corners;
            options.dropsConstant = dropConstant;
            options.shortestHold = shortestHold;
            options.isDry = dry;
            return operate(self, progress, [&](const motion::CurveList& curves, motion::Listener& listener) {
                return motion::reduce(curves, rootOf(self), options, listener);
            });
        }),
        py::kw_only(), py::arg("rotation") = 0.5, py::arg("translation") = 0.1, py::arg("scale") = 0.001,
        py::arg("value") = 0.001, py::arg("world") = py::none(), py::arg("corners") = false,
        py::arg("drop_constant") = false, py::arg("shortest_hold") = 5.0, py::arg("dry") = false,
        py::arg("progress") = py::none(),
        "Thins the keys of all curves below to few that stay within the bounds, each in the unit of its "
        "curve.\n\n"
        "world: no node's origin may move further than this. drop_constant: leave curves out that only "
        "repeat what the\nscene holds. shortest_hold: frames from which on a standing value stays exactly as "
        "it is. dry: only report.\nprogress: called as progress(what, done, total); False gives up, with "
        "nothing changed. It is so for every\noperation.");
}

void addFilters(Objects& objects) {
    objects.def("smooth",
                checked([](Self self, double cutOff, double framesPerSecond, const py::object& progress) {
                    return operate(self, progress, [&](const auto& curves, auto& listener) {
                        return motion::smooth(curves, {cutOff, framesPerSecond}, listener);
                    });
                }),
                py::arg("cut_off") = 6.0, py::kw_only(), py::arg("frames_per_second") = 25.0,
                py::arg("progress") = py::none(),
                "Takes quick jitter off all curves below, by a low-pass of that many hertz that moves "
                "nothing in time.");
    objects.def(
        "remove_flips", checked([](Self self, const py::object& progress) {
            return operate(self, progress, [](const auto& curves, auto& listener) {
                return motion::removeFlips(curves, listener);
            });
        }),
        py::kw_only(), py::arg("progress") = py::none(),
        "Takes the flips out of rotations: each key gets the angles nearest to those of the key before it.");
    objects.def("remove_peaks",
                checked([](Self self, std::size_t reach, double sensitivity, double least,
                           const py::object& progress) {
                    return operate(self, progress, [&](const auto& curves, auto& listener) {
                        return motion::removePeaks(curves, {reach, sensitivity, least}, listener);
                    });
                }),
                py::kw_only(), py::arg("reach") = 3, py::arg("sensitivity") = 4.0, py::arg("least") = 0.5,
                py::arg("progress") = py::none(),
                "Puts single keys that leap out of line back into it.\n\n"
                "reach: keys on each side that a key is compared with. sensitivity: times their usual "
                "distance from their\nmedian. least: no nearer to the median is a peak.");
    objects.def("change_values",
                checked([](Self self, double factor, double offset, const py::object& progress) {
                    return operate(self, progress, [&](const auto& curves, auto& listener) {
                        return motion::changeValues(curves, factor, offset, listener);
                    });
                }),
                py::arg("factor") = 1.0, py::arg("offset") = 0.0, py::kw_only(),
                py::arg("progress") = py::none(), "Every value v becomes factor * v + offset.");
}

void addTiming(Objects& objects) {
    objects.def("trim",
                checked([](Self self, double begin, double end, bool toStart, const py::object& progress) {
                    return operate(self, progress, [&](const auto& curves, auto& listener) {
                        return motion::trim(curves, begin, end, toStart, listener);
                    });
                }),
                py::arg("begin"), py::arg("end"), py::kw_only(), py::arg("to_start") = false,
                py::arg("progress") = py::none(),
                "Cuts all curves below to those frames, exactly; to_start: begin becomes frame 0.");
    objects.def("retime",
                checked([](Self self, double scale, double shift, const Pairs& map, const Pairs& speed,
                           const py::object& progress) {
                    motion::Retiming retiming;
                    retiming.scale = scale;
                    retiming.shift = shift;
                    retiming.map = map;
                    retiming.speed = speed;
                    return operate(self, progress, [&](const auto& curves, auto& listener) {
                        return motion::retime(curves, retiming, listener);
                    });
                }),
                py::kw_only(), py::arg("scale") = 1.0, py::arg("shift") = 0.0, py::arg("map") = py::tuple(),
                py::arg("speed") = py::tuple(), py::arg("progress") = py::none(),
                "Moves motion in time.\n\n"
                "map: pairs of a frame before and after, applied first. speed: pairs of a frame and the "
                "speed there, 2 for twice\nas fast, evenly in between. Then scale and shift.");
    objects.def("play_backwards", checked([](Self self, const py::object& progress) {
                    return operate(self, progress, [](const auto& curves, auto& listener) {
                        return motion::reverse(curves, listener);
                    });
                }),
                py::kw_only(), py::arg("progress") = py::none(),
                "Turns time round between the first and the last frame of all curves below.");
    objects.def("resample",
                checked([](Self self, double every, const std::vector<double>& frames,
                           const std::string& shape, bool keepEnds, const py::object& progress) {
                    using Shape = motion::Resampling::Shape;
                    motion::Resampling resampling;
                    resampling.every = every;
                    resampling.frames = frames;
                    resampling.shape = meaningOf<Shape>(
                        shape, "shape",
                        {{"smooth", Shape::Smooth}, {"straight", Shape::Straight}, {"step", Shape::Step}});
                    resampling.keepsEnds = keepEnds;
                    return operate(self, progress, [&](const auto& curves, auto& listener) {
                        return motion::resample(curves, resampling, listener);
                    });
                }),
                py::arg("every") = 1.0, py::kw_only(), py::arg("frames") = py::tuple(),
                py::arg("shape") = "smooth", py::arg("keep_ends") = true, py::arg("progress") = py::none(),
                "Gives all curves below keys so many frames apart, and no others.\n\n"
                "frames: the frames themselves, in place of every. shape: how curves run between keys, "
                "'smooth', 'straight' or\n'step'. keep_ends: keys also at the first and last frame of each.");
}

void addWholeMotions(Objects& objects) {
    using motion::RootMotion;
    objects.def(
        "loop", checked([](Self self, double seam, const std::string& root, const py::object& progress) {
            const motion::LoopOptions options{seam,
                                              meaningOf<RootMotion>(root, "root",
                                                                    {{"closed", RootMotion::Closed},
                                                                     {"kept", RootMotion::Kept},
                                                                     {"taken out", RootMotion::TakenOut}})};
            return operate(self, progress, [&](const auto& curves, auto& listener) {
                return motion::loop(curves, rootOf(self), options, listener);
            });
        }),
        py::arg("seam") = 10.0, py::kw_only(), py::arg("root") = "closed", py::arg("progress") = py::none(),
        "Makes motion end as it begins, by leading it there over the last frames. root: the topmost "
        "node's way is\n'closed', 'kept' or 'taken out'.");
    objects.def(
        "mirror", checked([](Self self, int axis, const NamePairs& sides, const py::object& progress) {
            motion::MirrorOptions options;
            if (axis < 0 || axis > 2)
                raise(ErrorKind::Usage, "axis is 0, 1 or 2");
            options.axis = axis;
            if (!sides.empty())
                options.sides = sides;
            return operate(self, progress, [&](const auto& curves, auto& listener) {
                return motion::mirror(curves, rootOf(self), options, listener);
            });
        }),
        py::arg("axis") = 0, py::kw_only(), py::arg("sides") = py::tuple(), py::arg("progress") = py::none(),
        "Has the left do what the right did. axis: the world's that left and right lie along, 0, 1, "
        "2. sides: pairs\nof parts of names for the two sides, the usual ones unless told.");
    objects.def(
        "record_skeleton", checked([](Self self, const std::string& name) {
            return motion::recordSkeleton(rootOf(self), motion::curvesBelow({&self.object()}), name);
        }),
        py::arg("name") = "motion",
        "Takes the poses of all curves below down, for `Project.retarget` of another project. The scene must "
        "hold the\nrest pose. name: of the clip that retargeting makes.");
}

} // namespace

void bindMotionOperations(py::module_& module) {
    auto objects = py::reinterpret_borrow<Objects>(module.attr("Object"));
    addThinning(objects);
    addFilters(objects);
    addTiming(objects);
    addWholeMotions(objects);
    module.def(
        "mirrored_name",
        [](const std::string& name, const NamePairs& sides) {
            motion::MirrorOptions options;
            if (!sides.empty())
                options.sides = sides;
            return motion::mirroredName(name, options);
        },
        py::arg("name"), py::arg("sides") = py::tuple(),
        "The name on the other side, 'RightArm' for 'LeftArm'; the name itself where no side is in it.");
}

} // namespace ka::python
