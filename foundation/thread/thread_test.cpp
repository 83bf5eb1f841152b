#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>

#include <thread>

#include "foundation/thread/processor_info.h"
#include "foundation/thread/scheduling.h"
#include "foundation/thread/thread_name.h"

namespace kesta {
namespace {

TEST(ThreadName, KernelKeepsFifteenBytesAndTheMapKeepsAll)
{
    std::string full;
    char kernel[32] = {};
    std::thread([&] {
        set_current_thread_name("Task worker #1234567");
        full = get_thread_name(std::this_thread::get_id());
        pthread_getname_np(pthread_self(), kernel, sizeof kernel);
    }).join();
    EXPECT_EQ(full, "Task worker #1234567");
    EXPECT_STREQ(kernel, "Task worker #12");
}

TEST(ThreadName, UnnamedThreadHasAnEmptyName)
{
    std::string name = "unset";
    std::thread([&] { name = get_thread_name(std::this_thread::get_id()); }).join();
    EXPECT_EQ(name, "");
}

TEST(ProcessorInfo, CountsMatchTheAffinityMaskAndAreCached)
{
    const ProcessorCounts& counts = processor_counts();
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    ASSERT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
    EXPECT_EQ(counts.logical, static_cast<std::uint64_t>(CPU_COUNT(&allowed)));
    EXPECT_GE(counts.cores, 1u);
    EXPECT_LE(counts.cores, counts.logical);
    EXPECT_EQ(&processor_counts(), &counts);
}

TEST(Scheduling, LevelsOutsideTheTablesAreRefused)
{
    EXPECT_FALSE(set_process_priority(6));
    EXPECT_FALSE(set_process_priority(-1));
    EXPECT_FALSE(set_thread_priority(7));
    EXPECT_FALSE(set_thread_priority(-1));
    EXPECT_TRUE(begin_timer_resolution());
    end_timer_resolution();
}

TEST(Scheduling, LoweringAThreadsPriorityIsAlwaysAllowed)
{
    bool lowered = false;
    std::thread([&] { lowered = set_thread_priority(0); }).join();
    EXPECT_TRUE(lowered);
}

}  // namespace
}  // namespace kesta
