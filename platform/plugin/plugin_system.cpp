#include "platform/plugin/plugin_system.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "foundation/format.h"
#include "foundation/log/log.h"
#include "foundation/task/task_system.h"
#include "io/path.h"
#include "io/std_file_driver.h"
#include "io/wildcard.h"

namespace kesta {

PluginSystem* g_plugin_system = nullptr;

namespace {

bool refuse(std::string_view message, std::string_view path)
{
    debug(format(message) << path);
    return false;
}

// A normalised folder that ends in "/". An empty result means the current folder, not the root.
std::string as_folder(std::string_view path)
{
    std::string folder = NormalizePath(path);
    if (folder.empty())
        folder = ".";
    if (folder.back() != '/')
        folder += '/';
    return folder;
}

std::string make_absolute(std::string_view path)
{
    if (!path.empty() && path.front() == '/')
        return std::string(path);
    std::error_code failed;
    const std::filesystem::path current = std::filesystem::current_path(failed);
    if (failed)
        return std::string(path);
    return current.string() + "/" + std::string(path);
}

}  // namespace

PluginSystem::PluginSystem(PluginContextSource make_context) : make_context_(std::move(make_context)) {}

PluginSystem::~PluginSystem() { UnloadPlugins(); }

void PluginSystem::SetDefaultSearchPaths(std::string_view install_path)
{
    search_paths_.clear();
    search_paths_.push_back(as_folder(make_absolute(install_path)));
    if (const char* extra = std::getenv(kPluginsPathVariable))
        search_paths_.emplace_back(extra);
}

unsigned PluginSystem::LoadPlugins()
{
    log(format("Load plugins from %1 default paths") << search_paths_.size());
    unsigned total = 0;
    for (const std::string& path : search_paths_)
        total += LoadPluginsFromPath(path);
    log(format("%1 plugin(s) loaded") << total);
    return total;
}

unsigned PluginSystem::LoadPluginsFromPath(std::string_view path)
{
    const std::string folder = as_folder(path);
    log(format("Scanning for plugin in '%1'...") << folder);
    const auto driver = std::make_shared<StdFileDriver>();
    std::vector<DirEntry> files = driver->Dir(folder, kPluginFileWildcard, kDirFiles);
    // A directory listing comes in whatever order the file system keeps; name order makes the load
    // order, and so the unload order, the same on every machine.
    std::sort(files.begin(), files.end(), [](const DirEntry& a, const DirEntry& b) { return a.name < b.name; });
    SetSharedLibraryPath(folder);
    unsigned count = 0;
    for (const DirEntry& file : files)
        count += LoadPlugin(file.name) ? 1u : 0u;
    log(format("%1 plugin(s) loaded") << count);
    return count;
}

bool PluginSystem::LoadPlugin(std::string_view path)
{
    for (const std::string& pattern : blacklist_) {
        if (WildcardMatch(pattern, path)) {
            debug(format("Ignoring blacklisted plugin ('%1') (matched against '%2')") << path << pattern);
            return false;
        }
    }

    // Every refusal below destroys the record, which releases the library again.
    auto record = std::make_unique<PluginRecord>();
    record->library = LoadSharedLibrary(path);
    if (!record->library)
        return refuse("Plugin shared library load error ('%1')", path);
    const auto get_description =
        reinterpret_cast<PluginGetDescriptionFunction>(record->library->GetFunctionPointer("PluginGetDescription"));
    if (!get_description)
        return refuse("Plugin description missing ('%1')", path);
    record->load = reinterpret_cast<PluginLoadFunction>(record->library->GetFunctionPointer("PluginLoad"));
    if (!record->load)
        return refuse("Plugin load entry point missing ('%1')", path);
    record->unload = reinterpret_cast<PluginUnloadFunction>(record->library->GetFunctionPointer("PluginUnload"));
    if (!record->unload)
        return refuse("Plugin unload entry point missing ('%1')", path);

    record->path = path;
    record->description = get_description();
    const PluginDescription& description = record->description;
    // The same file opened again is the same module with the same static text, so the name's
    // address identifies it; two libraries that merely share a name both load.
    for (const auto& loaded : plugins_) {
        if (loaded->description.name == description.name)
            return refuse("Plugin already loaded ('%1')", path);
    }
    if (description.api_version != kPluginApiVersion)
        return refuse("Incompatible plugin API version ('%1')", path);
    if (description.host_version != kPluginHostVersion)
        return refuse("Incompatible plugin host version ('%1')", path);
    if ((description.build_flags & kPluginBuildFlagTested) == 0)
        return refuse("Incompatible plugin build environment ('%1')", path);

    const PluginContext context = make_context_ ? make_context_() : PluginContext{};
    if (record->load(context) != 0)
        return refuse("Plugin failed while initializing ('%1')", path);
    log(format(" - Plugin %1 [%2] version %3") << description.name << description.description << description.version);
    plugins_.push_back(std::move(record));
    return true;
}

void PluginSystem::AddPluginsBlacklist(const std::vector<std::string>& patterns)
{
    blacklist_.insert(blacklist_.end(), patterns.begin(), patterns.end());
}

void PluginSystem::UnloadPlugins()
{
    if (plugins_.empty())
        return;
    // No task may still be running plug-in code when its library goes.
    if (g_task_system)
        g_task_system->wait_for_all();
    for (const auto& record : plugins_) {
        // The description's text lives in the library: read it before the library goes.
        debug(format("Unloading plugin %1 [%2]") << record->description.name << record->description.description);
        record->unload();
        record->library.reset();
    }
    plugins_.clear();
}

}  // namespace kesta
