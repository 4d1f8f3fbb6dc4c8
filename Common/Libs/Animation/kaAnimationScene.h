#pragma once

#include "kaAnimationExport.h"

#include <OpenSG/OSGNode.h>
#include <QString>
#include <utility>
#include <vector>

class kaAnimationStrip;

/// A scene that is open with its animation: opened and closed as a whole, in the order that leaves nothing
/// behind. There is one at a time, because the registry is one; it is closed when this goes.
///
/// A host that opens and closes scenes in its own way does with `kaAnimationManager` alone.
class KA_ANIMATION_API kaAnimationScene {
  public:
    /// What came of opening. Where it was refused, what was open stays open.
    enum class Opening {
        Opened,         ///< both are there
        SceneRefused,   ///< there is no such scene file, or it cannot be read; the scene graph says why
        DocumentRefused ///< `kaAnimationManager::getLoadFault` says why and where
    };

    kaAnimationScene() = default; ///< Nothing is open.
    ~kaAnimationScene();          ///< Closes what is open.
    kaAnimationScene(const kaAnimationScene&) = delete;
    kaAnimationScene& operator=(const kaAnimationScene&) = delete;

    /// Opens a scene file and the animation document that goes with it. What is open is closed, and with it
    /// goes everything registered, once both are known to be readable.
    /// @param scene     name of the scene file.
    /// @param document  name of the animation document; empty for a scene without animation of its own.
    Opening open(const QString& scene, const QString& document);
    /// The same for a scene that the host has read or made itself.
    /// @param root      counted until the scene is closed. Null is refused.
    /// @param document  as above.
    Opening open(const osg::NodePtr& root, const QString& document);

    /// Ends all playback, empties the copy buffer, destroys every registered object and field, takes the
    /// scene root back from the manager and gives up the root. Does nothing when nothing is open.
    void close();

    /// Whether a scene is open.
    bool isOpen() const { return _root != osg::NullFC; }
    /// The scene's root; null when none is open.
    const osg::NodePtr& root() const { return _root; }

    /// The clips that stand for themselves, by name, of equal names by id: what a host offers for playing.
    /// Clips of one motion are often takes of the same nodes; only one of them is played at a time.
    static std::vector<kaAnimationStrip*> clips();

    /// What has to be drawn anew.
    struct Redraw {
        /// The nodes whose own look or place has changed, each once, in ascending order of their container
        /// ids. What stands below a node moves with it. Good until the host changes the scene.
        std::vector<osg::NodePtr> nodes;
        /// Whether something has changed that hangs on no node of the scene, such as the camera: all of the
        /// picture then.
        bool all = false;
    };

    /// What the entries of the current change list concern: nodes, and by way of these their cores,
    /// attachments and materials. Reads the list only: the host clears it when it has drawn.
    ///
    /// A change list records nothing unless `osg::ChangeList::setReadWriteDefault(true)` was called before
    /// `osg::osgInit`. Cost: that of the entries; where a material has changed a walk of the scene.
    static Redraw redraw();

  private:
    Opening exchange(osg::NodePtr root, const QString& document);

    osg::NodePtr _root;
};
