#pragma once

#include <string>

#include "platform/plugin/plugin_api.h"

namespace kesta {

// One plug-in library opened with dlopen, with its three entry points found by name.
// Closing releases the library; pointers into it (the description's strings) die with it.
class PluginLibrary {
public:
    PluginLibrary() = default;
    ~PluginLibrary();
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    // False, with the loader's reason in error(), when the file does not load or lacks an entry point.
    bool Open(const std::string& path);
    void Close();

    bool IsOpen() const { return handle_ != nullptr; }
    const std::string& error() const { return error_; }

    PluginGetDescriptionFunction get_description = nullptr;
    PluginLoadFunction load = nullptr;
    PluginUnloadFunction unload = nullptr;

private:
    void* handle_ = nullptr;
    std::string error_;
};

}  // namespace kesta
