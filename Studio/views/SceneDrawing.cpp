#include "SceneDrawing.h"

#include <kaMotion/FigureSheet.h>

namespace ka::studio {

int boneColorOf(const QString& jointName) {
    switch (ka::motion::sideOfName(jointName.toStdString())) {
    case ka::motion::BodySide::Left:
        return 1;
    case ka::motion::BodySide::Right:
        return 2;
    default:
        return 0;
    }
}

} // namespace ka::studio
