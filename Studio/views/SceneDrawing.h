#pragma once

#include "space/Figure.h"
#include "space/SpaceScene.h"
#include "space/Viewpoint.h"

#include <QObject>
#include <QSize>

class QPainter;

namespace ka::studio {

/// What is to be seen of a scene, and from where. Whoever made it keeps what it points to.
struct SceneShot {
    quint64 revision = 0; ///< another number where anything is another than before
    Viewpoint viewpoint;
    QSize size;      ///< of the view
    qreal scale = 1; ///< pixels of the display for each of the view's
    const Figure* figure = nullptr;
    const SpaceScene* scene = nullptr;
    const std::vector<std::vector<QVector3D>>* ghosts = nullptr;
    const std::vector<SpaceLight>* lights = nullptr;
    int picked = -1; ///< joint
    bool hasBones = true;
    /// Whether a bone goes to a joint from its parent, by joint: in a scene with meshes only where a skin is, because
    /// everything else is seen by itself.
    const std::vector<bool>* isBone = nullptr;
};

/// Draws the figure and the meshes of a scene. What lies under and over them, and every place that the mouse meets, is
/// the view's and the same for all drawings.
class SceneDrawing : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

    /// Another scene is open.
    virtual void setScene(const SpaceScene& scene) = 0;
    virtual void paint(QPainter& painter, const SceneShot& shot) = 0;
    /// From where `paint` shows things, which may be where the eye was a moment ago: what lies over them goes along.
    virtual Viewpoint paintedFrom(const SceneShot& shot) const { return shot.viewpoint; }
    /// How it draws, for the edge of the view.
    virtual QString note() const = 0;

  signals:
    void changed(); ///< There is something new to paint.
};

/// The colour of a joint's bone: 0 in the middle of the body, 1 left, 2 right. @see BoneColors
int boneColorOf(const QString& jointName);

} // namespace ka::studio
