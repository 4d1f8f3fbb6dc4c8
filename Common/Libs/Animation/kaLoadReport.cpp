#include "kaLoadReport.h"

namespace {

kaLoadReport& report() {
    static kaLoadReport instance;
    return instance;
}

} // namespace

const kaLoadReport& kaLoadReport::last() {
    return report();
}

void kaLoadReport::begin() {
    report() = kaLoadReport();
}

void kaLoadReport::leaveOut(const Link& link) {
    ++report().leftOutCount;
    if (report().leftOut.size() < MaximumListed)
        report().leftOut.push_back(link);
}
