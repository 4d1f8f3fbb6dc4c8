#pragma once

#include <Qt3DRender/QAttribute>
#include <Qt3DRender/QEffect>
#include <Qt3DRender/QGeometry>
#include <Qt3DRender/QMaterial>
#include <cstdint>
#include <vector>

namespace ka::studio {

/// Whether what is painted hides what is behind it.
enum class Cover { Opaque, SeenThrough, Bones };

/// An effect of one pass with these shaders.
Qt3DRender::QEffect* makeEffect(const QByteArray& vertexShader, const QByteArray& fragmentShader, Cover cover,
                                Qt3DCore::QNode* parent);

/// The bytes of a list, copied.
template <class T>
QByteArray bytesOfList(const std::vector<T>& list) {
    return {reinterpret_cast<const char*>(list.data()), static_cast<int>(list.size() * sizeof(T))};
}

/// Floats of a geometry, `width` a corner.
Qt3DRender::QBuffer* addFloats(Qt3DRender::QGeometry* geometry, const char* name,
                               const std::vector<float>& numbers, unsigned width);
void addIndices(Qt3DRender::QGeometry* geometry, const std::vector<std::uint32_t>& indices);

} // namespace ka::studio
