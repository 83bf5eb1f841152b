#include "plugins/vr/vr_session.h"

#include <algorithm>
#include <string>

#include "engine/render_system/render_system.h"
#include "engine/renderer/renderer.h"
#include "foundation/log/log.h"
#include "plugins/vr/vr_state.h"

namespace kesta {

namespace {

constexpr int kDummyTextureSize = 16;

// A string property of the headset, by the runtime's two-call protocol: the length first, then the
// text.
std::string HeadsetStringProperty(vr::IVRSystem& system, vr::ETrackedDeviceProperty property)
{
    vr::ETrackedPropertyError error = vr::TrackedProp_Success;
    const std::uint32_t length =
        system.GetStringTrackedDeviceProperty(vr::k_unTrackedDeviceIndex_Hmd, property, nullptr, 0, &error);
    if (length == 0)
        return {};
    std::string text(length, '\0');
    system.GetStringTrackedDeviceProperty(vr::k_unTrackedDeviceIndex_Hmd, property, text.data(), length, &error);
    // The runtime counts and writes the terminating zero; keep the text before the first one.
    if (const std::size_t end = text.find('\0'); end != std::string::npos)
        text.resize(end);
    return text;
}

// An 8-bit colour render target texture, mipmapped, without multisampling.
std::shared_ptr<Texture> MakeEyeTexture(Renderer& renderer, const std::string& name, int width, int height)
{
    std::shared_ptr<Texture> texture = renderer.NewTexture(name);
    renderer.CreateTexture(*texture, nullptr, 0, width, height, kTextureFormatColor8, 0, kTextureUsageColorTarget, true,
                           1);
    return texture;
}

// A target that exists on the GPU side before its colour texture is attached.
std::shared_ptr<RenderTarget> MakeEyeTarget(Renderer& renderer)
{
    std::shared_ptr<RenderTarget> target = renderer.NewRenderTarget();
    renderer.CreateRenderTarget(*target);
    return target;
}

}  // namespace

bool InitOpenVR(RenderSystem& render_system)
{
    VRState& state = g_vr_state;
    if (state.vr_system != nullptr)
        return true;
    debug("OpenVR initialization starting");
    const std::shared_ptr<Renderer> renderer = render_system.GetRenderer();

    // A null system is the failure test; the reason code is neither logged nor kept. Without a
    // renderer no eye target could be made, so the runtime is not even started.
    vr::EVRInitError error = vr::VRInitError_None;
    state.vr_system = renderer ? vr::VR_Init(&error, vr::VRApplication_Scene) : nullptr;
    if (state.vr_system == nullptr) {
        kesta::error("OpenVR initialization failed");
        return false;
    }

    const std::string system_name = HeadsetStringProperty(*state.vr_system, vr::Prop_TrackingSystemName_String);
    const std::string serial = HeadsetStringProperty(*state.vr_system, vr::Prop_SerialNumber_String);
    debug(format("OpenVR initialized: %1 (%2)") << serial << system_name);

    state.vr_system->GetRecommendedRenderTargetSize(&state.render_width, &state.render_height);
    debug(format("OpenVR recommended render target size %1x%2") << state.render_width << state.render_height);
    const int width = static_cast<int>(state.render_width);
    const int height = static_cast<int>(state.render_height);

    state.left_target = MakeEyeTarget(*renderer);
    state.left_texture = MakeEyeTexture(*renderer, "VR left eye", width, height);
    renderer->SetRenderTargetColorTexture(*state.left_target, state.left_texture);
    state.dummy_texture = MakeEyeTexture(*renderer, "VR dummy", kDummyTextureSize, kDummyTextureSize);
    state.right_target = MakeEyeTarget(*renderer);
    state.right_texture = MakeEyeTexture(*renderer, "VR right eye", width, height);
    renderer->SetRenderTargetColorTexture(*state.right_target, state.right_texture);

    // Each axis widens on its own; the resolution never shrinks.
    const int internal_width = render_system.GetInternalWidth();
    const int internal_height = render_system.GetInternalHeight();
    const int new_width = std::max(internal_width, width);
    const int new_height = std::max(internal_height, height);
    if (new_width != internal_width || new_height != internal_height) {
        debug("Changing render system internal resolution to accommodate OpenVR recommended render target size");
        render_system.SetInternalResolution(new_width, new_height);
    }

    debug("OpenVR ready");
    return true;
}

void ShutdownOpenVR(RenderSystem& render_system)
{
    VRState& state = g_vr_state;
    const std::shared_ptr<Renderer> renderer = render_system.GetRenderer();
    if (renderer) {
        if (state.left_target)
            renderer->FreeRenderTarget(*state.left_target);
        if (state.left_texture)
            renderer->FreeTexture(*state.left_texture);
        if (state.dummy_texture)
            renderer->FreeTexture(*state.dummy_texture);
        if (state.right_target)
            renderer->FreeRenderTarget(*state.right_target);
        if (state.right_texture)
            renderer->FreeTexture(*state.right_texture);
    }
    state.render_width = 0;
    state.render_height = 0;
    state.left_target.reset();
    state.left_texture.reset();
    state.dummy_texture.reset();
    state.right_target.reset();
    state.right_texture.reset();
    debug("OpenVR shutting down");
    vr::VR_Shutdown();
    state.vr_system = nullptr;
}

}  // namespace kesta
