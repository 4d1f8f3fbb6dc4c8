#include "kaAccessList.h"

#include <algorithm>
#include <cstring>
#include <endian.h>
#include <linux/posix_acl_xattr.h>

kaAccessList kaAccessList::ofMode(unsigned mode) {
    const auto digit = [mode](unsigned shift) { return static_cast<std::uint16_t>(mode >> shift & 7U); };
    constexpr std::uint32_t NOBODY = ~std::uint32_t{0};
    kaAccessList list;
    list._entries = {{Owner, digit(6), NOBODY}, {Group, digit(3), NOBODY}, {Others, digit(0), NOBODY}};
    return list;
}

std::optional<kaAccessList> kaAccessList::parse(std::string_view bytes) {
    posix_acl_xattr_header header{};
    posix_acl_xattr_entry raw{};
    if (bytes.size() < sizeof header || (bytes.size() - sizeof header) % sizeof raw != 0) {
        return std::nullopt;
    }
    std::memcpy(&header, bytes.data(), sizeof header);
    kaAccessList list;
    for (bytes.remove_prefix(sizeof header); !bytes.empty(); bytes.remove_prefix(sizeof raw)) {
        std::memcpy(&raw, bytes.data(), sizeof raw);
        list._entries.push_back(
            {le16toh(raw.e_tag), static_cast<std::uint16_t>(le16toh(raw.e_perm) & 7U), le32toh(raw.e_id)});
    }
    const bool isComplete = list.has(Owner) && list.has(Group) && list.has(Others);
    return le32toh(header.a_version) == POSIX_ACL_XATTR_VERSION && isComplete
               ? std::optional<kaAccessList>(list)
               : std::nullopt;
}

std::string kaAccessList::bytes() const {
    const posix_acl_xattr_header header{htole32(POSIX_ACL_XATTR_VERSION)};
    std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
    for (const Entry& entry : _entries) {
        const posix_acl_xattr_entry raw{htole16(entry.kind), htole16(entry.rights), htole32(entry.id)};
        bytes.append(reinterpret_cast<const char*>(&raw), sizeof raw);
    }
    return bytes;
}

unsigned kaAccessList::mode() const {
    return rights(Owner) << 6 | (rights(Group) & mask()) << 3 | rights(Others);
}

void kaAccessList::forgetGroup() {
    const unsigned group = rights(Group) & mask(), others = rights(Others);
    setRights(Others, others & group);
    // Whoever is in a named group may by chance be in the new one as well, and rights add up.
    setRights(Group, hasNames() ? 0 : others & group);
}

void kaAccessList::forgetNames() {
    unsigned granted = mask();
    for (const Entry& entry : _entries) {
        if (entry.kind == User || entry.kind == NamedGroup) {
            granted &= entry.rights;
        }
    }
    if (hasNames()) {
        setRights(Others, rights(Others) & granted);
    }
    setRights(Group, rights(Group) & granted);
    _entries.erase(std::remove_if(_entries.begin(), _entries.end(),
                                  [](const Entry& entry) {
                                      return entry.kind == User || entry.kind == NamedGroup ||
                                             entry.kind == Mask;
                                  }),
                   _entries.end());
}

bool kaAccessList::has(Kind kind) const {
    return std::any_of(_entries.begin(), _entries.end(),
                       [kind](const Entry& entry) { return entry.kind == kind; });
}

unsigned kaAccessList::rights(Kind kind) const {
    const auto found = std::find_if(_entries.begin(), _entries.end(),
                                    [kind](const Entry& entry) { return entry.kind == kind; });
    return found == _entries.end() ? 0U : found->rights;
}

void kaAccessList::setRights(Kind kind, unsigned rights) {
    for (Entry& entry : _entries) {
        if (entry.kind == kind) {
            entry.rights = static_cast<std::uint16_t>(rights);
        }
    }
}
