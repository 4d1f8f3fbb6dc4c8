#pragma once

#include <OpenSG/OSGContainer.h>
#include <OpenSG/OSGNode.h>

namespace ka_test {

/// An attachment type of a host's own, outside of the library.
class Wind : public osg::Container<Wind, osg::Attachment> {
  public:
    static constexpr const osg::Char8* TypeName = "Wind";
    enum : osg::UInt32 { StrengthFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr osg::BitVector StrengthFieldMask = osg::fieldMask(StrengthFieldId);

    static osg::FieldContainerType& getClassType() {
        static osg::FieldContainerType& type = osg::declareType<Wind>({
            osg::describe<&Wind::_sfStrength>("strength"),
        });
        return type;
    }

    osg::Real32 getStrength() const { return _sfStrength.getValue(); }
    void setStrength(osg::Real32 strength) { _sfStrength.setValue(strength); }

    void changed(osg::BitVector whichField, osg::UInt32 origin) override {
        lastChange = whichField;
        Inherited::changed(whichField, origin);
    }
    osg::BitVector lastChange = 0;

  private:
    friend struct osg::ContainerAccess;
    osg::SFReal32 _sfStrength;
};

using WindPtr = Wind::Ptr;

} // namespace ka_test
