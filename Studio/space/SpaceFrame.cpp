#include "SpaceFrame.h"

#include <type_traits>

namespace ka::studio {

namespace {

template <class T>
void put(QDataStream& stream, const std::vector<T>& list) {
    static_assert(std::is_trivially_copyable_v<T>);
    stream << static_cast<quint32>(list.size());
    stream.writeRawData(reinterpret_cast<const char*>(list.data()),
                        static_cast<int>(list.size() * sizeof(T)));
}

/// Grows with what is there, so that a wrong length asks for no more memory than the message has.
template <class T>
void get(QDataStream& stream, std::vector<T>& list) {
    static_assert(std::is_trivially_copyable_v<T>);
    quint32 count = 0;
    stream >> count;
    if (static_cast<quint64>(count) * sizeof(T) > static_cast<quint64>(stream.device()->bytesAvailable()))
        return stream.setStatus(QDataStream::ReadPastEnd);
    list.resize(count);
    stream.readRawData(reinterpret_cast<char*>(list.data()), static_cast<int>(count * sizeof(T)));
}

template <class T, class Put>
void putEach(QDataStream& stream, const std::vector<T>& list, const Put& write) {
    stream << static_cast<quint32>(list.size());
    for (const T& one : list)
        write(one);
}

template <class T, class Get>
void getEach(QDataStream& stream, std::vector<T>& list, const Get& readOne) {
    quint32 count = 0;
    stream >> count;
    while (count-- > 0 && stream.status() == QDataStream::Ok) {
        list.emplace_back();
        readOne(list.back());
    }
}

QDataStream& operator<<(QDataStream& stream, const std::array<float, 4>& four) {
    for (const float number : four)
        stream << number;
    return stream;
}

QDataStream& operator>>(QDataStream& stream, std::array<float, 4>& four) {
    for (float& number : four)
        stream >> number;
    return stream;
}

} // namespace

QByteArray bytesOf(const SpaceScene& scene) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    putEach(stream, scene.materials, [&stream](const SpaceMaterial& material) {
        stream << material.color << material.glow[0] << material.glow[1] << material.glow[2]
               << material.pictureFile << material.picture;
    });
    putEach(stream, scene.meshes, [&stream](const SpaceMesh& mesh) {
        put(stream, mesh.positions);
        put(stream, mesh.normals);
        put(stream, mesh.colors);
        put(stream, mesh.texCoords);
        put(stream, mesh.indices);
        stream << mesh.material;
    });
    putEach(stream, scene.parts, [&stream](const SpacePart& part) {
        stream << part.node << part.mesh << part.mover;
        put(stream, part.skin.movers);
        put(stream, part.skin.inverseBinds);
        put(stream, part.skin.indices);
        put(stream, part.skin.weights);
        putEach(stream, part.morphs, [&stream](const SpaceMorph& morph) {
            stream << morph.node;
            put(stream, morph.offsets);
        });
    });
    put(stream, scene.movers);
    return bytes;
}

void read(QDataStream& stream, SpaceScene& scene) {
    getEach(stream, scene.materials, [&stream](SpaceMaterial& material) {
        stream >> material.color >> material.glow[0] >> material.glow[1] >> material.glow[2] >>
            material.pictureFile >> material.picture;
    });
    getEach(stream, scene.meshes, [&stream](SpaceMesh& mesh) {
        get(stream, mesh.positions);
        get(stream, mesh.normals);
        get(stream, mesh.colors);
        get(stream, mesh.texCoords);
        get(stream, mesh.indices);
        stream >> mesh.material;
    });
    getEach(stream, scene.parts, [&stream](SpacePart& part) {
        stream >> part.node >> part.mesh >> part.mover;
        get(stream, part.skin.movers);
        get(stream, part.skin.inverseBinds);
        get(stream, part.skin.indices);
        get(stream, part.skin.weights);
        getEach(stream, part.morphs, [&stream](SpaceMorph& morph) {
            stream >> morph.node;
            get(stream, morph.offsets);
        });
    });
    get(stream, scene.movers);
}

QByteArray bytesOf(const SpaceFrame& frame) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << frame.size << frame.place << frame.view << frame.projection;
    put(stream, frame.pose.worlds);
    put(stream, frame.pose.weights);
    put(stream, frame.pose.looks);
    put(stream, frame.pose.isHidden);
    put(stream, frame.lights);
    put(stream, frame.bones);
    put(stream, frame.pickedParts);
    return bytes;
}

void read(QDataStream& stream, SpaceFrame& frame) {
    stream >> frame.size >> frame.place >> frame.view >> frame.projection;
    get(stream, frame.pose.worlds);
    get(stream, frame.pose.weights);
    get(stream, frame.pose.looks);
    get(stream, frame.pose.isHidden);
    get(stream, frame.lights);
    get(stream, frame.bones);
    get(stream, frame.pickedParts);
}

} // namespace ka::studio
