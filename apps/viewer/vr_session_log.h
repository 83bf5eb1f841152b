#pragma once
// What the VR output tells of its session in the log: the headset's serial number and tracking
// system, and the render size per eye. A host reads it there, since only the VR module speaks to
// the runtime.

#include <string>
#include <string_view>

namespace kesta {

struct VRSessionLog {
    std::string serial;
    std::string tracking_system;
    int render_width = 0;
    int render_height = 0;
};

// Reads the last "OpenVR initialized: <serial> (<system>)" and "OpenVR recommended render target size
// <w>x<h>" lines of a log text. False when either is missing.
bool ParseVRSessionLog(std::string_view log_text, VRSessionLog& session);

}  // namespace kesta
