#include "writers/GltfBuffer.h"

#include <algorithm>

namespace ka::motion {

namespace {

using nlohmann::ordered_json;

constexpr int componentUnsignedShort = 5123, componentUnsignedInt = 5125, componentFloat = 5126;

template <class Number>
std::string_view bytesOf(const std::vector<Number>& numbers) {
    return {reinterpret_cast<const char*>(numbers.data()), numbers.size() * sizeof(Number)};
}

/// The least and the largest number of each column.
void addBounds(ordered_json& accessor, const std::vector<float>& numbers, std::size_t width) {
    std::vector<float> least(numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(width));
    std::vector<float> most = least;
    for (std::size_t i = width; i < numbers.size(); ++i) {
        least[i % width] = std::min(least[i % width], numbers[i]);
        most[i % width] = std::max(most[i % width], numbers[i]);
    }
    // As doubles: the digits of a float would be read as another number.
    accessor["min"] = std::vector<double>(least.begin(), least.end());
    accessor["max"] = std::vector<double>(most.begin(), most.end());
}

} // namespace

std::size_t GltfBuffer::addView(std::string_view bytes, Target target) {
    _bytes.append((4 - _bytes.size() % 4) % 4, '\0');
    ordered_json view{{"buffer", 0}, {"byteOffset", _bytes.size()}, {"byteLength", bytes.size()}};
    if (target != Target::None)
        view["target"] = static_cast<int>(target);
    _views.push_back(std::move(view));
    _bytes += bytes;
    return _views.size() - 1;
}

std::size_t GltfBuffer::addAccessor(ordered_json accessor, std::string_view bytes, Target target) {
    const std::string key =
        accessor.dump() + std::to_string(static_cast<int>(target)) + '\n' + std::string(bytes);
    const auto [entry, isNew] = _known.try_emplace(key, _accessors.size());
    if (isNew) {
        ordered_json whole{{"bufferView", addView(bytes, target)}};
        whole.update(accessor);
        _accessors.push_back(std::move(whole));
    }
    return entry->second;
}

std::size_t GltfBuffer::addFloats(const std::vector<float>& numbers, const char* type, std::size_t width,
                                  Target target) {
    ordered_json accessor{
        {"componentType", componentFloat}, {"count", numbers.size() / width}, {"type", type}};
    addBounds(accessor, numbers, width);
    return addAccessor(std::move(accessor), bytesOf(numbers), target);
}

std::size_t GltfBuffer::addIndices(const std::vector<std::uint32_t>& indices) {
    ordered_json accessor{
        {"componentType", componentUnsignedInt}, {"count", indices.size()}, {"type", "SCALAR"}};
    return addAccessor(std::move(accessor), bytesOf(indices), Target::Indices);
}

std::size_t GltfBuffer::addJoints(const std::vector<std::uint16_t>& joints) {
    ordered_json accessor{
        {"componentType", componentUnsignedShort}, {"count", joints.size() / 4}, {"type", "VEC4"}};
    return addAccessor(std::move(accessor), bytesOf(joints), Target::Vertices);
}

std::size_t GltfBuffer::addBytes(std::string_view bytes) {
    return addView(bytes, Target::None);
}

} // namespace ka::motion
