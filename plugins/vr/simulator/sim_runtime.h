#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/simulator/device_table.h"
#include "plugins/vr/simulator/event_queue.h"
#include "plugins/vr/simulator/frame_pacer.h"
#include "plugins/vr/simulator/sim_config.h"
#include "plugins/vr/simulator/vrsim_api.h"

namespace kesta::vrsim {

// One eye's picture as read back from a submitted texture, rows bottom to top.
struct Picture {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> rgba;
};

// Everything one initialized runtime knows: the configuration, the devices, the frame clock and what
// the application has handed over. Lives from IVRClientCore::Init to Cleanup.
class SimRuntime {
public:
    explicit SimRuntime(SimConfig config);

    const SimConfig& config() const { return config_; }
    const DeviceTable& devices() const { return devices_; }
    FramePacer& pacer() { return pacer_; }

    uint64_t frame() const;
    // Starts the next frame and returns its number, after the pacer's wait when pacing is on.
    uint64_t BeginFrame();

    vr::ETrackingUniverseOrigin tracking_space() const;
    void set_tracking_space(vr::ETrackingUniverseOrigin origin);

    // Poses of the current frame as WaitGetPoses returned them last (all invalid before the first).
    void LastPoses(vr::TrackedDevicePose_t* poses, uint32_t count) const;

    // The oldest waiting event, if any.
    bool PopEvent(vr::VREvent_t& event);

    // False when the eye was already submitted during the current frame.
    bool MarkSubmitted(vr::EVREye eye);
    void RecordSubmission(const VrSimSubmission& submission);
    void RecordHapticPulse(const VrSimHapticPulse& pulse);
    void StorePicture(vr::EVREye eye, Picture picture);

    uint64_t SubmissionCount() const;
    bool GetSubmission(uint64_t index, VrSimSubmission& out) const;
    uint64_t HapticPulseCount() const;
    bool GetHapticPulse(uint64_t index, VrSimHapticPulse& out) const;
    uint64_t CopyPicture(vr::EVREye eye, void* buffer, uint64_t capacity, uint32_t* width, uint32_t* height) const;
    void ClearLogs();

private:
    template <typename T>
    void Append(std::deque<T>& log, const T& entry);

    const SimConfig config_;
    const DeviceTable devices_;
    FramePacer pacer_;

    mutable std::mutex mutex_;
    uint64_t frame_ = 0;
    vr::ETrackingUniverseOrigin tracking_space_ = vr::TrackingUniverseStanding;
    vr::TrackedDevicePose_t last_poses_[vr::k_unMaxTrackedDeviceCount]{};
    EventQueue events_;
    uint64_t submitted_frame_[2] = {UINT64_MAX, UINT64_MAX};
    std::deque<VrSimSubmission> submissions_;
    std::deque<VrSimHapticPulse> haptic_pulses_;
    Picture pictures_[2];
};

}  // namespace kesta::vrsim
