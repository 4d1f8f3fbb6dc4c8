#include "check/NestingCheck.h"

namespace ka::motion {

namespace {

/// What an element is counted as before anything is joined to it; blocks and curves always.
unsigned int ownHeight(Kind kind) {
    return kind == Kind::Block ? 3 : kind == Kind::Curve ? 2 : 1;
}

} // namespace

NestingCheck::NestingCheck(const DocumentOutline& outline, const ElementsById& byId,
                           const std::vector<std::uint32_t>& targets)
    : _outline(outline), _byId(byId), _targets(targets), _joined(outline.elements.size()) {
    for (std::size_t i = 0; i < _joined.size(); ++i)
        _joined[i].height = ownHeight(outline.elements[i].kind);
}

bool NestingCheck::isContainer(std::uint32_t place) const {
    const Kind kind = _outline.elements[place].kind;
    return kind == Kind::Track || kind == Kind::Clip;
}

std::vector<std::uint32_t> NestingCheck::findLeftOut() {
    std::vector<std::uint32_t> leftOut;
    for (const DocumentOutline::Element& element : _outline.elements) {
        const DocumentOutline::Element* named = element.id == 0 ? nullptr : _byId.find(element.id);
        if (named == nullptr || named->kind != element.kind)
            continue;
        const auto holder = static_cast<std::uint32_t>(_byId.placeOf(*named));
        for (std::uint32_t i = element.firstReference; i < element.firstReference + element.references; ++i) {
            const std::uint32_t child = _targets[i];
            if (child == nobody || (_joined[child].parent == holder && _joined[child].between == 0))
                continue;
            const bool getsATrack =
                element.kind == Kind::Clip && _outline.elements[child].kind != Kind::Track;
            const unsigned int between = getsATrack ? 1 : 0;
            if (isContainer(holder) && wouldContainItself(holder, child))
                continue;
            if (isContainer(holder) && !fits(holder, child, between)) {
                leftOut.push_back(i);
                continue;
            }
            leave(child);
            join(holder, child, between);
        }
    }
    return leftOut;
}

bool NestingCheck::wouldContainItself(std::uint32_t holder, std::uint32_t child) const {
    if (!isContainer(child))
        return false;
    for (std::uint32_t above = holder; above != nobody; above = _joined[above].parent)
        if (above == child)
            return true;
    return false;
}

bool NestingCheck::fits(std::uint32_t holder, std::uint32_t child, unsigned int between) const {
    unsigned int depth = 0;
    for (std::uint32_t above = holder; above != nobody; above = _joined[above].parent)
        depth += 1 + _joined[above].between;
    return depth + between + _joined[child].height <= KA_MAX_DEPTH;
}

void NestingCheck::join(std::uint32_t holder, std::uint32_t child, unsigned int between) {
    _joined[child].parent = holder;
    _joined[child].between = between;
    count(child, 1);
    settleHeights(holder);
}

void NestingCheck::leave(std::uint32_t child) {
    const std::uint32_t former = _joined[child].parent;
    if (former == nobody)
        return;
    count(child, -1);
    _joined[child].parent = nobody;
    _joined[child].between = 0;
    settleHeights(former);
}

void NestingCheck::count(std::uint32_t child, int difference) {
    const Joined& joined = _joined[child];
    if (!isContainer(joined.parent))
        return;
    std::map<unsigned int, unsigned int>& below = _heightsBelow[joined.parent];
    const auto found = below.emplace(joined.height + joined.between, 0U).first;
    if (difference > 0)
        ++found->second;
    else if (--found->second == 0)
        below.erase(found);
}

/// Upwards as long as a height changes.
void NestingCheck::settleHeights(std::uint32_t from) {
    for (std::uint32_t place = from; place != nobody && isContainer(place);) {
        const std::map<unsigned int, unsigned int>& below = _heightsBelow[place];
        const unsigned int height = 1 + (below.empty() ? 0 : below.rbegin()->first);
        Joined& joined = _joined[place];
        if (height == joined.height)
            return;
        if (joined.parent != nobody)
            count(place, -1);
        joined.height = height;
        if (joined.parent != nobody)
            count(place, 1);
        place = joined.parent;
    }
}

} // namespace ka::motion
