// What a host program answers and is told, as functions of a script: the module knows plain functions, which find
// the script's here.
#include "Arguments.h"
#include "Bindings.h"
#include "Call.h"

#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <pybind11/stl.h>
#include <tuple>

namespace py = pybind11;

namespace ka::python {

namespace {

using Controller = kaAnimationController;
using Manager = kaAnimationManager;
using Triple = std::tuple<float, float, float>;
using View = std::tuple<Triple, Triple, Triple>;

struct Functions {
    py::object view = py::none(), setView = py::none(), roll = py::none(), setRoll = py::none();
    py::object showCurves = py::none(), progress = py::none(), pasteChanged = py::none();
    py::object navigated = py::none(), isSimulating = py::none(), simulate = py::none();
    py::object timeLineFrame = py::none(), curveEditorFrame = py::none(), clipEditorFrame = py::none();
    py::object shutterSpeed = py::none();
};

using Which = py::object Functions::*;

Functions* functions = nullptr;
osg::PerspectiveCamera2Ptr shutter = osg::NullFC;

template <class... Arguments>
void tell(Which which, const Arguments&... arguments) {
    if (functions == nullptr || (functions->*which).is_none())
        return;
    Call::out([&] {
        const py::object function = functions->*which; // it may set another
        function(arguments...);
    });
}

/// What the function gives; `otherwise` without a function, and where it raises.
template <class Answer, class... Arguments>
Answer ask(Which which, Answer otherwise, const Arguments&... arguments) {
    if (functions == nullptr || (functions->*which).is_none())
        return otherwise;
    Call::out([&] {
        const py::object function = functions->*which;
        otherwise = function(arguments...).template cast<Answer>();
    });
    return otherwise;
}

template <class Vector>
Triple tripleOf(const Vector& vector) {
    return {vector[0], vector[1], vector[2]};
}

template <class Vector>
Vector vectorOf(const Triple& triple) {
    return {std::get<0>(triple), std::get<1>(triple), std::get<2>(triple)};
}

void getView(int camera, osg::Pnt3f& from, osg::Pnt3f& at, osg::Vec3f& up) {
    const View view = ask(&Functions::view, View(tripleOf(from), tripleOf(at), tripleOf(up)), camera);
    from = vectorOf<osg::Pnt3f>(std::get<0>(view));
    at = vectorOf<osg::Pnt3f>(std::get<1>(view));
    up = vectorOf<osg::Vec3f>(std::get<2>(view));
}

void setView(int camera, const osg::Pnt3f& from, const osg::Pnt3f& at, const osg::Vec3f& up) {
    tell(&Functions::setView, camera, tripleOf(from), tripleOf(at), tripleOf(up));
}

void showCurves(const std::vector<kaAnimationCurve2D*>& curves) {
    if (Session* session = Session::current())
        tell(&Functions::showCurves, wrapAll(session->shared_from_this(), curves));
}

/// The camera that motion blur asks for the speed of its shutter; none where nobody tells that.
void giveCamera(osg::PerspectiveCamera2Ptr& camera) {
    const float speed = ask(&Functions::shutterSpeed, 0.0F);
    if (!(speed > 0.0F))
        return;
    if (shutter == osg::NullFC) {
        shutter = osg::PerspectiveCamera2::create();
        osg::addRefCP(shutter);
    }
    shutter->setShutterSpeed(speed);
    camera = shutter;
}

void connectManager() {
    Manager::setGetFromAtUpCB(&getView);
    Manager::setFromAtUpCB(&setView);
    Manager::setGetRollCB([](int camera) { return ask(&Functions::roll, 0.0F, camera); });
    Manager::setRollCB([](int camera, const float& roll) { tell(&Functions::setRoll, camera, roll); });
    Manager::setShowCurvesCB(&showCurves);
    Manager::setFileIOProgressCB([](unsigned int percent) { tell(&Functions::progress, percent); });
    Manager::setUpdatePasteCB([](bool filled) { tell(&Functions::pasteChanged, filled); });
}

void connectController() {
    Controller::setCameraCB(&giveCamera);
    Controller::setUpdateNavCB([](int kind) { tell(&Functions::navigated, kind); });
    Controller::setIsSimEnableCB([] { return ask(&Functions::isSimulating, false); });
    Controller::setEnableSimCB([](bool enable) { tell(&Functions::simulate, enable); });
    Controller::setCurrentFrameTimeLineCB([](float frame) { tell(&Functions::timeLineFrame, frame); });
    Controller::setCurrentFrameCurveEditorCB([](float frame) { tell(&Functions::curveEditorFrame, frame); });
    Controller::setCurrentFrameClipMakerCB([](float frame) { tell(&Functions::clipEditorFrame, frame); });
}

void disconnect() {
    Manager::setGetFromAtUpCB(nullptr);
    Manager::setFromAtUpCB(nullptr);
    Manager::setGetRollCB(nullptr);
    Manager::setRollCB(nullptr);
    Manager::setShowCurvesCB(nullptr);
    Manager::setFileIOProgressCB(nullptr);
    Manager::setUpdatePasteCB(nullptr);
    Controller::setCameraCB(nullptr);
    Controller::setUpdateNavCB(nullptr);
    Controller::setIsSimEnableCB(nullptr);
    Controller::setEnableSimCB(nullptr);
    Controller::setCurrentFrameTimeLineCB(nullptr);
    Controller::setCurrentFrameCurveEditorCB(nullptr);
    Controller::setCurrentFrameClipMakerCB(nullptr);
    if (shutter != osg::NullFC)
        osg::subRefCP(shutter);
    shutter = osg::NullFC;
    delete std::exchange(functions, nullptr);
}

/// The host's part of the open project.
struct Host {
    SessionPtr session;

    /// What the script has set, connected to the module on first use.
    Functions& wired() const {
        session->project();
        session->requireOwn("is its host");
        if (functions == nullptr) {
            functions = new Functions();
            connectManager();
            connectController();
            session->whenClosing.emplace_back(&disconnect);
        }
        return *functions;
    }
};

using Self = const Host&;

void addFunction(py::class_<Host>& hosts, const char* name, Which which, const char* doc) {
    hosts.def_property(name, checked([which](Self self) { return self.wired().*which; }),
                       checked([which](Self self, const py::object& function) {
                           Functions& all = self.wired();
                           if (!function.is_none() && PyCallable_Check(function.ptr()) == 0)
                               throw py::type_error("a function, or None");
                           all.*which = function;
                       }),
                       doc);
}

void addCamera(py::class_<Host>& hosts) {
    addFunction(
        hosts, "on_get_view", &Functions::view,
        "Called with a camera's number, -1 for the active one; gives (from, at, up), three numbers each.");
    addFunction(hosts, "on_set_view", &Functions::setView,
                "Called with a camera's number, from, at and up when animation moves it.");
    addFunction(hosts, "on_get_roll", &Functions::roll, "Called with a camera's number; gives its roll.");
    addFunction(hosts, "on_set_roll", &Functions::setRoll,
                "Called with a camera's number and its roll when animation rolls it.");
    addFunction(hosts, "shutter_speed", &Functions::shutterSpeed,
                "Gives the speed of the shutter for `Player.blur`, which is open for 1 / that many seconds; "
                "without it\nnothing is blurred.");
    hosts.def_property("view", checked([](Self self) {
                           self.wired();
                           osg::Pnt3f from, at;
                           osg::Vec3f up;
                           self.session->manager().getFromAtUp(from, at, up);
                           return View(tripleOf(from), tripleOf(at), tripleOf(up));
                       }),
                       checked([](Self self, const View& view) {
                           self.wired();
                           self.session->manager().setFromAtUp(vectorOf<osg::Pnt3f>(std::get<0>(view)),
                                                               vectorOf<osg::Pnt3f>(std::get<1>(view)),
                                                               vectorOf<osg::Vec3f>(std::get<2>(view)));
                       }),
                       "(from, at, up) of the active camera, by way of `on_get_view` and `on_set_view`.");
    hosts.def_property("roll", checked([](Self self) {
                           self.wired();
                           float roll = 0.0F;
                           self.session->manager().getRoll(roll);
                           return roll;
                       }),
                       checked([](Self self, double roll) {
                           self.wired();
                           self.session->manager().setRoll(frameOf(roll, "roll"));
                       }),
                       "The active camera's roll, by way of `on_get_roll` and `on_set_roll`.");
}

} // namespace

void bindHost(py::module_& module) {
    py::class_<Host> hosts(
        module, "Host",
        "What a host program answers and is told. Each is a function, or None for nobody; what it raises "
        "reaches whoever\nmade the call that led to it.\n\n"
        ">>> import kaanimation\n"
        ">>> with kaanimation.open(kaanimation.example()) as project:\n"
        "...     project.host.on_paste = lambda filled: print('to paste:', filled)\n"
        "...     project.copy(project.clips)\n"
        "to paste: True");
    addCamera(hosts);
    addFunction(hosts, "on_show_curves", &Functions::showCurves, "Called with a list of curves to show.");
    addFunction(hosts, "on_file_progress", &Functions::progress,
                "Called with per cent while files are read.");
    addFunction(hosts, "on_paste", &Functions::pasteChanged,
                "Called with whether there is something to paste, whenever that changes.");
    addFunction(hosts, "on_navigate", &Functions::navigated, "Called when motion blur has moved the scene.");
    addFunction(hosts, "is_simulating", &Functions::isSimulating,
                "Gives whether the host's simulation runs.");
    addFunction(hosts, "on_simulate", &Functions::simulate,
                "Called with False before a sequence fires while the simulation runs, with True after it.");
    addFunction(hosts, "on_time_line_frame", &Functions::timeLineFrame,
                "Called with the frame that a jump has gone to.");
    addFunction(hosts, "on_curve_editor_frame", &Functions::curveEditorFrame,
                "The same, for a curve editor.");
    addFunction(hosts, "on_clip_editor_frame", &Functions::clipEditorFrame, "The same, for a clip editor.");
    hosts.def("show_curves",
              checked([](Self self, const std::vector<ReferenceTo<kaAnimationCurve2D>>& curves) {
                  self.wired();
                  self.session->manager().showCurves(objectsOf(curves));
              }),
              py::arg("curves"), "Asks for curves to be shown, by way of `on_show_curves`.");
    auto projects = py::reinterpret_borrow<py::class_<Session, SessionPtr>>(module.attr("Project"));
    projects.def_property_readonly("host", checked([](const SessionPtr& self) {
                                       const Host host{self};
                                       host.wired();
                                       return host;
                                   }),
                                   "What a host program answers and is told, as functions.");
}

} // namespace ka::python
