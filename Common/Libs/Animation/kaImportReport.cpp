#include "kaImportReport.h"

void kaImportReport::leaveOut(const std::string& kind, const std::string& name, Reason reason) {
    ++leftOutCount;
    if (leftOut.size() < MaximumListed)
        leftOut.push_back({kind, name, reason});
}

const char* kaImportReport::text(Reason reason) {
    switch (reason) {
    case Reason::NoCamera:
        return "no camera to receive the old camera animation";
    case Reason::NoNode:
        return "names no existing scene node";
    case Reason::NoAttribute:
        return "its node has no such attribute";
    case Reason::NotAClip:
        return "is no clip";
    case Reason::OnInnerNode:
        return "clips are read on the root only";
    case Reason::Ring:
        return "contains itself";
    case Reason::TooDeep:
        return "nested too deep";
    case Reason::TooManyRepeats:
        return "repeated too often";
    }
    return "";
}
