#pragma once

#include <QObject>
#include <functional>

class QMenu;

namespace ka::studio {

/// A menu with an entry for every script (.py) of a folder, and a submenu for every folder in it. The first line
/// of a script's docstring is what the entry tells of it.
class ScriptMenu : public QObject {
    Q_OBJECT

  public:
    /// @param menu  filled whenever it is about to be shown.
    /// @param run  gets the path of the script that was chosen.
    ScriptMenu(QMenu* menu, std::function<void(const QString&)> run);

    /// Where users put their scripts; made on demand.
    static QString folder();
    /// Brings the entries up to date.
    void fill();

  private:
    void fillFrom(const QString& folder, QMenu* menu, int depth);
    static QString describe(const QString& path);

    QMenu* _menu;
    std::function<void(const QString&)> _run;
};

} // namespace ka::studio
