#pragma once

#include <cstddef>
#include <functional>
#include <kaMessageListener.h>
#include <map>
#include <string>
#include <vector>

class kaAnimationObject;
class kaMessage;

namespace ka::tools {

/// What is played, and how.
struct PlayPlan {
    std::vector<kaAnimationObject*> objects;
    bool onTimeline = true; ///< all on one timeline; otherwise the first object by itself
    float begin = 0.0F, end = 0.0F;
    bool reverse = false, repeat = false;
};

/// What happens while it plays; any of these may be empty.
struct PlayEvents {
    std::function<void(const std::string& name, const kaMessage& message)> message;
    std::function<void(const std::string& name)> sequence; ///< a sequence fired; its name is UTF-8
};

/// A host that plays objects: it starts them, ticks the player, listens to everything it is told, and stops
/// them when it goes. There is one at a time, because the player is one. The clock must be there before it.
class Player {
  public:
    Player(const PlayPlan& plan, PlayEvents events);
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    /// One tick of the host's timer.
    /// @return whether anything still plays.
    bool tick();

    /// The frame of the last tick.
    static float frame();
    std::size_t ticks() const { return _ticks; }
    /// How often each message came.
    const std::map<std::string, std::size_t>& messageCounts() const { return _counts; }

  private:
    static void startTogether(const PlayPlan& plan);
    void startAlone(kaAnimationObject& object, const PlayPlan& plan);
    static void onSequence(std::string name);

    static Player* _current;

    PlayEvents _events;
    unsigned long long _alone = 0; ///< the object that plays by itself; 0 on the timeline
    std::size_t _ticks = 0;
    std::map<std::string, std::size_t> _counts;
    kaMessageListener _listener;
};

} // namespace ka::tools
