#include "TimeFixture.h"

#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <random>

using namespace ka_test;

namespace {

constexpr int Ticks = 100000;
constexpr std::size_t Objects = 1000; ///< blocks, tracks, clips and sequences
constexpr int MostNested = 3;         ///< levels of callbacks within callbacks that misbehave

/// A host whose every callback does something at random to the player and its objects.
class UnrulyHost {
  public:
    using Object = kaAnimationObject;

    UnrulyHost() { _current = this; }
    UnrulyHost(const UnrulyHost&) = delete;
    UnrulyHost& operator=(const UnrulyHost&) = delete;
    ~UnrulyHost() { _current = nullptr; }

    void attach();
    void populate();
    void tick();

    /// The objects that the player holds are those of the registry.
    void expectSoundPlayer() const;
    int timesDone(const std::string& action) const { return _done.count(action) > 0 ? _done.at(action) : 0; }

    static void onCallback();

  private:
    struct Action {
        const char* name;
        void (UnrulyHost::*run)();
        bool endsAll = false; ///< done seldom, so that hundreds of objects come to play side by side
    };
    static const std::array<Action, 18> Actions;

    unsigned int upTo(unsigned int limit) {
        return std::uniform_int_distribution<unsigned int>(0, limit)(_random);
    }
    bool chance(unsigned int percent) { return upTo(99) < percent; }
    float frame() { return static_cast<float>(upTo(400)) / 2.0F - 50.0F; }

    /// A random object that plays, or any below it; null when it is gone.
    Object* pick();
    kaAnimationUnit* makeRandomBlock();
    Object* makeRandomObject();
    void connect(Object* source);
    void misbehave();
    void advanceClock();

    void destroy() { _manager->destroyObject(pick()); }
    void play() { _controller->addWaitingObject(pick()); }
    void enqueue() { _controller->enqueueWaitingObjects(); }
    void stop() { _controller->stop(); }
    void pause() { _controller->pause(chance(30)); }
    void pauseObject() { _controller->pause(pick(), chance(50)); }
    void reset() { _controller->reset(); }
    void resetObject() { _controller->reset(pick()); }
    void gotoEnd() { _controller->gotoEnd(pick()); }
    void jump() { chance(50) ? _controller->gotoGlobalBegin(pick()) : _controller->gotoGlobalEnd(pick()); }
    void jumpCurves() { _controller->gotoGlobalEnd(kaAnimationController::getCurves()); }
    void playGlobal();
    void stopGlobal() { _controller->stopGlobal(); }
    void tickInside() { chance(50) ? _controller->loop() : _controller->playLoop(); }
    void setFlags();
    void connectMore() { connect(pick()); }
    void edit();
    void evaluate();

    static UnrulyHost* _current;
    static double _seconds;

    kaAnimationManager* _manager = kaAnimationManager::the();
    kaAnimationController* _controller = kaAnimationController::the();
    std::mt19937 _random{20240917};
    std::vector<kaUID> _tops;
    std::map<std::string, int> _done;
    kaMessageListener _listener;
    int _depth = 0;
};

UnrulyHost* UnrulyHost::_current = nullptr;
double UnrulyHost::_seconds = 0.0;

const std::array<UnrulyHost::Action, 18> UnrulyHost::Actions{{{"destroy", &UnrulyHost::destroy},
                                                              {"play", &UnrulyHost::play},
                                                              {"enqueue", &UnrulyHost::enqueue},
                                                              {"stop", &UnrulyHost::stop, true},
                                                              {"pause", &UnrulyHost::pause},
                                                              {"pause object", &UnrulyHost::pauseObject},
                                                              {"reset", &UnrulyHost::reset, true},
                                                              {"reset object", &UnrulyHost::resetObject},
                                                              {"go to end", &UnrulyHost::gotoEnd},
                                                              {"jump", &UnrulyHost::jump},
                                                              {"jump curves", &UnrulyHost::jumpCurves},
                                                              {"play global", &UnrulyHost::playGlobal, true},
                                                              {"stop global", &UnrulyHost::stopGlobal},
                                                              {"tick", &UnrulyHost::tickInside},
                                                              {"set flags", &UnrulyHost::setFlags},
                                                              {"connect", &UnrulyHost::connectMore},
                                                              {"edit", &UnrulyHost::edit},
                                                              {"evaluate", &UnrulyHost::evaluate}}};

void UnrulyHost::attach() {
    using Controller = kaAnimationController;
    Controller::setTimeCB([] { return _seconds; });
    Controller::setSeqCB([](std::string) { onCallback(); });
    Controller::setCurrentFrameTimeLineCB([](float) { onCallback(); });
    Controller::setIsSimEnableCB([] {
        onCallback();
        return true;
    });
    Controller::setEnableSimCB([](bool) { onCallback(); });
    _listener = kaOpenSGUtils::addListener("", [](std::string_view, const kaMessage&, int) { onCallback(); });
}

void UnrulyHost::onCallback() {
    if (_current && _current->_depth < MostNested && _current->chance(40))
        _current->misbehave();
}

void UnrulyHost::misbehave() {
    const Action& action = Actions.at(upTo(Actions.size() - 1));
    if (action.endsAll && upTo(999) >= 15)
        return;
    ++_done[action.name];
    ++_depth;
    (this->*action.run)();
    --_depth;
}

kaAnimationObject* UnrulyHost::pick() {
    if (_tops.empty())
        return nullptr;
    const std::size_t place = upTo(static_cast<unsigned int>(_tops.size() - 1));
    Object* object = _manager->getObject(_tops[place]);
    if (!object) {
        _tops[place] = _tops.back();
        _tops.pop_back();
        return nullptr;
    }
    while (chance(30)) {
        const std::vector<Object*> children = object->getObjects();
        if (children.empty())
            break;
        object = children.at(upTo(static_cast<unsigned int>(children.size() - 1)));
    }
    return object;
}

kaAnimationUnit* UnrulyHost::makeRandomBlock() {
    const float begin = frame();
    kaAnimationUnit* block = makeBlock(begin, begin + 1.0F + static_cast<float>(upTo(40)));
    block->setRepeating(chance(10));
    return block;
}

kaAnimationObject* UnrulyHost::makeRandomObject() {
    if (chance(40))
        return makeRandomBlock();
    kaAnimationStreak* track = _manager->createStreak(0);
    for (unsigned int i = upTo(3); i > 0; --i)
        track->addObject(makeRandomBlock());
    const float begin = frame();
    track->addObject(makeSequence("sequence", begin, begin + 10.0F));
    return chance(50) ? static_cast<Object*>(track) : makeClip({track, makeRandomBlock()});
}

void UnrulyHost::connect(Object* source) {
    if (!source || source->getTriggers().size() > 8)
        return;
    const auto trigger = static_cast<kaAnimationManager::AnimationTrigger>(upTo(1));
    if (chance(50))
        _manager->createConnection(source, trigger, &onCallback);
    else
        _manager->createConnection(source, trigger, pick(),
                                   static_cast<kaAnimationManager::AnimationAction>(upTo(2)));
}

void UnrulyHost::populate() {
    while (_manager->getObjectCount() < Objects * 4) { // each block has a curve and two keys
        Object* object = makeRandomObject();
        _tops.push_back(object->getId());
        connect(object);
        for (Object* child : object->getObjects())
            connect(child);
    }
}

void UnrulyHost::playGlobal() {
    std::vector<unsigned long long> ids;
    for (unsigned int i = upTo(5); i > 0; --i)
        if (const Object* object = pick())
            ids.push_back(object->getId());
    const float begin = frame();
    _controller->playGlobal(ids, chance(30), chance(30), begin, begin + static_cast<float>(upTo(50)), begin);
}

void UnrulyHost::setFlags() {
    if (Object* object = pick()) {
        object->setActive(chance(80));
        object->setReversePlay(chance(20));
        object->setCustomBegin(frame());
        object->setCustomEnd(frame());
        object->setUseCustomRange(chance(20));
    }
}

/// Sequences are left alone: they tell of every move.
void UnrulyHost::edit() {
    Object* object = pick();
    if (!object || object->getTypeID() != KA_TYPE_UNIT)
        return;
    switch (upTo(3)) {
    case 0:
        object->move(frame() / 10.0F, true);
        break;
    case 1:
        object->flip();
        break;
    case 2:
        _manager->setID(_manager->createUID(), object);
        _tops.push_back(object->getId()); // its old id leads nowhere any more
        break;
    default:
        if (auto* clip = _manager->getStrip(
                _tops.empty() ? 0 : _tops[upTo(static_cast<unsigned int>(_tops.size() - 1))]))
            _manager->moveObjectToStreak(object, clip, upTo(3));
    }
}

void UnrulyHost::evaluate() {
    if (const Object* object = pick())
        _controller->setObjectID(object->getId());
    _controller->evaluate(frame(), true, true, chance(2), chance(10));
}

void UnrulyHost::advanceClock() {
    static const std::array<double, 4> odd{-1e9, 1e30, std::numeric_limits<double>::quiet_NaN(), 0.0};
    _seconds = upTo(2000) == 0 ? odd.at(upTo(3)) : std::fmod(_seconds, 1000.0) + upTo(40) / 1000.0;
    if (!(_seconds > -1e6 && _seconds < 1e6) && chance(50))
        _seconds = 0.0;
}

void UnrulyHost::tick() {
    populate();
    advanceClock();
    for (std::size_t starts = upTo(999) == 0 ? _tops.size() * 2 : upTo(1); starts > 0; --starts)
        play();
    if (upTo(999) < 2)
        playGlobal();
    if (kaAnimationController::isPausing() && chance(50))
        _controller->pause(false);
    _controller->loop();
    _controller->playLoop();
}

void UnrulyHost::expectSoundPlayer() const {
    for (const auto& entry : _controller->getRunningObjects())
        ASSERT_EQ(_manager->getObject(entry.second->getId()), entry.second);
    for (const Object* object : _controller->getWaitingObjects())
        ASSERT_EQ(_manager->getObject(object->getId()), object);
    for (const kaAnimationCurve2D* curve : kaAnimationController::getCurves())
        ASSERT_EQ(_manager->getCurve2D(curve->getId()), curve);
    for (const kaAnimationSequence* sequence : kaAnimationController::getSeqs())
        ASSERT_EQ(_manager->getSequence(sequence->getId()), sequence);
}

class PlayerUnderFire : public RegistryFixture {};

TEST_F(PlayerUnderFire, OutlivesAnUnrulyHost) {
    UnrulyHost host;
    host.attach();
    std::size_t mostRunning = 0, played = 0;
    for (int tick = 0; tick < Ticks; ++tick) {
        host.tick();
        host.expectSoundPlayer();
        ASSERT_FALSE(HasFatalFailure()) << "at tick " << tick;
        const std::size_t running = kaAnimationController::the()->getRunningObjects().size();
        mostRunning = std::max(mostRunning, running);
        played += running;
    }
    EXPECT_GT(mostRunning, Objects / 2);
    EXPECT_GT(played, 10U * Ticks);
    for (const char* action : {"destroy", "play", "pause", "jump", "tick", "connect", "edit"}) {
        EXPECT_GT(host.timesDone(action), Ticks / 100) << action;
    }
    for (const char* action : {"stop", "reset", "play global"}) {
        EXPECT_GT(host.timesDone(action), Ticks / 1000) << action;
    }
}

} // namespace
