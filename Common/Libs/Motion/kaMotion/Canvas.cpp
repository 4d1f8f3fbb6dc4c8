#include <QBuffer>
#include <QGuiApplication>
#include <cmath>
#include <cstdio>
#include <kaMotion/Canvas.h>

namespace ka::motion {

namespace {

/// The drawing library's remarks about its surroundings mean nothing to our user.
void passOnFailures(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(message));
}

} // namespace

void startDrawing() {
    if (QCoreApplication::instance() != nullptr)
        return;
    // Pictures go to files only, so that a display that is there but unreachable must not stop us.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(passOnFailures);
    static char name[] = "ka-anim";
    static char* arguments[] = {name, nullptr};
    static int count = 1;
    // Never taken down: at the process's end the library's platform plugin is gone before the application
    // would be.
    static const QGuiApplication* const application = new QGuiApplication(count, arguments);
    static_cast<void>(application);
}

QFont pictureFont(int pixels, bool bold) {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(pixels);
    font.setBold(bold);
    font.setStyleHint(QFont::SansSerif);
    return font;
}

QColor distinctColor(std::size_t index) {
    static const QRgb colors[] = {0x0072B2, 0xD55E00, 0x009E73, 0xCC79A7,
                                  0x56B4E9, 0xE69F00, 0x6A3D9A, 0x444444};
    return QColor::fromRgb(colors[index % (sizeof colors / sizeof *colors)]);
}

std::string pngBytes(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

std::vector<double> niceTicks(double low, double high, int count) {
    std::vector<double> ticks;
    const double span = high - low;
    if (!(span > 0.0) || !std::isfinite(span))
        return {low};
    const double rough = span / std::max(count, 1);
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    double step = power * 10.0;
    for (const double factor : {1.0, 2.0, 5.0})
        if (power * factor >= rough * 0.999) {
            step = power * factor;
            break;
        }
    const double first = std::ceil(low / step - 1e-9), last = std::floor(high / step + 1e-9);
    for (double i = first; i <= last && ticks.size() < 1000; ++i)
        ticks.push_back(i * step);
    return ticks;
}

} // namespace ka::motion
