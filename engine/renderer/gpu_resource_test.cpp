#include "engine/renderer/gpu_resource.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "engine/renderer/gpu_resource_registry.h"

namespace kesta {
namespace {

class GpuResources : public ::testing::Test {
protected:
    void SetUp() override
    {
        previous_ = g_gpu_resource_registry;
        g_gpu_resource_registry = &registry;
    }
    void TearDown() override { g_gpu_resource_registry = previous_; }

    GpuResourceRegistry registry;

private:
    GpuResourceRegistry* previous_ = nullptr;
};

TEST_F(GpuResources, StatesAndReset)
{
    GpuResource resource("r");
    EXPECT_FALSE(resource.IsReadyOrFailed());
    resource.SetFailed();
    EXPECT_TRUE(resource.IsFailed());
    EXPECT_FALSE(resource.IsReady());
    EXPECT_EQ(resource.ResetState(), GpuResource::kFailed);
    EXPECT_EQ(resource.GetState(), GpuResource::kPending);
}

TEST_F(GpuResources, ContinuationOfAFinishedResourceRunsAtOnce)
{
    GpuResource resource;
    resource.SetReady();
    int runs = 0;
    resource.ConnectOnReady([&] { ++runs; });
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(registry.PendingCount(), 0u);
}

TEST_F(GpuResources, ContinuationsRunOnceWhenTheResourceFinishes)
{
    GpuResource resource;
    std::vector<int> order;
    resource.ConnectOnReady([&] { order.push_back(1); });
    resource.ConnectOnReady([&] { order.push_back(2); });
    EXPECT_EQ(registry.PendingCount(), 2u);
    resource.SetFailed();
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
    resource.SetReady();
    EXPECT_EQ(order.size(), 2u);
}

TEST_F(GpuResources, DestroyedResourceDropsItsContinuationsUnfired)
{
    bool ran = false;
    {
        GpuResource resource;
        resource.ConnectOnReady([&] { ran = true; });
    }
    EXPECT_FALSE(ran);
    EXPECT_EQ(registry.PendingCount(), 0u);
}

TEST_F(GpuResources, ContinuationRunsOutsideTheTableLock)
{
    // A continuation that files another continuation would deadlock if it ran under the mutex.
    GpuResource first, second;
    bool chained = false;
    first.ConnectOnReady([&] { second.ConnectOnReady([&] { chained = true; }); });
    first.SetReady();
    EXPECT_FALSE(chained);
    second.SetReady();
    EXPECT_TRUE(chained);
}

TEST_F(GpuResources, EveryContinuationRunsExactlyOnceUnderRaces)
{
    for (int round = 0; round < 200; ++round) {
        GpuResource resource;
        std::atomic<int> runs{0};
        std::thread finisher([&] { resource.SetReady(); });
        for (int i = 0; i < 10; ++i)
            resource.ConnectOnReady([&] { runs.fetch_add(1); });
        finisher.join();
        ASSERT_EQ(runs.load(), 10) << "round " << round;
    }
}

}  // namespace
}  // namespace kesta
