#include "RegistryFixture.h"
#include "Rig.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGCameraSetting.h>

namespace {

using namespace binding_test;
using Entries = std::vector<std::pair<osg::UInt32, osg::BitVector>>;

/// The host's camera as the callbacks see it.
struct HostCamera {
    osg::Pnt3f from{1.0F, 2.0F, 3.0F};
    osg::Pnt3f at{4.0F, 5.0F, 6.0F};
    osg::Vec3f up{0.0F, 1.0F, 0.0F};
    float roll = 7.0F;
    int placed = 0; ///< calls of the setters
    int rolled = 0;
    std::function<void()> onGet;
};

HostCamera host;

void getFromAtUp(int, osg::Pnt3f& from, osg::Pnt3f& at, osg::Vec3f& up) {
    from = host.from;
    at = host.at;
    up = host.up;
    if (const std::function<void()> once = std::exchange(host.onGet, nullptr))
        once();
}

void setFromAtUp(int, const osg::Pnt3f& from, const osg::Pnt3f& at, const osg::Vec3f& up) {
    host.from = from;
    host.at = at;
    host.up = up;
    ++host.placed;
}

float getRoll(int) {
    return host.roll;
}

void setRoll(int, const float& roll) {
    host.roll = roll;
    ++host.rolled;
}

class Camera : public ka_test::RegistryFixture {
  protected:
    void SetUp() override {
        RegistryFixture::SetUp();
        host = HostCamera();
        kaAnimationManager::setGetFromAtUpCB(getFromAtUp);
        kaAnimationManager::setFromAtUpCB(setFromAtUp);
        kaAnimationManager::setGetRollCB(getRoll);
        kaAnimationManager::setRollCB(setRoll);
        camera->setFrom(osg::Pnt3f(10.0F, 20.0F, 30.0F));
        camera->setAt(osg::Pnt3f(40.0F, 50.0F, 60.0F));
        camera->setUp(osg::Vec3f(0.0F, 0.0F, 1.0F));
        camera->setRoll(0.5F);
        watch() = Watch();
        recorder.take();
    }

    osg::CameraSettingPtr camera = WatchedCamera::create();
    Kept kept{camera};
    Recorder recorder;
};

TEST_F(Camera, PlacementIsWrittenAndMirroredToTheHost) {
    EXPECT_TRUE(write(makeField(camera, "from", 1), 21.0F));
    EXPECT_EQ(camera->getFrom(), osg::Pnt3f(10.0F, 21.0F, 30.0F));
    EXPECT_EQ(host.from, osg::Pnt3f(10.0F, 21.0F, 30.0F));
    EXPECT_EQ(host.at, osg::Pnt3f(40.0F, 50.0F, 60.0F));
    EXPECT_EQ(host.up, osg::Vec3f(0.0F, 0.0F, 1.0F));
    EXPECT_EQ(host.placed, 1);
    EXPECT_EQ(recorder.take(), (Entries{{camera.getFieldContainerId(), osg::CameraSetting::FromFieldMask}}));
    EXPECT_EQ(watch().calls.size(), 1U);

    EXPECT_TRUE(write(makeField(camera, "at", 2), 61.0F));
    EXPECT_EQ(host.at, osg::Pnt3f(40.0F, 50.0F, 61.0F));
    EXPECT_TRUE(write(makeField(camera, "up", 0), 0.25F));
    EXPECT_EQ(host.up, osg::Vec3f(0.25F, 0.0F, 1.0F));
    EXPECT_EQ(host.placed, 3);
    EXPECT_EQ(host.rolled, 0);
}

TEST_F(Camera, RollIsWrittenAndMirroredToTheHost) {
    EXPECT_TRUE(write(makeField(camera, "roll"), 0.75F));
    EXPECT_EQ(camera->getRoll(), 0.75F);
    EXPECT_EQ(host.roll, 0.75F);
    EXPECT_EQ(host.rolled, 1);
    EXPECT_EQ(host.placed, 0);
}

TEST_F(Camera, OtherFieldsAndEqualValuesAreNotMirrored) {
    EXPECT_TRUE(write(makeField(camera, "fieldOfView"), 90.0F));
    EXPECT_FLOAT_EQ(camera->getFieldOfView(), 1.5707964F);
    EXPECT_TRUE(write(makeField(camera, "from", 0), 10.0F));
    EXPECT_TRUE(write(makeField(camera, "from", 3), 99.0F));
    EXPECT_TRUE(write(makeField(camera, "roll"), 0.5F));
    EXPECT_EQ(host.placed, 0);
    EXPECT_EQ(host.rolled, 0);
}

TEST_F(Camera, OnACameraPathTheFieldsDriveTheHostInstead) {
    camera->setCameraPath(true);
    EXPECT_TRUE(write(makeField(camera, "from", 0), 11.0F));
    EXPECT_EQ(host.from, osg::Pnt3f(11.0F, 2.0F, 3.0F));
    EXPECT_TRUE(write(makeField(camera, "at", 1), 12.0F));
    EXPECT_EQ(host.at, osg::Pnt3f(4.0F, 12.0F, 6.0F));
    EXPECT_TRUE(write(makeField(camera, "up", 2), 13.0F));
    EXPECT_EQ(host.up, osg::Vec3f(0.0F, 1.0F, 13.0F));
    EXPECT_EQ(host.placed, 3);

    EXPECT_EQ(camera->getFrom(), osg::Pnt3f(10.0F, 20.0F, 30.0F));
    EXPECT_EQ(camera->getAt(), osg::Pnt3f(40.0F, 50.0F, 60.0F));
    EXPECT_EQ(camera->getUp(), osg::Vec3f(0.0F, 0.0F, 1.0F));
    EXPECT_EQ(recorder.take(), Entries());
    EXPECT_TRUE(watch().calls.empty());
}

TEST_F(Camera, OnACameraPathEqualComponentsStop) {
    camera->setCameraPath(true);
    EXPECT_TRUE(write(makeField(camera, "from", 1), 2.0F));
    EXPECT_TRUE(write(makeField(camera, "at", 0), 4.0F));
    EXPECT_TRUE(write(makeField(camera, "up", 1), 1.0F));
    EXPECT_TRUE(write(makeField(camera, "roll"), 7.0F));
    EXPECT_TRUE(write(makeField(camera, "from", 3), 99.0F));
    EXPECT_EQ(host.placed, 0);
}

TEST_F(Camera, OnACameraPathAChangedRollRefreshesButIsNotHandedOn) {
    camera->setCameraPath(true);
    EXPECT_TRUE(write(makeField(camera, "roll"), 8.0F));
    EXPECT_EQ(host.placed, 1);
    EXPECT_EQ(host.rolled, 0);
    EXPECT_EQ(host.roll, 7.0F);
    EXPECT_EQ(camera->getRoll(), 0.5F);
}

TEST_F(Camera, OnACameraPathEveryOtherFieldRefreshesTheHostToo) {
    camera->setCameraPath(true);
    const float before = camera->getFieldOfView();
    EXPECT_TRUE(write(makeField(camera, "fieldOfView"), 20.0F));
    EXPECT_EQ(host.placed, 1);
    EXPECT_EQ(camera->getFieldOfView(), before);
}

TEST_F(Camera, ThePathFlagIsReadAtEveryWrite) {
    kaAnimationField* field = makeField(camera, "from", 0);
    EXPECT_TRUE(write(field, 50.0F));
    EXPECT_EQ(camera->getFrom()[0], 50.0F);
    camera->setCameraPath(true);
    EXPECT_TRUE(write(field, 51.0F));
    EXPECT_EQ(camera->getFrom()[0], 50.0F);
    camera->setCameraPath(false);
    EXPECT_TRUE(write(field, 52.0F));
    EXPECT_EQ(camera->getFrom()[0], 52.0F);
}

TEST_F(Camera, AnglesOfAPathAreHandedOnAsTheyStand) {
    camera->setCameraPath(true);
    kaAnimationManager::setGetFromAtUpCB(nullptr); // the host's vectors are zeros then
    EXPECT_TRUE(write(makeField(camera, "from", 2), 5.0F));
    EXPECT_EQ(host.from, osg::Pnt3f(0.0F, 0.0F, 5.0F));
    EXPECT_EQ(host.at, osg::Pnt3f(0.0F, 0.0F, 0.0F));
}

struct Lens {
    const char* attribute;
    void (osg::CameraSetting::*set)(osg::Real32);
    osg::Real32 (osg::CameraSetting::*get)() const;
};

class CameraValue : public Camera, public testing::WithParamInterface<Lens> {};

TEST_P(CameraValue, GoesThroughTheAccessors) {
    osg::CameraSetting& setting = *camera;
    (setting.*GetParam().set)(3.0F);
    kaAnimationField* field = makeField(camera, GetParam().attribute);
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 3.0F);
    EXPECT_TRUE(write(field, 4.5F));
    EXPECT_EQ((setting.*GetParam().get)(), 4.5F);
    // It is the attribute that names the value, and a path does not matter to it.
    camera->setCameraPath(true);
    field->name = "anything";
    EXPECT_TRUE(write(field, 6.0F));
    EXPECT_EQ((setting.*GetParam().get)(), 6.0F);
    EXPECT_EQ(host.placed, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Attributes, CameraValue,
    testing::Values(Lens{"distance", &osg::CameraSetting::setDistance, &osg::CameraSetting::getDistance},
                    Lens{"height", &osg::CameraSetting::setHeight, &osg::CameraSetting::getHeight},
                    Lens{"turnTableAngle", &osg::CameraSetting::setTurnTableAngle,
                         &osg::CameraSetting::getTurnTableAngle},
                    Lens{"fStop", &osg::CameraSetting::setFStop, &osg::CameraSetting::getFStop},
                    Lens{"focalLength", &osg::CameraSetting::setFocalLength,
                         &osg::CameraSetting::getFocalLength}),
    [](const auto& row) { return std::string(row.param.attribute); });

TEST_F(Camera, UnknownAttributesReadAsZeroAndAreLeftAlone) {
    kaAnimationField* field = makeField(camera, "visible");
    EXPECT_TRUE(write(field, 4.0F));
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 0.0F);
    EXPECT_EQ(recorder.take(), Entries());
}

TEST_F(Camera, AHostThatFreesTheRecordWhileAskedIsServedAllTheSame) {
    camera->setCameraPath(true);
    kaAnimationField* field = makeField(camera, "from", 0);
    const kaUID id = field->getId();
    host.onGet = [id] { kaAnimationManager::the()->destroyField(kaAnimationManager::the()->getField(id)); };
    EXPECT_TRUE(write(field, 11.0F));
    EXPECT_EQ(host.from[0], 11.0F);
    EXPECT_EQ(kaAnimationManager::the()->getField(id), nullptr);
}

TEST_F(Camera, ACameraThatGoesInAnswerToAWriteIsNotMirrored) {
    kaAnimationField* field = makeField(camera, "from", 0);
    const kaUID id = field->getId();
    watch().answer = [this, id] {
        kaAnimationManager::the()->destroyField(kaAnimationManager::the()->getField(id));
        kept.release();
    };
    EXPECT_TRUE(write(field, 11.0F));
    EXPECT_EQ(host.placed, 0);
}

} // namespace
