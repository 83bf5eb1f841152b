// The VR session of the real module against the simulated runtime: what Initialize makes on the
// GPU side and logs, how it widens the internal resolution, and how Shutdown ends it.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/task/testing/test_tasks.h"
#include "plugins/vr/testing/vr_module_fixture.h"

namespace kesta {
namespace {

using testing::VRModuleTest;

// The calls that make or free the session's GPU objects.
std::vector<std::string> SessionCalls(const RecordingRenderer& renderer)
{
    std::vector<std::string> calls;
    for (const std::string& call : renderer.Calls())
        for (const char* name : {"NewRenderTarget(", "CreateRenderTarget(", "FreeRenderTarget(", "NewTexture(VR",
                                 "CreateTexture(VR", "FreeTexture(VR"})
            if (call.rfind(name, 0) == 0)
                calls.push_back(call);
    return calls;
}

std::vector<std::string> DebugAndErrorLines(const testing::LogCapture& log)
{
    std::vector<std::string> lines;
    for (const std::string& line : log.Lines())
        if (line.rfind("debug: OpenVR", 0) == 0 || line.rfind("debug: Changing", 0) == 0 ||
            line.rfind("error: ", 0) == 0)
            lines.push_back(line);
    return lines;
}

class VRSession : public VRModuleTest {};

TEST_F(VRSession, InitializeMakesBothEyeTargetsAndLogsTheHeadset)
{
    Start(Config());
    render_system->SetInternalResolution(1920, 1080);
    renderer->ClearCalls();
    ASSERT_TRUE(Initialize());

    // Each target exists on the GPU side (with no colour texture yet) before its texture is made
    // and attached; the dummy texture sits between the two eyes.
    EXPECT_EQ(SessionCalls(*renderer), (std::vector<std::string>{
                                           "NewRenderTarget()",
                                           "CreateRenderTarget(0)",
                                           "NewTexture(VR left eye)",
                                           "CreateTexture(VR left eye, 0, 320, 200, 0, 0, 3, true, 1)",
                                           "NewTexture(VR dummy)",
                                           "CreateTexture(VR dummy, 0, 16, 16, 0, 0, 3, true, 1)",
                                           "NewRenderTarget()",
                                           "CreateRenderTarget(0)",
                                           "NewTexture(VR right eye)",
                                           "CreateTexture(VR right eye, 0, 320, 200, 0, 0, 3, true, 1)",
                                       }));
    EXPECT_EQ(DebugAndErrorLines(log), (std::vector<std::string>{
                                           "debug: OpenVR initialization starting",
                                           "debug: OpenVR initialized: VRSIM-TEST-7 (norvane_test_sim)",
                                           "debug: OpenVR recommended render target size 320x200",
                                           "debug: OpenVR ready",
                                       }));
    // Already large enough: the resolution stays.
    EXPECT_EQ(render_system->GetInternalWidth(), 1920);
    EXPECT_EQ(render_system->GetInternalHeight(), 1080);

    // The textures are attached: a frame draws each eye into its own.
    RenderFrames(1);
    ASSERT_EQ(begun_frames.size(), 2u);
    EXPECT_EQ(begun_frames[0].target_texture, "VR left eye");
    EXPECT_EQ(begun_frames[1].target_texture, "VR right eye");
}

TEST_F(VRSession, InternalResolutionWidensEachAxisOnItsOwn)
{
    Start(Config(R"("render_width": 1512, "render_height": 1680)"));
    render_system->SetInternalResolution(1920, 1080);
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(render_system->GetInternalWidth(), 1920);
    EXPECT_EQ(render_system->GetInternalHeight(), 1680);
    EXPECT_EQ(log.Count("debug",
                        "Changing render system internal resolution to accommodate OpenVR recommended render "
                        "target size"),
              1u);
    EXPECT_EQ(DebugAndErrorLines(log).back(), "debug: OpenVR ready");
}

TEST_F(VRSession, InitializeTwiceIsHarmlessAndLogsNothingMore)
{
    Start(Config());
    ASSERT_TRUE(Initialize());
    RenderFrames(1);
    log.Clear();
    renderer->ClearCalls();
    begun_frames.clear();

    // This time from the render worker itself, where the call runs at once instead of waiting.
    bool second = false;
    RunOnRenderWorker([&] { second = frame_renderer->Initialize(*render_system); });
    ASSERT_TRUE(second);
    EXPECT_TRUE(DebugAndErrorLines(log).empty());
    EXPECT_TRUE(SessionCalls(*renderer).empty());
    // The previous views were forgotten: the next frame is a first frame again.
    RenderFrames(1);
    ASSERT_EQ(begun_frames.size(), 2u);
    for (const testing::BegunFrame& frame : begun_frames)
        EXPECT_EQ(frame.previous_view, frame.view);
}

TEST_F(VRSession, AbsentHeadsetFailsWithTwoMessagesAndMakesNothing)
{
    Start(Config(R"("hmd_present": false)"));
    EXPECT_FALSE(Initialize());
    EXPECT_EQ(log.Lines(), (std::vector<std::string>{"debug: OpenVR initialization starting",
                                                     "error: OpenVR initialization failed"}));
    EXPECT_TRUE(renderer->Calls().empty());

    // Without a session a frame does nothing at all.
    RenderFrames(1);
    EXPECT_TRUE(renderer->Calls().empty());
    EXPECT_TRUE(begun_frames.empty());
    EXPECT_EQ(SectionTrace(), (std::vector<std::string>{"OpenVRFrameRenderer.RenderFrame"}));
}

TEST_F(VRSession, MissingRuntimeFolderFailsWithTwoMessagesAndMakesNothing)
{
    StartWithoutRuntime();
    EXPECT_FALSE(Initialize());
    EXPECT_EQ(log.Lines(), (std::vector<std::string>{"debug: OpenVR initialization starting",
                                                     "error: OpenVR initialization failed"}));
    EXPECT_TRUE(renderer->Calls().empty());
}

TEST_F(VRSession, ShutdownReturnsAtOnceAndANewSessionCanStartAfterIt)
{
    Start(Config());
    ASSERT_TRUE(Initialize());
    renderer->ClearCalls();
    log.Clear();

    // With the render worker busy, Shutdown only queues the end of the session.
    testing::Blocker blocker;
    blocker.occupy(singletons.tasks());
    frame_renderer->Shutdown(*render_system);
    EXPECT_FALSE(log.Contains("debug", "OpenVR shutting down"));
    EXPECT_TRUE(SessionCalls(*renderer).empty());
    blocker.release.open();
    singletons.tasks().wait_for_all();

    // The five objects are freed in this order; releasing the targets' last references afterwards
    // may free them once more through their deleters.
    std::vector<std::string> frees = SessionCalls(*renderer);
    ASSERT_GE(frees.size(), 5u);
    frees.resize(5);
    EXPECT_EQ(frees,
              (std::vector<std::string>{"FreeRenderTarget()", "FreeTexture(VR left eye)", "FreeTexture(VR dummy)",
                                        "FreeRenderTarget()", "FreeTexture(VR right eye)"}));
    EXPECT_EQ(DebugAndErrorLines(log), (std::vector<std::string>{"debug: OpenVR shutting down"}));

    // The session is over: a frame does nothing.
    renderer->ClearCalls();
    RenderFrames(1);
    EXPECT_TRUE(renderer->Calls().empty());

    // A new session makes all five objects again.
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(SessionCalls(*renderer).size(), 10u);
    EXPECT_TRUE(log.Contains("debug", "OpenVR ready"));
}

}  // namespace
}  // namespace kesta
