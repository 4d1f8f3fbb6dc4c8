#include "MainWindow.h"
#include "console/ConsolePanel.h"
#include "console/ScriptMenu.h"

#include <QDockWidget>
#include <QMenuBar>

namespace ka::studio {

namespace {

constexpr int ConsoleHeight = 260; ///< pixels that it is given when it is first shown

} // namespace

void MainWindow::buildConsole() {
    _console = new ConsolePanel({_session, _transport, _head, _keys, _bars, *_curves}, this);
    auto* dock = new QDockWidget(tr("Python"), this);
    dock->setObjectName(QStringLiteral("pythonDock"));
    dock->setWidget(_console);
    addDockWidget(Qt::BottomDockWidgetArea, dock);
    if (auto* clips = findChild<QDockWidget*>(QStringLiteral("clipsDock")))
        tabifyDockWidget(clips, dock);
    dock->hide();
    const auto show = [this, dock] {
        dock->show();
        dock->raise();
        if (dock->height() < ConsoleHeight && !dock->isFloating())
            resizeDocks({dock}, {ConsoleHeight}, Qt::Vertical);
    };
    addAction(_viewMenu, "python", tr("P&ython"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P),
              tr("Commands on what is open"), [this, dock, show] {
                  if (dock->isVisible() && _console->isAncestorOf(focusWidget())) {
                      dock->hide();
                      return;
                  }
                  show();
                  _console->setFocus();
              });
    const auto run = [this, show](const QString& path) {
        show();
        _console->runScript(path);
    };
    new ScriptMenu(menuBar()->addMenu(tr("Scr&ipts")), run);
}

} // namespace ka::studio
