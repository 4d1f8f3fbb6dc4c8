#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTransform3D.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <cmath>

namespace osg {

FieldContainerType& Transform3D::getClassType() {
    static FieldContainerType& type = declareType<Transform3D>({
        describe<&Transform3D::_sfTranslation>("translation"),
        describe<&Transform3D::_sfScale>("scale"),
    });
    return type;
}

namespace {

struct Turn {
    double sine;
    double cosine;
};

Turn turnOf(Real32 degrees) {
    constexpr double RADIANS_PER_DEGREE = 3.14159265358979323846 / 180.0;
    // Whole turns go first, so that many of them cost no digits and a quarter is exact to the last bit.
    const double angle = std::remainder(static_cast<double>(degrees), 360.0);
    if (std::fabs(angle) == 90.0)
        return {angle > 0.0 ? 1.0 : -1.0, 0.0};
    if (std::fabs(angle) == 180.0)
        return {0.0, -1.0};
    return {std::sin(angle * RADIANS_PER_DEGREE), std::cos(angle * RADIANS_PER_DEGREE)};
}

} // namespace

Matrix Transform3D::compose(const Vec3f& translation, const Vec3f& degrees, const Vec3f& scale) {
    const Turn x = turnOf(degrees[0]);
    const Turn y = turnOf(degrees[1]);
    const Turn z = turnOf(degrees[2]);
    const double rotation[3][3] = {{z.cosine * y.cosine, z.cosine * y.sine * x.sine - z.sine * x.cosine,
                                    z.cosine * y.sine * x.cosine + z.sine * x.sine},
                                   {z.sine * y.cosine, z.sine * y.sine * x.sine + z.cosine * x.cosine,
                                    z.sine * y.sine * x.cosine - z.cosine * x.sine},
                                   {-y.sine, y.cosine * x.sine, y.cosine * x.cosine}};
    Matrix result;
    for (UInt32 row = 0; row < 3; ++row) {
        for (UInt32 column = 0; column < 3; ++column)
            result[column][row] = static_cast<Real32>(rotation[row][column] * scale[column]);
        result[3][row] = translation[row];
    }
    return result;
}

bool Transform3D::getLocalMatrix(const Node& node, Matrix& result) const {
    static const UInt16 groupId = TransformAttachment::getClassType().getGroupId();
    const AttachmentPtr attachment = node.findAttachment(groupId);
    Vec3f degrees;
    if (attachment != NullFC)
        degrees = static_cast<const TransformAttachment&>(*attachment).getRotation();
    result = compose(getTranslation(), degrees, getScale());
    result.multLeft(getMatrix());
    return true;
}

} // namespace osg
