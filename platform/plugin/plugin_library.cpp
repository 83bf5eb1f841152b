#include "platform/plugin/plugin_library.h"

#include <dlfcn.h>

namespace kesta {

PluginLibrary::~PluginLibrary() { Close(); }

bool PluginLibrary::Open(const std::string& path)
{
    Close();
    // RTLD_LOCAL: a module's symbols never satisfy another module's references.
    handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle_) {
        const char* reason = dlerror();
        error_ = reason ? reason : "dlopen failed";
        return false;
    }
    get_description = reinterpret_cast<PluginGetDescriptionFunction>(dlsym(handle_, "PluginGetDescription"));
    load = reinterpret_cast<PluginLoadFunction>(dlsym(handle_, "PluginLoad"));
    unload = reinterpret_cast<PluginUnloadFunction>(dlsym(handle_, "PluginUnload"));
    if (!get_description || !load || !unload) {
        error_ = "missing entry point in " + path;
        Close();
        return false;
    }
    error_.clear();
    return true;
}

void PluginLibrary::Close()
{
    if (handle_)
        dlclose(handle_);
    handle_ = nullptr;
    get_description = nullptr;
    load = nullptr;
    unload = nullptr;
}

}  // namespace kesta
