#include "StartGate.h"

#include <gtest/gtest.h>

#include <future>

#include "TestDeadline.h"

namespace {

TEST(StartGate, LetsEveryWaiterThroughOnceOpen) {
    CStartGate gate;
    auto first = std::async(std::launch::async, [&] { gate.Wait(); });
    auto second = std::async(std::launch::async, [&] { gate.Wait(); });
    gate.Open();
    EXPECT_EQ(first.wait_for(kTestDeadline), std::future_status::ready);
    EXPECT_EQ(second.wait_for(kTestDeadline), std::future_status::ready);
}

TEST(StartGate, StaysOpen) {
    CStartGate gate;
    gate.Open();
    gate.Open();
    gate.Wait();
    gate.Wait();
}

TEST(StartGate, ShowsTheWaiterWhatCameBeforeTheOpening) {
    CStartGate gate;
    int value = 0;
    auto waiter = std::async(std::launch::async, [&] {
        gate.Wait();
        return value;
    });
    value = 1;
    gate.Open();
    EXPECT_EQ(waiter.get(), 1);
}

}  // namespace
