#include <cstring>
#include <kaMotion/MotionStream.h>
#include <type_traits>

namespace ka::motion {

namespace {

constexpr std::uint32_t magic = 0x6B614D33;

/// The layout, told once for both directions: `stream` either packs the parts that it is given or fills them.
template <class Stream, class Part>
void describe(Stream& stream, Part& part) {
    using Plain = std::remove_const_t<Part>;
    if constexpr (std::is_same_v<Plain, std::string>) {
        stream(part);
    } else if constexpr (std::is_same_v<Plain, MotionChannel<1>> || std::is_same_v<Plain, MotionChannel<3>> ||
                         std::is_same_v<Plain, MotionChannel<4>>) {
        stream(part.interpolation);
        stream.list(part.keys);
    } else if constexpr (std::is_same_v<Plain, MotionTrack>) {
        stream(part.node);
        describe(stream, part.translation);
        describe(stream, part.scale);
        describe(stream, part.angles);
        describe(stream, part.quaternion);
        stream.list(part.weights);
    } else if constexpr (std::is_same_v<Plain, MotionTake>) {
        stream(part.name);
        stream.list(part.tracks);
        stream.list(part.properties);
    } else if constexpr (std::is_same_v<Plain, MotionPropertyTrack>) {
        stream(part.property);
        stream(part.owner);
        stream.list(part.components);
    } else if constexpr (std::is_same_v<Plain, MotionCamera>) {
        stream(part.name);
        stream.numbers(part.nodes);
        stream(part.fieldOfView);
        stream(part.position);
        stream(part.direction);
        stream(part.up);
    } else if constexpr (std::is_same_v<Plain, MotionLight>) {
        stream(part.name);
        stream.numbers(part.nodes);
        stream(part.kind);
        stream(part.color);
        stream(part.position);
        stream(part.direction);
        stream(part.innerCone);
        stream(part.outerCone);
        stream(part.attenuation);
    } else if constexpr (std::is_same_v<Plain, MotionNode>) {
        stream(part.name);
        stream(part.parent);
        stream(part.translation);
        stream(part.rotation);
        stream(part.scale);
        stream(part.order);
        stream(part.isVisible);
    } else if constexpr (std::is_same_v<Plain, MotionMaterial>) {
        stream(part.name);
        stream(part.color);
        stream(part.emission);
        stream(part.pictureFile);
        stream(part.picture);
    } else if constexpr (std::is_same_v<Plain, MotionMorph>) {
        stream(part.name);
        stream(part.weight);
        stream.numbers(part.offsets);
    } else if constexpr (std::is_same_v<Plain, MotionSkin>) {
        stream.numbers(part.joints);
        stream.numbers(part.inverseBinds);
    } else if constexpr (std::is_same_v<Plain, MotionMesh>) {
        stream(part.name);
        stream.numbers(part.nodes);
        stream(part.material);
        stream(part.skin);
        stream.numbers(part.positions);
        stream.numbers(part.normals);
        stream.numbers(part.colors);
        stream.numbers(part.texCoords);
        stream.numbers(part.indices);
        stream.numbers(part.joints);
        stream.numbers(part.weights);
        stream.list(part.morphs);
    } else if constexpr (std::is_same_v<Plain, Motion>) {
        stream.list(part.nodes);
        stream.list(part.takes);
        stream.list(part.meshes);
        stream.list(part.materials);
        stream.list(part.skins);
        stream.list(part.cameras);
        stream.list(part.lights);
        stream.list(part.notes);
    } else {
        stream(part.time);
        stream(part.value);
        stream(part.inTangent);
        stream(part.outTangent);
    }
}

class Packer {
  public:
    template <class Value>
    void operator()(const Value& value) {
        static_assert(std::is_trivially_copyable_v<Value>);
        _bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    }

    void operator()(const std::string& text) {
        (*this)(static_cast<std::uint64_t>(text.size()));
        _bytes += text;
    }

    template <class Item>
    void list(const std::vector<Item>& items) {
        (*this)(static_cast<std::uint64_t>(items.size()));
        for (const Item& item : items)
            describe(*this, item);
    }

    template <class Number>
    void numbers(const std::vector<Number>& list) {
        (*this)(static_cast<std::uint64_t>(list.size()));
        _bytes.append(reinterpret_cast<const char*>(list.data()), list.size() * sizeof(Number));
    }

    std::string take() { return std::move(_bytes); }

  private:
    std::string _bytes;
};

/// Bytes of an item that holds nothing, packed.
template <class Item>
std::size_t sizeOfEmpty() {
    static const std::size_t size = [] {
        Packer pack;
        const Item empty{};
        describe(pack, empty);
        return pack.take().size();
    }();
    return size;
}

class Unpacker {
  public:
    explicit Unpacker(std::string_view bytes) : _bytes(bytes) {}

    template <class Value>
    void operator()(Value& value) {
        static_assert(std::is_trivially_copyable_v<Value>);
        if (_bytes.size() < sizeof value)
            return fail();
        std::memcpy(&value, _bytes.data(), sizeof value);
        _bytes.remove_prefix(sizeof value);
    }

    void operator()(Interpolation& value) { choice(value, Interpolation::Cubic); }
    void operator()(MotionProperty& value) { choice(value, MotionProperty::Visible); }
    void operator()(LightKind& value) { choice(value, LightKind::Spot); }
    void operator()(bool& value) { choice(value, true); }

    void operator()(EulerOrder& order) {
        EulerOrder read{};
        int seen = 0;
        for (int& axis : read) {
            (*this)(axis);
            if (axis < 0 || axis > 2)
                return fail();
            seen |= 1 << axis;
        }
        if (seen != 7)
            return fail();
        order = read;
    }

    void operator()(std::string& text) {
        std::uint64_t size = 0;
        (*this)(size);
        if (size > _bytes.size())
            return fail();
        text = std::string(_bytes.substr(0, size));
        _bytes.remove_prefix(size);
    }

    template <class Item>
    void list(std::vector<Item>& items) {
        std::uint64_t count = 0;
        (*this)(count);
        // No item is packed shorter than an empty one, which is at most six times as large in memory: the
        // count cannot make us reserve more than that multiple of what was sent.
        if (count > _bytes.size() / sizeOfEmpty<Item>())
            return fail();
        items.reserve(count);
        for (std::uint64_t i = 0; i < count && !_failed; ++i)
            describe(*this, items.emplace_back());
    }

    template <class Number>
    void numbers(std::vector<Number>& list) {
        std::uint64_t count = 0;
        (*this)(count);
        if (count > _bytes.size() / sizeof(Number))
            return fail();
        list.resize(count);
        if (count > 0)
            std::memcpy(list.data(), _bytes.data(), count * sizeof(Number));
        _bytes.remove_prefix(count * sizeof(Number));
    }

    bool isComplete() const { return !_failed && _bytes.empty(); }

  private:
    /// One of the values up to `last`.
    template <class Choice>
    void choice(Choice& value, Choice last) {
        std::uint8_t number = 0;
        (*this)(number);
        if (number > static_cast<std::uint8_t>(last))
            return fail();
        value = static_cast<Choice>(number);
    }

    void fail() {
        _failed = true;
        _bytes = {};
    }

    std::string_view _bytes;
    bool _failed = false;
};

} // namespace

std::string packMotion(const Motion& motion) {
    Packer pack;
    pack(magic);
    describe(pack, motion);
    return pack.take();
}

std::optional<Motion> unpackMotion(std::string_view bytes) {
    Unpacker unpack(bytes);
    std::uint32_t start = 0;
    unpack(start);
    Motion motion;
    describe(unpack, motion);
    if (start != magic || !unpack.isComplete())
        return std::nullopt;
    return motion;
}

} // namespace ka::motion
