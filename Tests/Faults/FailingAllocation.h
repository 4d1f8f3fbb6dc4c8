#pragma once

#include <cstddef>

/// Lets one allocation of this program and its libraries fail.
///
/// The program's `operator new` is replaced (FailingAllocation.cpp); memory that libraries take past it, as
/// Qt's containers do, is not concerned.
class FailingAllocation {
  public:
    /// The allocation after `successes` more ones throws `std::bad_alloc`, once.
    explicit FailingAllocation(std::size_t successes);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation() { disarm(); }

    /// From here on every allocation succeeds.
    static void disarm();
    /// Whether the failure has happened.
    static bool hasFailed();
};
