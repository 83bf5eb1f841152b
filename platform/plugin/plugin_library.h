#pragma once

#include <memory>
#include <string>

#include "platform/plugin/plugin_api.h"
#include "platform/plugin/shared_library.h"

namespace kesta {

// One plug-in library with its three entry points found by name, for code that drives a single
// module by hand (tests, tools); PluginSystem is the host's way of loading plug-ins. Closing
// releases the library; pointers into it (the description's strings) die with it.
class PluginLibrary {
public:
    PluginLibrary() = default;
    ~PluginLibrary();
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    // False, with the loader's reason in error(), when the file does not load or lacks an entry point.
    bool Open(const std::string& path);
    void Close();

    bool IsOpen() const { return library_ != nullptr; }
    const std::string& error() const { return error_; }

    PluginGetDescriptionFunction get_description = nullptr;
    PluginLoadFunction load = nullptr;
    PluginUnloadFunction unload = nullptr;

private:
    std::unique_ptr<SharedLibrary> library_;
    std::string error_;
};

}  // namespace kesta
