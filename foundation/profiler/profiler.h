#pragma once
// Named sections of time, recorded per frame from any thread. At each frame end the sections are
// copied to a record of the last frame, which the debug overlay reads, and the live tables empty.

#include <array>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/time/clock.h"

namespace kesta {

struct ProfileEvent {
    std::uint32_t thread = 0;  // id of the thread that opened the section
    time_ns start = 0;
    time_ns end = 0;  // 0 while open
    std::string details;
};

struct ProfileFrameSection {
    std::string name;
    time_ns duration = 0;  // sum of its events
    std::vector<std::uint64_t> events;
};

struct ProfileFrame {
    std::uint64_t frame = 0;
    std::vector<ProfileEvent> events;
    std::vector<ProfileFrameSection> sections;  // sorted by name
    time_ns start = 0;                          // extent of the frame's events
    time_ns end = 0;
};

// The 8-bit hash of a section name that picks its bucket.
std::uint8_t ProfileNameHash(std::string_view name);

class Profiler {
public:
    // Opens an event of the section `name`; the result is the event's index in this frame.
    std::uint64_t BeginSection(std::string_view name, std::string_view details = {});
    // Ends the event. An index from an earlier frame ends nothing, or a newer event of that index.
    void EndSection(std::uint64_t event);
    void EndFrame();
    ProfileFrame GetLastFrame() const;
    std::uint64_t GetFrame() const;

private:
    struct Section {
        std::string name;
        std::vector<std::uint64_t> events;
    };

    mutable std::mutex lock_;
    std::array<std::vector<std::uint64_t>, 256> buckets_;
    std::vector<Section> sections_;
    std::vector<ProfileEvent> events_;
    std::uint64_t frame_ = 0;
    ProfileFrame last_frame_;
};

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern Profiler* g_profiler;

// A section of the global profiler that ends at End() or at the end of its scope. Does nothing
// while no profiler is set.
class ProfileSection {
public:
    explicit ProfileSection(std::string_view name, std::string_view details = {});
    ~ProfileSection() { End(); }
    ProfileSection(const ProfileSection&) = delete;
    ProfileSection& operator=(const ProfileSection&) = delete;

    void End();

private:
    bool active_ = false;
    std::uint64_t event_ = 0;
    Profiler* profiler_ = nullptr;
};

}  // namespace kesta
