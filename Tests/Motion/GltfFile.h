#pragma once

#include <QByteArray>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace ka::motion {

/// A glTF file with one buffer inside it, built number by number.
class GltfFile {
  public:
    GltfFile() { document["asset"]["version"] = "2.0"; }

    template <class Number>
    int accessor(const std::vector<Number>& numbers, const std::string& type, int componentType,
                 bool normalized = false) {
        while (_bytes.size() % 4 != 0)
            _bytes += '\0';
        const std::size_t start = _bytes.size(), size = numbers.size() * sizeof(Number);
        _bytes.append(reinterpret_cast<const char*>(numbers.data()), size);
        document["bufferViews"].push_back({{"buffer", 0}, {"byteOffset", start}, {"byteLength", size}});
        const std::size_t width = type == "SCALAR" ? 1 : type == "VEC3" ? 3 : 4;
        document["accessors"].push_back({{"bufferView", document["bufferViews"].size() - 1},
                                         {"componentType", componentType},
                                         {"count", numbers.size() / width},
                                         {"type", type},
                                         {"normalized", normalized}});
        return static_cast<int>(document["accessors"].size()) - 1;
    }

    int floats(const std::vector<float>& numbers, const std::string& type) {
        return accessor(numbers, type, 5126);
    }

    void channel(int node, const std::string& path, int input, int output, const std::string& interpolation) {
        nlohmann::json& animation = document["animations"][0];
        animation["samplers"].push_back(
            {{"input", input}, {"output", output}, {"interpolation", interpolation}});
        animation["channels"].push_back(
            {{"sampler", animation["samplers"].size() - 1}, {"target", {{"node", node}, {"path", path}}}});
    }

    std::string text() {
        const QByteArray encoded = QByteArray(_bytes.data(), static_cast<int>(_bytes.size())).toBase64();
        document["buffers"] = nlohmann::json::array(
            {{{"byteLength", _bytes.size()},
              {"uri", "data:application/octet-stream;base64," + encoded.toStdString()}}});
        return document.dump();
    }

    nlohmann::json document;

  private:
    std::string _bytes;
};

} // namespace ka::motion
