#pragma once

#include <string>
#include <unordered_set>
#include <vector>

/// Names of scene fields that the host treats as animatable: field discovery offers these. Names are compared
/// byte by byte.
class kaAttributeNames {
  public:
    /// The host's list.
    static kaAttributeNames& the();

    bool contains(const std::string& name) const; ///< Cost: one look-up.
    void add(const std::string& name);            ///< A name that is there stays where it is.
    void addAll(const std::string& names);        ///< Comma separated, taken exactly as they stand.
    void remove(const std::string& name);         ///< Cost: linear in those added later.
    const std::vector<std::string>& names() const { return _names; } ///< In the order they were added.

  private:
    std::vector<std::string> _names;
    std::unordered_set<std::string> _known; ///< the same names
};
