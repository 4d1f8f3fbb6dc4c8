#include "DrawingProcess.h"

#include "SpaceRenderer.h"
#include "space/SharedPictures.h"

#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace ka::studio {

namespace {

void say(const QByteArray& line) {
    std::fputs((line + '\n').constData(), stdout);
    std::fflush(stdout);
}

bool readAll(char* to, qint64 count) {
    while (count > 0) {
        const ssize_t got = ::read(STDIN_FILENO, to, static_cast<std::size_t>(count));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        to += got;
        count -= got;
    }
    return true;
}

/// @return false at the end.
bool readMessage(SpaceMessage& kind, QByteArray& bytes) {
    quint32 length = 0;
    if (!readAll(reinterpret_cast<char*>(&length), sizeof length) ||
        !readAll(reinterpret_cast<char*>(&kind), sizeof kind))
        return false;
    bytes.resize(static_cast<int>(length));
    return readAll(bytes.data(), length);
}

void draw(SpaceRenderer& renderer, SharedPictures& pictures, const SpaceFrame& frame) {
    const QImage drawn = renderer.draw(frame).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QImage shared = pictures.picture(frame.place, frame.size);
    if (drawn.size() != frame.size || shared.isNull())
        return say("failed");
    for (int y = 0; y < drawn.height(); ++y)
        std::memcpy(shared.scanLine(y), drawn.constScanLine(y),
                    static_cast<std::size_t>(shared.bytesPerLine()));
    say("drawn " + QByteArray::number(frame.place) + ' ' + QByteArray::number(frame.size.width()) + ' ' +
        QByteArray::number(frame.size.height()));
}

} // namespace

int runDrawing(int descriptor) {
    const QString driver = SpaceRenderer::driver();
    if (driver.isEmpty()) {
        say("without");
        return 1;
    }
    SharedPictures pictures(descriptor);
    SpaceRenderer renderer;
    say("ready " + driver.toUtf8());
    SpaceMessage kind{};
    QByteArray bytes;
    while (readMessage(kind, bytes)) {
        QDataStream stream(bytes);
        if (kind == SpaceMessage::Scene) {
            SpaceScene scene;
            read(stream, scene);
            renderer.setScene(std::move(scene));
            continue;
        }
        SpaceFrame frame;
        read(stream, frame);
        draw(renderer, pictures, frame);
    }
    // The driver's own threads and handlers for the exit are not waited for: the window has gone.
    std::fflush(stdout);
    _exit(0);
}

} // namespace ka::studio
