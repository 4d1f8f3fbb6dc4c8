#include "DrawingClient.h"

#include <QCoreApplication>
#include <QProcess>
#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace ka::studio {

namespace {

constexpr int Descriptor = 3;                           ///< Where the process finds the pictures.
constexpr std::size_t MostBytes = std::size_t{1} << 30; ///< Of a scene, which goes over in one piece.
constexpr int PatienceSeconds = 60;                     ///< More than the process has itself.

QString& program() {
    static QString path;
    return path;
}

/// Hands the pictures on, and ends with this process whatever happens to it.
class Child : public QProcess {
  public:
    explicit Child(int pictures) : _pictures(pictures) {}

  protected:
    void setupChildProcess() override {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (_pictures == Descriptor)
            fcntl(Descriptor, F_SETFD, 0);
        else
            dup2(_pictures, Descriptor);
    }

  private:
    int _pictures;
};

} // namespace

void DrawingClient::setProgram(const QString& path) {
    program() = path;
}

DrawingClient::DrawingClient(QObject* parent) : QObject(parent) {
    _patience.setSingleShot(true);
    _patience.setInterval(1000 * PatienceSeconds);
    connect(&_patience, &QTimer::timeout, this, [this] { giveUp(tr("it does not answer")); });
}

DrawingClient::~DrawingClient() {
    if (_process == nullptr)
        return;
    _process->disconnect(this);
    _process->kill();
    _process->waitForFinished();
}

qint64 DrawingClient::processId() const {
    return _process == nullptr ? 0 : _process->processId();
}

void DrawingClient::start() {
    if (_pictures.descriptor() < 0)
        return giveUp(tr("there is no memory for pictures"));
    _process = std::make_unique<Child>(_pictures.descriptor());
    connect(_process.get(), &QProcess::readyReadStandardOutput, this, &DrawingClient::readAnswers);
    connect(_process.get(), QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            [this](int code, QProcess::ExitStatus status) {
                const bool isCrash =
                    status == QProcess::CrashExit || code != 0; // some builds catch the signal
                giveUp(isCrash ? tr("its driver crashed") : tr("it ended"));
            });
    connect(_process.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            giveUp(tr("%1 cannot be started").arg(_process->program()));
    });
    _process->setProcessChannelMode(QProcess::ForwardedErrorChannel); // what drivers have to say
    const QString path = program().isEmpty() ? QCoreApplication::applicationFilePath() : program();
    _process->start(path, {QStringLiteral("--draw-into"), QString::number(Descriptor)});
    _patience.start();
}

void DrawingClient::giveUp(const QString& why) {
    _patience.stop();
    _driver.clear();
    _isDrawing = false;
    if (_process != nullptr) {
        _process->disconnect(this);
        _process->kill();
        _process->waitForFinished(1000);
        _process.release()->deleteLater(); // it may be what is calling
    }
    emit gone(why);
}

void DrawingClient::send(SpaceMessage kind, const QByteArray& bytes) {
    const auto length = static_cast<quint32>(bytes.size());
    _process->write(reinterpret_cast<const char*>(&length), sizeof length);
    _process->write(reinterpret_cast<const char*>(&kind), sizeof kind);
    _process->write(bytes);
}

void DrawingClient::sendScene(const SpaceScene& scene) {
    if (_driver.isEmpty())
        return;
    if (scene.bytes() > MostBytes)
        return giveUp(tr("the scene is too large for it"));
    send(SpaceMessage::Scene, bytesOf(scene));
}

void DrawingClient::draw(SpaceFrame frame) {
    if (!isFree() || frame.size.isEmpty())
        return;
    if (!_pictures.makeRoom(frame.size))
        return giveUp(tr("there is no memory for pictures"));
    _place = (_place + 1) % SharedPictures::Places;
    frame.place = _place;
    _isDrawing = true;
    send(SpaceMessage::Frame, bytesOf(frame));
    _patience.start();
}

void DrawingClient::readAnswers() {
    while (_process != nullptr && _process->canReadLine())
        answer(_process->readLine().trimmed());
}

void DrawingClient::answer(const QByteArray& line) {
    const QList<QByteArray> words = line.split(' ');
    if (words[0] == "ready") {
        _patience.stop();
        _driver = QString::fromUtf8(line.mid(6));
        emit ready();
    } else if (words[0] == "without") {
        giveUp(tr("there is no OpenGL 3.2"));
    } else if (words[0] == "failed") {
        giveUp(tr("its driver does not draw"));
    } else if (words[0] == "drawn" && words.size() == 4) {
        _patience.stop();
        _isDrawing = false;
        const QImage picture = _pictures.picture(words[1].toUInt(), {words[2].toInt(), words[3].toInt()});
        emit drawn(picture);
    }
}

} // namespace ka::studio
