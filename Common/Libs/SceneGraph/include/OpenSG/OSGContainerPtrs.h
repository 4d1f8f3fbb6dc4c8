#pragma once

#include <OpenSG/OSGFieldContainerPtr.h>

/// @file
/// Every container type of the library by name, with its handle: enough wherever handles are only passed on.

namespace osg {

class KA_SCENEGRAPH_API AttachmentContainer;
class KA_SCENEGRAPH_API Attachment;
class KA_SCENEGRAPH_API Node;
class KA_SCENEGRAPH_API NodeCore;
class KA_SCENEGRAPH_API NodePtr;

using AttachmentContainerPtr = FCPtr<FieldContainerPtr, AttachmentContainer>;
using AttachmentPtr = FCPtr<FieldContainerPtr, Attachment>;
using NodeCorePtr = FCPtr<AttachmentContainerPtr, NodeCore>;

/// Handle of a node.
class KA_SCENEGRAPH_API NodePtr : public AttachmentContainerPtr {
  public:
    using StoredObjectType = Node;
    using ObjectType = NodePtr;
    using Inherited = AttachmentContainerPtr;

    NodePtr() = default;
    NodePtr(const NullFieldContainerPtr&) {}
    explicit NodePtr(Node& node);
    explicit NodePtr(Node* node);

    /// The node as such; null when the container is something else or `handle` is null.
    static NodePtr dcast(const FieldContainerPtr& handle);

    inline Node* operator->() const;
    inline Node& operator*() const;
    inline Node* getCPtr() const;

    /// The address of the node's core, null without one; `node->getCore()` gives its handle.
    NodeCore* getCore() const;
};

class KA_SCENEGRAPH_API Group;
class KA_SCENEGRAPH_API Transform;
class KA_SCENEGRAPH_API Transform3D;
class KA_SCENEGRAPH_API ComponentTransform;
class KA_SCENEGRAPH_API Switch;
class KA_SCENEGRAPH_API MaterialGroup;
class KA_SCENEGRAPH_API Light;
class KA_SCENEGRAPH_API PointLight;
class KA_SCENEGRAPH_API SpotLight;
class KA_SCENEGRAPH_API DirectionalLight;
class KA_SCENEGRAPH_API Drawable;
class KA_SCENEGRAPH_API MaterialDrawable;
class KA_SCENEGRAPH_API Geometry;
class KA_SCENEGRAPH_API CameraSetting;
using GroupPtr = FCPtr<NodeCorePtr, Group>;
using TransformPtr = FCPtr<GroupPtr, Transform>;
using Transform3DPtr = FCPtr<TransformPtr, Transform3D>;
using ComponentTransformPtr = FCPtr<TransformPtr, ComponentTransform>;
using SwitchPtr = FCPtr<GroupPtr, Switch>;
using MaterialGroupPtr = FCPtr<GroupPtr, MaterialGroup>;
using LightPtr = FCPtr<GroupPtr, Light>;
using PointLightPtr = FCPtr<LightPtr, PointLight>;
using SpotLightPtr = FCPtr<PointLightPtr, SpotLight>;
using DirectionalLightPtr = FCPtr<LightPtr, DirectionalLight>;
using DrawablePtr = FCPtr<NodeCorePtr, Drawable>;
using MaterialDrawablePtr = FCPtr<DrawablePtr, MaterialDrawable>;
using GeometryPtr = FCPtr<MaterialDrawablePtr, Geometry>;
using CameraSettingPtr = FCPtr<NodeCorePtr, CameraSetting>;

class KA_SCENEGRAPH_API Material;
class KA_SCENEGRAPH_API SimpleMaterial;
class KA_SCENEGRAPH_API UberMaterial;
using MaterialPtr = FCPtr<AttachmentContainerPtr, Material>;
using SimpleMaterialPtr = FCPtr<MaterialPtr, SimpleMaterial>;
using UberMaterialPtr = FCPtr<MaterialPtr, UberMaterial>;

class KA_SCENEGRAPH_API Camera;
class KA_SCENEGRAPH_API PerspectiveCamera;
class KA_SCENEGRAPH_API PerspectiveCamera2;
using CameraPtr = FCPtr<AttachmentContainerPtr, Camera>;
using PerspectiveCameraPtr = FCPtr<CameraPtr, PerspectiveCamera>;
using PerspectiveCamera2Ptr = FCPtr<PerspectiveCameraPtr, PerspectiveCamera2>;

class KA_SCENEGRAPH_API Name;
class KA_SCENEGRAPH_API AnimAttachment;
class KA_SCENEGRAPH_API TransformAttachment;
using NamePtr = FCPtr<AttachmentPtr, Name>;
using AnimAttachmentPtr = FCPtr<AttachmentPtr, AnimAttachment>;
using TransformAttachmentPtr = FCPtr<AttachmentPtr, TransformAttachment>;

class KA_SCENEGRAPH_API GeoProperty;
class KA_SCENEGRAPH_API GeoPTypesUI8;
class KA_SCENEGRAPH_API GeoPLengthsUI32;
class KA_SCENEGRAPH_API GeoPositions3f;
class KA_SCENEGRAPH_API GeoNormals3f;
class KA_SCENEGRAPH_API GeoColors4f;
class KA_SCENEGRAPH_API GeoTexCoords2f;
class KA_SCENEGRAPH_API GeoIndicesUI32;
using GeoPropertyPtr = FCPtr<AttachmentPtr, GeoProperty>;
using GeoPTypesUI8Ptr = FCPtr<GeoPropertyPtr, GeoPTypesUI8>;
using GeoPLengthsUI32Ptr = FCPtr<GeoPropertyPtr, GeoPLengthsUI32>;
using GeoPositions3fPtr = FCPtr<GeoPropertyPtr, GeoPositions3f>;
using GeoNormals3fPtr = FCPtr<GeoPropertyPtr, GeoNormals3f>;
using GeoColors4fPtr = FCPtr<GeoPropertyPtr, GeoColors4f>;
using GeoTexCoords2fPtr = FCPtr<GeoPropertyPtr, GeoTexCoords2f>;
using GeoIndicesUI32Ptr = FCPtr<GeoPropertyPtr, GeoIndicesUI32>;

class KA_SCENEGRAPH_API AnimationAttachment;
class KA_SCENEGRAPH_API AnimationClip;
class KA_SCENEGRAPH_API AnimationTrack;
class KA_SCENEGRAPH_API AnimationBlock;
class KA_SCENEGRAPH_API AnimationCurve;
class KA_SCENEGRAPH_API AnimationControlPoint;
using AnimationAttachmentPtr = FCPtr<AttachmentPtr, AnimationAttachment>;
using AnimationClipPtr = FCPtr<AttachmentContainerPtr, AnimationClip>;
using AnimationTrackPtr = FCPtr<AttachmentContainerPtr, AnimationTrack>;
using AnimationBlockPtr = FCPtr<AttachmentContainerPtr, AnimationBlock>;
using AnimationCurvePtr = FCPtr<AttachmentContainerPtr, AnimationCurve>;
using AnimationControlPointPtr = FCPtr<AttachmentContainerPtr, AnimationControlPoint>;

} // namespace osg
