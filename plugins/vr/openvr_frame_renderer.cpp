#include "plugins/vr/openvr_frame_renderer.h"

#include <array>
#include <functional>
#include <future>

#include "engine/render_system/render_system.h"
#include "engine/renderer/renderer.h"
#include "foundation/profiler/profiler.h"
#include "foundation/task/future_call.h"
#include "plugins/vr/vr_device_poll.h"
#include "plugins/vr/vr_pose_conversion.h"
#include "plugins/vr/vr_session.h"

namespace kesta {

namespace {

constexpr char kMonitoringKey[] = "MonitoringConfiguration";
constexpr std::uint8_t kRenderWorker = 0;
// The whole eye texture, stretched over the window rectangle.
constexpr Vector2 kFullUVScale{1, 1};
constexpr float kSideBySideSplit = 0.5f;

// A previous view of all zeros means there was no previous frame: motion vectors are then zero.
const Matrix4& PreviousOr(const Matrix4& previous, const Matrix4& current)
{
    return previous == kZeroMatrix4 ? current : previous;
}

void DrawScene(RenderSystem& render_system, LightSystem& lights, std::vector<std::shared_ptr<Renderable>>& renderables,
               std::vector<std::shared_ptr<Component>>& post_processes)
{
    render_system.BeginDrawFrame();
    render_system.DrawRenderables(renderables, lights);
    render_system.ResolveMultisample();
    render_system.ApplyPostProcesses(post_processes);
    render_system.EndDrawFrame();
}

// One eye: the scene from `view` into `target`, at the viewport already set.
void RenderEye(RenderSystem& render_system, Renderer& renderer, LightSystem& lights,
               std::vector<std::shared_ptr<Renderable>>& renderables,
               std::vector<std::shared_ptr<Component>>& post_processes, const Matrix4& view, Matrix4& previous_view,
               const Matrix44& projection, ViewEye eye, const std::shared_ptr<RenderTarget>& target)
{
    render_system.SetView(view, PreviousOr(previous_view, view), projection, eye);
    renderer.SetRenderTarget(target);
    DrawScene(render_system, lights, renderables, post_processes);
    previous_view = view;
}

void Submit(vr::IVRCompositor& compositor, vr::EVREye eye, const std::shared_ptr<Texture>& texture)
{
    vr::Texture_t submitted{reinterpret_cast<void*>(static_cast<std::uintptr_t>(texture->GetNativeHandle())),
                            vr::TextureType_OpenGL, vr::ColorSpace_Gamma};
    compositor.Submit(eye, &submitted, nullptr, vr::Submit_Default);
}

// Draws an eye texture over `rect` of the window with the bound copy shader.
void DrawToWindow(RenderSystem& render_system, Renderer& renderer, const std::shared_ptr<Texture>& texture,
                  const Rect& rect)
{
    static const std::string kTextureVariable = "u_tex";
    renderer.SetViewport(rect);
    const ShaderVariable variable = renderer.GetShaderVariable(kTextureVariable);
    renderer.SetShaderTexture(variable, texture);
    render_system.DrawFullscreenQuad(kFullUVScale);
}

}  // namespace

bool OpenVRFrameRenderer::Initialize(RenderSystem& render_system)
{
    head_prev_view = kZeroMatrix4;
    left_prev_view = kZeroMatrix4;
    right_prev_view = kZeroMatrix4;
    if (g_task_system == nullptr)
        return false;
    std::function<bool()> call = std::bind(InitOpenVR, std::ref(render_system));
    return run_call_with_return_value<bool>(*g_task_system, std::move(call), kRenderWorker, 0).get();
}

void OpenVRFrameRenderer::Shutdown(RenderSystem& render_system)
{
    if (g_task_system == nullptr)
        return;
    std::function<void()> call = std::bind(ShutdownOpenVR, std::ref(render_system));
    run_call<void>(*g_task_system, std::move(call), nullptr, kRenderWorker, 0);
}

bool OpenVRFrameRenderer::SetConfiguration(const std::string& key, const std::string& value)
{
    if (key == kMonitoringKey)
        monitoring = std::stoi(value);
    return true;
}

std::string OpenVRFrameRenderer::GetConfiguration(const std::string& key)
{
    return key == kMonitoringKey ? std::to_string(monitoring) : std::string();
}

void OpenVRFrameRenderer::RenderFrame(RenderSystem& render_system, LightSystem& lights,
                                      std::vector<std::shared_ptr<Renderable>>& renderables,
                                      std::vector<std::shared_ptr<Component>>& post_processes)
{
    ProfileSection frame_section("OpenVRFrameRenderer.RenderFrame");
    VRState& state = g_vr_state;
    vr::IVRCompositor* compositor = vr::VRCompositor();
    const std::shared_ptr<Renderer> renderer_reference = render_system.GetRenderer();
    if (compositor == nullptr || state.vr_system == nullptr || renderer_reference == nullptr)
        return;
    Renderer& renderer = *renderer_reference;
    const Rect saved_viewport = renderer.GetViewport();
    const std::shared_ptr<RenderTarget> saved_target = renderer.GetCurrentRenderTarget();

    {
        // Blocks until the compositor wants the next frame: this paces the whole loop.
        ProfileSection section("OpenVRFrameRenderer.WaitGetPoses");
        // Zeroed, so that a compositor that fills nothing leaves every pose invalid.
        std::array<vr::TrackedDevicePose_t, vr::k_unMaxTrackedDeviceCount> poses{};
        compositor->WaitGetPoses(poses.data(), vr::k_unMaxTrackedDeviceCount, nullptr, 0);
        if (poses[vr::k_unTrackedDeviceIndex_Hmd].bPoseIsValid)
            state.head_matrix = ConvertPose(poses[vr::k_unTrackedDeviceIndex_Hmd].mDeviceToAbsoluteTracking);
        section.End();

        ProfileSection devices_section("OpenVRFrameRenderer.GetControllerMatrix");
        PollTrackedDevices(*state.vr_system, poses.data());
    }

    // The scene's projection gives the depth range of the eyes' projections.
    const Matrix44 projection = renderer.GetProjectionMatrix();
    const DepthRange depth = DepthRangeOf(projection);
    const Matrix44 left_projection =
        ConvertProjection(state.vr_system->GetProjectionMatrix(vr::Eye_Left, depth.znear, depth.zfar));
    const Matrix44 right_projection =
        ConvertProjection(state.vr_system->GetProjectionMatrix(vr::Eye_Right, depth.znear, depth.zfar));
    // Asked at every frame, so that a change of the eye distance takes effect at once.
    const Matrix4 left_eye = ConvertPose(state.vr_system->GetEyeToHeadTransform(vr::Eye_Left));
    const Matrix4 right_eye = ConvertPose(state.vr_system->GetEyeToHeadTransform(vr::Eye_Right));
    // The camera the application set is the base: the headset moves relative to it.
    const Matrix4 head_world = renderer.GetViewMatrix() * state.head_matrix;

    renderer.SetViewport(Rect{0, 0, static_cast<float>(state.render_width), static_cast<float>(state.render_height)});
    {
        ProfileSection section("OpenVRFrameRenderer.RenderFrame.RenderLeftEye");
        RenderEye(render_system, renderer, lights, renderables, post_processes, head_world * left_eye, left_prev_view,
                  left_projection, kEyeLeft, state.left_target);
    }
    {
        ProfileSection section("OpenVRFrameRenderer.RenderFrame.RenderRightEye");
        RenderEye(render_system, renderer, lights, renderables, post_processes, head_world * right_eye, right_prev_view,
                  right_projection, kEyeRight, state.right_target);
    }
    {
        ProfileSection section("OpenVRFrameRenderer.RenderFrame.SubmitToCompositor");
        Submit(*compositor, vr::Eye_Left, state.left_texture);
        Submit(*compositor, vr::Eye_Right, state.right_texture);
    }

    ProfileSection output_section("OpenVRFrameRenderer.RenderFrame.OnScreenOutput");
    renderer.FlushRenderer();
    if (saved_target)
        renderer.SetRenderTarget(saved_target);
    else
        renderer.ResetRenderTarget();
    renderer.SetIdentityMatrices();
    renderer.SetDepthTest(false);
    renderer.SetDepthWrite(false);
    const auto [output_width, output_height] = renderer.GetOutputSize();
    const float w = static_cast<float>(output_width);
    const float h = static_cast<float>(output_height);
    renderer.SetShader(render_system.GetCoreShader(kShaderSingleTexture2D));

    // The second draw of the single-eye modes covers nothing; it is issued all the same.
    switch (const std::int32_t mode = monitoring; mode) {
        case kMonitorSideBySide:
            DrawToWindow(render_system, renderer, state.left_texture, Rect{0, 0, w * kSideBySideSplit, h});
            DrawToWindow(render_system, renderer, state.right_texture, Rect{w * kSideBySideSplit, 0, w, h});
            break;
        case kMonitorRightEye:
            DrawToWindow(render_system, renderer, state.right_texture, Rect{0, 0, w, h});
            DrawToWindow(render_system, renderer, state.left_texture, Rect{0, 0, 0, 0});
            break;
        case kMonitorLeftEye:
            DrawToWindow(render_system, renderer, state.left_texture, Rect{0, 0, w, h});
            DrawToWindow(render_system, renderer, state.right_texture, Rect{0, 0, 0, 0});
            break;
        case kMonitorMono: {
            ProfileSection section("OpenVRFrameRenderer.RenderFrame.RenderHead");
            renderer.SetDepthTest(true);
            renderer.SetDepthWrite(true);
            renderer.SetViewport(saved_viewport);
            // The scene's own projection, not an eye's, into the target restored above.
            render_system.SetView(head_world, PreviousOr(head_prev_view, head_world), projection, kEyeMono);
            DrawScene(render_system, lights, renderables, post_processes);
            break;
        }
        default:
            break;
    }
    // Kept whatever the mode, so the mono view has a previous frame after a change of mode too.
    head_prev_view = head_world;
    renderer.SetDepthTest(true);
    renderer.SetDepthWrite(true);
    renderer.SetViewport(saved_viewport);
}

}  // namespace kesta
