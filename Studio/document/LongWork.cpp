#include "LongWork.h"

#include <QCoreApplication>

namespace ka::studio {

LongWork::Run::Run(LongWork& work, Ending ending) : _work(work) {
    work._ending = ending;
    work._isRunning = true;
    work._isGivenUp = false;
    work._notes.clear();
    work._sinceEvents.start();
    emit work.started(ending != Ending::Never);
}

LongWork::Run::~Run() {
    _work._isRunning = false;
    emit _work.ended();
}

void LongWork::giveUp() {
    _isGivenUp = _isRunning && _ending != Ending::Never;
}

void LongWork::holdOn() {
    if (_ending == Ending::Never)
        return;
    _ending = Ending::Never;
    emit started(false);
}

bool LongWork::progress(const std::string& what, std::size_t done, std::size_t total) {
    if (!_isRunning || _sinceEvents.elapsed() < _interval)
        return !_isGivenUp;
    emit progressed(QString::fromStdString(what), total > 0 ? static_cast<int>(100 * done / total) : 0);
    QCoreApplication::processEvents();
    _sinceEvents.start();
    if (_isGivenUp && _ending == Ending::Throw)
        throw GivenUp();
    return !_isGivenUp;
}

} // namespace ka::studio
