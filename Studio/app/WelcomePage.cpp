#include "WelcomePage.h"

#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace ka::studio {

namespace {

constexpr int MostRecent = 4;

QLabel* addText(QVBoxLayout& layout, const QString& text, double size) {
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * size);
    label->setFont(font);
    layout.addWidget(label);
    return label;
}

} // namespace

WelcomePage::WelcomePage(QWidget* parent) : QWidget(parent), _recent(new QVBoxLayout) {
    setObjectName(QStringLiteral("welcome"));
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 16, 40, 16);
    layout->addStretch(1);
    addText(*layout, tr("Begin with"), 1.6);
    auto* buttons = new QHBoxLayout;
    auto* sample = new QPushButton(tr("Open the sample motion"), this);
    sample->setObjectName(QStringLiteral("welcomeSample"));
    sample->setToolTip(tr("A figure that walks, to try things with"));
    auto* open = new QPushButton(tr("Open a file..."), this);
    open->setToolTip(tr("A scene, a document or a model; it can be dropped here as well"));
    buttons->addWidget(sample);
    buttons->addWidget(open);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    layout->addLayout(_recent);
    layout->addStretch(2);
    connect(sample, &QPushButton::clicked, this, &WelcomePage::sampleWanted);
    connect(open, &QPushButton::clicked, this, &WelcomePage::openWanted);
}

void WelcomePage::showRecent(const QStringList& paths) {
    while (QLayoutItem* item = _recent->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (const QString& path : paths.mid(0, MostRecent)) {
        auto* link = new QLabel(
            QStringLiteral("<a href=\"file\">%1</a>").arg(QFileInfo(path).fileName().toHtmlEscaped()), this);
        link->setToolTip(path);
        link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
        connect(link, &QLabel::linkActivated, this, [this, path] { emit fileWanted(path); });
        _recent->addWidget(link);
    }
}

} // namespace ka::studio
