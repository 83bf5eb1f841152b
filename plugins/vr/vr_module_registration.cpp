#include "plugins/vr/vr_module_registration.h"

#include <functional>
#include <memory>

#include "engine/frame_renderer_factory.h"
#include "platform/input/input_system.h"
#include "plugins/vr/openvr_controller_device.h"
#include "plugins/vr/openvr_frame_renderer.h"
#include "plugins/vr/openvr_hmd_device.h"

namespace kesta {

namespace {

constexpr const char* kHMDName = "HMD";
// Controllers take slots 0 and 1, trackers slots 2 and 3.
constexpr const char* kSlotNames[] = {"VR Controller 0", "VR Controller 1", "VR Tracker 0", "VR Tracker 1"};
constexpr const char* kFrameRendererNames[] = {"VR", "OpenVR"};

}  // namespace

void RegisterModule()
{
    if (g_input_system) {
        g_input_system->AddDevice(kHMDName, std::make_shared<OpenVRHMDDevice>());
        for (std::uint64_t slot = 0; slot < std::size(kSlotNames); ++slot)
            g_input_system->AddDevice(kSlotNames[slot], std::make_shared<OpenVRControllerDevice>(slot));
    }
    if (g_frame_renderer_factory) {
        // The deleter is made here, so it and the destructor are the module's code: an instance
        // must not outlive the module.
        const std::function<std::shared_ptr<FrameRenderer>()> make = [] {
            auto* renderer = new OpenVRFrameRenderer;
            renderer->monitoring = kMonitorLeftEye;
            return std::shared_ptr<FrameRenderer>(renderer);
        };
        for (const char* name : kFrameRendererNames)
            (*g_frame_renderer_factory)[name] = make;
    }
}

void UnregisterModule()
{
    if (g_frame_renderer_factory) {
        g_frame_renderer_factory->erase("OpenVR");
        g_frame_renderer_factory->erase("VR");
    }
    if (g_input_system) {
        for (std::size_t slot = std::size(kSlotNames); slot-- > 0;)
            g_input_system->RemoveDevice(kSlotNames[slot]);
        g_input_system->RemoveDevice(kHMDName);
    }
}

}  // namespace kesta
