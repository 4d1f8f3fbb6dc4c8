#pragma once

#include <OpenSG/OSGIDString.h>

namespace osg {

/// What has a name and an id in the one id space that data types, field types and container types share.
/// Ids start at 1 and depend on the order in which types are first used: compare them, never store them.
class KA_SCENEGRAPH_API TypeBase {
  public:
    TypeBase(const TypeBase&) = delete;
    TypeBase& operator=(const TypeBase&) = delete;

    UInt32 getId() const { return _id; }
    const IDString& getName() const { return _name; }
    const Char8* getCName() const { return _name.str(); }
    const IDString& getParentName() const { return _parentName; }
    const Char8* getCParentName() const { return _parentName.str(); }

    friend bool operator==(const TypeBase& a, const TypeBase& b) { return a._id == b._id; }
    friend bool operator!=(const TypeBase& a, const TypeBase& b) { return a._id != b._id; }

  protected:
    TypeBase(std::string name, std::string parentName);
    virtual ~TypeBase();

  private:
    UInt32 _id;
    IDString _name;
    IDString _parentName;
};

} // namespace osg
