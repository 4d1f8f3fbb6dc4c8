#include "readers/GltfAccessor.h"

#include "readers/TinyGltf.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <kaMotion/Failure.h>
#include <limits>

namespace ka::motion {

namespace {

[[noreturn]] void fail(const std::string& reason) {
    throw Failure(ExitCode::Unreadable, reason);
}

template <class List>
const typename List::value_type& item(const List& list, int index, const char* what) {
    if (index < 0 || static_cast<std::size_t>(index) >= list.size())
        fail(std::string("a reference to a ") + what + " that does not exist");
    return list[static_cast<std::size_t>(index)];
}

template <class Stored>
double fraction(Stored value) {
    return std::max(static_cast<double>(value) / static_cast<double>(std::numeric_limits<Stored>::max()),
                    -1.0);
}

template <class Stored>
double component(const unsigned char* bytes, bool normalized) {
    Stored value;
    std::memcpy(&value, bytes, sizeof value);
    if constexpr (std::is_integral_v<Stored>)
        return normalized ? fraction(value) : static_cast<double>(value);
    else
        return static_cast<double>(value);
}

double component(const unsigned char* bytes, int type, bool normalized) {
    switch (type) {
    case TINYGLTF_COMPONENT_TYPE_BYTE:
        return component<std::int8_t>(bytes, normalized);
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
        return component<std::uint8_t>(bytes, normalized);
    case TINYGLTF_COMPONENT_TYPE_SHORT:
        return component<std::int16_t>(bytes, normalized);
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
        return component<std::uint16_t>(bytes, normalized);
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT:
        return component<std::uint32_t>(bytes, normalized);
    case TINYGLTF_COMPONENT_TYPE_FLOAT:
        return component<float>(bytes, normalized);
    default:
        fail("numbers of an unknown type");
    }
}

/// A row of equally spaced elements inside a buffer.
struct Elements {
    const unsigned char* first = nullptr;
    std::size_t stride = 0;
    int type = 0;
    std::size_t width = 0;
    bool normalized = false;

    double at(std::size_t row, std::size_t column) const {
        const std::size_t size =
            static_cast<std::size_t>(tinygltf::GetComponentSizeInBytes(static_cast<std::uint32_t>(type)));
        return component(first + row * stride + column * size, type, normalized);
    }
};

/// @param offset  of the first element inside the view.
Elements elementsOf(const tinygltf::Model& model, int viewIndex, std::size_t offset, int type,
                    std::size_t width, std::size_t count) {
    const int componentSize = tinygltf::GetComponentSizeInBytes(static_cast<std::uint32_t>(type));
    if (componentSize <= 0)
        fail("numbers of an unknown type");
    const tinygltf::BufferView& view = item(model.bufferViews, viewIndex, "buffer view");
    const std::vector<unsigned char>& bytes = item(model.buffers, view.buffer, "buffer").data;
    const std::size_t size = static_cast<std::size_t>(componentSize) * width;
    const std::size_t stride = view.byteStride > 0 ? view.byteStride : size;
    const bool viewFits =
        view.byteOffset <= bytes.size() && view.byteLength <= bytes.size() - view.byteOffset;
    if (!viewFits || stride > 252)
        fail("a buffer view reaches beyond its buffer");
    const bool fits = count == 0 || (offset <= view.byteLength && size <= view.byteLength - offset &&
                                     count - 1 <= (view.byteLength - offset - size) / stride);
    if (!fits)
        fail("an accessor reaches beyond its buffer view");
    return {bytes.data() + view.byteOffset + offset, stride, type, width, false};
}

void applySparse(const tinygltf::Model& model, const tinygltf::Accessor& accessor, std::size_t width,
                 std::vector<double>& values) {
    const auto& sparse = accessor.sparse;
    const std::size_t count = sparse.count < 0 ? 0 : static_cast<std::size_t>(sparse.count);
    const Elements rows =
        elementsOf(model, sparse.indices.bufferView, static_cast<std::size_t>(sparse.indices.byteOffset),
                   sparse.indices.componentType, 1, count);
    Elements replacements =
        elementsOf(model, sparse.values.bufferView, static_cast<std::size_t>(sparse.values.byteOffset),
                   accessor.componentType, width, count);
    replacements.normalized = accessor.normalized;
    for (std::size_t i = 0; i < count; ++i) {
        const double row = rows.at(i, 0);
        if (!(row >= 0 && row < static_cast<double>(accessor.count)))
            fail("a sparse accessor replaces an element that does not exist");
        for (std::size_t column = 0; column < width; ++column)
            values[static_cast<std::size_t>(row) * width + column] = replacements.at(i, column);
    }
}

} // namespace

std::vector<double> readGltfAccessor(const tinygltf::Model& model, int index, std::size_t components) {
    const tinygltf::Accessor& accessor = item(model.accessors, index, "list of numbers");
    const int width = tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(accessor.type));
    if (width < 1 || static_cast<std::size_t>(width) != components)
        fail("an animation reads numbers of the wrong shape");
    std::vector<double> values;
    if (accessor.bufferView < 0) {
        // Zeros need no byte of the file, so that nothing else bounds them.
        constexpr std::size_t mostZeros = 10'000'000;
        if (accessor.count > mostZeros)
            fail("a list of more than ten million zeros");
        values.resize(accessor.count * components, 0.0);
    } else {
        Elements elements = elementsOf(model, accessor.bufferView, accessor.byteOffset,
                                       accessor.componentType, components, accessor.count);
        elements.normalized = accessor.normalized;
        values.resize(accessor.count * components);
        for (std::size_t row = 0; row < accessor.count; ++row)
            for (std::size_t column = 0; column < components; ++column)
                values[row * components + column] = elements.at(row, column);
    }
    if (accessor.sparse.isSparse)
        applySparse(model, accessor, components, values);
    return values;
}

} // namespace ka::motion
