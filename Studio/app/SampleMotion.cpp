#include "SampleMotion.h"

#include <cmath>
#include <sstream>

namespace ka::studio {

namespace {

const char Skeleton[] = R"(HIERARCHY
ROOT Hips
{
 OFFSET 0 0 0
 CHANNELS 6 Xposition Yposition Zposition Zrotation Yrotation Xrotation
 JOINT Spine { OFFSET 0 20 0 CHANNELS 3 Zrotation Yrotation Xrotation
  JOINT Head { OFFSET 0 30 0 CHANNELS 3 Zrotation Yrotation Xrotation End Site { OFFSET 0 18 0 } }
  JOINT LeftArm { OFFSET 16 26 0 CHANNELS 3 Zrotation Yrotation Xrotation
   JOINT LeftForeArm { OFFSET 4 -26 0 CHANNELS 3 Zrotation Yrotation Xrotation End Site { OFFSET 0 -24 0 } } }
  JOINT RightArm { OFFSET -16 26 0 CHANNELS 3 Zrotation Yrotation Xrotation
   JOINT RightForeArm { OFFSET -4 -26 0 CHANNELS 3 Zrotation Yrotation Xrotation End Site { OFFSET 0 -24 0 } } } }
 JOINT LeftUpLeg { OFFSET 9 -4 0 CHANNELS 3 Zrotation Yrotation Xrotation
  JOINT LeftLeg { OFFSET 0 -42 0 CHANNELS 3 Zrotation Yrotation Xrotation End Site { OFFSET 0 -42 4 } } }
 JOINT RightUpLeg { OFFSET -9 -4 0 CHANNELS 3 Zrotation Yrotation Xrotation
  JOINT RightLeg { OFFSET 0 -42 0 CHANNELS 3 Zrotation Yrotation Xrotation End Site { OFFSET 0 -42 4 } } }
}
)";

} // namespace

std::string sampleMotion() {
    constexpr int Frames = 51;          // two seconds and the frame that is the first again
    constexpr double Step = 0.25132741; // a turn in 25 frames
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << Skeleton << "MOTION\nFrames: " << Frames << "\nFrame Time: 0.04\n";
    for (int i = 0; i < Frames; ++i) {
        const double swing = std::sin(i * Step), bounce = std::cos(2 * i * Step);
        const auto turn = [&text](double z, double y, double x) { text << ' ' << z << ' ' << y << ' ' << x; };
        text << "0 " << 88 + 2 * bounce << " 0";
        turn(2 * swing, 4 * swing, 0);            // hips
        turn(-2 * swing, -6 * swing, 4);          // spine
        turn(0, 3 * swing, 2 * bounce);           // head
        turn(4, 0, 28 * swing);                   // left arm
        turn(0, 0, -18 - 10 * swing);             // left fore-arm
        turn(-4, 0, -28 * swing);                 // right arm
        turn(0, 0, -18 + 10 * swing);             // right fore-arm
        turn(0, 0, -26 * swing);                  // left leg
        turn(0, 0, 18 + 16 * std::cos(i * Step)); // left knee
        turn(0, 0, 26 * swing);                   // right leg
        turn(0, 0, 18 - 16 * std::cos(i * Step)); // right knee
        text << '\n';
    }
    return text.str();
}

} // namespace ka::studio
