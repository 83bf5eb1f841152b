#include "foundation/assert/assertion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "foundation/crash/callstack.h"
#include "foundation/log/log.h"

namespace kesta {
namespace {

using ::testing::HasSubstr;

struct HandlerCall {
    std::string file;
    int line = 0;
    std::string function;
    std::string condition;
    std::string detail;
    bool had_detail = false;
    int count = 0;
};

HandlerCall g_handler_call;

void recording_handler(const char* file, int line, const char* function, const char* condition, const char* detail)
{
    g_handler_call.file = file;
    g_handler_call.line = line;
    g_handler_call.function = function;
    g_handler_call.condition = condition;
    g_handler_call.had_detail = detail != nullptr;
    g_handler_call.detail = detail ? detail : "";
    ++g_handler_call.count;
}

class AssertionTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        g_handler_call = {};
        log_.SetOutputFunction([](const std::string&, const std::string&, const std::string&, std::uint32_t, bool) {});
        g_log_system = &log_;
        g_assertion_handler = &recording_handler;
    }
    void TearDown() override
    {
        g_assertion_handler = nullptr;
        g_log_system = nullptr;
    }

    LogSystem log_;
};

TEST(AssertionText, ConditionFileLineFunctionAndOptionalDetail)
{
    EXPECT_EQ(MakeAssertionText("a.cpp", 12, "Draw", "x > 0", nullptr),
              "ASSERT(x > 0) failed!\n\nFile: a.cpp\nLine 12 in function 'Draw'\n");
    EXPECT_EQ(MakeAssertionText("a.cpp", 12, "Draw", "x > 0", "x is -1"),
              "ASSERT(x > 0) failed!\n\nFile: a.cpp\nLine 12 in function 'Draw'\n\nDetail: x is -1\n");
}

TEST_F(AssertionTest, FailureGoesToStandardErrorAndTheLogThenToTheHandler)
{
    ::testing::internal::CaptureStderr();
    const int line = __LINE__ + 1;
    KESTA_ASSERT_MSG(1 + 1 == 3, "arithmetic");
    const std::string err = ::testing::internal::GetCapturedStderr();
    EXPECT_THAT(err, HasSubstr("Assertion failed\n\nASSERT(1 + 1 == 3) failed!\n\nFile: "));
    EXPECT_THAT(err, HasSubstr("\nDetail: arithmetic\n\nCallstack:\n"));
    EXPECT_THAT(log_.GetTail(), HasSubstr("ASSERT(1 + 1 == 3) failed!"));
    EXPECT_THAT(log_.GetTail(), HasSubstr("Callstack:"));
    ASSERT_EQ(g_handler_call.count, 1);
    EXPECT_THAT(g_handler_call.file, ::testing::EndsWith("assertion_test.cpp"));
    EXPECT_EQ(g_handler_call.line, line);
    EXPECT_THAT(
        g_handler_call.function,
        ::testing::EndsWith("::AssertionTest_FailureGoesToStandardErrorAndTheLogThenToTheHandler_Test::TestBody"));
    EXPECT_THAT(err, HasSubstr(" in function '" + g_handler_call.function + "'\n"));
    EXPECT_EQ(g_handler_call.condition, "1 + 1 == 3");
    EXPECT_EQ(g_handler_call.detail, "arithmetic");
}

TEST_F(AssertionTest, HoldingConditionCallsNothingAndPlainFormHasNoDetail)
{
    int evaluations = 0;
    KESTA_ASSERT(++evaluations == 1);
    EXPECT_EQ(evaluations, 1);
    EXPECT_EQ(g_handler_call.count, 0);
    ::testing::internal::CaptureStderr();
    KESTA_ASSERT(evaluations == 2);
    const std::string err = ::testing::internal::GetCapturedStderr();
    EXPECT_THAT(err, ::testing::Not(HasSubstr("Detail:")));
    EXPECT_EQ(g_handler_call.count, 1);
    EXPECT_FALSE(g_handler_call.had_detail);
}

TEST(AssertionDeathTest, DefaultHandlerEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(KESTA_ASSERT(2 < 1), "ASSERT\\(2 < 1\\) failed!");
}

// Kept out of line so that the stack has a frame of this name.
[[gnu::noinline]] std::vector<CallstackFrame> capture_here()
{
    std::vector<CallstackFrame> frames;
    GetCallstack(frames, 0);
    asm volatile("");  // no tail call
    return frames;
}

TEST(Callstack, FramesHaveFunctionNamesAndSourceLines)
{
    const std::vector<CallstackFrame> frames = capture_here();
    ASSERT_GE(frames.size(), 2u);
    EXPECT_THAT(frames[0].function, HasSubstr("capture_here"));
    EXPECT_THAT(frames[0].file, ::testing::EndsWith("assertion_test.cpp"));
    EXPECT_GT(frames[0].line, 0);
    EXPECT_THAT(frames[1].function, HasSubstr("Callstack_FramesHaveFunctionNamesAndSourceLines_Test::TestBody"));
    const std::string text = CallstackToString(frames);
    EXPECT_THAT(text, HasSubstr("  #0 0x"));
    EXPECT_THAT(text, HasSubstr("capture_here"));
    EXPECT_THAT(text, HasSubstr("assertion_test.cpp:"));
}

TEST(Callstack, SkipLeavesOutTheInnermostCallers)
{
    std::vector<CallstackFrame> all;
    std::vector<CallstackFrame> skipped;
    GetCallstack(all, 0);
    GetCallstack(skipped, 1);
    ASSERT_GE(all.size(), 2u);
    ASSERT_EQ(skipped.size(), all.size() - 1);
    EXPECT_EQ(skipped[0].function, all[1].function);
}

}  // namespace
}  // namespace kesta
