#include "Bindings.h"
#include "Call.h"
#include "Messages.h"
#include "References.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <filesystem>
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
using Path = std::filesystem::path;

SessionPtr openFiles(const motion::ProjectFiles& files, const py::object& progress) {
    PythonListener listener(progress);
    SessionPtr session = Session::open(files, listener);
    session->notes = listener.notes;
    return session;
}

motion::ProjectFiles filesOf(const std::string& file, const std::string& animation, double framesPerSecond,
                             double rotationTolerance, std::size_t readerMegabytes, double readerSeconds,
                             bool trust) {
    if (!(framesPerSecond > 0.0) || !(framesPerSecond < 1e6))
        throw py::value_error("frames_per_second must be above 0 and below a million");
    if (!(rotationTolerance > 0.0) || !(rotationTolerance < 1e6))
        throw py::value_error("rotation_tolerance must be above 0");
    motion::ProjectFiles files;
    files.file = file;
    files.animation = animation;
    files.import.framesPerSecond = framesPerSecond;
    files.import.rotationTolerance = rotationTolerance;
    files.reader.megabytes = readerMegabytes;
    files.reader.seconds = readerSeconds;
    files.reader.unconfined = trust;
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
                     std::vector<kaAnimationCurve2D*> children;
                     for (const auto& curve : curves)
                         children.push_back(&curve.get());
                     return wrap(self, self->manager().createUnit(children, toLatin1(name), 0, attach));
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

void merge(Self self, const std::string& file, const std::string& animation, double framesPerSecond,
           double rotationTolerance) {
    self->project();
    const motion::ProjectFiles files =
        filesOf(file, animation, framesPerSecond, rotationTolerance, 1024, 30.0, false);
    if (!animation.empty() && !motion::isScene(file))
        raise(ErrorKind::Usage, "only a scene (.osg) goes with an animation document");
    if (motion::isScene(file))
        mergeScene(self, files);
    else if (!motion::isDocument(file))
        mergeModel(self, files);
    PythonListener listener{py::none()};
    const std::string document = motion::isDocument(file) ? file : animation;
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
                   double rotationTolerance) {
            merge(self, file.string(), animation.value_or(Path()).string(), framesPerSecond,
                  rotationTolerance);
        }),
        py::arg("path"), py::arg("animation") = py::none(), py::kw_only(),
        py::arg("frames_per_second") = 25.0, py::arg("rotation_tolerance") = 0.01,
        "Adds another file to what is open. Ids of a document that are taken give way to new ones, while "
        "references\ngo on to mean the ids as written: a document merged twice connects its first set "
        "again.");
    projects.def(
        "evaluate", checked([](Self self, double frame, const std::vector<ObjectReference>& objects) {
            std::vector<kaAnimationObject*> chosen;
            for (const ObjectReference& object : objects)
                chosen.push_back(&object.object());
            motion::evaluate(objects.empty() ? self->project().playable("") : chosen,
                             frameOf(frame, "frame"));
        }),
        py::arg("frame"), py::arg("objects") = py::tuple(),
        "Puts the scene into the state that the objects give it at a frame, all that plays unless told.");
}

} // namespace

void bindProject(py::module_& module) {
    Projects projects(
        module, "Project",
        "An open file: a scene and its animation. There is one at a time in a process, since the "
        "registry of\nobjects is one; use `with`, or call `close`. It belongs to the thread that "
        "opened it.");
    addLists(projects);
    addMaking(projects);
    addFiles(projects);
    module.def(
        "open",
        checked([](const Path& file, const std::optional<Path>& animation, double framesPerSecond,
                   double rotationTolerance, std::size_t readerMegabytes, double readerSeconds, bool trust,
                   const py::object& progress) {
            return openFiles(filesOf(file.string(), animation.value_or(Path()).string(), framesPerSecond,
                                     rotationTolerance, readerMegabytes, readerSeconds, trust),
                             progress);
        }),
        py::arg("path"), py::arg("animation") = py::none(), py::kw_only(),
        py::arg("frames_per_second") = 25.0, py::arg("rotation_tolerance") = 0.01,
        py::arg("reader_megabytes") = 1024, py::arg("reader_seconds") = 30.0, py::arg("trust") = false,
        py::arg("progress") = py::none(),
        "Opens a capture or model, a scene (.osg) with its animation document, or a document (.xml).\n\n"
        "animation: the document that goes with a scene. frames_per_second: frames of a second of the model. "
        "\nrotation_tolerance: degrees that a converted rotation may be off between keys. reader_megabytes, "
        "\nreader_seconds: what the reader of a model may use up. trust: read a model even where the system "
        "cannot\nconfine its reader. progress: called as progress(what, done, total).\n\n"
        "Raises FileError for a file that cannot be read, OpenError while a project is open.");
    module.def("_close_at_exit", [] {
        removeListeners();
        if (Session* session = Session::current())
            session->close();
    });
    module.def("_current", [] {
        Session* session = Session::current();
        return session == nullptr ? SessionPtr() : session->shared_from_this();
    });
}

} // namespace ka::python
