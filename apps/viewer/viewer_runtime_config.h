#pragma once
// The simulated runtime's configuration for one viewer run, made from the demo configuration that
// ships with the viewer.

#include <cstdint>
#include <string>

namespace kesta {

struct ViewerRuntimeSettings {
    bool paced = true;
    std::string capture_folder;       // where the runtime writes the captured eye pictures
    std::uint64_t capture_frame = 0;  // the frame captured, as the runtime counts them (from 1)
};

// Reads the demo configuration, sets "paced" and "capture" for this run and writes the result to
// `out_file`. Every other member stays as the demo has it. False with a message when the demo
// cannot be read, is not a JSON object, or the result cannot be written.
bool WriteViewerRuntimeConfig(const std::string& demo_file, const ViewerRuntimeSettings& settings,
                              const std::string& out_file, std::string& error);

}  // namespace kesta
