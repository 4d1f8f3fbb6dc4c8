#include <OpenSG/OSGColor.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGVolume.h>
#include <gtest/gtest.h>
#include <random>

namespace {

using osg::Matrix;
using osg::Pnt3f;
using osg::Quaternion;
using osg::Vec3f;

TEST(Vector, CalculatesByComponents) {
    const Vec3f a(1.0F, 2.0F, 3.0F);
    const Vec3f b(4.0F, -5.0F, 6.0F);
    EXPECT_EQ(Vec3f(5.0F, -3.0F, 9.0F), a + b);
    EXPECT_EQ(Vec3f(-3.0F, 7.0F, -3.0F), a - b);
    EXPECT_EQ(12.0F, a.dot(b));
    EXPECT_EQ(Vec3f(27.0F, 6.0F, -13.0F), a.cross(b));
    EXPECT_EQ(5.0F, osg::Vec2f(3.0F, 4.0F).length());
    Vec3f zero;
    zero.normalize();
    EXPECT_EQ(Vec3f(), zero);
    EXPECT_EQ(Vec3f(3.0F, 3.0F, 3.0F), Pnt3f(4.0F, 5.0F, 6.0F) - Pnt3f(1.0F, 2.0F, 3.0F));
    EXPECT_EQ(Pnt3f(5.0F, 7.0F, 9.0F), Pnt3f(4.0F, 5.0F, 6.0F) + a);
    EXPECT_EQ(a, a.addToZero().subZero());
}

TEST(Matrix, StoresColumnsAndIsGivenRows) {
    const Matrix m(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
    EXPECT_EQ(osg::Vec4f(4.0F, 8.0F, 12.0F, 16.0F), m[3]);
    EXPECT_EQ(2.0F, m[1][0]);
}

TEST(Matrix, MultipliesFromTheRightAndFromTheLeft) {
    Matrix translate;
    translate.setTranslate(1.0F, 0.0F, 0.0F);
    Matrix scale;
    scale.setScale(2.0F, 2.0F, 2.0F);
    Pnt3f p;
    Matrix right = translate;
    right.mult(scale);
    right.mult(Pnt3f(1.0F, 1.0F, 1.0F), p);
    EXPECT_EQ(Pnt3f(3.0F, 2.0F, 2.0F), p) << "scaled first";
    Matrix left = translate;
    left.multLeft(scale);
    left.mult(Pnt3f(1.0F, 1.0F, 1.0F), p);
    EXPECT_EQ(Pnt3f(4.0F, 2.0F, 2.0F), p) << "translated first";
    Vec3f v;
    left.mult(Vec3f(1.0F, 1.0F, 1.0F), v);
    EXPECT_EQ(Vec3f(2.0F, 2.0F, 2.0F), v) << "directions are not moved";
}

TEST(Matrix, HasAnInverseUnlessItIsSingular) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> number(-5.0F, 5.0F);
    for (int round = 0; round < 100; ++round) {
        Matrix m;
        for (osg::UInt32 i = 0; i < 16; ++i)
            m[i / 4][i % 4] = number(random);
        if (std::fabs(m.det()) < 1.0F)
            continue;
        Matrix inverse;
        ASSERT_TRUE(m.inverse(inverse));
        inverse.mult(m);
        EXPECT_TRUE(inverse.equals(Matrix(), 1e-3F));
    }
    Matrix flat;
    flat.setScale(1.0F, 0.0F, 1.0F);
    const Matrix before = flat;
    EXPECT_FALSE(flat.invert());
    EXPECT_EQ(before, flat);
    EXPECT_EQ(0.0F, flat.det());
}

TEST(Matrix, DeterminantsByHand) {
    EXPECT_EQ(1.0F, Matrix().det());
    EXPECT_EQ(24.0F, Matrix(1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4).det());
    EXPECT_EQ(-1.0F, Matrix(0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1).det());
    EXPECT_EQ(-6.0F, Matrix(0, 0, 0, 1, 0, 2, 0, 0, 0, 0, 3, 0, 1, 0, 0, 0).det());
}

TEST(Matrix, SplitsIntoPartsThatGiveItBack) {
    std::mt19937 random(5);
    std::uniform_real_distribution<float> number(-3.0F, 3.0F);
    for (int round = 0; round < 500; ++round) {
        Matrix m;
        for (osg::UInt32 column = 0; column < 4; ++column) {
            for (osg::UInt32 row = 0; row < 3; ++row)
                m[column][row] = number(random);
        }
        if (round % 5 == 0) // a singular one: two equal columns
            m[1] = m[0];
        Vec3f t;
        Vec3f s;
        Quaternion r;
        Quaternion so;
        m.getTransform(t, r, s, so);
        EXPECT_NEAR(1.0F, r.length(), 1e-5F);
        Matrix back;
        back.setTransform(t, r, s, so);
        ASSERT_TRUE(m.equals(back, 1e-4F)) << round;
    }
}

TEST(Matrix, SplitsPlainScalesWithoutAnOrientation) {
    Matrix m;
    m.setTransform(Vec3f(1.0F, 2.0F, 3.0F), Quaternion(Vec3f(1.0F, 2.0F, 3.0F), 1.2F),
                   Vec3f(2.0F, 3.0F, 4.0F));
    Vec3f t;
    Vec3f s;
    Quaternion r;
    Quaternion so;
    m.getTransform(t, r, s, so);
    EXPECT_EQ(Vec3f(1.0F, 2.0F, 3.0F), t);
    for (osg::UInt32 i = 0; i < 3; ++i)
        EXPECT_NEAR(2.0F + static_cast<float>(i), s[i], 1e-5F);
    EXPECT_EQ(Quaternion(), so);
    Matrix zero;
    zero.setScale(0.0F, 0.0F, 0.0F);
    zero.getTransform(t, r, s, so);
    EXPECT_EQ(Vec3f(), s);
    EXPECT_EQ(Quaternion(), r);
}

TEST(Matrix, TurnsAboutACenter) {
    Matrix m;
    m.setTransform(Vec3f(), Quaternion(Vec3f(0.0F, 0.0F, 1.0F), 3.14159265F), Vec3f(1.0F, 1.0F, 1.0F),
                   Quaternion(), Vec3f(1.0F, 0.0F, 0.0F));
    Pnt3f p;
    m.mult(Pnt3f(3.0F, 0.0F, 0.0F), p);
    EXPECT_NEAR(-1.0F, p[0], 1e-5F);
    EXPECT_NEAR(0.0F, p[1], 1e-5F);
}

TEST(Quaternion, GoesToAMatrixAndBack) {
    std::mt19937 random(9);
    std::uniform_real_distribution<float> number(-1.0F, 1.0F);
    for (int round = 0; round < 200; ++round) {
        Quaternion q;
        q.setValueAsQuat(number(random), number(random), number(random), number(random));
        q.normalize();
        Matrix m;
        q.getValue(m);
        Quaternion back;
        back.setValue(m);
        const float sign =
            back.w() * q.w() + back.x() * q.x() + back.y() * q.y() + back.z() * q.z() < 0 ? -1.0F : 1.0F;
        for (osg::UInt32 i = 0; i < 4; ++i)
            ASSERT_NEAR(q[i], sign * back[i], 1e-5F);
    }
}

TEST(Quaternion, TurnsAndCombines) {
    Quaternion quarter;
    quarter.setValueAsAxisDeg(0.0F, 0.0F, 1.0F, 90.0F);
    Vec3f v;
    quarter.multVec(Vec3f(1.0F, 0.0F, 0.0F), v);
    EXPECT_NEAR(1.0F, v[1], 1e-6F);
    Quaternion half = quarter;
    half.mult(quarter);
    half.multVec(Vec3f(1.0F, 0.0F, 0.0F), v);
    EXPECT_NEAR(-1.0F, v[0], 1e-6F);
    half.mult(half.inverse());
    EXPECT_NEAR(1.0F, half.w(), 1e-6F);
    Vec3f axis;
    float degrees = 0.0F;
    quarter.getValueAsAxisDeg(axis, degrees);
    EXPECT_NEAR(90.0F, degrees, 1e-4F);
    Quaternion none;
    none.setValueAsAxisRad(0.0F, 0.0F, 0.0F, 1.0F);
    EXPECT_EQ(Quaternion(), none);
}

TEST(Quaternion, InterpolatesAtConstantSpeedAlongTheShorterArc) {
    const Vec3f z(0.0F, 0.0F, 1.0F);
    const Quaternion a(z, 0.2F);
    const Quaternion b(z, 1.0F);
    for (float t = 0.0F; t <= 1.0F; t += 0.25F) {
        Vec3f axis;
        float angle = 0.0F;
        Quaternion::slerp(a, b, t).getValueAsAxisRad(axis, angle);
        EXPECT_NEAR(0.2F + 0.8F * t, angle, 1e-5F);
        Quaternion negated;
        negated.setValueAsQuat(-b.x(), -b.y(), -b.z(), -b.w());
        Quaternion::slerp(a, negated, t).getValueAsAxisRad(axis, angle);
        EXPECT_NEAR(0.2F + 0.8F * t, angle, 1e-5F) << "the same rotation, the other sign";
    }
    EXPECT_EQ(a, Quaternion::slerp(a, a, 0.3F));
}

TEST(Volume, GrowsByPointsAndOtherVolumes) {
    osg::DynamicVolume volume;
    EXPECT_TRUE(volume.isEmpty());
    volume.extendBy(Pnt3f(1.0F, 2.0F, 3.0F));
    volume.extendBy(Pnt3f(-1.0F, 5.0F, std::numeric_limits<float>::infinity()));
    osg::DynamicVolume sphere;
    sphere.setSphere(Pnt3f(0.0F, 0.0F, 0.0F), 4.0F);
    EXPECT_EQ(4.0F, sphere.getRadius());
    volume.extendBy(sphere);
    volume.extendBy(osg::DynamicVolume());
    Pnt3f low;
    Pnt3f high;
    volume.getBounds(low, high);
    EXPECT_EQ(Pnt3f(-4.0F, -4.0F, -4.0F), low);
    EXPECT_EQ(Pnt3f(4.0F, 4.0F, 4.0F), high);
    EXPECT_EQ(Pnt3f(), volume.getCenter());
}

} // namespace
