#include "plugins/vr/simulator/sim_runtime.h"

#include <algorithm>
#include <cstring>

namespace kesta::vrsim {

SimRuntime::SimRuntime(SimConfig config)
    : config_(std::move(config)), devices_(config_), pacer_(config_.refresh_rate, config_.paced)
{
    events_.PostInitial(devices_);
}

uint64_t SimRuntime::frame() const
{
    std::lock_guard lock(mutex_);
    return frame_;
}

uint64_t SimRuntime::BeginFrame()
{
    // The wait happens unlocked: other threads may query devices meanwhile.
    pacer_.WaitForNextFrame();
    std::lock_guard lock(mutex_);
    ++frame_;
    events_.PostChanges(devices_, frame_);
    for (uint32_t i = 0; i < vr::k_unMaxTrackedDeviceCount; ++i)
        last_poses_[i] = devices_.PoseAt(i, frame_);
    return frame_;
}

vr::ETrackingUniverseOrigin SimRuntime::tracking_space() const
{
    std::lock_guard lock(mutex_);
    return tracking_space_;
}

void SimRuntime::set_tracking_space(vr::ETrackingUniverseOrigin origin)
{
    std::lock_guard lock(mutex_);
    tracking_space_ = origin;
}

void SimRuntime::LastPoses(vr::TrackedDevicePose_t* poses, uint32_t count) const
{
    std::lock_guard lock(mutex_);
    std::copy_n(last_poses_, std::min(count, vr::k_unMaxTrackedDeviceCount), poses);
}

bool SimRuntime::PopEvent(vr::VREvent_t& event)
{
    std::lock_guard lock(mutex_);
    return events_.Pop(event);
}

bool SimRuntime::MarkSubmitted(vr::EVREye eye)
{
    std::lock_guard lock(mutex_);
    if (submitted_frame_[eye] == frame_)
        return false;
    submitted_frame_[eye] = frame_;
    return true;
}

template <typename T>
void SimRuntime::Append(std::deque<T>& log, const T& entry)
{
    if (log.size() >= config_.log_limit)
        log.pop_front();
    log.push_back(entry);
}

void SimRuntime::RecordSubmission(const VrSimSubmission& submission)
{
    std::lock_guard lock(mutex_);
    Append(submissions_, submission);
}

void SimRuntime::RecordHapticPulse(const VrSimHapticPulse& pulse)
{
    std::lock_guard lock(mutex_);
    Append(haptic_pulses_, pulse);
}

void SimRuntime::StorePicture(vr::EVREye eye, Picture picture)
{
    std::lock_guard lock(mutex_);
    pictures_[eye] = std::move(picture);
}

uint64_t SimRuntime::SubmissionCount() const
{
    std::lock_guard lock(mutex_);
    return submissions_.size();
}

bool SimRuntime::GetSubmission(uint64_t index, VrSimSubmission& out) const
{
    std::lock_guard lock(mutex_);
    if (index >= submissions_.size())
        return false;
    out = submissions_[index];
    return true;
}

uint64_t SimRuntime::HapticPulseCount() const
{
    std::lock_guard lock(mutex_);
    return haptic_pulses_.size();
}

bool SimRuntime::GetHapticPulse(uint64_t index, VrSimHapticPulse& out) const
{
    std::lock_guard lock(mutex_);
    if (index >= haptic_pulses_.size())
        return false;
    out = haptic_pulses_[index];
    return true;
}

uint64_t SimRuntime::CopyPicture(vr::EVREye eye, void* buffer, uint64_t capacity, uint32_t* width,
                                 uint32_t* height) const
{
    std::lock_guard lock(mutex_);
    const Picture& picture = pictures_[eye];
    if (width != nullptr)
        *width = picture.width;
    if (height != nullptr)
        *height = picture.height;
    if (buffer != nullptr && capacity >= picture.rgba.size() && !picture.rgba.empty())
        std::memcpy(buffer, picture.rgba.data(), picture.rgba.size());
    return picture.rgba.size();
}

void SimRuntime::ClearLogs()
{
    std::lock_guard lock(mutex_);
    submissions_.clear();
    haptic_pulses_.clear();
    pictures_[0] = Picture{};
    pictures_[1] = Picture{};
}

}  // namespace kesta::vrsim
