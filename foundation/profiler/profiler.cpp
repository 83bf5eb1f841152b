#include "foundation/profiler/profiler.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace kesta {

Profiler* g_profiler = nullptr;

namespace {

std::uint32_t current_thread_id()
{
    thread_local const auto id = static_cast<std::uint32_t>(syscall(SYS_gettid));
    return id;
}

}  // namespace

std::uint8_t ProfileNameHash(std::string_view name)
{
    std::uint8_t hash = 0x25;
    for (char c : name)
        hash = static_cast<std::uint8_t>((hash ^ static_cast<std::uint8_t>(c)) * 0xB3);
    return hash;
}

std::uint64_t Profiler::BeginSection(std::string_view name, std::string_view details)
{
    const std::uint32_t thread = current_thread_id();
    std::lock_guard lock(lock_);
    std::vector<std::uint64_t>& bucket = buckets_[ProfileNameHash(name)];
    Section* section = nullptr;
    for (std::uint64_t index : bucket) {
        const std::string& known = sections_[index].name;
        if (known.size() == name.size() && std::memcmp(known.data(), name.data(), name.size()) == 0) {
            section = &sections_[index];
            break;
        }
    }
    if (!section) {
        bucket.push_back(sections_.size());
        section = &sections_.emplace_back(Section{std::string(name), {}});
    }
    const std::uint64_t event = events_.size();
    events_.push_back({thread, time_now(), 0, std::string(details)});
    section->events.push_back(event);
    return event;
}

void Profiler::EndSection(std::uint64_t event)
{
    std::lock_guard lock(lock_);
    if (event < events_.size() && events_[event].start != 0)
        events_[event].end = time_now();
}

void Profiler::EndFrame()
{
    std::lock_guard lock(lock_);
    const time_ns now = time_now();
    last_frame_.frame = frame_;
    last_frame_.events.clear();
    last_frame_.sections.clear();
    if (!sections_.empty()) {
        last_frame_.start = events_.front().start;
        last_frame_.end = events_.front().start;
        last_frame_.events.reserve(events_.size());
        for (const ProfileEvent& event : events_) {
            ProfileEvent& copy = last_frame_.events.emplace_back(event);
            // Still open: it lasts until the frame ends.
            if (copy.end == 0)
                copy.end = now;
            last_frame_.start = std::min(last_frame_.start, copy.start);
            last_frame_.end = std::max(last_frame_.end, copy.end);
        }
        last_frame_.sections.reserve(sections_.size());
        for (Section& section : sections_) {
            ProfileFrameSection& copy = last_frame_.sections.emplace_back();
            copy.name = std::move(section.name);
            copy.events = std::move(section.events);
            for (std::uint64_t index : copy.events)
                copy.duration += last_frame_.events[index].end - last_frame_.events[index].start;
        }
        std::sort(last_frame_.sections.begin(), last_frame_.sections.end(),
                  [](const ProfileFrameSection& a, const ProfileFrameSection& b) { return a.name < b.name; });
    }
    for (auto& bucket : buckets_)
        bucket.clear();
    sections_.clear();
    events_.clear();
    ++frame_;
}

ProfileFrame Profiler::GetLastFrame() const
{
    std::lock_guard lock(lock_);
    return last_frame_;
}

std::uint64_t Profiler::GetFrame() const
{
    std::lock_guard lock(lock_);
    return frame_;
}

ProfileSection::ProfileSection(std::string_view name, std::string_view details) : profiler_(g_profiler)
{
    if (profiler_) {
        event_ = profiler_->BeginSection(name, details);
        active_ = true;
    }
}

void ProfileSection::End()
{
    if (!active_)
        return;
    active_ = false;
    profiler_->EndSection(event_);
}

}  // namespace kesta
