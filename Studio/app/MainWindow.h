#pragma once

#include "BusyGuard.h"
#include "Importer.h"
#include "Recovery.h"
#include "document/CurveOperations.h"
#include "document/KeyEdits.h"
#include "document/Session.h"
#include "playback/Transport.h"
#include "timebased/IdSelection.h"
#include "timebased/TimeAxis.h"
#include "views/CurveEditor.h"

#include <QMainWindow>
#include <functional>

class QLabel;
class QStackedWidget;
class QProgressBar;
class QToolButton;

namespace ka::studio {

class ChannelTree;
class ClipTimeline;
class ConsolePanel;
class DopeSheet;
class KeyFields;
class Outliner;
class Properties;
class OperationDialog;
enum class TransportSign;
class SceneView;
class WelcomePage;

/// The studio's window: the views on what is open, and every action in a menu.
class MainWindow : public QMainWindow {
    Q_OBJECT

  public:
    MainWindow();
    ~MainWindow() override;

    Session& session() { return _session; }
    Transport& transport() { return _transport; }
    CurveEditor& curveEditor() { return *_curves; }
    ChannelTree& channels() { return *_channels; }
    KeyFields& keyFields() { return *_keyFields; }
    Outliner& outliner() { return *_outliner; }
    Properties& properties() { return *_properties; }
    SceneView& sceneView() { return *_scene; }
    ClipTimeline& timeline() { return *_timeline; }
    DopeSheet& dopeSheet() { return *_dopes; }
    IdSelection& barSelection() { return _bars; }
    IdSelection& keySelection() { return _keys; }
    TimeAxis& axis() { return _axis; }
    PlayHead& head() { return _head; }
    Importer& importer() { return _importer; }
    Recovery& recovery() { return _recovery; }
    ConsolePanel& console() { return *_console; }

    /// Opens what a path names: a scene, a document, or a model, which is imported in the background. What
    /// could not be opened is told to the user, and what was open stays.
    void openPath(const QString& path);
    bool save();       ///< @return false where nothing was saved, the user's wish included.
    bool exportFile(); ///< The same, as another program reads it; asks where to.
    void openSample(); ///< A small motion to try things with.
    bool saveAs();     ///< The same; asks where to.
    /// Offers what a run that crashed has kept. @return whether that was opened.
    bool offerRecovery();
    bool mayClose();                            ///< Asks what to do with changes; @return false to stay.
    QAction* action(const QString& name) const; ///< By its object name; null when there is none.

    /// Stands in for the questions that the window asks, for runs without a user.
    struct Answers {
        std::function<QString()> saveName;                  ///< Where to save; an empty text for nowhere.
        std::function<int()> unsavedChanges;                ///< A `QMessageBox::StandardButton`.
        std::function<void(const QString&)> message;        ///< Instead of a box with this text.
        std::function<QString(const QString& former)> name; ///< Another name; an empty text for none.
        std::function<bool()> recover;                      ///< Whether what was kept is opened.
        std::function<bool(OperationDialog&)> dialog;       ///< Whether an operation is carried out.
        std::function<bool()> overwrite; ///< Whether a file that has changed meanwhile is written over.
    };
    void setAnswers(const Answers& answers) { _answers = answers; }

  protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    QAction* addAction(QMenu* menu, const char* name, const QString& text, const QKeySequence& keys,
                       const QString& tip, const std::function<void()>& run);
    void buildViews();
    void buildFileMenu();
    void buildEditMenu();
    void buildCurveMenu();
    void buildOperationMenu(QMenu* menu);
    void buildViewMenu();
    std::vector<kaUID> chosenCurves(bool takesWholeRotations = false) const;
    bool isWished(OperationDialog& dialog);
    void operate(const QString& name, const std::vector<kaUID>& curves, const CurveOperation& operation);
    void reduceKeys();
    void smoothCurves();
    void bakeCurves();
    void removePeaks();
    void buildTransport();
    void buildSceneMenu();
    void addCameras(QMenu* menu);
    void addDrawings(QMenu* menu);
    void buildClipMenu();
    void addFlag(QMenu* menu, const char* name, const QString& text, const QString& tip, int flag);
    void onPicked(unsigned int node);
    void forBars(const std::function<void(kaUID)>& run, const QString& name);
    void playOnly(kaUID object);
    void buildConsole();
    void buildHelpMenu();
    void fillRecent(QMenu* menu);
    void rememberRecent(const QString& path);
    void openFiles(const SessionFiles& files, bool isForeign, const QStringList& report);
    void openRead(const QString& model);
    void rememberOpened();
    void opening(const std::function<QString()>& open);
    void onOpened();
    void showEverything();
    void showMiddle();
    void onWorkStarted(bool canBeGivenUp);
    void onWorkEnded();
    void showCurves();
    void drawSigns();
    void goToKey(bool next);
    void copyKeysOfSelection();
    void pasteKeysAtHead(const QString& name);
    void refreshTitle();
    void say(const QString& text);
    void tell(const QString& text);
    void showReport();
    void keepLayout();
    void restoreLayout();

    Session _session;
    TimeAxis _axis;
    PlayHead _head;
    IdSelection _keys, _bars;
    Transport _transport;
    Importer _importer;
    Recovery _recovery;
    CopiedKeys _copied;
    Answers _answers;

    QStackedWidget* _middle = nullptr; ///< What is open, else how to begin.
    WelcomePage* _welcome = nullptr;
    CurveEditor* _curves = nullptr;
    ChannelTree* _channels = nullptr;
    KeyFields* _keyFields = nullptr;
    Outliner* _outliner = nullptr;
    Properties* _properties = nullptr;
    SceneView* _scene = nullptr;
    ClipTimeline* _timeline = nullptr;
    DopeSheet* _dopes = nullptr;
    std::vector<std::pair<QAction*, TransportSign>> _signs; ///< of the transport's buttons
    ConsolePanel* _console = nullptr;
    QLabel* _hint = nullptr;
    QLabel* _rate = nullptr;
    QProgressBar* _progress = nullptr;
    QToolButton* _giveUp = nullptr;
    BusyGuard* _guard = nullptr;
    bool _hasLayout = false; ///< One of an earlier run, or the first one.
    QMenu* _viewMenu = nullptr;
};

} // namespace ka::studio
