#include "SpaceBench.h"

#include "app/MainWindow.h"
#include "views/SceneView.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <ctime>
#include <kaAnimationController.h>
#include <kaAnimationManager.h>

namespace ka::studio {

namespace {

constexpr int Patience = 120000; ///< Milliseconds.

double milliseconds(const QElapsedTimer& since) {
    return static_cast<double>(since.nsecsElapsed()) * 1e-6;
}

/// The processor's time that the window's thread has had, in milliseconds: whatever else the machine does.
double ownTime() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

double median(std::vector<double> times) {
    std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2),
                     times.end());
    return times[times.size() / 2];
}

bool waitUntil(const std::function<bool()>& isSo) {
    QElapsedTimer since;
    since.start();
    while (!isSo() && since.elapsed() < Patience)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return isSo();
}

/// A frame as playing shows it: the scene has another state, and is drawn.
double showFrame(MainWindow& window, float frame, QImage& image) {
    for (const kaUID id : window.transport().objects())
        kaAnimationController::the()->evaluateObject(kaAnimationManager::the()->getObject(id), frame, false);
    const double before = ownTime();
    emit window.transport().evaluated();
    window.sceneView().render(&image);
    return ownTime() - before;
}

void measureFrames(MainWindow& window, const BenchRow& row, const char* what, const char* wanted) {
    QImage image(window.sceneView().size(), QImage::Format_ARGB32_Premultiplied);
    std::vector<double> times;
    for (int i = 0; i < 60; ++i) {
        times.push_back(showFrame(window, window.transport().begin() + static_cast<float>(i), image));
        for (int j = 0; j < 5; ++j) // pictures come in
            QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
    }
    row(what, median(times), "ms", wanted);
    row("the slowest of them", *std::max_element(times.begin(), times.end()), "ms", "-");
}

void measurePictures(MainWindow& window, const BenchRow& row, const char* what) {
    QImage image(window.sceneView().size(), QImage::Format_ARGB32_Premultiplied);
    std::vector<double> times;
    QElapsedTimer all;
    all.start();
    for (int i = 0; i < 40 && all.elapsed() < 20000; ++i) {
        QElapsedTimer since;
        since.start();
        showFrame(window, window.transport().begin() + static_cast<float>(i), image);
        waitUntil([&window] { return window.sceneView().isUpToDate(); });
        times.push_back(milliseconds(since));
    }
    row(what, median(times), "ms", "-");
}

/// A thousand limbs of twenty joints, each joint showing a triangle.
QByteArray manyNodes() {
    QByteArray roots, nodes;
    for (int limb = 0; limb < 1000; ++limb) {
        roots += (limb > 0 ? "," : "") + QByteArray::number(20 * limb);
        for (int i = 0; i < 20; ++i) {
            const QByteArray x = QByteArray::number(i > 0 ? 0.0 : 0.3 * (limb % 40));
            const QByteArray z = QByteArray::number(i > 0 ? 0.0 : 0.3 * (limb / 40));
            nodes += (limb + i > 0 ? R"(,{"name":"n)" : R"({"name":"n)") + QByteArray::number(20 * limb + i) +
                     R"(","mesh":0,"translation":[)" + x + ",0.1," + z + "]" +
                     (i < 19 ? R"(,"children":[)" + QByteArray::number(20 * limb + i + 1) + "]}" : "}");
        }
    }
    const float corners[] = {0, 0, 0, 0.05F, 0, 0, 0, 0.05F, 0};
    const QByteArray bytes(reinterpret_cast<const char*>(corners), sizeof corners);
    return R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[)" + roots + R"(]}],"nodes":[)" +
           nodes +
           R"(],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],)"
           R"("accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,0],)"
           R"("max":[0.05,0.05,0]}],"bufferViews":[{"buffer":0,"byteLength":36}],)"
           R"("buffers":[{"byteLength":36,"uri":"data:application/octet-stream;base64,)" +
           bytes.toBase64() + R"("}]})";
}

bool openMany(MainWindow& window, const BenchRow& row, const QTemporaryDir& folder) {
    QFile file(folder.filePath(QStringLiteral("many.gltf")));
    if (!file.open(QIODevice::WriteOnly) || file.write(manyNodes()) < 0)
        return false;
    file.close();
    QElapsedTimer since;
    since.start();
    window.openPath(file.fileName());
    if (!waitUntil([&window] { return window.sceneView().figure().joints().size() >= 20000; }))
        return false;
    row("20 000 nodes: opening, import included", milliseconds(since) / 1000, "s", "-");
    return true;
}

void measureClick(MainWindow& window, const BenchRow& row) {
    SceneView& view = window.sceneView();
    std::vector<double> times;
    for (int i = 0; i < 9; ++i) {
        QElapsedTimer since;
        since.start();
        QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier, QPoint(5 + i, 5));
        times.push_back(milliseconds(since));
    }
    row("20 000 nodes: a click that finds nothing", median(times), "ms", "100 ms");
}

} // namespace

void measureSpace(MainWindow& window, const BenchRow& row) {
    SceneView& view = window.sceneView();
    const auto withOpenGL = [&] {
        view.setDrawing(SceneView::Drawing::OpenGL);
        return waitUntil([&view] { return view.isDrawnByOpenGL() || view.space() == nullptr; }) &&
               view.isDrawnByOpenGL();
    };
    view.setDrawing(SceneView::Drawing::Plain);
    measureFrames(window, row, "the scene alone while playing, without OpenGL", "4 ms");
    if (withOpenGL()) {
        measureFrames(window, row, "the scene alone while playing, with OpenGL", "4 ms");
        measurePictures(window, row, "the same until its picture is there (the driver's time)");
    }
    const QTemporaryDir folder;
    view.setDrawing(SceneView::Drawing::Plain);
    if (!openMany(window, row, folder))
        return;
    measureFrames(window, row, "20 000 nodes: the scene while playing, without OpenGL", "-");
    if (!withOpenGL())
        return;
    measureFrames(window, row, "20 000 nodes: the scene while playing, with OpenGL", "-");
    measurePictures(window, row, "the same until its picture is there (the driver's time)");
    measureClick(window, row);
}

} // namespace ka::studio
