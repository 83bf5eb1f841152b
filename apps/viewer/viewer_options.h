#pragma once
// The viewer's command line.

#include <cstdint>
#include <string>
#include <vector>

namespace kesta {

struct ViewerOptions {
    std::uint64_t frames = 180;
    std::string out;       // empty: the build tree's run folder
    int monitoring = 0;    // what the mirror shows: 0 both eyes side by side, 1 right, 2 left, 3 mono
    bool unpaced = false;  // the simulated runtime hands out frames at once instead of at its refresh rate
    bool help = false;
};

inline constexpr std::uint64_t kMaxViewerFrames = 1000000;

// Reads `--frames N`, `--out DIR`, `--monitoring 0..3`, `--unpaced` and `--help`, each value also
// as `--option=value`. False with a message for the user when an argument is not one of these.
bool ParseViewerOptions(const std::vector<std::string>& arguments, ViewerOptions& options, std::string& error);

// The text that --help prints.
std::string ViewerUsage(const std::string& program);

}  // namespace kesta
