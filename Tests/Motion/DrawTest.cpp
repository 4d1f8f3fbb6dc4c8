#include <cmath>
#include <gmock/gmock.h>
#include <kaMotion/Canvas.h>
#include <kaMotion/CurvePlot.h>
#include <kaMotion/FigureSheet.h>
#include <limits>

namespace ka::motion {
namespace {

using ::testing::DoubleNear;
using ::testing::ElementsAre;

std::size_t pixelsOf(const QImage& image, const QColor& color) {
    std::size_t count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) == color ? 1 : 0;
    return count;
}

TEST(NiceTicks, AreRoundNumbersInsideTheRange) {
    EXPECT_THAT(niceTicks(0, 10, 5), ElementsAre(0, 2, 4, 6, 8, 10));
    EXPECT_THAT(niceTicks(-1, 1, 4), ElementsAre(-1, -0.5, 0, 0.5, 1));
    EXPECT_THAT(niceTicks(0.3, 1.2, 3), ElementsAre(DoubleNear(0.5, 1e-9), DoubleNear(1.0, 1e-9)));
    EXPECT_THAT(niceTicks(5, 5, 3), ElementsAre(5));
    EXPECT_EQ(niceTicks(0, std::numeric_limits<double>::infinity(), 3).size(), 1U);
}

TEST(DrawPlot, DrawsEachCurveInItsColour) {
    PlotPanel panel{"Hips", "units", {}};
    const QColor color(200, 10, 10);
    panel.curves.push_back({"up", color, {{0, 0}, {50, 10}, {100, 0}}, {{0, 0}, {100, 0}}, {}});
    const QImage image = drawPlot("title", {panel}, 25, {900, 400});
    EXPECT_EQ(image.size(), QSize(900, 400));
    EXPECT_GT(pixelsOf(image, color), 300U);
    EXPECT_EQ(pngBytes(image).substr(1, 3), "PNG");
}

TEST(DrawPlot, TakesAnythingForAValue) {
    const double inf = std::numeric_limits<double>::infinity(), nan = std::nan("");
    for (const auto& samples : std::vector<std::vector<QPointF>>{{},
                                                                 {{0, nan}},
                                                                 {{0, 1}, {1, nan}, {2, inf}},
                                                                 {{5, 5}},
                                                                 {{0, 1e38}, {1, -1e38}},
                                                                 {{1e9, 0}, {1e9 + 1, 1e-30}}}) {
        PlotPanel panel{"p", "u", {{"c", Qt::red, samples, samples, {}}}};
        EXPECT_FALSE(drawPlot("t", {panel, panel}, 0, {600, 400}).isNull());
    }
    EXPECT_FALSE(drawPlot("t", {}, 25, {600, 400}).isNull());
}

TEST(SideOfName, ReadsTheUsualSpellings) {
    for (const char* left : {"LeftArm", "lefthand", "LThumb", "arm.L", "hand_l", "mixamorig:LeftLeg"})
        EXPECT_EQ(sideOfName(left), BodySide::Left) << left;
    for (const char* right : {"RightArm", "RHipJoint", "foot.R", "toe-r"})
        EXPECT_EQ(sideOfName(right), BodySide::Right) << right;
    for (const char* middle : {"Hips", "Leg", "Root", "Ribs", "LowerBack", "Lowerback", ""})
        EXPECT_EQ(sideOfName(middle), BodySide::Middle) << middle;
}

TEST(DrawFigureSheet, DrawsEveryPose) {
    const std::vector<FigureBone> bones{{0, 1, BodySide::Left}, {0, 2, BodySide::Right}};
    std::vector<FigurePose> poses;
    for (int i = 0; i < 12; ++i)
        poses.push_back({QString::number(i), {{i * 10.0, 5, 0}, {i * 10.0 - 2, 0, 0}, {i * 10.0 + 2, 0, 0}}});
    const QImage image = drawFigureSheet("walk", poses, bones, {1200, 1000});
    EXPECT_GT(pixelsOf(image, QColor(0x00, 0x72, 0xB2)), 1000U);
    EXPECT_GT(pixelsOf(image, QColor(0xD5, 0x5E, 0x00)), 1000U);
    EXPECT_FALSE(drawFigureSheet("none", {}, {}, {400, 300}).isNull());
    EXPECT_FALSE(drawFigureSheet("one point", {{"0", {{1, 2, 3}}}}, {}, {400, 300}).isNull());
}

} // namespace
} // namespace ka::motion
