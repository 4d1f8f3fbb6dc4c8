#include "Recovery.h"

#include "document/Session.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <csignal>
#include <kaFileWriter.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Project.h>
#include <kaMotion/Saving.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ka::studio {

namespace {

constexpr int DefaultInterval =
    4000; // with the time of writing, well below the ten seconds that are promised
const char SceneName[] = "scene.osg", AnimationName[] = "scene.xml", SourceName[] = "source",
           LockName[] = "lock";

QString pathIn(const QString& folder, const char* name) {
    return folder + QLatin1Char('/') + QLatin1String(name);
}

/// In the child: every file as a whole or not at all, the name of the source last, which makes it complete.
void writeAll(const ka::motion::Project& project, const QString& folder, const QString& source) {
    try {
        const auto lines =
            ka::motion::save(project.root(), {pathIn(folder, SceneName).toUtf8().toStdString(),
                                              pathIn(folder, AnimationName).toUtf8().toStdString()});
        static_cast<void>(lines); // differences are told when the user saves
        kaFileWriter name(pathIn(folder, SourceName).toUtf8().toStdString());
        name.write(source.toUtf8().toStdString());
        name.commit();
    } catch (const std::exception&) {
        // A full disk: what was kept before stays.
    }
}

} // namespace

QString Recovery::root() {
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/recovery");
}

Recovery::Recovery(Session& session, QObject* parent) : QObject(parent), _session(session) {
    _folder = root() + QLatin1Char('/') + QString::number(QCoreApplication::applicationPid()) +
              QLatin1Char('-') + QString::number(QDateTime::currentMSecsSinceEpoch());
    _timer.setInterval(DefaultInterval);
    connect(&_timer, &QTimer::timeout, this, &Recovery::look);
    connect(&session, &Session::saved, this, &Recovery::forget);
    connect(&session, &Session::opened, this, &Recovery::forget);
    _timer.start();
}

Recovery::~Recovery() {
    forget();
}

bool Recovery::isWriting() {
    if (_writer > 0 && waitpid(_writer, nullptr, WNOHANG) != 0)
        _writer = 0;
    return _writer > 0;
}

void Recovery::look() {
    const int index = _session.document().history().index();
    if (isWriting() || !_session.isOpen() || !_session.isModified() || index == _keptIndex)
        return;
    if (_lock == nullptr) {
        if (!QDir().mkpath(_folder))
            return;
        _lock = std::make_unique<QLockFile>(pathIn(_folder, LockName));
        _lock->setStaleLockTime(0);
        _lock->tryLock(0);
    }
    const SessionFiles& files = _session.files();
    const QString source = !files.source.isEmpty() ? files.source
                           : files.scene.isEmpty() ? files.animation
                                                   : files.scene;
    _keptIndex = index;
    _hasKept = true;
    _writer = fork();
    if (_writer != 0)
        return;
    std::signal(SIGTERM, SIG_DFL);
    writeAll(_session.project(), _folder, source);
    _exit(0); // nothing of the window's is to be undone here
}

void Recovery::forget() {
    if (_writer > 0) {
        kill(_writer, SIGKILL);
        waitpid(_writer, nullptr, 0);
        _writer = 0;
    }
    _keptIndex = _session.document().history().index();
    _lock.reset();
    if (_hasKept) {
        QFile::remove(pathIn(_folder, SourceName)); // the first to go, so that half a folder is never offered
        QDir(_folder).removeRecursively();
    }
    _hasKept = false;
}

std::vector<Recovery::Kept> Recovery::leftBehind() {
    std::vector<Kept> all;
    for (const QString& name : QDir(root()).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString folder = root() + QLatin1Char('/') + name;
        QLockFile lock(pathIn(folder, LockName));
        lock.setStaleLockTime(0);
        if (!lock.tryLock(0))
            continue; // its run is alive
        QFile source(pathIn(folder, SourceName));
        const bool isWhole =
            QFile::exists(pathIn(folder, SceneName)) && QFile::exists(pathIn(folder, AnimationName));
        if (!isWhole || !source.open(QIODevice::ReadOnly)) {
            lock.unlock();
            QDir(folder).removeRecursively();
            continue;
        }
        all.push_back({folder, QString::fromUtf8(source.readAll()), pathIn(folder, SceneName),
                       pathIn(folder, AnimationName)});
    }
    return all;
}

void Recovery::remove(const Kept& kept) {
    QFile::remove(pathIn(kept.folder, SourceName));
    QDir(kept.folder).removeRecursively();
}

} // namespace ka::studio
