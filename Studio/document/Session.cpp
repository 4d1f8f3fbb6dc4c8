#include "Session.h"

#include <OpenSG/OSGNode.h>
#include <QFileInfo>
#include <kaAnimationManager.h>
#include <kaMotion/Failure.h>
#include <kaMotion/ModelReader.h>
#include <kaMotion/Project.h>
#include <kaMotion/Saving.h>

namespace ka::studio {

namespace {

std::string utf8(const QString& text) {
    return text.toUtf8().toStdString();
}

} // namespace

/// What the session is to be of.
struct Session::Opening {
    SessionFiles files;
    bool isForeign;
    QStringList report;
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
    emit closing();
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

QString Session::open(const SessionFiles& files, bool isForeign, const QStringList& report) {
    return exchange({files, isForeign, report}, [this, &files] {
        ka::motion::ProjectFiles wanted;
        wanted.file = utf8(files.scene.isEmpty() ? files.animation : files.scene);
        wanted.animation = files.scene.isEmpty() ? std::string() : utf8(files.animation);
        return std::make_unique<ka::motion::Project>(wanted, _work);
    });
}

QString Session::openModel(ka::motion::ReadModel model, const QString& file, const QStringList& report) {
    return exchange({{{}, {}, file}, true, report}, [this, &model, &file] {
        ka::motion::ProjectFiles wanted;
        wanted.file = utf8(file);
        return std::make_unique<ka::motion::Project>(std::move(model), wanted, _work);
    });
}

QString Session::exchange(const Opening& opening, const MakeProject& make) {
    if (_work.isRunning())
        return tr("Something else is still going on.");
    const LongWork::Run run(_work, LongWork::Ending::Throw);
    const QString fault = exchangeProject(make);
    if (!fault.isEmpty())
        return fault;
    _document.history().clear();
    _files = opening.files;
    _isForeign = opening.isForeign;
    _report = opening.report + _work.notes();
    for (const auto* lines : {&_project->report().notes, &_project->report().faults})
        for (const std::string& line : *lines)
            _report.append(QString::fromStdString(line));
    noteStamps();
    _document.announceAll();
    emit opened();
    return fault;
}

/// There is one registry: the former project goes before the next comes, and comes back where that fails.
QString Session::exchangeProject(const MakeProject& make) {
    Snapshot former;
    const auto step = [this, &former](const char* what) {
        return [this, &former, what](std::size_t done) { _work.progress(what, done, former.size()); };
    };
    osg::NodePtr root;
    std::unique_ptr<ka::motion::Project> made;
    std::string file;
    ka::motion::ImportReport report;
    double framesPerSecond = 0.0;
    QString fault;
    const auto comeBack = [&] {
        if (root == osg::NullFC)
            return;
        _work.holdOn();
        _project.reset();
        _project = std::make_unique<ka::motion::Project>(root, file, report, framesPerSecond);
        former.bringBack(step("bringing back what was open"));
        _document.announceAll();
        emit cameBack();
    };
    try {
        if (_project != nullptr) {
            emit closing();
            former = Snapshot::everything(_project->root(), step("keeping what is open"));
            root = _project->root();
            osg::addRefCP(root);
            file = _project->file();
            report = _project->report();
            framesPerSecond = _project->framesPerSecond();
            former.takeAway(nullptr);
            _project.reset();
            _document.announceAll();
        }
        made = make();
    } catch (const ka::motion::Failure& failure) {
        fault = QString::fromStdString(failure.what());
        comeBack();
    } catch (const LongWork::GivenUp&) {
        fault = tr("Opening was given up");
        comeBack();
    }
    if (made != nullptr)
        _project = std::move(made);
    if (root != osg::NullFC)
        osg::subRefCP(root);
    return fault;
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

/// Once the files are written there is nothing to give up.
class Session::Saving : public ka::motion::Listener {
  public:
    explicit Saving(LongWork& work) : _work(work) {}

    bool progress(const std::string& what, std::size_t done, std::size_t total) override {
        if (what == "checking") {
            _work.holdOn();
            _work.forget(); // a wish that came too late
        }
        return _work.progress(what, done, total);
    }
    void note(const std::string& line) override { _work.note(line); }

  private:
    LongWork& _work;
};

QString Session::saveTo(const SessionFiles& files) {
    if (!isOpen())
        return tr("Nothing is open.");
    if (_work.isRunning())
        return tr("Something else is still going on.");
    try {
        const ka::motion::SavedFiles names{utf8(files.scene), utf8(files.animation)};
        ka::motion::checkNames(names);
        const LongWork::Run run(_work, LongWork::Ending::Throw);
        Saving saving(_work);
        const std::vector<std::string> differences = ka::motion::save(_project->root(), names, saving);
        _report += _work.notes();
        for (const std::string& line : differences)
            _report.append(QString::fromStdString(line));
    } catch (const LongWork::GivenUp&) {
        return tr("Saving was given up");
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
