#pragma once

#include "SceneDrawing.h"

#include <QByteArray>
#include <QImage>
#include <map>
#include <memory>

namespace ka::studio {

class DrawingClient;

/// Draws meshes and bones with OpenGL, in a process of its own, and shows the picture that is there. While the window
/// waits for the next one it shows the last.
class SpaceDrawing : public SceneDrawing {
    Q_OBJECT

  public:
    explicit SpaceDrawing(QObject* parent = nullptr);
    ~SpaceDrawing() override;

    void setScene(const SpaceScene& scene) override;
    void paint(QPainter& painter, const SceneShot& shot) override;
    Viewpoint paintedFrom(const SceneShot& shot) const override;
    QString note() const override;

    /// Whether there is a picture of what is open.
    bool hasPicture() const { return !_picture.isNull(); }
    /// Whether the picture is that of a shot.
    bool shows(quint64 revision) const { return hasPicture() && _shown.revision == revision; }
    /// Whether it would draw a picture that is asked for now.
    bool isFree() const;
    /// What draws, for tests and the report; 0 where nothing does.
    qint64 processId() const;
    /// Asks for a picture of a shot, unless there is one, or another is being drawn: `changed` tells when to ask again.
    void request(const SceneShot& shot);

  signals:
    /// It cannot draw any more, and why.
    void gone(const QString& why);

  private:
    struct Kept {
        quint64 revision = 0;
        Viewpoint viewpoint;
    };

    void start();
    void onGone(const QString& why);
    void fillBones(const SceneShot& shot, std::vector<SpaceBone>& bones);

    std::unique_ptr<DrawingClient> _client;
    const SpaceScene* _scene = nullptr;
    bool _isSceneNew = true;
    int _crashes = 0;
    QImage _picture;
    Kept _shown, _asked;
    bool _isStale = false;          ///< what is drawn now is of a scene that has gone
    std::vector<float> _boneColors; ///< by joint
    std::size_t _figureSize = 0;
};

} // namespace ka::studio
