#include "ManualLock.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <future>
#include <new>
#include <vector>

#include "RunOnThreads.h"
#include "TestDeadline.h"

namespace {

constexpr unsigned kSpinCount = 500;

bool OtherThreadCanTake(CManualLock& lock) {
    return std::async(std::launch::async,
                      [&] {
                          const bool taken = lock.TryLock();
                          if (taken) {
                              lock.Unlock();
                          }
                          return taken;
                      })
        .get();
}

TEST(ManualLock, CountsTheHoldsOfItsThread) {
    CManualLock lock(kSpinCount);
    lock.Lock();
    lock.Lock();
    EXPECT_TRUE(lock.TryLock());
    EXPECT_EQ(lock.Unlock(), 2U);
    EXPECT_EQ(lock.Unlock(), 1U);
    EXPECT_EQ(lock.Unlock(), 0U);
}

TEST(ManualLock, GivesZeroAndTouchesNothingWhenNotHeld) {
    CManualLock lock(kSpinCount);
    EXPECT_EQ(lock.Unlock(), 0U);
    EXPECT_EQ(lock.Unlock(), 0U);
    // An unlocking of the mutex or a count below zero would show here.
    lock.Lock();
    EXPECT_FALSE(OtherThreadCanTake(lock));
    EXPECT_EQ(lock.Unlock(), 0U);
    EXPECT_TRUE(OtherThreadCanTake(lock));
}

TEST(ManualLock, KeepsOthersOutUntilItsLastHoldIsGone) {
    CManualLock lock(kSpinCount);
    lock.Lock();
    EXPECT_TRUE(lock.TryLock());
    EXPECT_FALSE(OtherThreadCanTake(lock));
    EXPECT_EQ(lock.Unlock(), 1U);
    EXPECT_FALSE(OtherThreadCanTake(lock));
    EXPECT_EQ(lock.Unlock(), 0U);
    EXPECT_TRUE(OtherThreadCanTake(lock));
}

TEST(ManualLock, LeavesTheCountAloneWhenTryingFails) {
    CManualLock lock(kSpinCount);
    lock.Lock();
    EXPECT_FALSE(OtherThreadCanTake(lock));
    EXPECT_EQ(lock.Unlock(), 0U);
}

TEST(ManualLock, LetsAWaitingThreadInWhenItIsFree) {
    CManualLock lock(kSpinCount);
    lock.Lock();
    std::future<std::uint64_t> waiter = std::async(std::launch::async, [&] {
        lock.Lock();
        return lock.Unlock();
    });
    EXPECT_EQ(lock.Unlock(), 0U);
    ASSERT_EQ(waiter.wait_for(kTestDeadline), std::future_status::ready);
    EXPECT_EQ(waiter.get(), 0U);
}

TEST(ManualLock, IsReleasedWhenDestroyedWhileHeld) {
    // The mutex stands behind the table of virtual functions and outlasts the lock in this
    // storage. One destroyed while held would still name its owner.
    alignas(CManualLock) std::byte storage[sizeof(CManualLock)];
    auto* const lock = new (storage) CManualLock(kSpinCount);
    lock->Lock();
    lock->Lock();
    lock->~CManualLock();
    pthread_mutex_t mutex;
    std::memcpy(&mutex, storage + sizeof(void*), sizeof mutex);
    EXPECT_EQ(mutex.__data.__lock, 0);
    EXPECT_EQ(mutex.__data.__owner, 0);
    EXPECT_EQ(mutex.__data.__count, 0U);
}

TEST(ManualLock, HasAnEffectFreeSpinCount) {
    for (const unsigned spinCount : {0U, 1U, 0xFFFFFFFFU}) {
        CManualLock lock(spinCount);
        lock.Lock();
        EXPECT_FALSE(OtherThreadCanTake(lock));
        EXPECT_EQ(lock.Unlock(), 0U);
    }
}

TEST(ManualLock, ProtectsAPlainCounterFromManyThreads) {
    constexpr unsigned kThreads = 8;
    constexpr unsigned kRounds = 2000;
    CManualLock lock(kSpinCount);
    unsigned counter = 0;
    RunOnThreads(kThreads, [&] {
        for (unsigned round = 0; round < kRounds; ++round) {
            const CManualLockGuard outer(lock);
            const CManualLockGuard inner(lock);
            ++counter;
        }
    });
    EXPECT_EQ(counter, kThreads * kRounds);
}

}  // namespace
