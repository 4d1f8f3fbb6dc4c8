#include "Arguments.h"
#include "Bindings.h"
#include "Call.h"
#include "References.h"

#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <optional>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace ka::python {

namespace {

/// What the controller's callbacks, which are plain functions, know of the player that is there.
struct Wiring {
    double seconds = 0.0;
    py::object clock = py::none();
    py::object onSequence = py::none();
};

Wiring* wiring = nullptr;

double timeNow() {
    if (wiring == nullptr)
        return 0.0;
    double seconds = wiring->seconds;
    if (!wiring->clock.is_none())
        Call::out([&seconds] { seconds = wiring->clock().cast<double>(); });
    return wiring == nullptr ? seconds : wiring->seconds = seconds;
}

void sequenceFired(std::string name) {
    if (wiring != nullptr && !wiring->onSequence.is_none())
        Call::out([&name] {
            const py::object function = wiring->onSequence; // it may set another
            function(py::reinterpret_steal<py::str>(
                PyUnicode_DecodeLatin1(name.data(), static_cast<py::ssize_t>(name.size()), nullptr)));
        });
}

/// The playback of the open project. What the controller keeps beyond it starts over with each project.
struct Player {
    SessionPtr session;

    kaAnimationController& controller() const {
        session->project();
        session->requireOwn("plays it");
        if (wiring == nullptr)
            connect();
        return *kaAnimationController::the();
    }

  private:
    void connect() const {
        wiring = new Wiring();
        kaAnimationController* controller = kaAnimationController::the();
        kaAnimationController::setTimeCB(&timeNow);
        kaAnimationController::setSeqCB(&sequenceFired);
        kaAnimationController::setFps(25.0F);
        controller->pause(false);
        controller->setCurrentFrame(0.0F, kaAnimationController::WidgetHost);
        session->whenClosing.emplace_back([] {
            kaAnimationController::setTimeCB(nullptr);
            kaAnimationController::setSeqCB(nullptr);
            kaAnimationController::setForcePlayLoopFullFrame(false);
            delete std::exchange(wiring, nullptr);
        });
    }
};

using Self = const Player&;

void play(Self self, const OptionalObjects& objects, std::optional<double> begin, std::optional<double> end,
          std::optional<double> start, bool repeat, bool reverse) {
    kaAnimationController& controller = self.controller();
    const std::vector<kaAnimationObject*> played = objectsOrPlayable(self.session, objects);
    std::vector<unsigned long long> ids;
    for (const kaAnimationObject* object : played)
        ids.push_back(object->getId());
    const auto [from, to] = rangeOf(played, begin, end);
    const float at = start ? frameOf(*start, "start") : reverse ? to : from;
    controller.playGlobal(ids, reverse, repeat, from, to, at);
}

double advance(Self self, double seconds) {
    kaAnimationController& controller = self.controller();
    if (!wiring->clock.is_none())
        raise(ErrorKind::Refused, "the player has a clock that does not wait to be advanced");
    if (!(seconds >= 0.0) || !std::isfinite(seconds))
        throw py::value_error("time goes forwards, by a finite number of seconds");
    wiring->seconds += seconds;
    controller.playLoop();
    controller.loop();
    return static_cast<double>(kaAnimationController::getCurrentFrame());
}

void addClock(py::class_<Player>& players) {
    players.def_property("time", checked([](Self self) {
                             self.controller();
                             return wiring->seconds;
                         }),
                         checked([](Self self, double seconds) {
                             self.controller();
                             if (!std::isfinite(seconds))
                                 throw py::value_error("time must be finite");
                             wiring->seconds = seconds;
                         }),
                         "Seconds of the player's own clock, from 0. Times are kept as floats: a clock "
                         "should start near zero.");
    players.def_property("clock", checked([](Self self) {
                             self.controller();
                             return wiring->clock;
                         }),
                         checked([](Self self, const py::object& clock) {
                             self.controller();
                             if (!clock.is_none() && PyCallable_Check(clock.ptr()) == 0)
                                 throw py::type_error("a clock is a function that gives seconds, or None");
                             wiring->clock = clock;
                         }),
                         "A function that gives seconds in place of `time`; None for the player's own.");
    players.def("advance", checked([](Self self, double seconds) { return advance(self, seconds); }),
                py::arg("seconds"), "Moves the own clock on, ticks once and returns the frame.");
    players.def("tick", checked([](Self self) {
                    kaAnimationController& controller = self.controller();
                    controller.playLoop();
                    controller.loop();
                    return kaAnimationController::isPlaying() || !controller.getRunningObjects().empty() ||
                           !controller.getWaitingObjects().empty();
                }),
                "Plays on to the clock's time; whether anything still plays.");
}

void addTransport(py::class_<Player>& players) {
    players.def(
        "play",
        checked([](Self self, const OptionalObjects& objects, std::optional<double> begin,
                   std::optional<double> end, std::optional<double> start, bool repeat,
                   bool reverse) { play(self, objects, begin, end, start, repeat, reverse); }),
        py::arg("objects") = py::none(), py::kw_only(), py::arg("begin") = py::none(),
        py::arg("end") = py::none(), py::arg("start") = py::none(), py::arg("repeat") = false,
        py::arg("reverse") = false,
        "Starts the timeline with the objects, all that plays unless told, over their joint range unless "
        "told.");
    players.def("start", checked([](Self self, const ObjectReference& object) {
                    self.controller().addWaitingObject(&object.object());
                }),
                py::arg("object"), "Has one object start by itself at the end of the next tick.");
    players.def("stop", checked([](Self self) {
                    self.controller().stopGlobal();
                    self.controller().stop();
                }),
                "Ends all playing; values stay where they are.");
    players.def("jump", checked([](Self self, double frame) {
                    const float to = frameOf(frame, "frame");
                    kaAnimationController& controller = self.controller();
                    motion::evaluate(self.session->project().playable(""), to);
                    controller.setCurrentFrame(to, kaAnimationController::WidgetHost);
                }),
                py::arg("frame"),
                "Makes it the current frame, evaluates all that plays there and tells listeners.");
    players.def_property("paused", checked([](Self self) {
                             self.controller();
                             return kaAnimationController::isPausing();
                         }),
                         checked([](Self self, bool paused) { self.controller().pause(paused); }),
                         "Freezes everything. Let go, single objects go on where they were and the timeline "
                         "jumps by the paused time.");
    players.def_property("fps", checked([](Self self) {
                             self.controller();
                             return kaAnimationController::getFps();
                         }),
                         checked([](Self self, double fps) {
                             self.controller();
                             kaAnimationController::setFps(
                                 static_cast<float>(positive(fps, "frames per second")));
                         }),
                         "Frames of a second, 25 unless set.");
}

void addSingleObjects(py::class_<Player>& players) {
    players.def("pause_object", checked([](Self self, const ObjectReference& object, bool paused) {
                    self.controller().pause(&object.object(), paused);
                }),
                py::arg("object"), py::arg("paused") = true,
                "Freezes one object that plays by itself, or lets it go on where it was.");
    players.def(
        "reset", checked([](Self self, const std::optional<ObjectReference>& object) {
            if (object)
                self.controller().reset(&object->object());
            else
                self.controller().reset();
        }),
        py::arg("object") = py::none(),
        "Takes an object out of playing by itself and puts it at its begin; all of them unless told.");
    players.def("go_to_end", checked([](Self self, const ObjectReference& object) {
                    self.controller().gotoEnd(&object.object());
                }),
                py::arg("object"), "As `reset`, but to the end.");
    players.def("jump_to_begin", checked([](Self self, const ObjectReference& object) {
                    self.controller().gotoGlobalBegin(&object.object());
                }),
                py::arg("object"),
                "Stops the timeline, evaluates the object at its begin and tells listeners.");
    players.def("jump_to_end", checked([](Self self, const ObjectReference& object) {
                    self.controller().gotoGlobalEnd(&object.object());
                }),
                py::arg("object"), "The same at its end.");
    players.def("blur", checked([](Self self, double sample, const std::optional<ObjectReference>& object) {
                    kaAnimationController& controller = self.controller();
                    if (object)
                        controller.executeMotionBlur(frameOf(sample, "sample"), &object->object());
                    else
                        controller.executeMotionBlur(frameOf(sample, "sample"));
                }),
                py::arg("sample"), py::arg("object") = py::none(),
                "Moves what is flagged `motion_blur` to the time of a sub-frame sample: the current frame + "
                "fps * sample /\n`Host.shutter_speed`. Of one object, else of what `edit` named.");
    players.def("end_blur", checked([](Self self) { self.controller().resetMotionBlur(); }),
                "Puts what `edit` named back to the current frame.");
    players.def("edit",
                checked([](Self self, const std::optional<ObjectReference>& object,
                           const std::vector<ReferenceTo<kaAnimationCurve2D>>& curves, bool activeBlocks) {
                    kaAnimationController& controller = self.controller();
                    std::vector<kaUID> ids;
                    for (const kaAnimationCurve2D* curve : objectsOf(curves))
                        ids.push_back(curve->getId());
                    controller.setObjectID(object ? object->object().getId() : 0);
                    controller.setCurveIDs(ids);
                    controller.setEvalActiveUnits(activeBlocks);
                }),
                py::arg("object") = py::none(), py::arg("curves") = py::tuple(), py::kw_only(),
                py::arg("active_blocks") = false,
                "Names what `evaluate`, `blur` and `end_blur` work on, as a host does of what it edits.");
    players.def("evaluate", checked([](Self self, double frame, bool motionBlurOnly) {
                    self.controller().evaluate(frameOf(frame, "frame"), motionBlurOnly);
                }),
                py::arg("frame"), py::kw_only(), py::arg("motion_blur_only") = false,
                "Evaluates what `edit` named.");
}

/// A value of the timeline that can only be read.
template <class Value>
void addState(py::class_<Player>& players, const char* name, Value (*get)(), const char* doc) {
    players.def_property_readonly(name, checked([get](Self self) {
                                      self.controller();
                                      return get();
                                  }),
                                  doc);
}

void addStates(py::class_<Player>& players) {
    using Controller = kaAnimationController;
    addState(players, "frame", &Controller::getCurrentFrame, "The current frame of the timeline.");
    addState(players, "full_frame", &Controller::getFullFrame, "The last whole frame that was told.");
    addState(players, "playing", &Controller::isPlaying, "Whether the timeline runs.");
    addState(players, "repeat", &Controller::isRepeat, "Whether it starts over at its end.");
    addState(players, "reverse", &Controller::isReverse, "Whether it runs backwards.");
    addState(players, "begin", &Controller::getBegin, "The first frame of its range.");
    addState(players, "end", &Controller::getEnd, "The last frame of its range.");
    addState(players, "start_frame", &Controller::getStart, "Where it was started.");
    players.def_property("every_frame", checked([](Self self) {
                             self.controller();
                             return Controller::isForcePlayLoopFullFrame();
                         }),
                         checked([](Self self, bool every) {
                             self.controller();
                             Controller::setForcePlayLoopFullFrame(every);
                         }),
                         "Whether each tick goes to the next whole frame, however long it takes.");
    players.def_property_readonly("running", checked([](Self self) {
                                      py::list running;
                                      for (const auto& [id, object] : self.controller().getRunningObjects())
                                          running.append(wrap(self.session, object));
                                      return running;
                                  }),
                                  "The objects that play by themselves, by id.");
    players.def_property_readonly("waiting", checked([](Self self) {
                                      return wrapAll(self.session, self.controller().getWaitingObjects());
                                  }),
                                  "The objects that start at the end of the next tick.");
}

} // namespace

void bindPlayer(py::module_& module) {
    py::class_<Player> players(
        module, "Player",
        "Plays the project by a clock of its own, which stands still until it is moved.\n\n"
        ">>> import kaanimation\n"
        ">>> with kaanimation.open(kaanimation.example()) as project:\n"
        "...     player = project.player\n"
        "...     player.play()\n"
        "...     [player.advance(0.04) for _ in range(3)]\n"
        "[1.0, 2.0, 3.0]");
    addClock(players);
    addTransport(players);
    addSingleObjects(players);
    addStates(players);
    players.def_property("on_sequence", checked([](Self self) {
                             self.controller();
                             return wiring->onSequence;
                         }),
                         checked([](Self self, const py::object& function) {
                             self.controller();
                             wiring->onSequence = function;
                         }),
                         "Called with the name of each sequence that fires; None for nobody. What it raises "
                         "reaches whoever ticked.");
    auto projects = py::reinterpret_borrow<py::class_<Session, SessionPtr>>(module.attr("Project"));
    projects.def_property_readonly("player", checked([](const SessionPtr& self) {
                                       const Player player{self};
                                       player.controller();
                                       return player;
                                   }),
                                   "Plays it by a clock of its own.");
}

} // namespace ka::python
