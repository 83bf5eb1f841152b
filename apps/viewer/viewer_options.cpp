#include "apps/viewer/viewer_options.h"

#include <charconv>
#include <optional>

namespace kesta {

namespace {

// A decimal number from `low` to `high`, the whole text and nothing else.
std::optional<std::uint64_t> ParseNumber(const std::string& text, std::uint64_t low, std::uint64_t high)
{
    std::uint64_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, value);
    if (text.empty() || failure != std::errc{} || stop != end || value < low || value > high)
        return std::nullopt;
    return value;
}

}  // namespace

bool ParseViewerOptions(const std::vector<std::string>& arguments, ViewerOptions& options, std::string& error)
{
    ViewerOptions parsed;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::string name = arguments[i];
        std::optional<std::string> value;
        if (const std::size_t equals = name.find('='); name.rfind("--", 0) == 0 && equals != std::string::npos) {
            value = name.substr(equals + 1);
            name.resize(equals);
        }
        const bool takes_value = name == "--frames" || name == "--out" || name == "--monitoring";
        const bool is_flag = name == "--unpaced" || name == "--help" || name == "-h";
        if (!takes_value && !is_flag) {
            error = "unknown option '" + arguments[i] + "'";
            return false;
        }
        if (is_flag && value) {
            error = name + " takes no value";
            return false;
        }
        if (takes_value && !value) {
            if (i + 1 == arguments.size()) {
                error = name + " needs a value";
                return false;
            }
            value = arguments[++i];
        }
        if (name == "--frames") {
            const auto frames = ParseNumber(*value, 1, kMaxViewerFrames);
            if (!frames) {
                error = "--frames needs a whole number from 1 to " + std::to_string(kMaxViewerFrames) + ", not '" +
                        *value + "'";
                return false;
            }
            parsed.frames = *frames;
        } else if (name == "--monitoring") {
            const auto monitoring = ParseNumber(*value, 0, 3);
            if (!monitoring) {
                error = "--monitoring needs 0 (both eyes), 1 (right eye), 2 (left eye) or 3 (mono view), not '" +
                        *value + "'";
                return false;
            }
            parsed.monitoring = static_cast<int>(*monitoring);
        } else if (name == "--out") {
            if (value->empty()) {
                error = "--out needs a folder";
                return false;
            }
            parsed.out = *value;
        } else if (name == "--unpaced") {
            parsed.unpaced = true;
        } else {
            parsed.help = true;
        }
    }
    options = std::move(parsed);
    return true;
}

std::string ViewerUsage(const std::string& program)
{
    return "Usage: " + program +
           " [options]\n"
           "Shows a demo scene in a VR headset: the OpenVR runtime that the environment names\n"
           "(VR_OVERRIDE or openvrpaths.vrpath), otherwise the simulated headset of this build.\n"
           "\n"
           "  --frames N          frames to run, 1 to " +
           std::to_string(kMaxViewerFrames) +
           " (default 180)\n"
           "  --out DIR           folder for the pictures and the profile (default: build/run)\n"
           "  --monitoring M      what the mirror shows: 0 both eyes side by side (default),\n"
           "                      1 the right eye, 2 the left eye, 3 the head's view in mono\n"
           "  --unpaced           the simulated headset does not wait for its refresh\n"
           "  --help              this text\n"
           "\n"
           "Exit status: 0 done, 1 the viewer could not start or run, 2 bad options.\n";
}

}  // namespace kesta
