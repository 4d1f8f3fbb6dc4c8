#include "SceneDump.h"

#include <OpenSG/OSGAttachmentMapFields.h>
#include <OpenSG/OSGMFBaseTypes.h>
#include <OpenSG/OSGSFBaseTypes.h>
#include <cstring>
#include <iomanip>
#include <map>
#include <sstream>

namespace ka_test {

namespace {

template <class T>
std::string bytes(const T& value) {
    unsigned char raw[sizeof(T)];
    std::memcpy(raw, &value, sizeof raw);
    std::ostringstream out;
    for (const unsigned char byte : raw)
        out << std::hex << std::setw(2) << std::setfill('0') << int(byte);
    return out.str();
}

template <class T>
bool dumpSingle(const osg::Field& field, std::string& out) {
    const auto* single = dynamic_cast<const T*>(&field);
    if (single != nullptr)
        out += bytes(single->getValue());
    return single != nullptr;
}

template <class T>
bool dumpMulti(const osg::Field& field, std::string& out) {
    const auto* multi = dynamic_cast<const T*>(&field);
    if (multi == nullptr)
        return false;
    for (const auto& value : *multi)
        out += bytes(value) + ' ';
    return true;
}

template <class... Ts>
bool dumpSingles(const osg::Field& field, std::string& out) {
    return (dumpSingle<Ts>(field, out) || ...);
}

template <class... Ts>
bool dumpMultis(const osg::Field& field, std::string& out) {
    return (dumpMulti<Ts>(field, out) || ...);
}

std::string values(const osg::Field& field) {
    std::string out;
    using namespace osg;
    if (const auto* text = dynamic_cast<const SFString*>(&field))
        return std::to_string(text->getValue().size()) + ':' + text->getValue();
    if (const auto* texts = dynamic_cast<const MFString*>(&field)) {
        for (const std::string& one : *texts)
            out += std::to_string(one.size()) + ':' + one + ' ';
        return out;
    }
    const bool isKnown =
        dumpSingles<SFBool, SFInt8, SFUInt8, SFInt16, SFUInt16, SFInt32, SFUInt32, SFInt64, SFUInt64,
                    SFReal32, SFReal64, SFTime, SFBitVector, SFVec2f, SFVec3f, SFVec4f, SFPnt2f, SFPnt3f,
                    SFPnt4f, SFColor3f, SFColor4f, SFQuaternion, SFMatrix>(field, out) ||
        dumpMultis<MFInt8, MFUInt8, MFInt16, MFUInt16, MFInt32, MFUInt32, MFInt64, MFUInt64, MFReal32,
                   MFReal64, MFTime, MFVec2f, MFVec3f, MFVec4f, MFPnt2f, MFPnt3f, MFPnt4f, MFColor3f,
                   MFColor4f, MFQuaternion, MFMatrix>(field, out);
    if (!isKnown)
        field.getValueByStr(out);
    return out;
}

class Dumper {
  public:
    std::string dumpContainer(const osg::FieldContainerPtr& container) {
        if (container == osg::NullFC)
            return "null\n";
        const auto known = _numbers.find(container.getFieldContainerId());
        if (known != _numbers.end())
            return "#" + std::to_string(known->second) + "\n";
        const std::size_t number = _numbers.size();
        _numbers.emplace(container.getFieldContainerId(), number);
        std::string out = "#" + std::to_string(number) + " " + container->getTypeName() + "\n";
        _indent += 1;
        const osg::FieldContainerType& type = container->getType();
        for (osg::UInt32 id = 1; id <= type.getNumFieldDescs(); ++id) {
            if (!type.getFieldDescription(id)->isInternal())
                out += dumpField(*container->getField(id), type.getFieldDescription(id)->getCName());
        }
        container->visitProperties([&](const char* name, std::variant<osg::Real32*, bool*> value) {
            out += line(name) + std::visit([](const auto* what) { return bytes(*what); }, value) + "\n";
        });
        _indent -= 1;
        return out;
    }

  private:
    std::string line(const std::string& name) const { return std::string(_indent, ' ') + name + " = "; }

    std::string dumpField(const osg::Field& field, const std::string& name) {
        std::string out;
        if (const auto* attachments = dynamic_cast<const osg::SFAttachmentMap*>(&field)) {
            // In order of the types' names: the map's own order follows ids.
            std::map<std::string, std::string> sorted;
            std::map<std::string, osg::AttachmentPtr> byName;
            for (const auto& [key, attachment] : attachments->getValue())
                byName[attachment->getTypeName() + std::to_string(key & 0xFFFFU)] = attachment;
            for (const auto& [attachmentName, attachment] : byName)
                out += line(name + " " + attachmentName) + dumpContainer(attachment);
            return out;
        }
        if (!field.isPointerField())
            return line(name) + values(field) + "\n";
        for (osg::UInt32 i = 0; i < field.getSize(); ++i)
            out += line(name) + dumpContainer(field.getPointer(i));
        return out;
    }

    std::map<osg::UInt32, std::size_t> _numbers;
    std::size_t _indent = 0;
};

} // namespace

std::string dump(const osg::FieldContainerPtr& container) {
    return Dumper().dumpContainer(container);
}

} // namespace ka_test
