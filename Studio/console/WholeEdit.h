#pragma once

#include "SceneState.h"
#include "document/Document.h"

#include <memory>

namespace ka::studio {

class Session;

/// An edit of which nobody knows beforehand what it will change: all that is registered and the scene are noted,
/// and what differs afterwards becomes one step of the history.
/// Cost: linear in everything, twice.
class WholeEdit {
  public:
    explicit WholeEdit(Session& session);
    ~WholeEdit(); ///< Commits under no name what was not committed.
    WholeEdit(const WholeEdit&) = delete;
    WholeEdit& operator=(const WholeEdit&) = delete;

    /// Makes one step of what has changed. @return whether anything has. Nothing may follow.
    bool commit(const QString& name);

  private:
    static std::vector<kaUID> topObjects();

    Session& _session;
    std::unique_ptr<Gesture> _gesture;
    SceneState _before;
};

} // namespace ka::studio
