#include "kaFieldUses.h"

void kaFieldUses::insert(kaUID field, kaUID curve) {
    const auto [entry, isNew] = _curves.try_emplace(field);
    Curves& curves = entry->second;
    if (isNew)
        curves.only = curve;
    else if (curves.several)
        curves.several->insert(curve);
    else if (curves.only != curve)
        curves.several = std::make_unique<std::set<kaUID>>(std::set<kaUID>{curves.only, curve});
}

void kaFieldUses::erase(kaUID field, kaUID curve) {
    const auto entry = _curves.find(field);
    if (entry == _curves.end())
        return;
    const Curves& curves = entry->second;
    if (curves.several)
        curves.several->erase(curve);
    if (curves.several ? curves.several->empty() : curves.only == curve)
        _curves.erase(entry);
}

std::vector<kaUID> kaFieldUses::curvesOf(kaUID field) const {
    const auto entry = _curves.find(field);
    if (entry == _curves.end())
        return {};
    const Curves& curves = entry->second;
    return curves.several ? std::vector<kaUID>(curves.several->begin(), curves.several->end())
                          : std::vector<kaUID>{curves.only};
}
