#pragma once

#include "kaAnimationField.h"

#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGField.h>
#include <OpenSG/OSGFieldContainerPtr.h>
#include <OpenSG/OSGNode.h>
#include <string>

/// What a field record addresses in the scene: resolved once, remembered with the record and checked at every
/// use.
///
/// The check asks the container store whether the container is still there (ids are never reused, so an
/// occupied slot means the same container, and its storage stands) and compares the record's addressing
/// members with those that were resolved, because the host writes them directly. Whatever differs is resolved
/// anew. What can change behind an unchanged record (the camera-path flag, a node's attachments, the values)
/// is read at each use.
///
/// Reading and writing live here because they are what the remembered form is for; `kaAnimationUtils` offers
/// them. Cost: one store look-up and a few compares while nothing changed; no allocation then, text forms
/// aside.
struct kaFieldBinding {
    /// `kaAnimationUtils::setOSGFieldValue` and `getOSGFieldValue` of a record that is there.
    static bool write(kaAnimationField& field);
    static float read(kaAnimationField& field);

  private:
    /// How the addressed scalar is held.
    enum class Target : unsigned char {
        Floats, ///< single-precision components side by side in a single field
        Double, ///< one `Real64`
        Text,   ///< a field of another type, through its text form
        Camera, ///< a value behind the camera setting's accessors
        Node    ///< visibility or rotation of the scene node
    };

    /// Which of the special attributes is addressed, or which field that the host's camera mirrors.
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

    struct RoleName;

    static kaFieldBinding& of(kaAnimationField& field, const osg::FieldContainerPtr& container);
    static Role roleNamed(const std::string& name, Role first, Role last);
    bool standsFor(const kaAnimationField& field) const;
    void resolve(const kaAnimationField& field, const osg::FieldContainerPtr& container);
    void resolveSceneField(osg::Field& sceneField, osg::BitVector mask);
    void resolveAttribute(const kaAnimationField& field);
    osg::NodePtr currentNode(const kaAnimationField& field);
    bool followsCameraPath() const;
    /// A scalar is addressed by any position.
    unsigned int componentAt(unsigned int valuePos) const { return _componentCount == 1 ? 0 : valuePos; }

    void writeFloat(const kaAnimationField& field, const osg::FieldContainerPtr& container) const;
    void writeDouble(const kaAnimationField& field, const osg::FieldContainerPtr& container) const;
    void writeText(const kaAnimationField& field, const osg::FieldContainerPtr& container) const;
    void writeCamera(float value) const;
    bool writeNode(const kaAnimationField& field);
    static void writeHostCamera(Role role, unsigned int component, float value);
    static void announce(const osg::FieldContainerPtr& container, osg::BitVector mask, Role role);

    float readFloat(unsigned int valuePos) const;
    float readDouble() const;
    float readText(unsigned int valuePos) const;
    float readCamera() const;
    float readNode(const kaAnimationField& field);

    // Read at every write, so kept together.
    std::string _name;     ///< the record's name when it was resolved
    osg::UInt32 _fcID = 0; ///< the container; 0 = nothing resolved
    Target _target = Target::Node;
    Role _role = Role::None;
    bool _isCamera = false;           ///< the container is a camera setting
    bool _isAngle = false;            ///< radians in the scene, degrees in the record
    unsigned int _componentCount = 0; ///< of `_floats`
    osg::UInt32 _nodeID = 0;          ///< of `_node`
    osg::Real32* _floats = nullptr;   ///< for `Target::Floats`
    osg::BitVector _mask = 0;         ///< announced after a store

    osg::Real64* _double = nullptr; ///< for `Target::Double`
    osg::Field* _text = nullptr;    ///< for `Target::Text`
    osg::CameraSettingPtr _camera;  ///< the container when it is a camera setting
    osg::NodePtr _node;             ///< for `Target::Node`
    std::string _attribute;         ///< the record's, for the targets that go by it
};
