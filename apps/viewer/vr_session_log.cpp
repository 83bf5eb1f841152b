#include "apps/viewer/vr_session_log.h"

#include <charconv>

namespace kesta {

namespace {

// The rest of the last line that starts with `prefix`, or npos.
std::string_view LastLineAfter(std::string_view text, std::string_view prefix, bool& found)
{
    found = false;
    std::string_view rest;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos)
            end = text.size();
        const std::string_view line = text.substr(start, end - start);
        if (line.substr(0, prefix.size()) == prefix) {
            rest = line.substr(prefix.size());
            found = true;
        }
        start = end + 1;
    }
    return rest;
}

bool ParseInt(std::string_view text, int& value)
{
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    return failure == std::errc{} && end == text.data() + text.size() && value > 0;
}

}  // namespace

bool ParseVRSessionLog(std::string_view log_text, VRSessionLog& session)
{
    bool found = false;
    const std::string_view identity = LastLineAfter(log_text, "OpenVR initialized: ", found);
    // The serial may itself hold " (": the tracking system is the last parenthesis.
    const std::size_t open = identity.rfind(" (");
    if (!found || open == std::string_view::npos || identity.empty() || identity.back() != ')')
        return false;
    const std::string_view size = LastLineAfter(log_text, "OpenVR recommended render target size ", found);
    const std::size_t x = size.find('x');
    VRSessionLog parsed;
    if (!found || x == std::string_view::npos || !ParseInt(size.substr(0, x), parsed.render_width) ||
        !ParseInt(size.substr(x + 1), parsed.render_height))
        return false;
    parsed.serial = std::string(identity.substr(0, open));
    parsed.tracking_system = std::string(identity.substr(open + 2, identity.size() - open - 3));
    session = std::move(parsed);
    return true;
}

}  // namespace kesta
