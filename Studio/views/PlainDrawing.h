#pragma once

#include "SceneDrawing.h"

#include <QSizeF>

namespace ka::studio {

/// Draws bones with the window system's own painter: on every display, and without meshes.
class PlainDrawing : public SceneDrawing {
    Q_OBJECT

  public:
    using SceneDrawing::SceneDrawing;

    void setScene(const SpaceScene& scene) override;
    void paint(QPainter& painter, const SceneShot& shot) override;
    QString note() const override;
    /// Why this has to do, where another drawing was wished for.
    void setReason(const QString& reason) { _reason = reason; }

  private:
    static void drawFigure(QPainter& painter, const SceneShot& shot, const std::vector<QVector3D>& places,
                           int alpha);

    QString _reason;
    bool _hasMeshes = false;
};

} // namespace ka::studio
