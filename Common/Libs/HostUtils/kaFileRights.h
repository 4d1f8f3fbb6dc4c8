#pragma once

#include "kaAccessList.h"

#include <map>
#include <string>
#include <sys/stat.h>
#include <vector>

/// Who owns a file, who may do what with it, and the extended attributes that hang on it: all that a new file
/// needs in order to take an old one's place.
class kaFileRights {
  public:
    /// Takes down those of the file that `path` names, which is no link.
    /// @return 0, or the number of the error.
    int read(const std::string& path);

    /// Gives them to a file that is open, belongs to this process and grants nothing to anybody else yet.
    ///
    /// What the system does not allow is left out, and then rights are taken away until nobody may do more
    /// with the new file than with the old one. Set-user-ID and set-group-ID are never given: new content
    /// must not run as somebody else. @see lost()
    /// @return 0, or the number of the error when the file might grant more than the old one did.
    int giveTo(int descriptor);

    /// What giveTo() had to leave out, each in words: "its owner (user 1001)".
    const std::vector<std::string>& lost() const { return _lost; }

  private:
    bool readAttributes(const std::string& path);
    bool giveOwner(int descriptor);
    bool giveList(int descriptor);
    int giveMode(int descriptor, unsigned mode);
    void giveAttributes(int descriptor);
    void addLost(const std::string& what);

    struct stat _status {};
    kaAccessList _list;
    bool _hasList = false;       ///< beyond what the mode says
    bool _hasHiddenList = false; ///< one that cannot be read, or of a kind that only the system understands
    std::map<std::string, std::string> _attributes;
    std::vector<std::string> _lost;
};
