#include "apps/viewer/profile_summary.h"

#include <algorithm>
#include <cstdio>

namespace kesta {

void ProfileSummary::Add(const ProfileFrame& frame)
{
    ++frames_;
    for (const ProfileFrameSection& added : frame.sections) {
        Section& section = sections_[added.name];
        ++section.frames;
        section.events += added.events.size();
        section.total += added.duration;
        section.longest_frame = std::max(section.longest_frame, added.duration);
    }
}

std::string ProfileSummary::Format() const
{
    std::string text = "Profile of the last " + std::to_string(frames_) +
                       " frames: milliseconds per frame (mean, longest) and sections opened per frame\n";
    char line[256];
    std::snprintf(line, sizeof line, "%-60s %10s %10s %8s\n", "section", "mean", "longest", "opened");
    text += line;
    for (const auto& [name, section] : sections_) {
        const double mean_ms =
            frames_ == 0 ? 0.0 : static_cast<double>(section.total) / 1e6 / static_cast<double>(frames_);
        const double opened = frames_ == 0 ? 0.0 : static_cast<double>(section.events) / static_cast<double>(frames_);
        std::snprintf(line, sizeof line, "%-60s %10.3f %10.3f %8.2f\n", name.c_str(), mean_ms,
                      static_cast<double>(section.longest_frame) / 1e6, opened);
        text += line;
    }
    return text;
}

}  // namespace kesta
