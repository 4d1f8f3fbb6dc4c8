#include "ConsolePanel.h"

#include "ConsoleInput.h"
#include "WholeEdit.h"
#include "document/Session.h"
#include "playback/Transport.h"
#include "timebased/IdSelection.h"
#include "timebased/PlayHead.h"
#include "views/CurveEditor.h"

#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

namespace ka::studio {

namespace {

constexpr int MostLines = 10000; ///< of output that are kept

/// The first line of a command, short enough for a menu.
QString nameOf(const QString& source) {
    const QString line = source.trimmed().section(QLatin1Char('\n'), 0, 0);
    return line.size() > 40 ? line.left(39) + QChar(0x2026) : line;
}

QString commonStart(const QStringList& words) {
    QString start = words.first();
    for (const QString& word : words)
        while (!word.startsWith(start))
            start.chop(1);
    return start;
}

} // namespace

ConsolePanel::ConsolePanel(const ConsoleParts& parts, QWidget* parent) : QWidget(parent), _parts(parts) {
    setObjectName(QStringLiteral("pythonConsole"));
    _output = new QPlainTextEdit(this);
    _output->setObjectName(QStringLiteral("pythonOutput"));
    _output->setReadOnly(true);
    _output->setUndoRedoEnabled(false);
    _output->setMaximumBlockCount(MostLines);
    _output->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    _input = new ConsoleInput(this);
    _input->setObjectName(QStringLiteral("pythonInput"));
    _input->setMaximumHeight(_input->sizeHint().height());
    _stop = new QToolButton(this);
    _stop->setObjectName(QStringLiteral("pythonStop"));
    _stop->setText(tr("Stop"));
    _stop->setToolTip(
        tr("Interrupt the command that runs (Esc); what it has done so far is one step to undo"));
    _stop->setEnabled(false);
    auto* line = new QHBoxLayout();
    line->addWidget(_input, 1);
    line->addWidget(_stop);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(_output, 1);
    layout->addLayout(line);
    connect(_input, &ConsoleInput::sent, this, &ConsolePanel::run);
    connect(_input, &ConsoleInput::completionWanted, this, &ConsolePanel::complete);
    connect(_input, &ConsoleInput::cleared, _output, &QPlainTextEdit::clear);
    connect(_stop, &QToolButton::clicked, this, &ConsolePanel::stop);
    connect(&_parts.session, &Session::opened, this, &ConsolePanel::join);
    connect(&_parts.session, &Session::cameBack, this, &ConsolePanel::join);
    connect(&_parts.session, &Session::closing, this, [this] {
        if (_engine != nullptr)
            _engine->join(this, nullptr);
    });
    setFocusProxy(_input);
}

ConsolePanel::~ConsolePanel() {
    if (_engine != nullptr)
        _engine->leave(this);
}

void ConsolePanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    start();
}

bool ConsolePanel::start() {
    if (_engine != nullptr)
        return true;
    QString fault;
    PythonEngine* engine = PythonEngine::load(fault);
    if (engine != nullptr)
        fault = engine->start();
    if (!fault.isEmpty()) {
        _output->setPlainText(
            tr("There is no Python here: %1\n\nIt comes with the packages ka-studio-python and "
               "python3-kaanimation. Everything else of the studio works without it.")
                .arg(fault));
        _input->setEnabled(false);
        return false;
    }
    _engine = engine;
    join();
    write(tr("Python: project is what is open, studio the window, kaanimation the package; help(kaanimation) "
             "explains it.\n"),
          false);
    return true;
}

void ConsolePanel::join() {
    if (_engine != nullptr)
        _engine->join(this, _parts.session.isOpen() ? &_parts.session.project() : nullptr);
}

bool ConsolePanel::run(const QString& source) {
    if (isRunning() || source.trimmed().isEmpty() || !start())
        return false;
    if (!_engine->isComplete(source)) {
        if (_input->toPlainText() != source)
            _input->setPlainText(source);
        _input->moveCursor(QTextCursor::End);
        _input->insertPlainText(QStringLiteral("\n"));
        return false;
    }
    _input->remember(source);
    const QStringList lines = source.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i)
        write((i == 0 ? QStringLiteral(">>> ") : QStringLiteral("... ")) + lines.at(i) + QLatin1Char('\n'),
              false);
    return perform(tr("Python: %1").arg(nameOf(source)), [&] { return _engine->runCommand(source); });
}

bool ConsolePanel::runScript(const QString& path) {
    if (isRunning() || !start())
        return false;
    const QString name = QFileInfo(path).completeBaseName();
    write(tr("--- %1\n").arg(path), false);
    return perform(tr("Script: %1").arg(name), [&] { return _engine->runScript(path); });
}

bool ConsolePanel::perform(const QString& name, const std::function<bool()>& work) {
    // What was asked for before and the command that is typed next see the same state: that of the playhead.
    std::unique_ptr<WholeEdit> edit;
    if (_parts.session.isOpen())
        edit = std::make_unique<WholeEdit>(_parts.session);
    _stop->setEnabled(true);
    _interruption = std::make_unique<Interruption>(*_stop);
    const bool isDone = work();
    _interruption.reset();
    _stop->setEnabled(false);
    if (edit != nullptr) {
        _parts.transport.evaluate();
        edit->commit(name);
    }
    return isDone;
}

void ConsolePanel::stop() {
    if (_interruption != nullptr)
        _interruption->request();
}

void ConsolePanel::complete(const QString& line) {
    if (isRunning() || !start())
        return;
    const QStringList found = _engine->completions(line);
    if (found.isEmpty())
        return;
    _input->complete(commonStart(found));
    if (found.size() > 1)
        write(found.join(QStringLiteral("  ")) + QLatin1Char('\n'), false);
}

QString ConsolePanel::printed() const {
    return _output->toPlainText();
}

void ConsolePanel::write(const QString& text, bool isError) {
    QTextCursor cursor(_output->document());
    cursor.movePosition(QTextCursor::End);
    QTextCharFormat format;
    if (isError)
        format.setForeground(QColor(200, 60, 40));
    cursor.insertText(text, format);
    _output->setTextCursor(cursor);
    _output->ensureCursorVisible();
}

bool ConsolePanel::breathe() {
    return _interruption == nullptr || _interruption->goOn();
}

float ConsolePanel::frame() const {
    return _parts.head.frame();
}

void ConsolePanel::setFrame(float frame) {
    _parts.head.scrub(frame);
}

bool ConsolePanel::isPlaying() const {
    return _parts.transport.isPlaying();
}

void ConsolePanel::play(bool reverse) {
    _parts.transport.play(reverse);
}

void ConsolePanel::pause() {
    _parts.transport.pause();
}

std::vector<kaUID> ConsolePanel::selectedKeys() const {
    return _parts.keys.ids();
}

std::vector<kaUID> ConsolePanel::selectedBars() const {
    return _parts.bars.ids();
}

std::vector<kaUID> ConsolePanel::shownCurves() const {
    return _parts.curves.scene().curves();
}

void ConsolePanel::selectKeys(std::vector<kaUID> keys) {
    _parts.keys.select(keys, SelectBy::Replacing);
}

void ConsolePanel::selectBars(std::vector<kaUID> bars) {
    _parts.bars.select(bars, SelectBy::Replacing);
}

} // namespace ka::studio
