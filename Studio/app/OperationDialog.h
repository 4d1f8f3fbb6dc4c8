#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QTimer>
#include <functional>
#include <kaMotion/Listener.h>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QLabel;

namespace ka::studio {

/// Asks for the numbers of an operation and shows, as they change, what would come of it.
class OperationDialog : public QDialog, private ka::motion::Listener {
    Q_OBJECT

  public:
    /// @param explanation  a line or two of what the operation does.
    OperationDialog(const QString& title, const QString& explanation, QWidget* parent = nullptr);

    // Fields; `name` is the object name.
    QDoubleSpinBox* addNumber(const char* name, const QString& label, const QString& tip, double value,
                              double least, double most, int decimals);
    QCheckBox* addSwitch(const char* name, const QString& label, const QString& tip);
    QComboBox* addChoice(const char* name, const QString& label, const QString& tip,
                         const QStringList& choices);

    /// Works out what would come of the fields as they are, and gives one line for the user. It is asked again
    /// whenever a field changes, and given up for that by the listener, while the dialog goes on taking input.
    using Estimate = std::function<QString(ka::motion::Listener&)>;
    void setEstimate(const Estimate& estimate);
    QString estimated() const; ///< The line that is shown.

    void done(int result) override;

  private:
    bool progress(const std::string& what, std::size_t done, std::size_t total) override;
    void refresh();
    void look();

    QFormLayout* _form;
    QLabel* _outcome;
    Estimate _estimate;
    QTimer _timer;
    QElapsedTimer _sinceEvents;
    bool _isEstimating = false, _isStale = false, _isOver = false;
};

} // namespace ka::studio
