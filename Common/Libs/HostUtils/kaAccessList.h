#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A file's POSIX access list: what its owner, its group, named users and groups, and all others may do.
///
/// It is read from and written to the bytes of the extended attribute in which Linux keeps it, version 2 of
/// its format: a 32 bit version, then per entry a 16 bit kind, 16 bit rights and a 32 bit id, little-endian.
class kaAccessList {
  public:
    /// Name of the extended attribute.
    static constexpr const char* ATTRIBUTE = "system.posix_acl_access";

    /// The list of a file that has nothing but the nine bits of `mode`.
    static kaAccessList ofMode(unsigned mode);

    /// @return nothing for bytes that are no complete access list.
    static std::optional<kaAccessList> parse(std::string_view bytes);

    std::string bytes() const;

    /// The nine bits of the mode that says no more than the list: what the group may do is cut to the mask.
    unsigned mode() const;

    /// Takes rights away so that a change of the file's group gives nobody more: members of the old group now
    /// count among the others, and members of the new group, who did, as the group.
    void forgetGroup();

    /// Drops the named users and groups, and what one of them was denied is denied to the group and to all
    /// others: any of these may now be one of them.
    void forgetNames();

  private:
    enum Kind : std::uint16_t {
        Owner = 0x01,
        User = 0x02,
        Group = 0x04,
        NamedGroup = 0x08,
        Mask = 0x10,
        Others = 0x20
    };
    struct Entry {
        std::uint16_t kind;
        std::uint16_t rights; ///< as one digit of a mode
        std::uint32_t id;
    };

    bool has(Kind kind) const;
    bool hasNames() const { return has(User) || has(NamedGroup); }
    unsigned rights(Kind kind) const;
    void setRights(Kind kind, unsigned rights);
    unsigned mask() const { return has(Mask) ? rights(Mask) : 7; }

    std::vector<Entry> _entries;
};
