#pragma once

#include "kaAnimationExport.h"
#include "kaAnimationTypes.h"

#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGColor.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGVector.h>
#include <string>
#include <vector>

class kaAnimationField;
class kaAnimationObject;

/// Static helpers: values between fields and the scene, the scene's animation attachments, small conversions.
class KA_ANIMATION_API kaAnimationUtils {
  public:
    kaAnimationUtils() = delete;

    // Conversions.

    /// Whether the value, rounded half away from zero, is greater than 0. NaN is false.
    static bool floatToBool(float value);
    /// The value rounded half away from zero. NaN and values outside the range of int give the smallest int.
    static int floatToInt(float value);
    /// The same rounding, as float; values too large to have a fraction, infinities and NaN come back
    /// unchanged.
    static float snap(float value);
    /// Rounds the chosen coordinates of a point.
    static osg::Pnt2f snap(osg::Pnt2f point, bool snapX, bool snapY);
    /// Tangent type of the older in-scene format (1 to 6) as `kaControlPoint2D::TangentMode`; others give
    /// flat.
    static unsigned int convertTangentType(unsigned int type);
    /// Sorting of pointers by begin or end; null on either side gives false.
    static bool sortBeginBased(kaAnimationObject* a, kaAnimationObject* b);
    /// The same by end.
    static bool sortEndBased(kaAnimationObject* a, kaAnimationObject* b);

    // Fields.

    /// The attribute under the name that fields carry: "translateX" and "rotateX" are older spellings of
    /// "translationX" and "rotationX", likewise for Y and Z; other names come back as they are.
    static std::string fullAttributeName(const std::string& attribute);
    /// Derives a field record's addressing from a node and an attribute as the host spells it. All outputs
    /// stay unchanged when `nodeID` is no node or `input` is empty. Kept exactly: the name is cut by the
    /// length of `input`, so that "translateX" gives the attribute "translationX" and the name "translati".
    static void computeAnimationFieldAttributes(kaUID nodeID, const std::string& input, unsigned int& fcID,
                                                std::string& attribute, std::string& name,
                                                unsigned int& valuePos);
    /// Recomputes a field's `fcID` from its `nodeID` and `attribute`.
    static void computeCoreTypeID(kaAnimationField* field);
    /// Colour in which a curve of this field is drawn, by the attribute's last letter; black for null or no
    /// letter.
    static osg::Color3f getDefaultCurveColor(kaAnimationField* field);
    /// Writes the field's `value` into the scene where it differs and announces the change.
    /// @return false when the container or the node is missing.
    /// Cost: a check of what the last write resolved; a search only after the record or the scene changed.
    static bool setOSGFieldValue(kaAnimationField* field);
    /// Reads the scene's value, angles in degrees; 0 when nothing can be read.
    static float getOSGFieldValue(kaAnimationField* field);

    // Animation attachments of scene nodes.

    /// The node's `osg::AnimAttachment`, or null.
    static osg::AttachmentPtr getAnimationAttachment(const osg::NodePtr& node);
    /// The node's `osg::AnimationAttachment` of the older format, or null.
    static osg::AttachmentPtr getOldAnimationAttachment(const osg::NodePtr& node);
    /// The node's attachment, made and announced when missing; a newly made one gets the node's fields with
    /// `createFields`. Null for a null node, and where the host took node or attachment away in answer to the
    /// announcement.
    static osg::AttachmentPtr createAnimationAttachment(osg::NodePtr node, bool createFields);
    /// The registered objects (fields) that the node lists, in list order; nothing is created.
    static std::vector<kaAnimationObject*> getAnimationObjects(const osg::NodePtr& node);
    /// @copydoc getAnimationObjects
    static std::vector<kaAnimationField*> getAnimationFields(const osg::NodePtr& node);
    /// Lists the object on the node, unchecked for repeats, making attachment and fields where the node has
    /// none; for a block the first listing of each of its curves goes.
    /// @return false for null, and where the host freed the object in answer to the attachment's
    /// announcement. Cost: O(n log c) for n listed objects and the c curves of a block, else O(1).
    static bool addAnimationObject(const osg::NodePtr& node, kaAnimationObject* object);
    /// Removes the first listing of the object; the host is not called. @return whether there was one.
    static bool subAnimationObject(const osg::NodePtr& node, kaAnimationObject* object);
    /// Detaches the attachment and announces the change. @return whether there was one.
    static bool removeAnimationAttachment(osg::NodePtr node);
    /// The node that animation of `node` is bound to: a geometry's parent when that is a transform, else the
    /// node itself; null for a null node or one without core.
    static osg::NodePtr getAnimationNode(const osg::NodePtr& node);

    // Pasting.

    /// Whether the object's curves can drive the node: every curve's field is registered, its container
    /// exists and is of the type group of the node's core, or a node. False for null and for a node without
    /// core.
    static bool checkPasteTo(const osg::NodePtr& node, kaAnimationObject* object);
    /// Whether that holds for every object that is not null.
    static bool checkPasteTo(const osg::NodePtr& node, const std::vector<kaAnimationObject*>& objects);
    /// Moves each curve of the object to the node's last listed field of the same attribute and component; a
    /// curve without such a field keeps its own. A block is bound to the node.
    /// @return false, with nothing changed, for null and for a node without core.
    static bool changeObjectReferenceFields(kaAnimationObject* object, const osg::NodePtr& node);
};
