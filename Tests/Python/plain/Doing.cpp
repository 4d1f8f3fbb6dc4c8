// What the package's methods are to do, done by the libraries themselves, under the methods' names.
#include "Plain.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGTransform3D.h>
#include <functional>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationSequence.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>
#include <kaMotion/ClipCopy.h>
#include <kaMotion/CopyPaste.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/EditClips.h>
#include <kaMotion/EditTime.h>
#include <kaMotion/Filter.h>
#include <kaMotion/Loop.h>
#include <kaMotion/Mirror.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Project.h>
#include <kaMotion/Reduce.h>
#include <kaMotion/Retarget.h>
#include <map>

namespace py = pybind11;

namespace ka_plain {

namespace {

using namespace ka::motion;

/// Arguments by name, as the test hands them to the package.
struct Call {
    py::dict arguments;

    kaUID id(const char* name) const { return arguments[name].cast<kaUID>(); }
    kaAnimationObject* object(const char* name = "self") const { return &objectOf(id(name)); }
    kaAnimationCurve2D* curve(const char* name = "self") const { return manager().getCurve2D(id(name)); }
    kaAnimationStrip* clip(const char* name = "self") const { return manager().getStrip(id(name)); }
    kaAnimationStreak* track(const char* name = "self") const { return manager().getStreak(id(name)); }
    kaAnimationUnit* block(const char* name = "self") const { return manager().getUnit(id(name)); }
    osg::NodePtr node(const char* name = "self") const { return nodeOf(id(name)); }
    osg::NodePtr root() const { return node("root"); }
    float number(const char* name) const { return arguments[name].cast<float>(); }
    double real(const char* name) const { return arguments[name].cast<double>(); }
    std::string text(const char* name) const { return arguments[name].cast<std::string>(); }
    CurveList curves() const { return curvesBelow({object()}); }
    kaAnimationField* field(const char* node, const char* attribute) const {
        return manager().getField(nodeOf(id(node)), text(attribute));
    }
};

using Doing = std::function<void(const Call&)>;

const std::map<std::string, Doing>& objectDoings() {
    static const std::map<std::string, Doing> all{
        {"Object.move", [](const Call& c) { c.object()->move(c.number("offset"), true); }},
        {"Object.move_begin", [](const Call& c) { c.object()->moveBegin(c.number("frame"), true); }},
        {"Object.move_end", [](const Call& c) { c.object()->moveEnd(c.number("frame"), true); }},
        {"Object.trim_begin", [](const Call& c) { c.object()->trimBegin(c.number("frame"), true); }},
        {"Object.trim_end", [](const Call& c) { c.object()->trimEnd(c.number("frame"), true); }},
        {"Object.flip", [](const Call& c) { c.object()->flip(); }},
        {"Object.destroy", [](const Call& c) { manager().destroyObject(c.object()); }},
        {"Object.duplicate", [](const Call& c) { manager().duplicateObject(c.object()); }},
        {"Object.reduce",
         [](const Call& c) {
             ReduceOptions options;
             options.rotation = c.real("rotation");
             options.world = c.real("world");
             options.shortestHold = c.real("shortest_hold");
             reduce(c.curves(), c.root(), options);
         }},
        {"Object.smooth",
         [](const Call& c) {
             smooth(c.curves(), {c.real("cut_off"), c.real("frames_per_second")});
         }},
        {"Object.remove_flips", [](const Call& c) { removeFlips(c.curves()); }},
        {"Object.remove_peaks",
         [](const Call& c) {
             removePeaks(c.curves(), {2, c.real("sensitivity"), c.real("least")});
         }},
        {"Object.change_values",
         [](const Call& c) { changeValues(c.curves(), c.real("factor"), c.real("offset")); }},
        {"Object.trim", [](const Call& c) { trim(c.curves(), c.real("begin"), c.real("end"), true); }},
        {"Object.retime",
         [](const Call& c) {
             Retiming retiming;
             retiming.scale = c.real("scale");
             retiming.shift = c.real("shift");
             retiming.map = {{0, 0}, {5, 8}, {10, 10}};
             retiming.speed = {{0, 1}, {10, 2}};
             retime(c.curves(), retiming);
         }},
        {"Object.play_backwards", [](const Call& c) { reverse(c.curves()); }},
        {"Object.resample",
         [](const Call& c) {
             Resampling resampling;
             resampling.every = c.real("every");
             resampling.shape = Resampling::Shape::Straight;
             resampling.keepsEnds = false;
             resample(c.curves(), resampling);
         }},
        {"Object.loop",
         [](const Call& c) {
             loop(c.curves(), c.root(), {c.real("seam"), RootMotion::Kept});
         }},
        {"Object.mirror",
         [](const Call& c) {
             MirrorOptions options;
             options.axis = 2;
             options.sides = {{"Arm", "Hand"}};
             mirror(c.curves(), c.root(), options);
         }},
    };
    return all;
}

const std::map<std::string, Doing>& curveDoings() {
    using Key = kaControlPoint2D;
    static const std::map<std::string, Doing> all{
        {"Curve.add_key",
         [](const Call& c) {
             manager().createCurvePoint(c.curve(), c.number("frame"), c.number("value"), false, false, true);
         }},
        {"Curve.split",
         [](const Call& c) { manager().createCurvePoint(c.curve(), c.number("frame"), false); }},
        {"Curve.remove_keys",
         [](const Call& c) {
             for (const auto& [frame, key] : c.curve()->getPoints())
                 if (frame >= c.number("begin") && frame <= c.number("end"))
                     c.curve()->subObject(key, true);
             for (const auto& [frame, key] : c.curve()->getPoints())
                 key->computeTangents();
         }},
        {"Curve.move_selected",
         [](const Call& c) {
             c.curve()->setSelected(true);
             c.curve()->moveSelectedPoints({c.number("frames"), c.number("value")}, false, false, true,
                                           false);
         }},
        {"Curve.set_selected_tangents",
         [](const Call& c) {
             c.curve()->setSelected(true);
             c.curve()->changeTangentsOfSelectedPoints(Key::TANGENT_FLAT);
         }},
        {"Curve.remove_selected",
         [](const Call& c) {
             c.curve()->findPoint(3.0F)->setSelected(true);
             c.curve()->deleteSelectedPoints(true, false);
         }},
        {"Curve.set_keys",
         [](const Call& c) {
             std::vector<Key*> keys;
             for (const auto& [frame, value] :
                  {std::pair(0.0F, 1.0F), std::pair(4.0F, -2.0F), std::pair(9.0F, 3.0F)})
                 keys.push_back(manager().createPoint2D(frame, value, 0));
             const std::vector<kaUID> former = c.curve()->getChildIDs();
             c.curve()->setPoints(keys);
             for (const kaUID id : former)
                 manager().destroyPoint2D(manager().getPoint2D(id));
         }},
    };
    return all;
}

const std::map<std::string, Doing>& containerDoings() {
    static const std::map<std::string, Doing> all{
        {"Block.add", [](const Call& c) { c.block()->addObject(c.object("child")); }},
        {"Block.remove", [](const Call& c) { c.block()->subObject(c.object("child"), false); }},
        {"Block.activate_alone", [](const Call& c) { manager().setExclusiveActiveNodeUnit(c.block()); }},
        {"Track.add", [](const Call& c) { c.track()->addObject(c.object("child")); }},
        {"Track.insert", [](const Call& c) { c.track()->insertObject(c.object("child")); }},
        {"Track.remove", [](const Call& c) { c.track()->subObject(c.object("child"), false); }},
        {"Clip.add", [](const Call& c) { c.clip()->addObject(c.object("child")); }},
        {"Clip.insert", [](const Call& c) { c.clip()->insertObject(c.object("child")); }},
        {"Clip.remove", [](const Call& c) { c.clip()->subObject(c.object("child"), false); }},
        {"Clip.remove_empty_tracks", [](const Call& c) { c.clip()->destroyEmptyStreaks(); }},
        {"Node.list_object",
         [](const Call& c) { kaAnimationUtils::addAnimationObject(c.node(), c.object("object")); }},
        {"Node.unlist_object",
         [](const Call& c) { kaAnimationUtils::subAnimationObject(c.node(), c.object("object")); }},
        {"Node.destroy_animation", [](const Call& c) { manager().destroyNodeObjects(c.node(), true); }},
        {"Node.find_fields_again", [](const Call& c) { manager().recreateAnimationFields(c.node()); }},
    };
    return all;
}

const std::map<std::string, Doing>& projectDoings() {
    using Manager = kaAnimationManager;
    static const std::map<std::string, Doing> all{
        {"Project.create_clip", [](const Call& c) { manager().createStrip(c.text("name"), 0); }},
        {"Project.create_track", [](const Call& c) { manager().createStreak(c.text("name"), 0); }},
        {"Project.create_block",
         [](const Call& c) { manager().createUnit({c.curve("curve")}, c.text("name"), 0, true); }},
        {"Project.create_curve",
         [](const Call& c) { manager().createCurve2D(c.node("node"), c.text("attribute")); }},
        {"Project.create_sequence",
         [](const Call& c) {
             kaAnimationSequence* event = manager().createSequence(c.text("name"), 0);
             event->setBegin(c.number("begin"));
             event->setEnd(c.number("end"));
         }},
        {"Project.merge_clips",
         [](const Call& c) {
             merge({c.clip("a"), c.clip("b")}, {c.real("cross_fade"), c.text("name"), true});
         }},
        {"Project.split_clip",
         [](const Call& c) {
             split(c.clip("clip"), {3, 7}, true);
         }},
        {"Project.copy_clip", [](const Call& c) { copyClip(c.clip("clip"), c.text("name")); }},
        {"Project.remove_clips", [](const Call& c) { removeClips({c.clip("clip")}); }},
        {"Project.remove_curves", [](const Call& c) { removeCurves({c.curve("curve")}); }},
        {"Project.rename_nodes", [](const Call& c) { rename(c.root(), c.text("match"), c.text("to")); }},
        {"Project.sweep", [](const Call&) { manager().destroyUnreferencedObjectsAndFields(); }},
        {"Project.destroy_all", [](const Call&) { manager().destroyAllObjects(true); }},
        {"Project.complete_fields", [](const Call&) { manager().completeAnimationFieldNodes(); }},
        {"Project.ensure_unique_attributes", [](const Call&) { manager().checkUniqueAttributes(); }},
        {"Project.copy", [](const Call& c) { manager().copy({c.object("object")}); }},
        {"Project.paste",
         [](const Call& c) {
             manager().copy(c.node("source"));
             manager().getAnimationFields(c.node("node"));
             manager().paste(c.node("node"), false);
         }},
        {"Project.clear_copied",
         [](const Call& c) {
             manager().copy({c.object("object")});
             manager().clearCopyBuffer(false);
         }},
        {"Project.paste_to",
         [](const Call& c) {
             paste(CopiedAnimation(c.node("source")), c.root(), c.text("pattern"), c.node("source"));
         }},
        {"Project.move_to_track",
         [](const Call& c) { manager().moveObjectToStreak(c.object("object"), c.clip("clip"), 3); }},
        {"Project.connect",
         [](const Call& c) {
             manager().createConnection(c.object("source"), Manager::TriggerEnd, c.object("target"),
                                        Manager::ActionStop);
         }},
        {"Project.load",
         [](const Call& c) { manager().loadAnimations(QString::fromStdString(c.text("text")), false); }},
        {"Project.evaluate", [](const Call& c) { evaluate({c.object("object")}, c.number("frame")); }},
        {"Project.retarget",
         [](const Call& c) {
             RetargetOptions options;
             options.clip = c.text("clip");
             const SkeletonMotion skeleton =
                 recordSkeleton(c.root(), curvesBelow({c.object("object")}), "motion");
             retarget(skeleton, c.root(), options);
         }},
    };
    return all;
}

/// The names that `perform` knows.
std::vector<std::string> names() {
    std::vector<std::string> all;
    for (const auto* group : {&objectDoings(), &curveDoings(), &containerDoings(), &projectDoings()})
        for (const auto& [name, doing] : *group)
            all.push_back(name);
    return all;
}

void perform(const std::string& name, const py::dict& arguments) {
    for (const auto* group : {&objectDoings(), &curveDoings(), &containerDoings(), &projectDoings()})
        if (const auto found = group->find(name); found != group->end()) {
            found->second(Call{arguments});
            return;
        }
    throw py::key_error(name);
}

} // namespace

void bindDoing(py::module_& module) {
    module.def("names", &names);
    module.def("perform", &perform);
}

} // namespace ka_plain

PYBIND11_MODULE(ka_plain, module) {
    ka_plain::bindReading(module);
    ka_plain::bindDoing(module);
}
