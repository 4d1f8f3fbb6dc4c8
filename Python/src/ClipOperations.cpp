#include "Arguments.h"
#include "Bindings.h"
#include "Call.h"

#include <kaAnimationCurve2D.h>
#include <kaAnimationStrip.h>
#include <kaMotion/ClipCopy.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/EditClips.h>
#include <kaMotion/MotionSelection.h>
#include <kaMotion/Retarget.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace ka::python {

namespace {

using Self = const SessionPtr&;
using Projects = py::class_<Session, SessionPtr>;
using Clip = ReferenceTo<kaAnimationStrip>;
using Curve = ReferenceTo<kaAnimationCurve2D>;
using Names = std::vector<std::string>;
using NamePairs = std::vector<std::pair<std::string, std::string>>;

void addClips(Projects& projects) {
    projects.def("merge_clips",
                 checked([](Self self, const std::vector<Clip>& clips, double crossFade,
                            const std::string& name, bool removeSources, const py::object& progress) {
                     self->project();
                     PythonListener listener(progress);
                     return motion::merge(objectsOf(clips), {crossFade, name, removeSources}, listener);
                 }),
                 py::arg("clips"), py::kw_only(), py::arg("cross_fade") = 0.0, py::arg("name") = "merged",
                 py::arg("remove_sources") = false, py::arg("progress") = py::none(),
                 "Makes a new clip that plays clips one after the other. cross_fade: frames in which they "
                 "overlap.\nremove_sources: the clips themselves go.");
    projects.def("split_clip",
                 checked([](Self self, const Clip& clip, const std::vector<double>& frames, bool keep,
                            const py::object& progress) {
                     self->project();
                     PythonListener listener(progress);
                     return motion::split(&clip.get(), frames, keep, listener);
                 }),
                 py::arg("clip"), py::arg("frames"), py::kw_only(), py::arg("keep") = false,
                 py::arg("progress") = py::none(),
                 "Cuts a clip at frames into clips that each begin at frame 0; keep: the clip itself stays.");
    projects.def("copy_clip", checked([](Self self, const Clip& clip, const std::string& name) {
                     self->project();
                     return wrap(self, motion::copyClip(&clip.get(), name));
                 }),
                 py::arg("clip"), py::arg("name"),
                 "A copy of a clip whose blocks are listed on the nodes that they move, so that operations "
                 "can leave the\nclip itself as it is.");
    projects.def("remove_clips", checked([](Self self, const std::vector<Clip>& clips) {
                     self->project();
                     return motion::removeClips(objectsOf(clips));
                 }),
                 py::arg("clips"), "Destroys clips with everything in them.");
    projects.def("remove_curves", checked([](Self self, const std::vector<Curve>& curves) {
                     self->project();
                     return motion::removeCurves(objectsOf(curves));
                 }),
                 py::arg("curves"),
                 "Destroys curves, then blocks, tracks and clips that have nothing left in them.");
}

void addChoice(Projects& projects) {
    projects.def("select_curves",
                 checked([](Self self, const Names& clips, const Names& nodes, const Names& curves) {
                     self->project();
                     return wrapAll(self, motion::selectedCurves({clips, nodes, curves}));
                 }),
                 py::kw_only(), py::arg("clips") = py::tuple(), py::arg("nodes") = py::tuple(),
                 py::arg("curves") = py::tuple(),
                 "The curves that names or patterns stand for, by label; what is not told leaves nothing "
                 "out.\n\n"
                 "clips: by name or id. nodes: by name or the end of their path ('arm/hand'). curves: labels "
                 "('Hips.translationX'),\nattributes ('rotation*'), names, ids. Raises UsageError, with the "
                 "name that comes nearest, for one that stands\nfor nothing.");
    projects.def("select_clips", checked([](Self self, const Names& clips) {
                     self->project();
                     return wrapAll(self, motion::selectedClips({clips, {}, {}}));
                 }),
                 py::arg("clips") = py::tuple(),
                 "The clips that stand by themselves and are called so, by id; all of them unless told.");
    projects.def_property_readonly("telling_curves", checked([](Self self) {
                                       const auto playable = self->project().playable("");
                                       return wrapAll(self,
                                                      motion::tellingCurves(motion::curvesBelow(playable)));
                                   }),
                                   "A few curves of what plays that show the motion at a glance.");
}

void addNames(py::module_& module, Projects& projects) {
    projects.def("rename_nodes", checked([](Self self, const std::string& match, const std::string& to) {
                     return motion::rename(self->project().root(), match, to);
                 }),
                 py::arg("match"), py::arg("to"), "Renames nodes by name or pattern: 'rig:*' to '*'.");
    module.def(
        "renamed",
        [](const std::string& name, const std::string& match, const std::string& to) -> py::object {
            bool isMatch = false;
            std::string result = motion::renamed(name, match, to, isMatch);
            return isMatch ? py::object(py::str(result)) : py::object(py::none());
        },
        py::arg("name"), py::arg("match"), py::arg("to"),
        "What `Project.rename_nodes` makes of a name; None where it does not match.");
    projects.def("retarget",
                 checked([](Self self, const motion::SkeletonMotion& skeleton, const NamePairs& names,
                            bool alignLimbs, const std::string& clip, const py::object& progress) {
                     motion::RetargetOptions options;
                     options.names = names;
                     options.alignsLimbs = alignLimbs;
                     options.clip = clip;
                     PythonListener listener(progress);
                     return motion::retarget(skeleton, self->project().root(), options, listener);
                 }),
                 py::arg("skeleton"), py::arg("names") = py::tuple(), py::kw_only(),
                 py::arg("align_limbs") = true, py::arg("clip") = "", py::arg("progress") = py::none(),
                 "A new clip in which the nodes move as a recorded skeleton did.\n\n"
                 "names: pairs of a name there and here, patterns too. align_limbs: limbs point where those "
                 "of the recording point,\nwhatever the two rest poses. clip: name of the new one, that of "
                 "the recording unless told.");
    module.def("name_table", checked([](const std::string& text) { return motion::parseNameTable(text); }),
               py::arg("text"),
               "The pairs of names of a text with a line 'source = target' for each, for "
               "`Project.retarget`.");
}

} // namespace

void bindClipOperations(py::module_& module) {
    auto projects = py::reinterpret_borrow<Projects>(module.attr("Project"));
    addClips(projects);
    addChoice(projects);
    addNames(module, projects);
}

} // namespace ka::python
