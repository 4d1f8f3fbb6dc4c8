#pragma once

#include "Figure.h"
#include "OrbitCamera.h"
#include "document/PoseDrag.h"

#include <QWidget>
#include <memory>
#include <optional>

namespace ka::studio {

class PlayHead;
class Session;
class Transport;

/// The scene in space: its figures as bones, over the ground, to be turned about, picked from and posed by
/// hand. It is drawn without OpenGL, so that it works on every display.
class SceneView : public QWidget {
    Q_OBJECT

  public:
    enum class Tool { Select, Move, Rotate };

    SceneView(Session& session, Transport& transport, PlayHead& head, QWidget* parent = nullptr);

    OrbitCamera& camera() { return _camera; }
    const Figure& figure() const { return _figure; }
    /// The picked joint's container id; 0 for none.
    unsigned int pickedNode() const;
    void pick(unsigned int node);

    void setTool(Tool tool);
    Tool tool() const { return _tool; }
    /// Whether posing sets keys where there are none.
    void setAutoKey(bool on) { _autoKey = on; }
    void setTrail(bool on);  ///< The way of the picked joint, with its keys.
    void setGhosts(bool on); ///< The figure some frames before and after.

    QSize sizeHint() const override { return {640, 420}; }
    QPointF pixelOfJoint(int joint) const; ///< For tests and hints; far outside where it is not seen.
    QPointF pixelOfGizmo(int axis) const;  ///< The end of an arrow, or a place on a ring.

  public slots:
    void frameAll();
    void frameSelection();

  signals:
    void picked(unsigned int node);
    void hint(const QString& text);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    enum class Drag { None, Orbit, Pan, Gizmo };

    void takeInScene();
    void refresh();
    void sampleMotion();
    void frameBox(const std::vector<QVector3D>& places);
    int jointAt(const QPointF& place) const;
    int gizmoAt(const QPointF& place) const;
    QVector3D gizmoAxis(int axis) const; ///< In the world, of length 1.
    float gizmoLength() const;
    void dragGizmo(const QPointF& to);
    std::optional<QPointF> seen(const QVector3D& place) const { return _camera.project(place, size()); }

    void drawWelcome(QPainter& painter) const;
    void drawGround(QPainter& painter) const;
    void drawAxes(QPainter& painter) const;
    void drawFigure(QPainter& painter, const std::vector<QVector3D>& places, int alpha) const;
    void drawTrail(QPainter& painter) const;
    void drawGizmo(QPainter& painter) const;
    void drawLine(QPainter& painter, const QVector3D& from, const QVector3D& to) const;

    Session& _session;
    Transport& _transport;
    PlayHead& _head;
    OrbitCamera _camera;
    Figure _figure;
    std::vector<QVector3D> _places;
    float _size = 1.0F; ///< of the figure
    int _picked = -1;
    Tool _tool = Tool::Select;
    bool _autoKey = true, _hasTrail = true, _hasGhosts = false, _isSampleStale = true;

    std::vector<QVector3D> _trail;       ///< of the picked joint, a place a frame
    std::vector<std::size_t> _trailKeys; ///< places on it where a key stands
    std::vector<std::vector<QVector3D>> _ghosts;

    Drag _drag = Drag::None;
    QPointF _pressed, _last;
    bool _hasMoved = false;
    int _axis = -1;
    QVector3D _dragAxis;
    double _dragStart = 0.0; ///< angle about the ring at which it was taken hold of
    std::unique_ptr<PoseDrag> _pose;
};

} // namespace ka::studio
