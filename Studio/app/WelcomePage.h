#pragma once

#include <QWidget>

class QVBoxLayout;

namespace ka::studio {

/// What a window without anything open shows in its middle: a motion to try things with and the files of late.
class WelcomePage : public QWidget {
    Q_OBJECT

  public:
    explicit WelcomePage(QWidget* parent = nullptr);

    void showRecent(const QStringList& paths);

  signals:
    void sampleWanted();
    void openWanted();
    void fileWanted(const QString& path);

  private:
    QVBoxLayout* _recent;
};

} // namespace ka::studio
