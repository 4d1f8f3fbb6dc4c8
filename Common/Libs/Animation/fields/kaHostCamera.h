#pragma once

#include <OpenSG/OSGVector.h>

/// The host's camera, which the host lends by callbacks: camera settings of the scene are mirrored to it. The
/// callbacks are null until set; a null one makes the call a no-op. All act on the active camera.
class kaHostCamera {
  public:
    using GetFromAtUp = void (*)(int camera, osg::Pnt3f& from, osg::Pnt3f& at, osg::Vec3f& up);
    using SetFromAtUp = void (*)(int camera, const osg::Pnt3f& from, const osg::Pnt3f& at,
                                 const osg::Vec3f& up);
    using GetRoll = float (*)(int camera);
    using SetRoll = void (*)(int camera, const float& roll);

    struct Callbacks {
        GetFromAtUp getFromAtUp = nullptr;
        SetFromAtUp setFromAtUp = nullptr;
        GetRoll getRoll = nullptr;
        SetRoll setRoll = nullptr;
    };
    static Callbacks callbacks;

    kaHostCamera() = delete;

    static void setFromAtUp(const osg::Pnt3f& from, const osg::Pnt3f& at, const osg::Vec3f& up);
    static void getFromAtUp(osg::Pnt3f& from, osg::Pnt3f& at, osg::Vec3f& up); ///< Zeros without callback.
    static void setRoll(float roll);
    static float getRoll(); ///< 0 without callback.
};
