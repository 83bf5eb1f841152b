#include "foundation/profiler/profiler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <thread>
#include <vector>

namespace kesta {
namespace {

std::vector<std::string> names_of(const ProfileFrame& frame)
{
    std::vector<std::string> names;
    for (const auto& section : frame.sections)
        names.push_back(section.name);
    return names;
}

TEST(ProfilerHash, EightBitHashOfTheNameBytes)
{
    EXPECT_EQ(ProfileNameHash(""), 0x25);
    EXPECT_EQ(ProfileNameHash("a"), 0x8C);  // (0x25 ^ 0x61) * 0xB3 = 0x44 * 0xB3 = 0x2F8C
    EXPECT_EQ(ProfileNameHash("ab"), static_cast<std::uint8_t>((0x8C ^ 0x62) * 0xB3));
}

TEST(ProfilerFrame, SameNameTwiceGivesOneSectionWhoseDurationIsTheSum)
{
    Profiler profiler;
    const auto first = profiler.BeginSection("Scene.Update", "left");
    profiler.EndSection(first);
    const auto second = profiler.BeginSection("Scene.Update");
    profiler.EndSection(second);
    profiler.EndFrame();
    const ProfileFrame frame = profiler.GetLastFrame();
    ASSERT_EQ(frame.sections.size(), 1u);
    EXPECT_EQ(frame.sections[0].name, "Scene.Update");
    EXPECT_THAT(frame.sections[0].events, ::testing::ElementsAre(first, second));
    ASSERT_EQ(frame.events.size(), 2u);
    EXPECT_EQ(frame.events[0].details, "left");
    const time_ns sum = (frame.events[0].end - frame.events[0].start) + (frame.events[1].end - frame.events[1].start);
    EXPECT_EQ(frame.sections[0].duration, sum);
    EXPECT_EQ(frame.start, frame.events[0].start);
    EXPECT_EQ(frame.end, frame.events[1].end);
    EXPECT_EQ(frame.events[0].thread, static_cast<std::uint32_t>(syscall(SYS_gettid)));
}

TEST(ProfilerFrame, SectionLeftOpenEndsWithTheFrameAndTablesEmptyAfterwards)
{
    Profiler profiler;
    const auto closed = profiler.BeginSection("A");
    profiler.EndSection(closed);
    profiler.BeginSection("B");
    const time_ns before_end = time_now();
    profiler.EndFrame();
    const ProfileFrame frame = profiler.GetLastFrame();
    ASSERT_EQ(frame.events.size(), 2u);
    EXPECT_GE(frame.events[1].end, before_end);
    EXPECT_EQ(frame.events[1].end, frame.end);

    profiler.EndFrame();
    const ProfileFrame empty = profiler.GetLastFrame();
    EXPECT_EQ(empty.frame, frame.frame + 1);
    EXPECT_TRUE(empty.events.empty());
    EXPECT_TRUE(empty.sections.empty());
    EXPECT_EQ(empty.start, frame.start) << "a frame without sections keeps the old extent";
    EXPECT_EQ(empty.end, frame.end);
}

TEST(ProfilerFrame, SectionsAreSortedByNameBytesThenLength)
{
    Profiler profiler;
    for (const char* name : {"b", "ab", "a.b", "a", "B"})
        profiler.EndSection(profiler.BeginSection(name));
    profiler.EndFrame();
    EXPECT_THAT(names_of(profiler.GetLastFrame()), ::testing::ElementsAre("B", "a", "a.b", "ab", "b"));
}

TEST(ProfilerFrame, NamesSharingABucketStayDistinct)
{
    // Many names: several fall into the same one of the 256 buckets.
    Profiler profiler;
    for (int i = 0; i < 600; ++i)
        profiler.EndSection(profiler.BeginSection("section " + std::to_string(i)));
    for (int i = 0; i < 600; ++i)
        profiler.EndSection(profiler.BeginSection("section " + std::to_string(i)));
    profiler.EndFrame();
    const ProfileFrame frame = profiler.GetLastFrame();
    ASSERT_EQ(frame.sections.size(), 600u);
    for (const auto& section : frame.sections)
        ASSERT_EQ(section.events.size(), 2u) << section.name;
}

TEST(ProfilerHandles, StaleOrUnknownIndicesEndNothing)
{
    Profiler profiler;
    profiler.EndSection(12345);
    const auto event = profiler.BeginSection("A");
    profiler.EndFrame();
    profiler.EndSection(event);  // the frame is over: no event of that index now
    profiler.EndFrame();
    EXPECT_TRUE(profiler.GetLastFrame().events.empty());
    EXPECT_EQ(profiler.GetFrame(), 2u);
}

TEST(ProfilerHandles, ScopedSectionEndsOnceAndAtTheEndOfItsScope)
{
    Profiler profiler;
    g_profiler = &profiler;
    time_ns after_first_end = 0;
    {
        ProfileSection section("Explicit");
        section.End();
        after_first_end = time_now();
        section.End();
    }
    {
        ProfileSection scoped("Scoped", "detail");
    }
    g_profiler = nullptr;
    {
        ProfileSection nothing("No profiler");
    }
    profiler.EndFrame();
    const ProfileFrame frame = profiler.GetLastFrame();
    ASSERT_EQ(frame.events.size(), 2u);
    EXPECT_LE(frame.events[0].end, after_first_end) << "the second End changed nothing";
    EXPECT_GT(frame.events[1].end, 0);
    EXPECT_EQ(frame.events[1].details, "detail");
}

TEST(ProfilerThreads, SectionsFromManyThreadsAreAllRecorded)
{
    Profiler profiler;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&profiler, t] {
            for (int i = 0; i < 500; ++i)
                profiler.EndSection(profiler.BeginSection(t % 2 ? "odd" : "even"));
        });
    }
    for (auto& thread : threads)
        thread.join();
    profiler.EndFrame();
    const ProfileFrame frame = profiler.GetLastFrame();
    EXPECT_EQ(frame.events.size(), 2000u);
    ASSERT_EQ(frame.sections.size(), 2u);
    EXPECT_EQ(frame.sections[0].events.size(), 1000u);
    EXPECT_EQ(frame.sections[1].events.size(), 1000u);
}

}  // namespace
}  // namespace kesta
