#include "InstanceSmartPtr.h"

#include <gtest/gtest.h>

#include "StoragePath.h"

namespace {

TEST(InstanceSmartPtr, HoldsNothingWithoutAnInstance) {
    const CInstanceSmartPtr<StoragePath> holder;
    EXPECT_FALSE(holder);
    EXPECT_EQ(holder.Get(), nullptr);
    EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 0U);
}

TEST(InstanceSmartPtr, AdoptsTheFirstReferenceAndGivesItBack) {
    {
        CStoragePath* created = nullptr;
        ASSERT_EQ(CStoragePath::CreateSingletonInstance(created, ""), kSuccess);
        const CInstanceSmartPtr<StoragePath> holder(created);
        EXPECT_EQ(holder.Get(), created);
        EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 1U);
    }
    EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 0U);
    EXPECT_EQ(CStoragePath::AcquireInstance(), nullptr);
}

TEST(InstanceSmartPtr, AcquiresForItsScope) {
    CStoragePath* created = nullptr;
    ASSERT_EQ(CStoragePath::CreateSingletonInstance(created, ""), kSuccess);
    const CInstanceSmartPtr<StoragePath> first(created);
    {
        const CInstanceSmartPtr<StoragePath> second;
        EXPECT_TRUE(second);
        EXPECT_EQ(second.Get(), created);
        EXPECT_EQ(second->GetBinPath(), created->GetBinPath());
        EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 2U);
    }
    EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 1U);
}

TEST(InstanceSmartPtr, KeepsTheInstanceAliveToTheLastHolder) {
    CStoragePath* created = nullptr;
    ASSERT_EQ(CStoragePath::CreateSingletonInstance(created, ""), kSuccess);
    const CInstanceSmartPtr<StoragePath> holder;
    CStoragePath::ReleaseInstance(created);
    EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 1U);
    EXPECT_EQ(holder->GetInstallPath(), "/opt/velto/tunnelkeep/");
}

}  // namespace
