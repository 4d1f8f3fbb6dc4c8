#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ka_test {

/// The seed that `emptyModule` gives the id generator.
constexpr unsigned long long ID_SEED = 20240229;

/// Brings the module to the state of a fresh process, as far as its interface allows: no objects, fields,
/// copies, animation attributes, callbacks or scene root, a controller at rest at frame 0 with 25 frames per
/// second, and the id generator seeded with `ID_SEED` and advanced once. Connections of former objects stay
/// in the table.
///
/// Fails the running test when the registry cannot be emptied.
void emptyModule();

/// The numbers that the id generator gives, worked out apart from it.
class IdSequence {
  public:
    /// Continues after `random(seed)`.
    explicit IdSequence(unsigned long long seed = ID_SEED) : _state(seed) { next(); }

    unsigned long long next() {
        _state = _state * 1664525ULL + 1013904223ULL;
        return _state;
    }
    void skip(int draws) {
        for (int i = 0; i < draws; ++i)
            next();
    }

  private:
    unsigned long long _state;
};

/// Gives every test an empty module before it and cleans up after it.
class RegistryFixture : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
};

} // namespace ka_test
