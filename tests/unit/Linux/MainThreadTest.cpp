#include "MainThread.h"

#include <gtest/gtest.h>

#include <thread>

#include "SessionFolder.h"

TEST(MainThread, IsTheOneThatRunsTheProgram) {
    EXPECT_TRUE(IsMainThread());
    bool isMainThread = true;
    std::thread([&] { isMainThread = IsMainThread(); }).join();
    EXPECT_FALSE(isMainThread);
}

TEST(MainThreadDeathTest, IsAssertedByItsClassesInDebugBuilds) {
    EXPECT_DEBUG_DEATH(std::thread([] { const CSessionFolder folder; }).join(), "IsMainThread");
}
