#pragma once

#include "kaAnimationField.h"

#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGField.h>
#include <OpenSG/OSGFieldContainerPtr.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

/// What a field record addresses in the scene: resolved once, cached with the record and validated at every use
/// (`kaFieldAccess`).
///
/// Validation compares the record's address members with those that were resolved, because the host writes them
/// directly; where they differ the record is resolved again. That the container is still there is asked of the
/// container store: ids are never reused, so an occupied slot means the same container, and its storage
/// stands. What can change behind an unchanged record (the camera-path flag, a node's attachments, the
/// values) is read at each use.
struct kaFieldBinding {
    /// How the addressed scalar is held.
    enum class Target : unsigned char {
        Floats, ///< single-precision components side by side in a single field
        Double, ///< one `Real64`
        Text,   ///< a field of another type, through its text form
        Camera, ///< a value behind the camera setting's accessors
        Node    ///< visibility or rotation of the scene node
    };

    /// Which special attribute is addressed, or which field that the host's camera mirrors.
    enum class Role : unsigned char {
        None,
        Distance,
        Height,
        TurnTableAngle,
        FStop,
        FocalLength,
        Visible,
        RotationX,
        RotationY,
        RotationZ,
        From,
        At,
        Up,
        Roll
    };

    /// The record's binding, brought up to date.
    /// @param container  the one that the record names; it is there.
    /// Cost: a few compares while nothing changed; else a walk of the container type's fields.
    static kaFieldBinding& of(kaAnimationField& field, const osg::FieldContainerPtr& container) {
        kaFieldBinding* binding = field._binding.get();
        return binding && binding->standsFor(field) ? *binding : updated(field, container);
    }

    /// The binding that the record's last use left if it still stands for the record, else null. Whether the
    /// container is there is not looked at.
    static const kaFieldBinding* standing(const kaAnimationField& field) {
        const kaFieldBinding* binding = field._binding.get();
        return binding && binding->standsFor(field) ? binding : nullptr;
    }

    /// Starts fetching from memory what `of` reads of the record's binding.
    static void fetch(const kaAnimationField& field) { __builtin_prefetch(field._binding.get()); }

    /// Whether the record's node is there; `node` is it then. For `Target::Node`.
    bool hasNode(const kaAnimationField& field);

    /// The Euler angles of `node` in degrees; zeros without transform attachment.
    osg::Vec3f rotation();

    /// A record's value as the scene holds it: angles in radians.
    static float storedForm(bool isAngle, float value);

    /// Characters that are compared at once.
    static constexpr std::size_t Word = sizeof(std::uint64_t);
    static std::uint64_t wordAt(const char* text) {
        std::uint64_t word = 0;
        std::memcpy(&word, text, sizeof(word));
        return word;
    }

    /// `a == b` in place: a call for the few words of a name would be most of a check's cost.
    static bool sameText(std::string_view a, const std::string& b) {
        const std::size_t size = a.size();
        if (size != b.size())
            return false;
        if (size < sizeof(std::uint64_t))
            return a == b;
        const std::size_t last = size - sizeof(std::uint64_t);
        for (std::size_t i = 0; i < last; i += sizeof(std::uint64_t))
            if (wordAt(a.data() + i) != wordAt(b.data() + i))
                return false;
        return wordAt(a.data() + last) == wordAt(b.data() + last);
    }

    /// The component that a position addresses: of a scalar its only one.
    static unsigned int componentAt(unsigned int valuePos, unsigned int count) {
        return count == 1 ? 0 : valuePos;
    }

    /// Whether the scene, which holds `count` components, has another number than the record. Angles are
    /// compared in radians with the record's degrees: an angle whose two forms differ is stored, and
    /// announced, at every write. Hosts see the announcements, so the order of compare and conversion stands.
    /// Beyond the components nothing differs.
    static bool differs(const osg::Real32* components, unsigned int count, const kaAnimationField& field) {
        const unsigned int component = componentAt(field.valuePos, count);
        return component < count && components[component] != field.value;
    }

    // What was resolved from. The texts belong to the scene's types, to the attribute names or to `ownNames`.

    std::string_view name;
    std::string_view attribute; ///< null where the attribute does not count
    osg::UInt32 fcID = 0;       ///< 0 = nothing resolved
    osg::UInt32 nodeID = 0;     ///< of `node`; 0 = none found

    // What it was resolved to.

    Target target = Target::Node;
    Role role = Role::None;
    bool isCamera = false;           ///< the container is a camera setting
    bool isAngle = false;            ///< radians in the scene, degrees in the record
    unsigned int componentCount = 0; ///< of `floats`
    union {
        osg::Real32* floats = nullptr; ///< for `Target::Floats`
        osg::Real64* number;           ///< for `Target::Double`
        osg::Field* text;              ///< for `Target::Text`
    };
    osg::BitVector mask = 0;                            ///< announced after a store
    const osg::FieldDescription* description = nullptr; ///< of the scene field; null where none is addressed

    osg::CameraSettingPtr camera; ///< the container, when it is a camera setting
    osg::NodePtr node;
    osg::TransformAttachmentPtr attachment; ///< of `node` when its rotation was last asked for
    osg::UInt32 attachmentID = 0;           ///< 0 = none found
    std::string ownNames[2];                ///< name and attribute where no lasting text equals them

  private:
    static kaFieldBinding& updated(kaAnimationField& field, const osg::FieldContainerPtr& container);
    void resolve(const kaAnimationField& field, const osg::FieldContainerPtr& container);
    void resolveSceneField(osg::Field& sceneField);
    void resolveAttribute(const kaAnimationField& field);
    std::string_view lasting(const std::string& text, std::size_t place);

    bool standsFor(const kaAnimationField& field) const {
        return fcID == static_cast<osg::UInt32>(field.fcID) && sameText(name, field.name) &&
               (!attribute.data() || sameText(attribute, field.attribute));
    }
};
