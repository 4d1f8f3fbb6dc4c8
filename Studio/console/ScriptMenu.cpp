#include "ScriptMenu.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QMenu>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QUrl>

namespace ka::studio {

namespace {

constexpr int MostLevels = 4;    ///< of folders: links may lead in a circle
constexpr int MostEntries = 200; ///< of a folder
constexpr qint64 Head = 4096;    ///< bytes in which a docstring begins

} // namespace

ScriptMenu::ScriptMenu(QMenu* menu, std::function<void(const QString&)> run)
    : QObject(menu), _menu(menu), _run(std::move(run)) {
    menu->setToolTipsVisible(true);
    connect(menu, &QMenu::aboutToShow, this, &ScriptMenu::fill);
    fill();
}

QString ScriptMenu::folder() {
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/scripts");
}

QString ScriptMenu::describe(const QString& path) {
    static const QRegularExpression docstring(
        QStringLiteral(R"(^(?:\s*#[^\n]*\n|\s*\n)*[rRuU]?("""|''')\s*(.+?)\s*(?:\1|\n))"),
        QRegularExpression::DotMatchesEverythingOption);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return docstring.match(QString::fromUtf8(file.read(Head))).captured(2);
}

void ScriptMenu::fill() {
    _menu->clear();
    fillFrom(folder(), _menu, 0);
    if (_menu->isEmpty())
        _menu->addAction(tr("No script is there yet"))->setEnabled(false);
    _menu->addSeparator();
    QAction* other = _menu->addAction(tr("&Run another..."));
    other->setObjectName(QStringLiteral("runScript"));
    connect(other, &QAction::triggered, this, [this] {
        const QString path = QFileDialog::getOpenFileName(_menu, tr("Run a script"), folder(),
                                                          tr("Python (*.py);;All files (*)"));
        if (!path.isEmpty())
            _run(path);
    });
    QAction* open = _menu->addAction(tr("&Open the folder of scripts"));
    open->setObjectName(QStringLiteral("openScripts"));
    connect(open, &QAction::triggered, this, [] {
        QDir().mkpath(folder());
        QDesktopServices::openUrl(QUrl::fromLocalFile(folder()));
    });
}

void ScriptMenu::fillFrom(const QString& folder, QMenu* menu, int depth) {
    const QDir directory(folder);
    if (depth < MostLevels)
        for (const QString& name :
             directory.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name).mid(0, MostEntries)) {
            if (name.startsWith(QLatin1Char('_')))
                continue; // __pycache__ and what is only imported
            auto* below = new QMenu(name, menu);
            below->setToolTipsVisible(true);
            fillFrom(directory.filePath(name), below, depth + 1);
            if (below->isEmpty())
                delete below;
            else
                menu->addMenu(below);
        }
    for (const QString& name :
         directory.entryList({QStringLiteral("*.py")}, QDir::Files, QDir::Name).mid(0, MostEntries)) {
        if (name.startsWith(QLatin1Char('_')))
            continue;
        const QString path = directory.filePath(name);
        QString label = QFileInfo(name).completeBaseName().replace(QLatin1Char('_'), QLatin1Char(' '));
        QAction* action = menu->addAction(label.replace(QLatin1Char('&'), QStringLiteral("&&")));
        action->setObjectName(QStringLiteral("script:") + QDir(ScriptMenu::folder()).relativeFilePath(path));
        action->setToolTip(describe(path));
        action->setStatusTip(action->toolTip());
        connect(action, &QAction::triggered, this, [this, path] { _run(path); });
    }
}

} // namespace ka::studio
