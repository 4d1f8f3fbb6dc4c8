#include "Builders.h"
#include "RegistryFixture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <malloc.h>
#include <random>
#include <unistd.h>

using namespace ka_test;

namespace {

/// More than three of the largest pieces that memory for keys comes in.
constexpr std::size_t Keys = 20000;

class KeyMemory : public RegistryFixture {
  protected:
    static kaControlPoint2D* make(std::size_t number) {
        const auto x = static_cast<float>(number);
        kaControlPoint2D* key = kaAnimationManager::the()->createPoint2D(x, -x, 0);
        key->getInTangent()->setPosition(x - 0.25F, 1.0F);
        key->getOutTangent()->setPosition(x + 0.25F, 2.0F);
        return key;
    }

    static void expectToBe(const kaControlPoint2D& key, std::size_t number) {
        const auto x = static_cast<float>(number);
        ASSERT_EQ(key.getPosition(), osg::Pnt2f(x, -x));
        ASSERT_EQ(key.getInTangent()->getPosition(), osg::Pnt2f(x - 0.25F, 1.0F));
        ASSERT_EQ(key.getOutTangent()->getPosition(), osg::Pnt2f(x + 0.25F, 2.0F));
        ASSERT_EQ(kaAnimationManager::the()->getPoint2D(key.getId()), &key);
    }

    /// Bytes that the process holds in memory.
    static std::size_t resident() {
        malloc_trim(0);
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages >> pages;
        return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    }
};

TEST_F(KeyMemory, KeysThatComeWhereOthersWentDisturbNoOther) {
    std::vector<kaControlPoint2D*> keys(Keys);
    for (std::size_t i = 0; i < Keys; ++i)
        keys[i] = make(i);
    std::vector<std::size_t> order(Keys);
    for (std::size_t i = 0; i < Keys; ++i)
        order[i] = i;
    std::mt19937 random(3);
    for (std::size_t round = 1; round <= 3; ++round) {
        std::shuffle(order.begin(), order.end(), random);
        for (std::size_t i = 0; i < Keys / 2; ++i)
            kaAnimationManager::the()->destroyPoint2D(keys[order[i]]);
        for (std::size_t i = 0; i < Keys / 2; ++i)
            keys[order[i]] = make(order[i]);
        for (std::size_t i = 0; i < Keys; ++i)
            ASSERT_NO_FATAL_FAILURE(expectToBe(*keys[i], i)) << "round " << round;
    }
}

TEST_F(KeyMemory, StandsReadyForAnyAlignmentThatAKeyNeeds) {
    for (std::size_t i = 0; i < 100; ++i)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(make(i)) % alignof(kaControlPoint2D), 0U);
}

#ifndef KA_WATCHED_MEMORY // where what is freed is kept, to see who still uses it

TEST_F(KeyMemory, GoesBackWithTheLastKey) {
    constexpr std::size_t Megabyte = 1 << 20;
    const auto makeAndDestroy = [] {
        std::vector<kaControlPoint2D*> keys(Keys);
        std::generate(keys.begin(), keys.end(),
                      [number = std::size_t{0}]() mutable { return make(number++); });
        const std::size_t most = resident();
        for (kaControlPoint2D* key : keys)
            kaAnimationManager::the()->destroyPoint2D(key);
        return most;
    };
    makeAndDestroy(); // what is made once and kept, as the index of objects is
    const std::size_t before = resident();
    EXPECT_GE(makeAndDestroy(), before + 5 * Megabyte);
    EXPECT_LE(resident(), before + Megabyte);
}

#endif

} // namespace
