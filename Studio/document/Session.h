#pragma once

#include "Document.h"

#include <QDateTime>
#include <QStringList>
#include <memory>

namespace ka::motion {
class Project;
class Listener;
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
    bool isOpen() const { return _project != nullptr; }
    const ka::motion::Project& project() const { return *_project; } ///< Only while something is open.
    const SessionFiles& files() const { return _files; }
    /// Whether there is anything that no file of the session holds.
    bool isModified() const { return _isForeign || !_document.history().isClean(); }
    /// What was left out or found when it was opened, a line each.
    const QStringList& report() const { return _report; }
    void addToReport(const QStringList& lines) { _report += lines; }

    /// Opens a scene with its animation, a scene or a document. What was open goes only when this has been
    /// seen to be readable.
    /// @param isForeign  the files are not the user's own (an import, a recovery): there is something to
    /// save,
    ///                   and saving asks where to.
    /// @param report  what is to be told besides.
    /// @return an empty text, or what went wrong, with what was open still there.
    /// @param isSeen  the files have just been written by a program of ours, and need no look beforehand.
    QString open(const SessionFiles& files, bool isForeign = false, const QStringList& report = {},
                 bool isSeen = false);

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
    void opened();
    void saved();
    void progress(const QString& what, int percent);

  private:
    class Progress;
    struct Stamp {
        QDateTime time;
        qint64 size = -1;
    };
    static Stamp stampOf(const QString& path);
    static QString faultOf(const SessionFiles& files);
    void noteStamps();

    Document _document;
    std::unique_ptr<ka::motion::Project> _project;
    SessionFiles _files;
    bool _isForeign = false;
    QStringList _report;
    Stamp _sceneStamp, _animationStamp;
};

} // namespace ka::studio
