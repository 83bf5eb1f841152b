// One stereo frame of the real module against the simulated runtime (unpaced) and the recording
// back end: the order of the eyes, their views and projections, the submissions, and the window
// mirror of each monitoring mode.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "foundation/math/euler.h"
#include "plugins/vr/testing/vr_module_fixture.h"

namespace kesta {
namespace {

using testing::BegunFrame;
using testing::VRModuleTest;

constexpr float kNear = 0.1f;
constexpr float kFar = 100.0f;

// The engine's left-handed projection with depth 0 at the near plane and 1 at the far plane.
Matrix44 SceneProjection()
{
    Matrix44 m;
    m(2, 2) = kFar / (kFar - kNear);
    m(2, 3) = -kFar * kNear / (kFar - kNear);
    m(3, 2) = 1;
    m(3, 3) = 0;
    return m;
}

void ExpectNear(const Matrix4& actual, const Matrix4& expected, float tolerance = 1e-4f)
{
    for (int i = 0; i < 12; ++i)
        EXPECT_NEAR(actual.m[i], expected.m[i], tolerance) << "entry " << i;
}

// The calls of the window mirror: from the flush that starts it to the end of the frame.
std::vector<std::string> MirrorCalls(const RecordingRenderer& renderer)
{
    const std::vector<std::string> calls = renderer.Calls();
    std::vector<std::string> mirror;
    bool started = false;
    for (const std::string& call : calls) {
        started = started || call == "FlushRenderer()";
        if (!started)
            continue;
        for (const char* name : {"FlushRenderer(", "SetRenderTarget(", "ResetRenderTarget(", "SetDepthTest(",
                                 "SetDepthWrite(", "SetViewport(", "SetShaderTexture(", "DrawBuffers("})
            if (call.rfind(name, 0) == 0)
                mirror.push_back(call.substr(0, call.find('(') + 1) == "SetShaderTexture("
                                     ? "SetShaderTexture(" + call.substr(call.find(", ") + 2)
                                     : call);
    }
    return mirror;
}

class VRFrame : public VRModuleTest {
protected:
    void StartSession(const std::string& members = {})
    {
        Start(Config(members));
        ASSERT_TRUE(Initialize());
        renderer->ClearCalls();
        SectionTrace();
    }
    void RenderWithMonitoring(int mode)
    {
        ASSERT_TRUE(frame_renderer->SetConfiguration("MonitoringConfiguration", std::to_string(mode)));
        renderer->ClearCalls();
        begun_frames.clear();
        RenderFrames(1);
    }
};

TEST_F(VRFrame, EyesAreDrawnLeftThenRightInTheirSectionsAndSubmittedInThatOrder)
{
    Start(Config());
    ProvideGLTextureNames(64);
    ASSERT_TRUE(Initialize());
    testing::VrSimIntrospection sim;
    ASSERT_TRUE(sim.loaded());
    sim.clear_logs();
    SectionTrace();
    RenderFrames(1);

    ASSERT_EQ(begun_frames.size(), 2u);
    ASSERT_LE(begun_frames[1].target_handle, 64u);
    EXPECT_EQ(begun_frames[0].eye, 1);
    EXPECT_EQ(begun_frames[0].target_texture, "VR left eye");
    EXPECT_EQ(begun_frames[1].eye, 2);
    EXPECT_EQ(begun_frames[1].target_texture, "VR right eye");
    // Both eyes at the eye targets' size.
    for (const BegunFrame& frame : begun_frames)
        EXPECT_EQ(frame.viewport, (Rect{0, 0, 320, 200}));

    std::vector<std::string> vr_sections;
    for (const std::string& name : SectionTrace())
        if (name.rfind("OpenVRFrameRenderer.", 0) == 0 || name == "RenderSystem.BeginDrawFrame")
            vr_sections.push_back(name);
    EXPECT_EQ(vr_sections, (std::vector<std::string>{
                               "OpenVRFrameRenderer.RenderFrame",
                               "OpenVRFrameRenderer.WaitGetPoses",
                               "OpenVRFrameRenderer.GetControllerMatrix",
                               "OpenVRFrameRenderer.RenderFrame.RenderLeftEye",
                               "RenderSystem.BeginDrawFrame",
                               "OpenVRFrameRenderer.RenderFrame.RenderRightEye",
                               "RenderSystem.BeginDrawFrame",
                               "OpenVRFrameRenderer.RenderFrame.SubmitToCompositor",
                               "OpenVRFrameRenderer.RenderFrame.OnScreenOutput",
                           }));

    ASSERT_EQ(sim.submission_count(), 2u);
    for (std::uint32_t eye = 0; eye < 2; ++eye) {
        VrSimSubmission submission{};
        ASSERT_TRUE(sim.get_submission(eye, &submission));
        EXPECT_EQ(submission.frame, 1u);
        EXPECT_EQ(submission.eye, eye);
        EXPECT_EQ(submission.texture_type, 1u);  // OpenGL
        EXPECT_EQ(submission.color_space, 1u);   // gamma
        EXPECT_EQ(submission.submit_flags, 0u);
        EXPECT_EQ(submission.has_bounds, 0);
        EXPECT_EQ(submission.texture_name, begun_frames[eye].target_handle);
    }
    RenderFrames(2);
    EXPECT_EQ(sim.submission_count(), 6u);
    EXPECT_EQ(sim.frame_count(), 3u);
}

TEST_F(VRFrame, HeadAndEyesFollowTheCameraInEngineHandedness)
{
    // A head standing at (0.5, 1.7, -2) in the runtime's space, turned 30 degrees to the left.
    StartSession(R"("ipd_meters": 0.064, "head": {"path": "static", "position": [0.5, 1.7, -2], "yaw_degrees": 30})");
    const Matrix4 camera = Matrix4::FromPosition({10, 0, 5});
    renderer->SetViewMatrix(camera);
    renderer->SetProjectionMatrix(SceneProjection());
    RenderFrames(1);
    ASSERT_EQ(begun_frames.size(), 2u);

    // The head in engine space: z mirrored, the yaw still to the left seen from above.
    const float c = std::cos(DegreesToRadians(30)), s = std::sin(DegreesToRadians(30));
    Matrix4 head;
    head.m[0] = c, head.m[2] = -s, head.m[3] = 0.5f;
    head.m[7] = 1.7f;
    head.m[8] = s, head.m[10] = c, head.m[11] = 2.0f;
    EXPECT_EQ(Device("HMD").GetMatrix(0).Translation(), (Vector3{0.5f, 1.7f, 2.0f}));
    ExpectNear(Device("HMD").GetMatrix(0), head);

    // Each eye sits half the eye distance along the head's x axis, left eye on the left.
    const Matrix4 left = begun_frames[0].view;
    const Matrix4 right = begun_frames[1].view;
    ExpectNear(left, camera * head * Matrix4::FromPosition({-0.032f, 0, 0}));
    ExpectNear(right, camera * head * Matrix4::FromPosition({0.032f, 0, 0}));
    EXPECT_LT(left.Translation().x, right.Translation().x);
    // First frame: no previous view, so no motion.
    EXPECT_EQ(begun_frames[0].previous_view, left);
    EXPECT_EQ(begun_frames[1].previous_view, right);

    // The eye projections are the runtime's at the scene's depth range, turned left-handed: a
    // point in front of the eye at the near plane lands at depth 0, one at the far plane at 1.
    for (const BegunFrame& frame : begun_frames) {
        const Matrix44& p = frame.projection;
        EXPECT_NEAR(p(0, 0), 1.0f / std::tan(DegreesToRadians(50)), 1e-4f);
        EXPECT_EQ(p(3, 2), 1.0f);
        const Vector4 near_point = p * Vector4{0, 0, kNear, 1};
        const Vector4 far_point = p * Vector4{0, 0, kFar, 1};
        EXPECT_NEAR(near_point.z / near_point.w, 0.0f, 1e-4f);
        EXPECT_NEAR(far_point.z / far_point.w, 1.0f, 1e-4f);
    }

    // The second frame has the first as its previous view; the scene's projection was not changed
    // by the frame, which leaves identity matrices behind.
    EXPECT_EQ(renderer->GetProjectionMatrix(), Matrix44::Identity());
    renderer->SetViewMatrix(camera);
    renderer->SetProjectionMatrix(SceneProjection());
    begun_frames.clear();
    RenderFrames(1);
    ASSERT_EQ(begun_frames.size(), 2u);
    EXPECT_EQ(begun_frames[0].previous_view, left);
    EXPECT_EQ(begun_frames[1].previous_view, right);
}

TEST_F(VRFrame, SideBySideSplitsAnOddWindowAtAFraction)
{
    StartSession();
    renderer->output_size = {1281, 720};
    renderer->SetViewport(Rect{10, 20, 300, 200});
    RenderWithMonitoring(0);
    EXPECT_EQ(MirrorCalls(*renderer), (std::vector<std::string>{
                                          "FlushRenderer()",
                                          "ResetRenderTarget()",
                                          "SetDepthTest(false)",
                                          "SetDepthWrite(false)",
                                          "SetViewport(0,0,640.5,720)",
                                          "SetShaderTexture(VR left eye)",
                                          "DrawBuffers(0, 6, 1, 0)",
                                          "SetViewport(640.5,0,1281,720)",
                                          "SetShaderTexture(VR right eye)",
                                          "DrawBuffers(0, 6, 1, 0)",
                                          "SetDepthTest(true)",
                                          "SetDepthWrite(true)",
                                          "SetViewport(10,20,300,200)",
                                      }));
    EXPECT_EQ(renderer->viewport, (Rect{10, 20, 300, 200}));
    EXPECT_EQ(renderer->GetCurrentRenderTarget(), nullptr);
}

TEST_F(VRFrame, SingleEyeModesIssueTheSecondDrawIntoAnEmptyRectangle)
{
    StartSession();
    renderer->output_size = {800, 600};
    for (const auto& [mode, first, second] :
         {std::tuple{1, "VR right eye", "VR left eye"}, std::tuple{2, "VR left eye", "VR right eye"}}) {
        SCOPED_TRACE(mode);
        renderer->SetViewport(Rect{5, 5, 50, 50});
        RenderWithMonitoring(mode);
        std::vector<std::string> draws;
        for (const std::string& call : MirrorCalls(*renderer))
            if (call.rfind("SetViewport(", 0) == 0 || call.rfind("SetShaderTexture(", 0) == 0)
                draws.push_back(call);
        EXPECT_EQ(draws,
                  (std::vector<std::string>{"SetViewport(0,0,800,600)", std::string("SetShaderTexture(") + first + ")",
                                            "SetViewport(0,0,0,0)", std::string("SetShaderTexture(") + second + ")",
                                            "SetViewport(5,5,50,50)"}));
    }
}

TEST_F(VRFrame, OtherModesDrawNothingToTheWindowButStillRestoreTheState)
{
    StartSession();
    const std::shared_ptr<RenderTarget> caller_target = renderer->NewRenderTarget();
    renderer->SetRenderTarget(caller_target);
    renderer->SetViewport(Rect{1, 2, 3, 4});
    ASSERT_TRUE(frame_renderer->SetConfiguration("MonitoringConfiguration", "5"));
    renderer->ClearCalls();
    RenderFrames(1);
    EXPECT_EQ(MirrorCalls(*renderer),
              (std::vector<std::string>{"FlushRenderer()", "SetRenderTarget(target)", "SetDepthTest(false)",
                                        "SetDepthWrite(false)", "SetDepthTest(true)", "SetDepthWrite(true)",
                                        "SetViewport(1,2,3,4)"}));
    // The caller's target is active again.
    EXPECT_EQ(renderer->GetCurrentRenderTarget(), caller_target);
    EXPECT_EQ(frame_renderer->GetConfiguration("MonitoringConfiguration"), "5");
}

TEST_F(VRFrame, MonoModeDrawsTheHeadOnceMoreWithTheScenesProjection)
{
    StartSession(R"("head": {"path": "static", "position": [0, 1.5, 0]})");
    renderer->SetViewMatrix(Matrix4::Identity());
    renderer->SetProjectionMatrix(SceneProjection());
    renderer->SetViewport(Rect{0, 0, 640, 480});
    RenderWithMonitoring(3);
    ASSERT_EQ(begun_frames.size(), 3u);
    const BegunFrame head = begun_frames[2];
    EXPECT_EQ(head.eye, 0);
    EXPECT_EQ(head.projection, SceneProjection());
    EXPECT_EQ(head.viewport, (Rect{0, 0, 640, 480}));
    EXPECT_EQ(head.view.Translation(), (Vector3{0, 1.5f, 0}));
    // Never rendered in mono before, but the head's previous view is kept in every mode.
    EXPECT_EQ(head.previous_view, head.view);
    std::vector<std::string> heads;
    for (const std::string& name : SectionTrace())
        if (name == "OpenVRFrameRenderer.RenderFrame.RenderHead")
            heads.push_back(name);
    EXPECT_EQ(heads.size(), 1u);

    // A change of mode keeps the head's previous view: here it is that of the mono frame before.
    renderer->SetViewMatrix(Matrix4::FromPosition({0, 0, 1}));
    renderer->SetProjectionMatrix(SceneProjection());
    RenderWithMonitoring(3);
    ASSERT_EQ(begun_frames.size(), 3u);
    EXPECT_EQ(begun_frames[2].previous_view, head.view);
    EXPECT_EQ(begun_frames[2].view.Translation(), (Vector3{0, 1.5f, 1}));
}

TEST_F(VRFrame, ConfigurationAcceptsEveryKeyAndRefusesOnlyBadNumbers)
{
    Start(Config());
    EXPECT_TRUE(frame_renderer->SetConfiguration("MonitoringConfiguration", "3"));
    EXPECT_EQ(frame_renderer->GetConfiguration("MonitoringConfiguration"), "3");
    EXPECT_TRUE(frame_renderer->SetConfiguration("Other", "x"));
    EXPECT_EQ(frame_renderer->GetConfiguration("Other"), "");
    EXPECT_EQ(frame_renderer->GetConfiguration("MonitoringConfiguration"), "3");
    EXPECT_THROW(frame_renderer->SetConfiguration("MonitoringConfiguration", "abc"), std::invalid_argument);
    EXPECT_THROW(frame_renderer->SetConfiguration("MonitoringConfiguration", "99999999999"), std::out_of_range);
    EXPECT_EQ(frame_renderer->GetConfiguration("MonitoringConfiguration"), "3");
    EXPECT_TRUE(frame_renderer->SetConfiguration("MonitoringConfiguration", "-4"));
    EXPECT_EQ(frame_renderer->GetConfiguration("MonitoringConfiguration"), "-4");
}

}  // namespace
}  // namespace kesta
