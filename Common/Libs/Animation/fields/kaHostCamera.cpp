#include "kaHostCamera.h"

namespace {

constexpr int ActiveCamera = -1;

} // namespace

kaHostCamera::Callbacks kaHostCamera::callbacks;

void kaHostCamera::setFromAtUp(const osg::Pnt3f& from, const osg::Pnt3f& at, const osg::Vec3f& up) {
    if (callbacks.setFromAtUp)
        callbacks.setFromAtUp(ActiveCamera, from, at, up);
}

void kaHostCamera::getFromAtUp(osg::Pnt3f& from, osg::Pnt3f& at, osg::Vec3f& up) {
    if (callbacks.getFromAtUp) {
        callbacks.getFromAtUp(ActiveCamera, from, at, up);
        return;
    }
    from = osg::Pnt3f(0.0F, 0.0F, 0.0F);
    at = osg::Pnt3f(0.0F, 0.0F, 0.0F);
    up = osg::Vec3f(0.0F, 0.0F, 0.0F);
}

void kaHostCamera::setRoll(float roll) {
    if (callbacks.setRoll)
        callbacks.setRoll(ActiveCamera, roll);
}

float kaHostCamera::getRoll() {
    return callbacks.getRoll ? callbacks.getRoll(ActiveCamera) : 0.0F;
}
