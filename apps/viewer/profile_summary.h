#pragma once
// The profiler's sections over the last frames of a run, summed per name: what a person reads to
// see where a frame's time goes.

#include <cstdint>
#include <map>
#include <string>

#include "foundation/profiler/profiler.h"

namespace kesta {

class ProfileSummary {
public:
    struct Section {
        std::uint64_t frames = 0;  // frames in which the section was opened
        std::uint64_t events = 0;  // times it was opened
        time_ns total = 0;
        time_ns longest_frame = 0;  // its largest duration within one frame
    };

    // Adds one frame record, as Profiler::GetLastFrame gives it after the frame's end.
    void Add(const ProfileFrame& frame);

    std::uint64_t Frames() const { return frames_; }
    const std::map<std::string, Section>& Sections() const { return sections_; }

    // One line per section in name order, so that dotted names nest: mean time per frame over all
    // added frames, the longest frame, and how often the section opens per frame.
    std::string Format() const;

private:
    std::uint64_t frames_ = 0;
    std::map<std::string, Section> sections_;
};

}  // namespace kesta
