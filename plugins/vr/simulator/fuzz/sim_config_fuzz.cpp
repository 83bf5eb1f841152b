// Arbitrary bytes as the simulated runtime's JSON configuration: the parser either accepts them and
// yields a configuration within the documented limits, or refuses them with a message and leaves the
// configuration it was given untouched. It never crashes, hangs or overflows the stack.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "plugins/vr/simulator/sim_config.h"

namespace {

// The marker a refused parse must leave in place.
constexpr std::string_view kUntouched = "untouched";

bool RangesAreOrdered(const std::vector<kesta::vrsim::FrameRange>& ranges)
{
    for (const kesta::vrsim::FrameRange& range : ranges) {
        if (range.last < range.first)
            return false;
    }
    return true;
}

bool WithinLimits(const kesta::vrsim::SimConfig& config)
{
    if (config.refresh_rate < 1.0 || config.refresh_rate > 1000.0 || config.render_width == 0 ||
        config.render_height == 0 || config.log_limit == 0)
        return false;
    if (config.devices.size() >= vr::k_unMaxTrackedDeviceCount)
        return false;
    if (!RangesAreOrdered(config.hmd_connected) || !RangesAreOrdered(config.hmd_invalid_pose))
        return false;
    for (const kesta::vrsim::DeviceConfig& device : config.devices) {
        if (!RangesAreOrdered(device.connected) || !RangesAreOrdered(device.invalid_pose))
            return false;
        for (const kesta::vrsim::AxisScript& axis : device.axes) {
            if (axis.axis >= vr::k_unControllerStateAxisCount)
                return false;
        }
    }
    if (config.head.kind == kesta::vrsim::HeadPathKind::kKeyframes && config.head.keyframes.empty())
        return false;
    return config.capture.png_frames.empty() || !config.capture.png_folder.empty();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view json(reinterpret_cast<const char*>(data), size);
    kesta::vrsim::SimConfig config;
    config.hmd_serial = kUntouched;
    std::string error = "left over from an earlier call";
    if (kesta::vrsim::ParseSimConfig(json, config, error)) {
        if (!error.empty() || !WithinLimits(config))
            std::abort();
    } else if (error.empty() || config.hmd_serial != kUntouched) {
        std::abort();
    }
    return 0;
}
