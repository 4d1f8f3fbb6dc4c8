#include "readers/MotionChoice.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGTransform.h>
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <kaAnimationController.h>
#include <kaAnimationManager.h>
#include <kaAnimationObject.h>
#include <kaAnimationScene.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaMotion/Failure.h>
#include <kaMotion/ModelReader.h>
#include <kaMotion/MotionStream.h>
#include <kaMotion/Project.h>
#include <kaMotion/SceneFiles.h>
#include <kaMotion/Text.h>
#include <utility>

namespace ka::motion {

namespace {

osg::NodePtr makeRoot(const std::string& name) {
    osg::NodePtr root = osg::Node::create();
    osg::addRefCP(root);
    osg::beginEditCP(root);
    root->setCore(osg::Group::create());
    osg::setName(root, name);
    osg::endEditCP(root);
    return root;
}

/// Ids that are the same on every run and differ between models, so that the animations of two of them can be
/// loaded side by side.
void seedIds(const std::string& bytes) {
    unsigned long long hash = 0xCBF29CE484222325ULL;
    for (const char c : bytes)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3ULL;
    kaAnimationManager::random(hash);
}

bool hasNumber(const kaAnimationObject& object, const std::string& text) {
    kaUID id = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
    return error == std::errc() && end == text.data() + text.size() && object.getId() == id;
}

/// Notes once what a reader could have done on this system.
void noteConfinement(Confinement confinement, Listener& listener) {
    static bool said = false;
    if (confinement == Confinement::Whole || std::exchange(said, true))
        return;
    listener.note(confinement == Confinement::CallsOnly
                      ? "this system cannot hold the reader of a model to its folder "
                        "(no Landlock): it may read any file "
                        "that you may read, and change none"
                      : "this system cannot confine the reader of a model (no "
                        "filters of system calls): as --trust asks, "
                        "it runs with all your rights");
}

} // namespace

void startScene() {
    static const bool started = osg::osgInit(0, nullptr);
    if (!started)
        throw Failure(ExitCode::Unreadable, "the scene graph does not start");
}

Project::Project(const ProjectFiles& files, Listener& listener) {
    startScene();
    try {
        open(files, listener);
    } catch (...) {
        close();
        throw;
    }
}

Project::Project(ReadModel model, const ProjectFiles& files, Listener& listener)
    : _file(files.file), _framesPerSecond(files.import.framesPerSecond) {
    startScene();
    try {
        build(std::move(model), files, listener);
    } catch (...) {
        close();
        throw;
    }
}

Project::Project(const osg::NodePtr& root, const std::string& file, const ImportReport& report,
                 double framesPerSecond)
    : _file(file), _root(root), _report(report), _framesPerSecond(framesPerSecond) {
    osg::addRefCP(_root);
    kaAnimationManager::setSceneRootNode(_root);
}

Project::~Project() {
    close();
}

void Project::close() {
    if (_root == osg::NullFC) // refused before there was one
        _root = makeRoot("");
    kaAnimationScene scene;
    scene.open(_root, "");
    scene.close();
    leaveScene();
}

void Project::leaveScene() {
    kaAnimationManager::setSceneRootNode(osg::NodePtr());
    if (_root != osg::NullFC)
        osg::subRefCP(_root);
    _root = osg::NodePtr();
}

void Project::exchangeScene(const ProjectFiles& files, Listener& listener) {
    leaveScene();
    _report = {};
    open(files, listener);
}

void Project::open(const ProjectFiles& files, Listener& listener) {
    _file = files.file;
    _framesPerSecond = files.import.framesPerSecond;
    if (_framesPerSecond == 0.0 && (isScene(files.file) || isDocument(files.file)))
        throw Failure(ExitCode::Usage,
                      "only a model has a frame rate of its own, not " + printedPath(files.file));
    if (isScene(files.file))
        openScene(files, listener);
    else if (!files.animation.empty())
        throw Failure(ExitCode::Usage,
                      "only a scene (.osg) goes with an animation document, not " + printedPath(files.file));
    else if (isDocument(files.file))
        openDocument(files, listener);
    else
        build(readModel(files.file, files.reader), files, listener);
}

void Project::openScene(const ProjectFiles& files, Listener& listener) {
    seedIds(contentsOf(files.file) + (files.animation.empty() ? "" : contentsOf(files.animation)));
    _root = readScene(files.file, _report);
    osg::addRefCP(_root);
    kaAnimationManager::setSceneRootNode(_root);
    if (!files.animation.empty())
        readDocument(files.animation, listener);
}

void Project::openDocument(const ProjectFiles& files, Listener& listener) {
    seedIds(contentsOf(files.file));
    _root = makeRoot("");
    kaAnimationManager::setSceneRootNode(_root);
    readDocument(files.file, listener);
}

void Project::build(ReadModel model, const ProjectFiles& files, Listener& listener) {
    if (!files.import.take.empty())
        keepTake(model.motion, files.import.take);
    if (files.import.unit != 1.0)
        scaleLengths(model.motion, files.import.unit);
    if (files.import.isZUp)
        turnZUp(model.motion);
    if (_framesPerSecond == 0.0)
        _framesPerSecond = ownRate(model.motion);
    if (_framesPerSecond == 0.0)
        throw Failure(ExitCode::Usage, printedPath(files.file) +
                                           " has no frame rate of its own: its keys stand at no "
                                           "even distance; ask for a number");
    noteConfinement(model.confinement, listener);
    bool lossy = false;
    seedIds(packMotion(model.motion));
    _root = makeRoot(latin1FromUtf8(std::filesystem::path(files.file).stem().string(), lossy));
    kaAnimationManager::setSceneRootNode(_root);
    try {
        ImportOptions options = files.import;
        options.budget = KeyBudget(files.reader.megabytes);
        options.framesPerSecond = _framesPerSecond;
        _report = importMotion(model.motion, _root, options, listener);
    } catch (const Failure& failure) {
        throw unreadable(files.file, failure.what());
    }
    _report.findings = model.findings;
}

std::vector<osg::NodePtr> Project::placedNodes() const {
    std::vector<osg::NodePtr> placed, pending{_root};
    while (!pending.empty()) {
        const osg::NodePtr node = pending.back();
        pending.pop_back();
        if (node == osg::NullFC)
            continue;
        if (osg::TransformPtr::dcast(node->getCore()) != osg::NullFC)
            placed.push_back(node);
        for (osg::UInt32 i = node->getNChildren(); i-- > 0;)
            pending.push_back(node->getChild(i));
    }
    return placed;
}

std::vector<kaAnimationObject*> Project::playable(const std::string& name) const {
    const kaAnimationManager* manager = kaAnimationManager::the();
    bool lossy = false;
    if (!name.empty()) {
        const std::string wanted = latin1FromUtf8(name, lossy);
        for (const auto& [id, object] : manager->getObjects())
            if (object->getTypeID() != KA_TYPE_POINT &&
                (object->getName() == wanted || hasNumber(*object, name)))
                return {object};
        throw Failure(ExitCode::Usage, "no animation is called '" + oneLine(name) + "'");
    }
    std::vector<kaAnimationObject*> objects;
    for (kaAnimationUnit* block : manager->getSceneUnits())
        objects.push_back(block);
    const std::vector<kaAnimationStrip*> clips = kaAnimationScene::clips();
    if (!clips.empty())
        objects.push_back(clips.front());
    return objects;
}

std::pair<float, float> frameRange(const std::vector<kaAnimationObject*>& objects) {
    float begin = KA_EMPTY_EXTENT, end = -KA_EMPTY_EXTENT;
    for (const kaAnimationObject* object : objects) {
        begin = std::min(begin, object->getBegin());
        end = std::max(end, object->getEnd());
    }
    return begin <= end ? std::pair(begin, end) : std::pair(0.0F, 0.0F);
}

void evaluate(const std::vector<kaAnimationObject*>& objects, float frame) {
    for (kaAnimationObject* object : objects)
        kaAnimationController::the()->evaluateObject(object, frame, false);
}

std::string nodeName(const osg::NodePtr& node) {
    const osg::Char8* name = osg::getName(node);
    return name == nullptr ? std::string() : utf8FromLatin1(name);
}

} // namespace ka::motion
