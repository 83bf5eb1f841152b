#include "engine/render_system/render_system_async.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>
#include <vector>

#include "engine/render_system/testing/fake_renderable.h"
#include "engine/render_system/testing/render_system_test_fixture.h"
#include "foundation/task/future_call.h"
#include "foundation/task/task_system.h"
#include "foundation/task/testing/test_tasks.h"

namespace kesta {
namespace {

class RenderSystemAsyncTest : public testing::RenderSystemTest {
protected:
    void SetUp() override
    {
        RenderSystemTest::SetUp();
        ASSERT_TRUE(tasks.start(2));
        render_worker = run_call_with_return_value<std::thread::id>(
                            tasks, [] { return std::this_thread::get_id(); }, 0)
                            .get();
    }
    void TearDown() override
    {
        tasks.stop();
        RenderSystemTest::TearDown();
    }

    task_system tasks;
    RenderSystemAsync async{render_system, tasks};
    std::thread::id render_worker;
};

struct Ran {
    int producer;
    int sequence;
    std::thread::id thread;
};

TEST_F(RenderSystemAsyncTest, CallsFromManyThreadsRunOnTheRenderWorkerInQueueOrder)
{
    constexpr int kProducers = 3;
    constexpr int kCalls = 40;
    std::mutex lock;
    std::vector<Ran> ran;
    // Worker 0 is held while the calls pile up, so none can run on the thread that queued it.
    testing::Blocker blocker;
    blocker.occupy(tasks);
    std::vector<std::thread> producers;
    for (int p = 0; p < kProducers; ++p) {
        producers.emplace_back([&, p] {
            for (int i = 0; i < kCalls; ++i) {
                auto renderable = std::make_shared<testing::FakeRenderable>();
                renderable->on_primitives = [&, p, i] {
                    std::lock_guard guard(lock);
                    ran.push_back({p, i, std::this_thread::get_id()});
                };
                async.DrawRenderablesPicking({renderable}, render_system.GetFeedbackTarget());
            }
        });
    }
    for (std::thread& producer : producers)
        producer.join();
    blocker.release.open();
    async.Sync().get();

    ASSERT_EQ(ran.size(), static_cast<std::size_t>(kProducers * kCalls));
    std::vector<int> next(kProducers, 0);
    for (const Ran& call : ran) {
        EXPECT_EQ(call.thread, render_worker);
        EXPECT_EQ(call.sequence, next[call.producer]++) << "producer " << call.producer;
    }
}

TEST_F(RenderSystemAsyncTest, ResourceAndFrameCallsKeepTheirOrder)
{
    int width_at_frame_start = 0;
    std::uint8_t eye_at_frame_start = 0;
    std::thread::id frame_thread;
    render_system.frame_start_signal.Connect([&] {
        width_at_frame_start = render_system.GetFrameWidth();
        eye_at_frame_start = render_system.GetEye();
        frame_thread = std::this_thread::get_id();
    });
    testing::Blocker blocker;
    blocker.occupy(tasks);
    std::thread other([&] {
        async.SetView(Matrix4::Identity(), Matrix4::Identity(), Matrix44::Identity(), kEyeRight);
        async.SetInternalResolution(640, 480);
        async.BeginDrawFrame();
        async.SetInternalResolution(320, 240);
    });
    other.join();
    auto done = async.Sync();
    blocker.release.open();
    done.get();
    EXPECT_EQ(width_at_frame_start, 640);
    EXPECT_EQ(eye_at_frame_start, kEyeRight);
    EXPECT_EQ(frame_thread, render_worker);
    EXPECT_EQ(render_system.GetFrameWidth(), 320);
    EXPECT_EQ(render_system.GetClock(), RenderSystem::kFrameDuration);
}

TEST_F(RenderSystemAsyncTest, FuturesCarryResults)
{
    EXPECT_FALSE(async.Initialize(nullptr, true).get());
    async.SetShadowMapSize(512).get();
    EXPECT_EQ(render_system.GetShadowMapSize(), 512);
    async.SetRenderTechnique(kTechniqueDeferred).get();
    EXPECT_EQ(render_system.GetRenderTechnique(), kTechniqueDeferred);
    async.Reload().get();
    EXPECT_TRUE(env.log.Contains("", "Done reloading resources"));
}

}  // namespace
}  // namespace kesta
