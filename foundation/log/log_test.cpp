#include "foundation/log/log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "foundation/task/testing/test_tasks.h"
#include "foundation/time/timer_thread.h"

namespace kesta {
namespace {

using testing::eventually;
using ::testing::HasSubstr;

struct OutputCall {
    std::string message;
    std::string category;
    std::string details;
    std::uint32_t mask;
    bool details_flag;
};

std::vector<OutputCall> g_outputs;

void record_output(const std::string& message, const std::string& category, const std::string& details,
                   std::uint32_t mask, bool details_flag)
{
    g_outputs.push_back({message, category, details, mask, details_flag});
}

void silent_output(const std::string&, const std::string&, const std::string&, std::uint32_t, bool) {}

// Collects every batch that reaches a listener.
class BatchRecorder {
public:
    LogListener listener()
    {
        return [this](const std::vector<LogMessage>& batch) {
            std::lock_guard lock(mutex_);
            batches_.push_back(batch);
        };
    }
    std::vector<std::vector<LogMessage>> batches()
    {
        std::lock_guard lock(mutex_);
        return batches_;
    }
    std::size_t message_count()
    {
        std::lock_guard lock(mutex_);
        std::size_t count = 0;
        for (const auto& batch : batches_)
            count += batch.size();
        return count;
    }

private:
    std::mutex mutex_;
    std::vector<std::vector<LogMessage>> batches_;
};

std::string default_output_of(const std::string& message, const std::string& category, const std::string& details,
                              std::uint32_t mask, bool details_flag)
{
    ::testing::internal::CaptureStdout();
    LogSystem::DefaultOutput(message, category, details, mask, details_flag);
    std::fflush(stdout);
    return ::testing::internal::GetCapturedStdout();
}

// ---- Formatting and the console ----

TEST(LogFormat, TimestampIsHoursMinutesSecondsAndPaddedMilliseconds)
{
    EXPECT_EQ(MakeLogTimestamp(0), "0:0:0:000");
    EXPECT_EQ(MakeLogTimestamp(3'723'004'999'999), "1:2:3:004");
    EXPECT_EQ(MakeLogTimestamp(59'999'000'000), "0:0:59:999");
}

TEST(LogFormat, DefaultOutputLineCarriesTimestampCategoryAndOptionalDetails)
{
    const std::string warn_line = default_output_of("disk full", "warn", "sector 7", 6, false);
    EXPECT_THAT(warn_line, ::testing::MatchesRegex(R"(\([0-9]+:[0-9]+:[0-9]+:[0-9]{3}\) warn: disk full)"
                                                   "\n"));
    const std::string with_details = default_output_of("disk full", "error", "sector 7", 6, true);
    EXPECT_THAT(with_details, ::testing::EndsWith(") error: disk full\n  Details:\nsector 7\n"));
    const std::string normal = default_output_of("hello", "", "", 1, true);
    EXPECT_THAT(normal, ::testing::EndsWith(") hello\n"));
    EXPECT_THAT(default_output_of("no details", "error", "", 4, true), ::testing::EndsWith(") error: no details\n"));
}

TEST(LogFormat, MaskSelectsLevelsAndUnknownCategoriesCountAsNormal)
{
    EXPECT_EQ(default_output_of("normal", "", "", 6, false), "");
    EXPECT_EQ(default_output_of("debug", "debug", "", 6, false), "");
    EXPECT_NE(default_output_of("warn", "warn", "", 6, false), "");
    EXPECT_NE(default_output_of("error", "error", "", 6, false), "");
    EXPECT_NE(default_output_of("debug", "debug", "", 8, false), "");
    EXPECT_EQ(default_output_of("other", "render", "", 6, false), "");
    EXPECT_NE(default_output_of("other", "render", "", 1, false), "");
}

TEST(LogFormat, OutputFunctionReceivesEveryLevelWithMaskAndDetailsFlag)
{
    LogSystem system;
    g_outputs.clear();
    system.SetOutputFunction(&record_output);
    EXPECT_EQ(system.GetOutputMask(), 6u);
    system.Log("first", "debug", "why");
    system.SetOutputMask(kLogNormal | kLogDebug);
    system.SetOutputDetails(true);
    system.Log("second", "");
    ASSERT_EQ(g_outputs.size(), 2u);
    EXPECT_EQ(g_outputs[0].message, "first");
    EXPECT_EQ(g_outputs[0].category, "debug");
    EXPECT_EQ(g_outputs[0].details, "why");
    EXPECT_EQ(g_outputs[0].mask, 6u);
    EXPECT_FALSE(g_outputs[0].details_flag);
    EXPECT_EQ(g_outputs[1].mask, 9u);
    EXPECT_TRUE(g_outputs[1].details_flag);
}

TEST(LogFormat, FreeFunctionsUseTheGlobalInstanceAndTheirLevelWord)
{
    log("dropped, no instance");
    LogSystem system;
    g_outputs.clear();
    system.SetOutputFunction(&record_output);
    g_log_system = &system;
    log("a");
    warn("b", "details");
    error("c");
    debug("d");
    g_log_system = nullptr;
    ASSERT_EQ(g_outputs.size(), 4u);
    EXPECT_EQ(g_outputs[0].category, "");
    EXPECT_EQ(g_outputs[1].category, "warn");
    EXPECT_EQ(g_outputs[1].details, "details");
    EXPECT_EQ(g_outputs[2].category, "error");
    EXPECT_EQ(g_outputs[3].category, "debug");
    EXPECT_EQ(system.GetTail(), "a\nb\nc\nd\n");
}

TEST(LogFormat, EmptyMessageProducesNothingAtAll)
{
    LogSystem system;
    g_outputs.clear();
    system.SetOutputFunction(&record_output);
    BatchRecorder recorder;
    system.Connect(recorder.listener());
    system.Log("", "error", "details");
    EXPECT_TRUE(g_outputs.empty());
    EXPECT_EQ(system.GetTail(), "");
    EXPECT_TRUE(recorder.batches().empty());
}

// ---- The tail ----

TEST(LogTail, KeepsTheLastBytesAndOverwritesOlderText)
{
    LogSystem system;
    system.SetOutputFunction(&silent_output);
    std::string expected_all;
    for (int i = 0; i < 1000; ++i) {
        const std::string line = "line " + std::to_string(i);
        system.Log(line, "");
        expected_all += line + "\n";
        const std::string tail = system.GetTail();
        const std::size_t keep = std::min(expected_all.size(), LogSystem::kTailSize);
        ASSERT_EQ(tail, expected_all.substr(expected_all.size() - keep)) << "after line " << i;
    }
    EXPECT_EQ(system.GetTail().size(), LogSystem::kTailSize);
}

TEST(LogTail, WrapsExactlyAtTheEndOfTheRing)
{
    LogSystem system;
    system.SetOutputFunction(&silent_output);
    const std::string exact(LogSystem::kTailSize - 1, 'x');
    system.Log(exact, "");
    EXPECT_EQ(system.GetTail(), exact + "\n");
    system.Log("y", "");
    EXPECT_EQ(system.GetTail(), exact.substr(2) + "\ny\n");
}

TEST(LogTail, LinesFromManyThreadsAreAllKeptWhileTheyFit)
{
    LogSystem system;
    system.SetOutputFunction(&silent_output);
    constexpr int kThreads = 4;
    constexpr int kLines = 150;  // 600 lines of at most 12 bytes fit the tail
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&system, t] {
            for (int i = 0; i < kLines; ++i)
                system.Log("t" + std::to_string(t) + " n" + std::to_string(i), "");
        });
    }
    for (auto& thread : threads)
        thread.join();
    const std::string tail = system.GetTail();
    std::multiset<std::string> lines;
    std::size_t from = 0;
    for (std::size_t at = tail.find('\n'); at != std::string::npos; at = tail.find('\n', from)) {
        lines.insert(tail.substr(from, at - from));
        from = at + 1;
    }
    EXPECT_EQ(lines.size(), static_cast<std::size_t>(kThreads * kLines));
    for (int t = 0; t < kThreads; ++t) {
        for (int i = 0; i < kLines; ++i)
            ASSERT_EQ(lines.count("t" + std::to_string(t) + " n" + std::to_string(i)), 1u);
    }
}

// ---- Listeners ----

TEST(LogListeners, LinesWithinOneFlushDelayArriveAsOneBatchOnTheTimerThread)
{
    timer_thread timer;
    LogSystem system;
    system.SetOutputFunction(&silent_output);
    system.SetFlushTimer(&timer);
    BatchRecorder recorder;
    // 0: the second listener has not run yet; 1: it ran on the logging thread; 2: on another one.
    std::atomic<int> listener_thread{0};
    const auto caller = std::this_thread::get_id();
    system.Connect(recorder.listener());
    system.Connect(
        [&](const std::vector<LogMessage>&) { listener_thread = std::this_thread::get_id() != caller ? 2 : 1; });
    system.Log("one", "", "first details");
    system.Log("two", "debug");
    EXPECT_EQ(timer.one_shot_count(), 1u) << "the second line does not schedule a second flush";
    EXPECT_TRUE(recorder.batches().empty()) << "nothing is delivered on the logging thread";
    timer.start(1);
    // Listeners run one after the other: wait for the last one too.
    ASSERT_TRUE(eventually([&] { return recorder.message_count() == 2 && listener_thread.load() != 0; }));
    const auto batches = recorder.batches();
    ASSERT_EQ(batches.size(), 1u);
    EXPECT_EQ(batches[0][0].message, "one");
    EXPECT_EQ(batches[0][0].details, "first details");
    EXPECT_EQ(batches[0][1].message, "two");
    EXPECT_EQ(batches[0][1].category, "debug") << "debug lines reach listeners whatever the mask";
    EXPECT_THAT(batches[0][1].timestamp, ::testing::MatchesRegex(R"([0-9]+:[0-9]+:[0-9]+:[0-9]{3})"));
    EXPECT_EQ(listener_thread.load(), 2) << "listeners run on the timer thread";

    // The flush cleared its handle: the next line schedules again.
    system.Log("three", "");
    ASSERT_TRUE(eventually([&] { return recorder.message_count() == 3; }));
    timer.stop();
}

TEST(LogListeners, LinesBeforeTheFirstListenerAreNotQueued)
{
    timer_thread timer;
    LogSystem system;
    system.SetOutputFunction(&silent_output);
    system.SetFlushTimer(&timer);
    system.Log("unheard", "");
    EXPECT_EQ(timer.one_shot_count(), 0u);
}

TEST(LogListeners, WithoutATimerListenersHearEachLineAtOnceIncludingTheirOwn)
{
    LogSystem system;
    system.SetOutputFunction(&silent_output);
    ASSERT_EQ(g_timer_thread, nullptr);
    BatchRecorder recorder;
    system.Connect(recorder.listener());
    bool echoed = false;
    system.Connect([&](const std::vector<LogMessage>& batch) {
        if (!echoed && batch[0].message == "call") {
            echoed = true;
            system.Log("echo", "");
        }
    });
    system.Log("call", "");
    const auto batches = recorder.batches();
    ASSERT_EQ(batches.size(), 2u);
    EXPECT_EQ(batches[0][0].message, "call");
    EXPECT_EQ(batches[1][0].message, "echo");
}

TEST(LogListeners, ListenerThatLogsOnTheTimerThreadDoesNotDeadlock)
{
    timer_thread timer;
    LogSystem system;
    system.SetOutputFunction(&silent_output);
    system.SetFlushTimer(&timer);
    BatchRecorder recorder;
    system.Connect(recorder.listener());
    std::atomic<bool> echoed{false};
    system.Connect([&](const std::vector<LogMessage>&) {
        if (!echoed.exchange(true))
            system.Log("echo", "");
    });
    timer.start(1);
    system.Log("call", "");
    ASSERT_TRUE(eventually([&] { return recorder.message_count() == 2; }));
    timer.stop();
}

TEST(LogListeners, EmptyListenerRaisesBadFunctionCall)
{
    LogSystem system;
    system.SetOutputFunction(&silent_output);
    system.Connect(LogListener());
    EXPECT_THROW(system.Log("line", ""), std::bad_function_call);
}

TEST(LogListeners, NoLineIsLostWhenManyThreadsLogAtOnce)
{
    timer_thread timer;
    timer.start(1);
    LogSystem system;
    system.SetOutputFunction(&silent_output);
    system.SetFlushTimer(&timer);
    BatchRecorder recorder;
    system.Connect(recorder.listener());
    constexpr int kThreads = 4;
    constexpr int kLines = 2000;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&system, t] {
            for (int i = 0; i < kLines; ++i)
                system.Log(std::to_string(t) + ":" + std::to_string(i), "");
        });
    }
    for (auto& thread : threads)
        thread.join();
    ASSERT_TRUE(eventually([&] { return recorder.message_count() >= kThreads * kLines; }));
    std::set<std::string> seen;
    for (const auto& batch : recorder.batches()) {
        for (const LogMessage& message : batch)
            EXPECT_TRUE(seen.insert(message.message).second) << "delivered twice: " << message.message;
    }
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(kThreads * kLines));
    EXPECT_LT(recorder.batches().size(), static_cast<std::size_t>(kThreads * kLines)) << "lines travel in batches";
    timer.stop();
}

TEST(LogListeners, DestroyingTheLogBeforeItsFlushIsSafe)
{
    timer_thread timer;
    std::atomic<int> heard{0};
    {
        LogSystem system;
        system.SetOutputFunction(&silent_output);
        system.SetFlushTimer(&timer);
        system.Connect([&](const std::vector<LogMessage>&) { heard.fetch_add(1); });
        system.Log("never delivered", "");
    }
    timer.start(1);
    ASSERT_TRUE(eventually([&] { return timer.one_shot_count() == 0; }));
    EXPECT_EQ(heard.load(), 0);
    timer.stop();
}

}  // namespace
}  // namespace kesta
