#pragma once

#include "TemporaryFolder.h"
#include "app/MainWindow.h"

#include <QTest>
#include <gtest/gtest.h>
#include <memory>

class kaControlPoint2D;

namespace ka::studio::testing {

/// A window, shown on a display, with settings of its own and no user to ask: its questions are answered by
/// what the fixture says, and its messages are kept.
class WindowFixture : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    MainWindow& window() { return *_window; }
    /// Opens a figure of two joints that sway for 100 frames, with a key every ten, and waits until it is
    /// shown.
    void openFigure();
    QString figureScene(); ///< The figure's scene, with its document beside it.
    std::string folder() const { return _folder.path().string(); }
    std::string put(const std::string& name, const std::string& content) {
        return _folder.put(name, content);
    }

    kaUID curve(const char* block, const char* attribute); ///< 0 when there is none.
    kaControlPoint2D* key(kaUID curve, float frame);

    /// Mouse on a view, from place to place, in steps as a hand makes them.
    static void drag(QWidget& view, const QPoint& from, const QPoint& to,
                     Qt::MouseButton button = Qt::LeftButton,
                     Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void trigger(const char* action);
    /// Keeps a picture of the window, where KA_STUDIO_PICTURES names a folder; KA_STUDIO_DARK asks for a dark palette.
    void picture(const QString& name) { picture(*_window, name); }
    static void picture(QWidget& widget, const QString& name);

    void setAnswers() { _window->setAnswers(_answers); }

    MainWindow::Answers _answers; ///< `setAnswers` gives them to the window.
    QStringList _messages;
    int _unsaved = 0;
    QString _saveName;
    bool _overwrite = false;

  private:
    ka_test::TemporaryFolder _folder;
    std::unique_ptr<MainWindow> _window;
};

} // namespace ka::studio::testing
