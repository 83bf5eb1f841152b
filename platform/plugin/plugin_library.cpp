#include "platform/plugin/plugin_library.h"

namespace kesta {

PluginLibrary::~PluginLibrary() { Close(); }

bool PluginLibrary::Open(const std::string& path)
{
    Close();
    library_ = LoadSharedLibrary(path, &error_);
    if (!library_)
        return false;
    get_description =
        reinterpret_cast<PluginGetDescriptionFunction>(library_->GetFunctionPointer("PluginGetDescription"));
    load = reinterpret_cast<PluginLoadFunction>(library_->GetFunctionPointer("PluginLoad"));
    unload = reinterpret_cast<PluginUnloadFunction>(library_->GetFunctionPointer("PluginUnload"));
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
    library_.reset();
    get_description = nullptr;
    load = nullptr;
    unload = nullptr;
}

}  // namespace kesta
