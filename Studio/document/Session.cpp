#include "Session.h"

#include <OpenSG/OSGNode.h>
#include <QFileInfo>
#include <QXmlAttributes>
#include <kaAnimationManager.h>
#include <kaDocumentParser.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Project.h>
#include <kaMotion/Saving.h>
#include <kaMotion/SceneFiles.h>

namespace ka::studio {

namespace {

std::string utf8(const QString& text) {
    return text.toUtf8().toStdString();
}

/// Sees whether a document is well-formed, and builds nothing.
class Nobody : public kaDocumentParser::Visitor {
  public:
    void beginElement(int, int, const QString&, const QXmlAttributes&) override {}
    void text(const QString&) override {}
    void endElement(int) override {}
};

} // namespace

/// Hands the library's progress on, and keeps its notes.
class Session::Progress : public ka::motion::Listener {
  public:
    Progress(Session& session, QStringList& notes) : _session(session), _notes(notes) {}

    bool progress(const std::string& what, std::size_t done, std::size_t total) override {
        const int percent = total > 0 ? static_cast<int>(100 * done / total) : 0;
        if (percent != _percent)
            emit _session.progress(QString::fromStdString(what), percent);
        _percent = percent;
        return true;
    }
    void note(const std::string& line) override { _notes.append(QString::fromStdString(line)); }

  private:
    Session& _session;
    QStringList& _notes;
    int _percent = -1;
};

QString SessionFiles::shownName() const {
    for (const QString& path : {source, scene, animation})
        if (!path.isEmpty())
            return QFileInfo(path).fileName();
    return {};
}

Session::Session(QObject* parent) : QObject(parent) {
    ka::motion::startScene();
    kaAnimationManager::the()->init(nullptr);
    if (!kaAnimationManager::the()->isAnimationAttribute("translation"))
        kaAnimationManager::the()->addAnimationAttributes("translation,scale");
}

Session::~Session() {
    _document.history().clear();
}

SessionFiles Session::filesOf(const QString& path) {
    const QFileInfo file(path);
    SessionFiles files;
    if (file.suffix().toLower() == QLatin1String("osg")) {
        files.scene = file.absoluteFilePath();
        const QFileInfo beside(file.absolutePath() + QLatin1Char('/') + file.completeBaseName() +
                               QLatin1String(".xml"));
        if (beside.exists())
            files.animation = beside.absoluteFilePath();
    } else {
        files.animation = file.absoluteFilePath();
    }
    return files;
}

SessionFiles Session::filesFor(const QString& chosen) {
    const QFileInfo file(chosen);
    const QString suffix = file.suffix().toLower();
    SessionFiles files;
    if (suffix == QLatin1String("xml")) {
        files.animation = file.absoluteFilePath();
        return files;
    }
    const QString base = suffix == QLatin1String("osg")
                             ? file.absolutePath() + QLatin1Char('/') + file.completeBaseName()
                             : file.absoluteFilePath();
    files.scene = base + QLatin1String(".osg");
    files.animation = base + QLatin1String(".xml");
    return files;
}

/// Reads the files without building anything of them, so that what is open need not go for what cannot come.
QString Session::faultOf(const SessionFiles& files) {
    try {
        if (!files.scene.isEmpty()) {
            ka::motion::ImportReport report;
            osg::NodePtr root = ka::motion::readScene(utf8(files.scene), report);
            osg::addRefCP(root);
            osg::subRefCP(root); // the last one frees it
        }
    } catch (const ka::motion::Failure& failure) {
        return QString::fromStdString(failure.what());
    }
    kaDocumentFault fault;
    Nobody nobody;
    if (files.animation.isEmpty() ||
        kaDocumentParser::visitFile(files.animation, kaAnimationManager::getMaximumFileSize(), nobody,
                                    &fault))
        return {};
    return tr("%1, line %2: %3")
        .arg(files.animation)
        .arg(fault.line)
        .arg(QString::fromStdString(fault.message));
}

QString Session::open(const SessionFiles& files, bool isForeign, const QStringList& report, bool isSeen) {
    const QString fault = isSeen ? QString() : faultOf(files);
    if (!fault.isEmpty())
        return fault;
    _document.history().clear();
    _project.reset(); // there is one registry: the former goes before the next comes
    QStringList notes = report;
    QString failed;
    try {
        Progress progress(*this, notes);
        ka::motion::ProjectFiles wanted;
        wanted.file = utf8(files.scene.isEmpty() ? files.animation : files.scene);
        wanted.animation = files.scene.isEmpty() ? std::string() : utf8(files.animation);
        _project = std::make_unique<ka::motion::Project>(wanted, progress);
        for (const std::string& note : _project->report().notes)
            notes.append(QString::fromStdString(note));
    } catch (const ka::motion::Failure& failure) {
        failed = QString::fromStdString(failure.what());
    }
    _files = _project != nullptr ? files : SessionFiles();
    _isForeign = isForeign && _project != nullptr;
    _report = notes;
    noteStamps();
    _document.announceAll();
    emit opened();
    return failed;
}

Session::Stamp Session::stampOf(const QString& path) {
    const QFileInfo file(path);
    return file.exists() ? Stamp{file.lastModified(), file.size()} : Stamp();
}

void Session::noteStamps() {
    _sceneStamp = stampOf(_files.scene);
    _animationStamp = stampOf(_files.animation);
}

bool Session::isChangedOnDisk() const {
    const auto differs = [](const QString& path, const Stamp& known) {
        const Stamp now = stampOf(path);
        return !path.isEmpty() && (now.time != known.time || now.size != known.size);
    };
    return hasOwnFiles() &&
           (differs(_files.scene, _sceneStamp) || differs(_files.animation, _animationStamp));
}

QString Session::saveTo(const SessionFiles& files) {
    if (!isOpen())
        return tr("Nothing is open.");
    try {
        const ka::motion::SavedFiles names{utf8(files.scene), utf8(files.animation)};
        ka::motion::checkNames(names);
        Progress progress(*this, _report);
        for (const std::string& line : ka::motion::save(_project->root(), names, progress))
            _report.append(QString::fromStdString(line));
    } catch (const ka::motion::Failure& failure) {
        return QString::fromStdString(failure.what());
    }
    _files = files;
    _isForeign = false;
    noteStamps();
    _document.history().setClean();
    emit saved();
    return {};
}

} // namespace ka::studio
