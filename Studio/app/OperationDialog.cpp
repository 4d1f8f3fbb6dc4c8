#include "OperationDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace ka::studio {

namespace {

constexpr int Pause = 120;   ///< Milliseconds that fields rest before the outcome is worked out.
constexpr qint64 Blink = 30; ///< Milliseconds between looks at the window's events meanwhile.

} // namespace

OperationDialog::OperationDialog(const QString& title, const QString& explanation, QWidget* parent)
    : QDialog(parent), _form(new QFormLayout), _outcome(new QLabel(this)) {
    setWindowTitle(title);
    auto* text = new QLabel(explanation, this);
    text->setWordWrap(true);
    _outcome->setWordWrap(true);
    _outcome->setMinimumHeight(3 * fontMetrics().lineSpacing());
    _outcome->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    _outcome->setObjectName(QStringLiteral("outcome"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addLayout(_form);
    layout->addWidget(_outcome, 1);
    layout->addWidget(buttons);
    resize(460, sizeHint().height());
    _timer.setSingleShot(true);
    _timer.setInterval(Pause);
    connect(&_timer, &QTimer::timeout, this, &OperationDialog::look);
}

QDoubleSpinBox* OperationDialog::addNumber(const char* name, const QString& label, const QString& tip,
                                           double value, double least, double most, int decimals) {
    auto* box = new QDoubleSpinBox(this);
    box->setObjectName(QString::fromLatin1(name));
    box->setToolTip(tip);
    box->setDecimals(decimals);
    box->setRange(least, most);
    box->setValue(value);
    box->setStepType(QAbstractSpinBox::AdaptiveDecimalStepType);
    connect(box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, &OperationDialog::refresh);
    _form->addRow(label, box);
    return box;
}

QCheckBox* OperationDialog::addSwitch(const char* name, const QString& label, const QString& tip) {
    auto* box = new QCheckBox(label, this);
    box->setObjectName(QString::fromLatin1(name));
    box->setToolTip(tip);
    connect(box, &QCheckBox::toggled, this, &OperationDialog::refresh);
    _form->addRow(box);
    return box;
}

QComboBox* OperationDialog::addChoice(const char* name, const QString& label, const QString& tip,
                                      const QStringList& choices) {
    auto* box = new QComboBox(this);
    box->setObjectName(QString::fromLatin1(name));
    box->setToolTip(tip);
    box->addItems(choices);
    connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &OperationDialog::refresh);
    _form->addRow(label, box);
    return box;
}

void OperationDialog::setEstimate(const Estimate& estimate) {
    _estimate = estimate;
    refresh();
}

QString OperationDialog::estimated() const {
    return _outcome->text();
}

void OperationDialog::refresh() {
    if (!_estimate)
        return;
    _isStale = true;
    _outcome->setText(tr("Working it out..."));
    _timer.start();
}

/// The work handles events now and then: a field may change in the middle of it, and the dialog may end.
void OperationDialog::look() {
    if (_isEstimating)
        return; // it is looked at again at its end
    _isEstimating = true;
    while (_isStale && !_isOver) {
        _isStale = false;
        _sinceEvents.start();
        const QString text = _estimate(*this);
        if (!_isStale)
            _outcome->setText(text);
    }
    _isEstimating = false;
}

bool OperationDialog::progress(const std::string& /*what*/, std::size_t /*done*/, std::size_t /*total*/) {
    if (_sinceEvents.elapsed() >= Blink) {
        QCoreApplication::processEvents();
        _sinceEvents.start();
    }
    return !_isStale && !_isOver;
}

void OperationDialog::done(int result) {
    _isOver = true;
    QDialog::done(result);
}

} // namespace ka::studio
