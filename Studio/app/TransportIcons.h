#pragma once

#include <QIcon>

class QColor;

namespace ka::studio {

/// What the buttons of the transport show.
enum class TransportSign { First, PreviousKey, Reverse, Stop, Play, Pause, NextKey, Last, Loop };

/// The sign in a colour of the palette, sharp at every scale; those of the style are black on dark grounds too.
QIcon transportIcon(TransportSign sign, const QColor& color);

} // namespace ka::studio
