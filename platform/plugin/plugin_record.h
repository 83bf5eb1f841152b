#pragma once

#include <memory>
#include <string>

#include "platform/plugin/plugin_api.h"
#include "platform/plugin/shared_library.h"

namespace kesta {

// One loaded plug-in. The description is kept by value, but its text points into the library:
// it is readable only while `library` is held.
struct PluginRecord {
    std::string path;  // as given to LoadPlugin
    std::unique_ptr<SharedLibrary> library;
    PluginDescription description{};
    PluginLoadFunction load = nullptr;
    PluginUnloadFunction unload = nullptr;
};

}  // namespace kesta
