#include "SmallModels.h"

#include <QBuffer>
#include <QImage>
#include <vector>

namespace ka::studio::testing {

namespace {

/// One buffer, of which each list becomes a view and an accessor.
class Buffer {
  public:
    void add(const std::vector<float>& numbers, int width, const char* more = "") {
        const char* kinds[] = {"", "SCALAR", "VEC2", "VEC3", "VEC4"};
        append(numbers.data(), numbers.size() * sizeof(float), 5126,
               numbers.size() / static_cast<std::size_t>(width), width == 16 ? "MAT4" : kinds[width], more);
    }
    void addIndices(const std::vector<unsigned short>& indices) {
        append(indices.data(), indices.size() * sizeof(unsigned short), 5123, indices.size(), "SCALAR", "");
    }
    void addJoints(const std::vector<unsigned short>& joints) {
        append(joints.data(), joints.size() * sizeof(unsigned short), 5123, joints.size() / 4, "VEC4", "");
    }

    std::string json() const {
        return R"("buffers":[{"byteLength":)" + std::to_string(_bytes.size()) +
               R"(,"uri":"data:application/octet-stream;base64,)" + _bytes.toBase64().toStdString() +
               R"("}],"bufferViews":[)" + _views + R"(],"accessors":[)" + _accessors + "]";
    }

  private:
    void append(const void* data, std::size_t size, int component, std::size_t count, const std::string& kind,
                const std::string& more) {
        const std::string comma = _count == 0 ? "" : ",";
        _views += comma + R"({"buffer":0,"byteOffset":)" + std::to_string(_bytes.size()) +
                  R"(,"byteLength":)" + std::to_string(size) + "}";
        _accessors += comma + R"({"bufferView":)" + std::to_string(_count) + R"(,"componentType":)" +
                      std::to_string(component) + R"(,"count":)" + std::to_string(count) + R"(,"type":")" +
                      kind + "\"" + more + "}";
        _bytes += QByteArray(static_cast<const char*>(data), static_cast<int>(size));
        _bytes += QByteArray((4 - _bytes.size() % 4) % 4, '\0');
        ++_count;
    }

    QByteArray _bytes;
    std::string _views, _accessors;
    int _count = 0;
};

constexpr const char* BoardBounds = R"(,"min":[-1,-1,0],"max":[1,1,0])";
const std::vector<float> Corners = {-1, -1, 0, 1, -1, 0, 1, 1, 0, -1, 1, 0};
const std::vector<float> Facing = {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};
const std::vector<unsigned short> Indices = {0, 1, 2, 0, 2, 3};

std::string document(const std::string& content, const Buffer& buffer) {
    return R"({"asset":{"version":"2.0"},)" + content + "," + buffer.json() + "}";
}

std::string quarters() {
    QImage picture(64, 64, QImage::Format_RGB32);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            picture.setPixelColor(x, y,
                                  y < 32 ? (x < 32 ? Qt::red : Qt::green) : (x < 32 ? Qt::blue : Qt::yellow));
    QByteArray bytes;
    QBuffer into(&bytes);
    into.open(QIODevice::WriteOnly);
    picture.save(&into, "PNG");
    return bytes.toBase64().toStdString();
}

std::string colored(const char* color) {
    return std::string(R"("materials":[{"pbrMetallicRoughness":{"metallicFactor":0,"baseColorFactor":)") +
           color + "}}]";
}

} // namespace

std::string picturedBoard() {
    Buffer buffer;
    buffer.add(Corners, 3, BoardBounds);
    buffer.add(Facing, 3);
    buffer.add({0, 1, 1, 1, 1, 0, 0, 0}, 2);
    buffer.addIndices(Indices);
    return document(R"("scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"name":"board","mesh":0}],
        "meshes":[{"primitives":[{"attributes":{"POSITION":0,"NORMAL":1,"TEXCOORD_0":2},"indices":3,"material":0}]}],
        "materials":[{"pbrMetallicRoughness":{"metallicFactor":0,"baseColorTexture":{"index":0}}}],
        "textures":[{"source":0}],"images":[{"uri":"data:image/png;base64,)" +
                        quarters() + R"("}])",
                    buffer);
}

std::string boundBoard() {
    Buffer buffer;
    buffer.add(Corners, 3, BoardBounds);
    buffer.add(Facing, 3);
    buffer.addJoints(std::vector<unsigned short>{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0});
    buffer.add({1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}, 4);
    buffer.addIndices(Indices);
    const std::vector<float> unmoved = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    std::vector<float> binds = unmoved;
    binds.insert(binds.end(), unmoved.begin(), unmoved.end());
    buffer.add(binds, 16);
    buffer.add({0, 1}, 1, R"(,"min":[0],"max":[1])");
    buffer.add({0, 0, 0, 10, 0, 0}, 3);
    return document(R"("scene":0,"scenes":[{"nodes":[0,2]}],
        "nodes":[{"name":"root","children":[1]},{"name":"hand"},
                 {"name":"skin","mesh":0,"skin":0,"translation":[500,0,0]}],
        "skins":[{"joints":[0,1],"inverseBindMatrices":5}],
        "animations":[{"channels":[{"sampler":0,"target":{"node":1,"path":"translation"}}],
                       "samplers":[{"input":6,"output":7}]}],
        "meshes":[{"primitives":[{"attributes":{"POSITION":0,"NORMAL":1,"JOINTS_0":2,"WEIGHTS_0":3},
                                  "indices":4,"material":0}]}],)" +
                        colored("[0,0.8,0,1]"),
                    buffer);
}

std::string morphedBoard() {
    Buffer buffer;
    buffer.add(Corners, 3, BoardBounds);
    buffer.add(Facing, 3);
    buffer.addIndices(Indices);
    buffer.add({0, 10, 0, 0, 10, 0, 0, 10, 0, 0, 10, 0}, 3, R"(,"min":[0,10,0],"max":[0,10,0])");
    buffer.add({0, 1}, 1, R"(,"min":[0],"max":[1])");
    buffer.add({0, 1}, 1);
    return document(R"("scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"name":"board","mesh":0}],
        "animations":[{"channels":[{"sampler":0,"target":{"node":0,"path":"weights"}}],
                       "samplers":[{"input":4,"output":5}]}],
        "meshes":[{"weights":[0],"extras":{"targetNames":["aside"]},
                   "primitives":[{"attributes":{"POSITION":0,"NORMAL":1},"indices":2,"material":0,
                                  "targets":[{"POSITION":3}]}]}],)" +
                        colored("[0,0,0.8,1]"),
                    buffer);
}

std::string litBoard(bool fromTheFront) {
    Buffer buffer;
    buffer.add(Corners, 3, BoardBounds);
    buffer.add(Facing, 3);
    buffer.addIndices(Indices);
    return document(R"("scene":0,"scenes":[{"nodes":[0,1,2]}],"extensionsUsed":["KHR_lights_punctual"],
        "extensions":{"KHR_lights_punctual":{"lights":[{"type":"directional","intensity":5}]}},
        "cameras":[{"type":"perspective","perspective":{"yfov":1.5707963,"znear":0.1}}],
        "nodes":[{"name":"board","mesh":0},{"name":"camera","camera":0,"translation":[0,0,10]},
                 {"name":"sun","extensions":{"KHR_lights_punctual":{"light":0}},"translation":[0,0,3],"rotation":)" +
                        std::string(fromTheFront ? "[0,0,0,1]" : "[0,1,0,0]") + R"(}],
        "meshes":[{"primitives":[{"attributes":{"POSITION":0,"NORMAL":1},"indices":2,"material":0}]}],)" +
                        colored("[0.8,0.8,0.8,1]"),
                    buffer);
}

} // namespace ka::studio::testing
