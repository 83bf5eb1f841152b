#pragma once
// Finds plug-in libraries in a list of folders, checks each against a blacklist and against the
// plug-in contract, calls its load entry point and keeps it until UnloadPlugins. Runs on the
// application's thread only, at start-up and at shutdown: it has no lock.

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/plugin/plugin_api.h"
#include "platform/plugin/plugin_record.h"

namespace kesta {

// The environment variable that names one more folder to scan.
inline constexpr const char* kPluginsPathVariable = "NORVANE_PLUGINS_PATH";
// The files a folder scan considers.
inline constexpr const char* kPluginFileWildcard = "*.so";

// Builds the context handed to each plug-in's PluginLoad: the host's process-wide objects.
using PluginContextSource = std::function<PluginContext()>;

class PluginSystem {
public:
    explicit PluginSystem(PluginContextSource make_context);
    // Unloads what is still loaded: a library is never released without its PluginUnload.
    ~PluginSystem();
    PluginSystem(const PluginSystem&) = delete;
    PluginSystem& operator=(const PluginSystem&) = delete;

    // Replaces the search paths with the install path, made absolute against the current folder
    // and ending in "/", then the value of NORVANE_PLUGINS_PATH as it stands if that is set.
    void SetDefaultSearchPaths(std::string_view install_path);

    // Scans every search path in order; the count of plug-ins loaded.
    unsigned LoadPlugins();
    // Loads every "*.so" of one folder, in name order, by bare file name; the count loaded.
    unsigned LoadPluginsFromPath(std::string_view path);
    // Loads, checks and initialises one library. Every refusal is logged at level "debug" and
    // releases the library again.
    bool LoadPlugin(std::string_view path);
    // Appends wildcard patterns; a library whose path matches one is never mapped.
    void AddPluginsBlacklist(const std::vector<std::string>& patterns);
    // Waits for the task system's queued work, then calls each PluginUnload and releases each
    // library, in load order.
    void UnloadPlugins();

    const std::vector<std::unique_ptr<PluginRecord>>& plugins() const { return plugins_; }
    const std::vector<std::string>& search_paths() const { return search_paths_; }
    const std::vector<std::string>& blacklist() const { return blacklist_; }

private:
    PluginContextSource make_context_;
    std::vector<std::unique_ptr<PluginRecord>> plugins_;  // load order
    std::vector<std::string> search_paths_;
    std::vector<std::string> blacklist_;
};

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern PluginSystem* g_plugin_system;

}  // namespace kesta
