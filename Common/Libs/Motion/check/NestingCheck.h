#pragma once

#include <kaMotion/DocumentOutline.h>
#include <map>
#include <unordered_map>
#include <vector>

namespace ka::motion {

/// Goes through the references of a document as loading does, one after the other, and tells which of them
/// loading leaves out because what they join would be deeper than objects may be. Which one that is depends
/// on the order: a chain written from the outside in is cut at its bottom, one from the inside out at its
/// top.
class NestingCheck {
  public:
    /// @param targets  what each reference reaches where loading lets it, else `nobody`.
    NestingCheck(const DocumentOutline& outline, const ElementsById& byId,
                 const std::vector<std::uint32_t>& targets);

    /// The places, among the outline's references, of those that are left out, in the order of the document.
    /// Cost: linear in the references, times the levels around each.
    std::vector<std::uint32_t> findLeftOut();

    static constexpr std::uint32_t nobody = static_cast<std::uint32_t>(-1);

  private:
    /// An element as far as loading has come.
    struct Joined {
        std::uint32_t parent = nobody;
        unsigned int height = 1;  ///< levels down to a key, itself included
        unsigned int between = 0; ///< 1 with a track of its own between it and its parent, a clip
    };

    bool isContainer(std::uint32_t place) const;
    bool fits(std::uint32_t holder, std::uint32_t child, unsigned int between) const;
    bool wouldContainItself(std::uint32_t holder, std::uint32_t child) const;
    void join(std::uint32_t holder, std::uint32_t child, unsigned int between);
    void leave(std::uint32_t child);
    void count(std::uint32_t child, int difference);
    void settleHeights(std::uint32_t from);

    const DocumentOutline& _outline;
    const ElementsById& _byId;
    const std::vector<std::uint32_t>& _targets;
    std::vector<Joined> _joined; ///< by element
    /// Of each track and clip how many children reach how far below it.
    std::unordered_map<std::uint32_t, std::map<unsigned int, unsigned int>> _heightsBelow;
};

} // namespace ka::motion
