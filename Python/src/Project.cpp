#include "Arguments.h"
#include "Bindings.h"
#include "Call.h"
#include "Messages.h"
#include "References.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationSequence.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaMotion/ModelReader.h>
#include <kaMotion/Saving.h>
#include <kaMotion/SceneFiles.h>
#include <kaMotion/Text.h>
#include <optional>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

namespace py = pybind11;

namespace ka::python {

namespace {

using Self = const SessionPtr&;
using Projects = py::class_<Session, SessionPtr>;

SessionPtr openFiles(const motion::ProjectFiles& files, const py::object& progress) {
    PythonListener listener(progress);
    SessionPtr session = Session::open(files, listener);
    session->notes = listener.notes;
    return session;
}

/// How a model is to be read, as `open` and `merge` are told it.
motion::ImportOptions importOptions(double framesPerSecond, double rotationTolerance, const std::string& take,
                                    double unit, bool isZUp) {
    motion::ImportOptions options;
    options.framesPerSecond = positive(framesPerSecond, "frames_per_second");
    options.rotationTolerance = positive(rotationTolerance, "rotation_tolerance");
    options.take = take;
    options.unit = positive(unit, "unit");
    options.isZUp = isZUp;
    return options;
}

motion::ProjectFiles filesOf(const Path& file, const std::optional<Path>& animation,
                             const motion::ImportOptions& options) {
    motion::ProjectFiles files;
    files.file = file.string();
    files.animation = animation.value_or(Path()).string();
    files.import = options;
    return files;
}

std::vector<kaAnimationObject*> topObjects(Self self) {
    std::vector<kaAnimationObject*> top;
    for (const unsigned int type :
         {KA_TYPE_CURVE, KA_TYPE_UNIT, KA_TYPE_STREAK, KA_TYPE_STRIP, KA_TYPE_SEQUENCE})
        for (kaAnimationObject* object : self->manager().getObjects(type))
            if (object->getParentObject() == nullptr)
                top.push_back(object);
    return top;
}

void addLists(Projects& projects) {
    projects.def_property_readonly("scene", checked([](Self self) { return Scene{self}; }), "The nodes.");
    projects.def_property_readonly(
        "clips", checked([](Self self) { return wrapAll(self, self->manager().getSceneStrips()); }),
        "The clips that stand by themselves, by id: one for each take of a capture.");
    projects.def_property_readonly(
        "blocks", checked([](Self self) { return wrapAll(self, self->manager().getSceneUnits()); }),
        "The blocks that stand by themselves, by id.");
    projects.def_property_readonly(
        "curves", checked([](Self self) { return wrapAll(self, self->manager().getObjects(KA_TYPE_CURVE)); }),
        "All curves, by id.");
    projects.def_property_readonly("objects",
                                   checked([](Self self) { return wrapAll(self, topObjects(self)); }),
                                   "Everything that stands in nothing else, keys excepted.");
    projects.def(
        "playable", checked([](Self self, const std::string& name) {
            return wrapAll(self, self->project().playable(name));
        }),
        py::arg("name") = "",
        "What plays: the object of that name or id, else all blocks that stand by themselves and the first "
        "clip by name.");
    projects.def("__getitem__", checked([](Self self, const std::string& name) {
                     return wrap(self, self->project().playable(name).at(0));
                 }),
                 py::arg("name"),
                 "The object of that name or id, keys excepted; raises UsageError for none.");
    projects.def("__getitem__", checked([](Self self, kaUID id) {
                     const kaAnimationObject* object = self->manager().getObject(id);
                     if (object == nullptr)
                         raise(ErrorKind::Gone, "no object has the id " + std::to_string(id));
                     return wrap(self, object);
                 }),
                 py::arg("id"));
    projects.def_property_readonly("notes", checked([](Self self) {
                                       self->project();
                                       std::vector<std::string> notes = self->notes;
                                       const motion::ImportReport& report = self->project().report();
                                       notes.insert(notes.end(), report.notes.begin(), report.notes.end());
                                       return notes;
                                   }),
                                   "What could not be carried over from the file, a line each.");
    projects.def_property_readonly(
        "faults", checked([](Self self) { return self->project().report().faults; }),
        "Imported curves that do not play as their source does, a line each; normally none.");
    projects.def_property_readonly(
        "report", checked([](Self self) { return self->project().report(); }),
        "What became of the model that it was opened from; its counts are 0 where there was none.");
    projects.def_property_readonly("file", checked([](Self self) { return self->project().file(); }),
                                   "The file, as it was named.");
    projects.def_property_readonly(
        "is_open", [](Self self) { return self->isOpen(); }, "Whether it has not been closed. Never raises.");
    projects.def_property_readonly("object_count",
                                   checked([](Self self) { return self->manager().getObjectCount(); }),
                                   "Registered objects, keys included.");
    projects.def_property_readonly(
        "frame_range", checked([](Self self) { return motion::frameRange(self->project().playable("")); }),
        "The first and the last frame of what plays; both 0 when there is nothing.");
}

void addMaking(Projects& projects) {
    projects.def("create_clip", checked([](Self self, const std::string& name) {
                     return wrap(self, self->manager().createStrip(toLatin1(name), 0));
                 }),
                 py::arg("name"), "A new clip without tracks.");
    projects.def("create_track", checked([](Self self, const std::string& name) {
                     return wrap(self, self->manager().createStreak(toLatin1(name), 0));
                 }),
                 py::arg("name"), "A new track that stands by itself.");
    projects.def("create_block",
                 checked([](Self self, const std::string& name,
                            const std::vector<ReferenceTo<kaAnimationCurve2D>>& curves, bool attach) {
                     return wrap(self,
                                 self->manager().createUnit(objectsOf(curves), toLatin1(name), 0, attach));
                 }),
                 py::arg("name"), py::arg("curves") = py::tuple(), py::kw_only(), py::arg("attach") = true,
                 "A new block around the curves; attach: the node that they drive lists it.");
    projects.def(
        "create_curve", checked([](Self self, const NodeReference& node, const std::string& attribute) {
            kaAnimationCurve2D* curve = self->manager().createCurve2D(node.get(), toLatin1(attribute));
            if (curve == nullptr)
                raise(ErrorKind::Usage, "the node has no field '" + motion::oneLine(attribute) + "'");
            return wrap(self, curve);
        }),
        py::arg("node"), py::arg("attribute"),
        "A new curve without keys for a number of a node, such as 'rotationY'.");
    projects.def("create_curve", checked([](Self self, const FieldReference& field, const std::string& name) {
                     return wrap(self, self->manager().createCurve2D(&field.get(), toLatin1(name), 0, true));
                 }),
                 py::arg("field"), py::arg("name") = "curve", "The same for a field.");
    projects.def("create_sequence", checked([](Self self, const std::string& name, double begin, double end) {
                     const float from = frameOf(begin, "begin"), to = frameOf(end, "end");
                     if (!beginsBefore(from, to))
                         raise(ErrorKind::Refused, "the begin must lie before the end");
                     kaAnimationSequence* sequence = self->manager().createSequence(toLatin1(name), 0);
                     sequence->setBegin(from);
                     sequence->setEnd(to);
                     return wrap(self, sequence);
                 }),
                 py::arg("name"), py::arg("begin"), py::arg("end"), "A new event over those frames.");
}

void mergeModel(Self self, const motion::ProjectFiles& files) {
    const motion::ReadModel model = motion::readModel(files.file, files.reader);
    motion::ImportOptions options = files.import;
    options.budget = motion::KeyBudget(files.reader.megabytes);
    motion::ImportReport report = motion::importMotion(model.motion, self->project().root(), options);
    for (auto* lines : {&report.notes, &report.faults})
        self->notes.insert(self->notes.end(), lines->begin(), lines->end());
}

void mergeScene(Self self, const motion::ProjectFiles& files) {
    motion::ImportReport report;
    osg::NodePtr read = motion::readScene(files.file, report);
    osg::addRefCP(read);
    osg::NodePtr root = self->project().root();
    osg::beginEditCP(root);
    while (read->getNChildren() > 0)
        root->addChild(read->getChild(0));
    osg::endEditCP(root);
    osg::subRefCP(read);
    self->notes.insert(self->notes.end(), report.notes.begin(), report.notes.end());
}

void merge(Self self, const motion::ProjectFiles& files) {
    self->project();
    if (!files.animation.empty() && !motion::isScene(files.file))
        raise(ErrorKind::Usage, "only a scene (.osg) goes with an animation document");
    if (motion::isScene(files.file))
        mergeScene(self, files);
    else if (!motion::isDocument(files.file))
        mergeModel(self, files);
    PythonListener listener{py::none()};
    const std::string document = motion::isDocument(files.file) ? files.file : files.animation;
    if (!document.empty())
        motion::readDocument(document, listener);
    self->notes.insert(self->notes.end(), listener.notes.begin(), listener.notes.end());
}

/// @throws UsageError for paths that are not one scene, one document or both.
motion::SavedFiles savedFiles(const py::args& paths) {
    motion::SavedFiles files;
    for (const py::handle path : paths) {
        const std::string name = path.cast<Path>().string();
        std::string& place = motion::isScene(name) ? files.scene : files.animation;
        if (!place.empty())
            raise(ErrorKind::Usage, "save takes one scene (.osg), one animation document (.xml) or both");
        place = name;
    }
    if (paths.empty())
        raise(ErrorKind::Usage,
              "save takes the path of a scene (.osg), of an animation document (.xml) or both");
    motion::checkNames(files);
    return files;
}

void warn(const char* category, const std::string& line) {
    const py::object type = py::module_::import("kaanimation._errors").attr(category);
    if (PyErr_WarnEx(type.ptr(), line.c_str(), 1) != 0)
        throw py::error_already_set();
}

std::vector<std::string> save(Self self, const py::args& paths, const py::object& progress) {
    const motion::SavedFiles files = savedFiles(paths);
    PythonListener listener(progress);
    std::vector<std::string> faults = motion::save(self->project().root(), files, listener);
    for (const std::string& note : listener.notes)
        warn("NoteWarning", note);
    for (const std::string& fault : faults)
        warn("FaultWarning", fault);
    return faults;
}

void addFiles(Projects& projects) {
    projects.def(
        "close", checked([](Self self) { self->close(); }),
        "Destroys everything; whatever stood for any of it raises ClosedError from now on. A second time "
        "nothing.");
    projects.def("__enter__", [](Self self) { return self; });
    projects.def("__exit__", checked([](Self self, const py::args&) { self->close(); }));
    projects.def(
        "save", checked([](Self self, const py::args& paths, const py::object& progress) {
            return save(self, paths, progress);
        }),
        py::kw_only(), py::arg("progress") = py::none(),
        "Writes the scene to the path that ends in .osg, the animation document to the one that ends in "
        ".xml; either\nor both. Files are replaced as a whole or not at all. Returns, and warns of, the "
        "curves that will not play\nfrom the document as they do now; normally none.");
    projects.def(
        "merge",
        checked([](Self self, const Path& file, const std::optional<Path>& animation, double framesPerSecond,
                   double rotationTolerance, const std::string& take, double unit, bool zUp) {
            merge(self, filesOf(file, animation,
                                importOptions(framesPerSecond, rotationTolerance, take, unit, zUp)));
        }),
        py::arg("path"), py::arg("animation") = py::none(), py::kw_only(),
        py::arg("frames_per_second") = 25.0, py::arg("rotation_tolerance") = 0.01, py::arg("take") = "",
        py::arg("unit") = 1.0, py::arg("z_up") = false,
        "Adds another file to what is open; the options are those of `open`. Ids of a document that "
        "are taken give way\nto new ones, while references go on to mean the ids as written: a "
        "document merged twice connects its first\nset again.");
    projects.def("exchange_scene",
                 checked([](Self self, const Path& file, const std::optional<Path>& animation) {
                     PythonListener listener{py::none()};
                     self->ownProject().exchangeScene(filesOf(file, animation, {}), listener);
                     self->notes.insert(self->notes.end(), listener.notes.begin(), listener.notes.end());
                 }),
                 py::arg("path"), py::arg("animation") = py::none(),
                 "Opens other files in place of the scene; what is registered stays.");
    projects.def(
        "evaluate", checked([](Self self, double frame, const std::vector<ObjectReference>& objects) {
            motion::evaluate(objects.empty() ? self->project().playable("") : objectsOf(objects),
                             frameOf(frame, "frame"));
        }),
        py::arg("frame"), py::arg("objects") = py::tuple(),
        "Puts the scene into the state that the objects give it at a frame, all that plays unless told.");
}

void bindSessions(py::module_& module) {
    module.def("current", checked([] {
                   Session* session = Session::current();
                   return session == nullptr ? SessionPtr() : session->shared_from_this();
               }),
               "The project that is open, None without one: in a program that has this interpreter inside, "
               "its own.");
    module.def("_join", checked([](const py::capsule& project) {
                   return Session::join(*project.get_pointer<const motion::Project>());
               }));
    module.def("_leave", [] {
        if (Session* session = Session::current(); session != nullptr && session->isHosted())
            session->shared_from_this()->leave();
    });
    module.def("_close_at_exit", [] {
        removeListeners();
        if (Session* session = Session::current(); session != nullptr && !session->isHosted())
            session->close();
    });
}

} // namespace

void bindProject(py::module_& module) {
    Projects projects(
        module, "Project",
        "An open file: a scene and its animation. There is one at a time in a process, since the "
        "registry of\nobjects is one; use `with`, or call `close`. It belongs to the thread that "
        "opened it.\n\n"
        ">>> import kaanimation\n"
        ">>> with kaanimation.open(kaanimation.example()) as project:\n"
        "...     door = project.scene.root.add_child('door')\n"
        "...     curve = project.create_curve(door, 'rotationY')\n"
        "...     curve.set_keys([[0, 0], [25, 90]])\n"
        "...     block = project.create_block('opening', [curve])\n"
        "...     project.evaluate(25)\n"
        "...     print(door.rotation)\n"
        "[0.0, 90.0, 0.0]");
    addLists(projects);
    addMaking(projects);
    addFiles(projects);
    module.def(
        "open",
        checked([](const Path& file, const std::optional<Path>& animation, double framesPerSecond,
                   double rotationTolerance, const std::string& take, double unit, bool zUp,
                   std::size_t readerMegabytes, double readerSeconds, bool trust,
                   const py::object& progress) {
            motion::ProjectFiles files =
                filesOf(file, animation, importOptions(framesPerSecond, rotationTolerance, take, unit, zUp));
            files.reader.megabytes = readerMegabytes;
            files.reader.seconds = readerSeconds;
            files.reader.unconfined = trust;
            return openFiles(files, progress);
        }),
        py::arg("path"), py::arg("animation") = py::none(), py::kw_only(),
        py::arg("frames_per_second") = 25.0, py::arg("rotation_tolerance") = 0.01, py::arg("take") = "",
        py::arg("unit") = 1.0, py::arg("z_up") = false, py::arg("reader_megabytes") = 1024,
        py::arg("reader_seconds") = 30.0, py::arg("trust") = false, py::arg("progress") = py::none(),
        "Opens a capture or model, a scene (.osg) with its animation document, or a document (.xml).\n\n"
        "animation: the document that goes with a scene. The rest is of models. frames_per_second: frames of "
        "a second of\nthe model. rotation_tolerance: degrees that a converted rotation may be off between "
        "keys. take: the one to import,\nall unless told. unit: units of the scene for one of the model. "
        "z_up: the model's Z points up. reader_megabytes,\nreader_seconds: what the reader may use up. "
        "trust: read even where the system cannot confine the reader.\nprogress: called as progress(what, "
        "done, total).\n\n"
        "Raises FileError for a file that cannot be read, OpenError while a project is open.");
    bindSessions(module);
}

} // namespace ka::python
