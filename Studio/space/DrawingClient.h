#pragma once

#include "SharedPictures.h"
#include "SpaceFrame.h"

#include <QObject>
#include <QTimer>
#include <memory>

class QProcess;

namespace ka::studio {

/// The window's end of the process that draws with OpenGL, this program once more. It draws one frame at a time, beside
/// the window, which neither waits for a driver nor goes down with one.
class DrawingClient : public QObject {
    Q_OBJECT

  public:
    explicit DrawingClient(QObject* parent = nullptr);
    ~DrawingClient() override; ///< Ends the process.

    /// The program that is started; this one unless set.
    static void setProgram(const QString& path);

    void start();
    /// What draws, as its driver names itself; empty before it is ready.
    const QString& driver() const { return _driver; }
    bool isFree() const { return !_driver.isEmpty() && !_isDrawing; }
    qint64 processId() const;

    void sendScene(const SpaceScene& scene);
    /// Asks for a picture, while it is free. The one that was drawn last stays as it is.
    void draw(SpaceFrame frame);

  signals:
    void ready();
    /// On memory that stays as it is until the next but one request.
    void drawn(const QImage& picture);
    /// It has gone, or never came: why, as users read it.
    void gone(const QString& why);

  private:
    void readAnswers();
    void answer(const QByteArray& line);
    void giveUp(const QString& why);
    void send(SpaceMessage kind, const QByteArray& bytes);

    SharedPictures _pictures;
    std::unique_ptr<QProcess> _process;
    QTimer _patience;
    QString _driver;
    quint32 _place = 0;
    bool _isDrawing = false;
};

} // namespace ka::studio
