#pragma once

#include "Document.h"
#include "LongWork.h"

#include <QDateTime>
#include <QStringList>
#include <memory>

namespace ka::motion {
class Project;
struct ReadModel;
} // namespace ka::motion

namespace ka::studio {

/// Files that belong together, as absolute paths; empty where there is none.
struct SessionFiles {
    QString scene;     ///< .osg
    QString animation; ///< .xml
    /// What users know it by where that is neither of the two: the model that was imported, or the files that
    /// a recovered session had.
    QString source;

    QString shownName() const; ///< Of the file that gives the whole its name; empty without any.
};

/// What is open, as files: opening, saving, and what was said on the way.
class Session : public QObject {
    Q_OBJECT

  public:
    explicit Session(QObject* parent = nullptr);
    ~Session() override;

    Document& document() { return _document; }
    LongWork& work() { return _work; } ///< What takes long: opening, saving, operations on many keys.
    bool isOpen() const { return _project != nullptr; }
    const ka::motion::Project& project() const { return *_project; } ///< Only while something is open.
    const SessionFiles& files() const { return _files; }
    /// Whether there is anything that no file of the session holds.
    bool isModified() const { return _isForeign || !_document.history().isClean(); }
    /// What was left out or found when it was opened, a line each.
    const QStringList& report() const { return _report; }
    void addToReport(const QStringList& lines) { _report += lines; }

    /// Opens a scene with its animation, a scene or a document, as long work that can be given up.
    /// @param isForeign  the files are not the user's own (a recovery): there is something to save, and
    ///                   saving asks where to.
    /// @param report  what is to be told besides.
    /// @return an empty text, or what went wrong; a line of its own kind for what was given up
    ///         (`LongWork::isGivenUp`). Then what was open is there again, ids, history and all.
    QString open(const SessionFiles& files, bool isForeign = false, const QStringList& report = {});
    /// The same for a model that another process has read. It is nobody's own file: saving asks where to.
    QString openModel(ka::motion::ReadModel model, const QString& file, const QStringList& report = {});

    /// Whether `save` knows where to.
    bool hasOwnFiles() const { return isOpen() && !_isForeign; }
    /// Whether a file of the session is another than the one that was opened or saved last.
    bool isChangedOnDisk() const;
    /// Writes everything to files, which become the session's own. @return as `open` does.
    QString saveTo(const SessionFiles& files);

    /// The files that go with a name chosen for saving: a scene with its document beside it, or a document.
    static SessionFiles filesFor(const QString& chosen);
    /// The files that go with one that is to be opened: a scene takes the document of its name along.
    static SessionFiles filesOf(const QString& path);

  signals:
    void closing(); ///< What is open goes now.
    void opened();
    void cameBack(); ///< After `opened` could not come about: what was open is there again.
    void saved();

  private:
    using MakeProject = std::function<std::unique_ptr<ka::motion::Project>()>;
    struct Opening;
    class Saving;
    struct Stamp {
        QDateTime time;
        qint64 size = -1;
    };
    static Stamp stampOf(const QString& path);
    QString exchange(const Opening& opening, const MakeProject& make);
    QString exchangeProject(const MakeProject& make);
    void noteStamps();

    Document _document;
    LongWork _work;
    std::unique_ptr<ka::motion::Project> _project;
    SessionFiles _files;
    bool _isForeign = false;
    QStringList _report;
    Stamp _sceneStamp, _animationStamp;
};

} // namespace ka::studio
