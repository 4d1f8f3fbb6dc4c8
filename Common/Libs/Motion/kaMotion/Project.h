#pragma once

#include <OpenSG/OSGNode.h>
#include <kaMotion/ImportReport.h>
#include <kaMotion/Listener.h>
#include <kaMotion/MotionImport.h>
#include <kaMotion/ReaderProcess.h>
#include <string>
#include <vector>

class kaAnimationCurve2D;
class kaAnimationObject;

#pragma GCC visibility push(default)
namespace ka::motion {

struct ReadModel;

/// What a command works on, and how it is to be read.
struct ProjectFiles {
    std::string file;      ///< a model, a scene or an animation document
    std::string animation; ///< the animation document that goes with a scene; may be empty
    ImportOptions import;  ///< for a model
    ReaderLimits reader;   ///< for a model
};

/// A scene and its animation in memory, the way a host holds them. There is one at a time, because the
/// animation registry is one: when the project goes, everything registered goes with it.
class Project {
  public:
    /// Reads the files: by the extension of the first, a scene with its animation document, a document by
    /// itself or a model.
    /// @throws Failure (Unreadable), and (Usage) for a document that is to go with anything but a scene.
    explicit Project(const ProjectFiles& files, Listener& listener = Listener::none());
    /// Builds a model that was read before, or by another process.
    /// @param model  what was read; consumed.
    /// @param files  how it is to be built; its file is what the model is known by.
    /// @param listener  is told how far building has come, and may end it.
    /// @throws Failure (Unreadable) when there would be more keys than the reader's limits allow.
    Project(ReadModel model, const ProjectFiles& files, Listener& listener = Listener::none());
    /// Takes over a scene that is in memory, with everything that is registered.
    /// @param root  counted by whoever gives it; counted once more here.
    /// @param file,report,framesPerSecond  as that project had them.
    Project(const osg::NodePtr& root, const std::string& file, const ImportReport& report,
            double framesPerSecond);
    ~Project();
    Project(const Project&) = delete;
    Project& operator=(const Project&) = delete;

    /// Opens other files in place of the scene; what is registered stays. The nodes of the scene go, unless
    /// they are counted elsewhere.
    /// @throws Failure as the constructor does.
    void exchangeScene(const ProjectFiles& files, Listener& listener = Listener::none());

    /// The file that is open, as it was named: the model, scene or document.
    const std::string& file() const { return _file; }
    /// The node above everything that was read.
    const osg::NodePtr& root() const { return _root; }
    /// What was lost and found on the way; its counts are of the model only where a model was read.
    const ImportReport& report() const { return _report; }

    /// Frames of the animation to a second: as asked for, or the model's own.
    double framesPerSecond() const { return _framesPerSecond; }

    /// Every node whose core places it, parents before children.
    std::vector<osg::NodePtr> placedNodes() const;

    /// The objects that make up the animation called `name` (or with that number as id). Without a name: all
    /// blocks that stand by themselves, and of the clips the first by name, because clips of one model are
    /// takes of the same nodes.
    /// @throws Failure (Usage) when nothing has that name.
    std::vector<kaAnimationObject*> playable(const std::string& name) const;

  private:
    void open(const ProjectFiles& files, Listener& listener);
    void openScene(const ProjectFiles& files, Listener& listener);
    void openDocument(const ProjectFiles& files, Listener& listener);
    void close();
    void leaveScene();
    void build(ReadModel model, const ProjectFiles& files, Listener& listener);

    std::string _file;
    osg::NodePtr _root;
    ImportReport _report;
    double _framesPerSecond = 25.0;
};

/// Starts the scene graph, once; projects do it themselves.
/// @throws Failure (Unreadable).
void startScene();

/// The frames from the earliest begin to the latest end of the objects; both 0 when there is nothing.
std::pair<float, float> frameRange(const std::vector<kaAnimationObject*>& objects);

/// Puts the scene into the state that the objects give it at a frame.
void evaluate(const std::vector<kaAnimationObject*>& objects, float frame);

/// The name of a node as UTF-8; empty when it has none.
std::string nodeName(const osg::NodePtr& node);

} // namespace ka::motion
#pragma GCC visibility pop
