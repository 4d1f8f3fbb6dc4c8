#pragma once

#include <QImage>
#include <Qt3DRender/QTexture>

namespace ka::studio {

struct SpaceMaterial;

/// The picture of a material; null where it has none that can be read: no plain file, too large, of another kind.
QImage pictureOf(const SpaceMaterial& material);

/// A texture of a picture, whose upper left is the origin; it repeats, and is smooth at every size.
Qt3DRender::QAbstractTexture* makeTexture(const QImage& picture, Qt3DCore::QNode* parent);

} // namespace ka::studio
