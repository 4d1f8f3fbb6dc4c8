#pragma once

#include "SpaceScene.h"
#include "Viewpoint.h"

#include <QDataStream>
#include <QSize>

namespace ka::studio {

/// One picture that is wanted of a scene, in the state that it is in. Sizes in pixels of the display.
struct SpaceFrame {
    QSize size;
    quint32 place = 0; ///< of `SharedPictures` where it goes
    QMatrix4x4 view, projection;
    SpacePose pose;
    std::vector<SpaceLight> lights; ///< none: one from where the eye is
    std::vector<SpaceBone> bones;
    std::vector<int> pickedParts; ///< that are to stand out
};

/// What goes between the studio and the process that draws: written by the one, read by the other on the same machine,
/// both the same program. Reading stops with a bad status of the stream where anything is cut off.
/// @{
QByteArray bytesOf(const SpaceScene& scene);
QByteArray bytesOf(const SpaceFrame& frame);
void read(QDataStream& stream, SpaceScene& scene);
void read(QDataStream& stream, SpaceFrame& frame);
/// @}

/// The kinds of message to the process that draws; each is its length as 32 bits, its kind and the bytes.
enum class SpaceMessage : quint8 { Scene, Frame };

} // namespace ka::studio
