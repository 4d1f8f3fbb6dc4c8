#pragma once

#include "MotionTrail.h"
#include "SceneDrawing.h"
#include "document/PoseDrag.h"
#include "space/Gizmo.h"
#include "space/OrbitCamera.h"
#include "space/SceneFixtures.h"

#include <QTimer>
#include <QWidget>
#include <memory>
#include <optional>

namespace ka::studio {

class PlainDrawing;
class PlayHead;
class Session;
class SpaceDrawing;
class Transport;

/// The scene in space: its figures and meshes over the ground, to be turned about, picked from and posed by hand.
///
/// Ground, trail, gizmo and whatever the mouse meets are the view's own. Figures and meshes are drawn by one of two
/// drawings: with OpenGL where there is any, else by the window system's own painter, which shows no meshes.
class SceneView : public QWidget {
    Q_OBJECT

  public:
    enum class Tool { Select, Move, Rotate };
    /// `Automatic` goes on without OpenGL where there is none, and so does `OpenGL`; it is the wish that differs.
    enum class Drawing { Automatic, OpenGL, Plain };

    SceneView(Session& session, Transport& transport, PlayHead& head, QWidget* parent = nullptr);
    ~SceneView() override;

    OrbitCamera& camera() { return _camera; }
    /// From where the scene is seen: the camera's, or that of a camera of the scene.
    Viewpoint viewpoint() const;
    const Figure& figure(); ///< As it stands now.
    const SpaceScene& meshes() const { return _meshes; }
    /// The picked joint's container id; 0 for none.
    unsigned int pickedNode() const;
    void pick(unsigned int node);

    void setTool(Tool tool);
    Tool tool() const { return _tool; }
    /// Whether posing sets keys where there are none.
    void setAutoKey(bool on) { _autoKey = on; }
    void setTrail(bool on);  ///< The way of the picked joint, with its keys.
    void setGhosts(bool on); ///< The figure some frames before and after.
    void setBones(bool on);  ///< Joints and bones.

    /// What draws. Where it failed before, it is tried again.
    void setDrawing(Drawing drawing);
    Drawing drawing() const { return _wish; }
    /// By its name for settings and the command line ("automatic", "opengl", "plain"); none for another.
    static std::optional<Drawing> drawingNamed(const QString& name);
    bool isDrawnByOpenGL() const; ///< Whether what is shown was.
    bool isUpToDate() const;      ///< Whether what is shown is how things are.
    QString note() const;         ///< How it is drawn, as the edge of the view says.
    SpaceDrawing* space() { return _space.get(); }

    const std::vector<SceneCamera>& sceneCameras() const { return _fixtures.cameras(); }
    /// Looks through a camera of the scene, until the view is turned; 0 for the view's own.
    void lookThrough(unsigned int setting);
    unsigned int seenThrough() const { return _through; }

    QSize sizeHint() const override { return {640, 420}; }
    QPointF pixelOfJoint(int joint); ///< For tests and hints; far outside where it is not seen.
    QPointF pixelOfGizmo(int axis);  ///< The end of an arrow, or a place on a ring.

  public slots:
    void frameAll();
    void frameSelection();
    void look(OrbitCamera::Side side);
    void setZUp(bool zUp);

  signals:
    void picked(unsigned int node);
    void hint(const QString& text);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    enum class Drag { None, Orbit, Pan, Gizmo };

    void takeInScene();
    void refresh();
    void lookAgain();
    void chooseBones();
    const std::vector<bool>& shownBones() const;
    void touch(); ///< Something is another than before.
    void startOpenGL();
    void sampleMotion();
    void leaveSceneCamera();
    void frameBox(const QVector3D& low, const QVector3D& high);
    int jointAt(const QPointF& place) const;
    int jointOfMeshAt(const QPointF& place) const;
    int jointOfFixtureAt(const QPointF& place) const;
    std::optional<Gizmo> gizmo(const Viewpoint& viewpoint) const;
    void dragGizmo(const QPointF& to);
    SceneShot shot() const;

    void drawWelcome(QPainter& painter) const;
    void drawGround(QPainter& painter, const Viewpoint& from) const;
    void drawAxes(QPainter& painter, const Viewpoint& from) const;
    void drawFixtures(QPainter& painter, const Viewpoint& from) const;
    void drawTrail(QPainter& painter, const Viewpoint& from) const;
    void drawPicked(QPainter& painter, const Viewpoint& from) const;
    void drawGizmo(QPainter& painter, const Viewpoint& from) const;
    void drawNotes(QPainter& painter) const;
    void drawLine(QPainter& painter, const Viewpoint& from, const QVector3D& a, const QVector3D& b) const;

    Session& _session;
    Transport& _transport;
    PlayHead& _head;
    OrbitCamera _camera;
    Figure _figure;
    SpaceScene _meshes;
    SceneFixtures _fixtures;
    std::vector<bool> _isBone, _isBoneOfSkin; ///< by joint: without meshes to be seen, and with them
    std::vector<SpaceLight> _lights;
    unsigned int _through = 0;
    float _size = 1.0F; ///< of the scene
    std::size_t _triangles = 0;
    bool _isFigureOld = false; ///< The scene has moved since it was looked at.
    int _picked = -1;
    Tool _tool = Tool::Select;
    bool _autoKey = true, _hasTrail = true, _hasGhosts = false, _hasBones = true;
    MotionTrail _trail;
    bool _isTrailStale = true;

    std::unique_ptr<PlainDrawing> _plain;
    std::unique_ptr<SpaceDrawing> _space; ///< none before it is needed, or once it has gone
    Drawing _wish = Drawing::Automatic;
    bool _hasFailed = false; ///< OpenGL has, since it was wished for
    quint64 _revision = 1;
    QTimer _idle; ///< in which the trail is sampled

    Drag _drag = Drag::None;
    QPointF _pressed, _last;
    bool _hasMoved = false;
    int _axis = -1;
    std::unique_ptr<PoseDrag> _pose;
};

} // namespace ka::studio
