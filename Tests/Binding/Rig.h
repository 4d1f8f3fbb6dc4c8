#pragma once

#include "kaAnimationField.h"
#include "kaAnimationManager.h"

#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGFieldContainerFields.h>
#include <OpenSG/OSGMFSysTypes.h>
#include <OpenSG/OSGMFVecTypes.h>
#include <OpenSG/OSGMatrixFields.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGNodeCore.h>
#include <OpenSG/OSGSFBaseTypes.h>
#include <OpenSG/OSGSFMathTypes.h>
#include <OpenSG/OSGSFSysTypes.h>
#include <OpenSG/OSGSFVecTypes.h>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace binding_test {

/// What a container was told by `changed`, and what it does in answer.
struct Watch {
    struct Call {
        osg::UInt32 container;
        osg::BitVector mask;
        osg::UInt32 origin;

        friend bool operator==(const Call& a, const Call& b) {
            return a.container == b.container && a.mask == b.mask && a.origin == b.origin;
        }
    };

    std::vector<Call> calls;
    std::function<void()> answer; ///< taken away before it is called, so that it runs once

    void note(osg::FieldContainer& container, osg::BitVector mask, osg::UInt32 origin);
};

/// Where the containers of this file report to.
Watch& watch();

/// A core with a field of every content type, plain and named as an angle.
class Rig : public osg::Container<Rig, osg::NodeCore> {
  public:
    static constexpr const osg::Char8* TypeName = "BindingTestRig";
    enum : osg::UInt32 { FirstFieldId = Inherited::NextFieldId, NextFieldId = FirstFieldId + 29 };

    static osg::FieldContainerType& getClassType();
    void changed(osg::BitVector mask, osg::UInt32 origin) override;

    osg::SFVec3f vec3f, rotateVec3f;
    osg::SFVec2f vec2f, rotateVec2f;
    osg::SFReal32 real32, rotateReal32;
    osg::SFColor4f color4f, rotateColor4f;
    osg::SFColor3f color3f, rotateColor3f;
    osg::SFPnt4f pnt4f, rotatePnt4f;
    osg::SFPnt3f pnt3f, rotatePnt3f;
    osg::SFPnt2f pnt2f, rotatePnt2f;
    osg::SFVec4f vec4f, rotateVec4f;
    osg::SFReal64 real64, rotateReal64;
    osg::SFReal32 fieldOfView;
    osg::SFMatrix matrix, rotateMatrix;
    osg::SFInt32 int32;
    osg::SFUInt8 uint8;
    osg::SFBool flag;
    osg::MFReal32 reals;
    osg::MFVec3f vectors;
    osg::SFVec4f tintColor;

  private:
    friend struct osg::ContainerAccess;
};
using RigPtr = Rig::Ptr;

/// A node, a camera setting and a material group of the host's own types, which report `changed` too.
class WatchedNode : public osg::Container<WatchedNode, osg::Node> {
  public:
    static constexpr const osg::Char8* TypeName = "BindingTestNode";
    enum : osg::UInt32 { NextFieldId = Inherited::NextFieldId };
    static osg::FieldContainerType& getClassType();
    void changed(osg::BitVector mask, osg::UInt32 origin) override;
};

class WatchedCamera : public osg::Container<WatchedCamera, osg::CameraSetting> {
  public:
    static constexpr const osg::Char8* TypeName = "BindingTestCamera";
    enum : osg::UInt32 { NextFieldId = Inherited::NextFieldId };
    static osg::FieldContainerType& getClassType();
    void changed(osg::BitVector mask, osg::UInt32 origin) override;
};

/// Records what is announced while it lives, in place of the current change list.
class Recorder {
  public:
    Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    ~Recorder();

    /// The entries since the last call.
    std::vector<std::pair<osg::UInt32, osg::BitVector>> take();

  private:
    osg::ChangeList _list;
    osg::ChangeList* _former;
};

/// Keeps a container alive for a test, or until `release`.
class Kept {
  public:
    explicit Kept(const osg::FieldContainerPtr& container) : _container(container) {
        osg::addRefCP(_container);
    }
    Kept(const Kept&) = delete;
    Kept& operator=(const Kept&) = delete;
    ~Kept() { release(); }

    void release() {
        const osg::FieldContainerPtr container = std::exchange(_container, osg::FieldContainerPtr());
        if (container != osg::NullFC)
            osg::subRefCP(container);
    }

  private:
    osg::FieldContainerPtr _container;
};

/// A registered record that addresses `name` of a container and animates it under the same attribute.
kaAnimationField* makeField(const osg::FieldContainerPtr& container, const std::string& name,
                            unsigned int valuePos = 0);

/// A registered record of a special attribute of a node, addressed through the node itself.
kaAnimationField* makeNodeField(const osg::NodePtr& node, const std::string& attribute);

/// Sets the record's value and writes it.
bool write(kaAnimationField* field, float value);

/// The attributes of records, in order.
std::vector<std::string> attributesOf(const std::vector<kaAnimationField*>& fields);

} // namespace binding_test
