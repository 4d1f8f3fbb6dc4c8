#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ka::motion {

/// The numbers of a glTF document, each list of them once: the one buffer, its views and its accessors.
class GltfBuffer {
  public:
    /// What a view is bound to when a viewer draws from it; animation data to nothing.
    enum class Target { None = 0, Vertices = 34962, Indices = 34963 };

    /// @param type  "SCALAR", "VEC3", "VEC4", "MAT4".
    /// @param width  numbers a row; `numbers` has whole rows, at least one.
    /// @return the accessor's place. A list that is there already, for the same use, gives the place of the
    /// first.
    std::size_t addFloats(const std::vector<float>& numbers, const char* type, std::size_t width,
                          Target target = Target::None);
    /// @return the accessor's place.
    std::size_t addIndices(const std::vector<std::uint32_t>& indices);
    /// Rows of four, for the joints of vertices.
    std::size_t addJoints(const std::vector<std::uint16_t>& joints);
    /// @return the place of a view of any bytes, those of a picture.
    std::size_t addBytes(std::string_view bytes);

    bool isEmpty() const { return _bytes.empty(); }
    const std::string& bytes() const { return _bytes; }
    const nlohmann::ordered_json& accessors() const { return _accessors; }
    const nlohmann::ordered_json& views() const { return _views; }

  private:
    std::size_t addView(std::string_view bytes, Target target);
    std::size_t addAccessor(nlohmann::ordered_json accessor, std::string_view bytes, Target target);

    std::string _bytes;
    nlohmann::ordered_json _accessors = nlohmann::ordered_json::array();
    nlohmann::ordered_json _views = nlohmann::ordered_json::array();
    std::unordered_map<std::string, std::size_t> _known; ///< by kind and content
};

} // namespace ka::motion
