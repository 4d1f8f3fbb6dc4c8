#pragma once

#include <optional>
#include <string>

namespace ka::motion {

/// The one folder that a third-party reader may read from: the folder of the model, with everything below it.
///
/// Names are taken relative to the folder. A name that leads out of it, be it by "..", as an absolute path or
/// through a symbolic link, is as good as missing; so is everything but plain files.
class ConfinedFolder {
  public:
    /// @param model  an existing file; its folder is the one its name resolves to, links followed: the user
    /// named the model, so where it really stands is where its parts are looked for.
    /// @throws Failure (Unreadable) when there is no such plain file.
    explicit ConfinedFolder(const std::string& model);

    const std::string& folder() const { return _folder; }
    /// The model's own name inside the folder.
    const std::string& modelName() const { return _modelName; }

    /// The real path of a plain file inside the folder, or nothing.
    std::optional<std::string> resolve(const std::string& name) const;

    /// The contents of a plain file inside the folder, or nothing; also nothing for more than `limit` bytes.
    std::optional<std::string> read(const std::string& name, std::size_t limit) const;

    /// Has the kernel hold the calling process to reading below this folder, for good, and takes from it
    /// every other right that the running kernel can take: writing, connecting, signals to others.
    /// @return false where the kernel cannot; the file handlers of the readers refuse other paths all the
    /// same.
    bool confineProcess() const;

  private:
    std::string _folder;
    std::string _modelName;
};

} // namespace ka::motion
