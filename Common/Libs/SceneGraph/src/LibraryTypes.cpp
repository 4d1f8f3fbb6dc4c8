#include "LibraryTypes.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGAnimationAttachment.h>
#include <OpenSG/OSGAnimationBlock.h>
#include <OpenSG/OSGAnimationClip.h>
#include <OpenSG/OSGAnimationControlPoint.h>
#include <OpenSG/OSGAnimationCurve.h>
#include <OpenSG/OSGAnimationTrack.h>
#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGAttachmentContainer.h>
#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGComponentTransform.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGDrawable.h>
#include <OpenSG/OSGGeoColors4f.h>
#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoNormals3f.h>
#include <OpenSG/OSGGeoPLengthsUI32.h>
#include <OpenSG/OSGGeoPTypesUI8.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGLight.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGMaterialDrawable.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGMorphTarget.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGNodeCore.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGPerspectiveCamera2.h>
#include <OpenSG/OSGPicture.h>
#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSkin.h>
#include <OpenSG/OSGSpotLight.h>
#include <OpenSG/OSGSwitch.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGTransform3D.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <OpenSG/OSGUberMaterial.h>

namespace osg {

namespace {

using GetType = FieldContainerType& (*)();

const GetType LIBRARY_TYPES[] = {
    &Node::getClassType,
    &Group::getClassType,
    &Transform::getClassType,
    &Transform3D::getClassType,
    &AnimAttachment::getClassType,
    &AnimationAttachment::getClassType,
    &AnimationBlock::getClassType,
    &AnimationClip::getClassType,
    &AnimationControlPoint::getClassType,
    &AnimationCurve::getClassType,
    &AnimationTrack::getClassType,
    &Attachment::getClassType,
    &AttachmentContainer::getClassType,
    &Camera::getClassType,
    &CameraSetting::getClassType,
    &ComponentTransform::getClassType,
    &DirectionalLight::getClassType,
    &Drawable::getClassType,
    &GeoColors4f::getClassType,
    &GeoIndicesUI32::getClassType,
    &GeoNormals3f::getClassType,
    &GeoPLengthsUI32::getClassType,
    &GeoPTypesUI8::getClassType,
    &GeoPositions3f::getClassType,
    &GeoProperty::getClassType,
    &GeoTexCoords2f::getClassType,
    &Geometry::getClassType,
    &Light::getClassType,
    &Material::getClassType,
    &MaterialDrawable::getClassType,
    &MaterialGroup::getClassType,
    &MorphTarget::getClassType,
    &Name::getClassType,
    &NodeCore::getClassType,
    &PerspectiveCamera::getClassType,
    &PerspectiveCamera2::getClassType,
    &Picture::getClassType,
    &PointLight::getClassType,
    &SimpleMaterial::getClassType,
    &Skin::getClassType,
    &SpotLight::getClassType,
    &Switch::getClassType,
    &TransformAttachment::getClassType,
    &UberMaterial::getClassType,
};

} // namespace

void registerLibraryTypes() {
    for (const GetType getType : LIBRARY_TYPES)
        getType().getPrototype();
}

} // namespace osg
