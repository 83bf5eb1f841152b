#include "apps/viewer/viewer_paths.h"

#include <filesystem>
#include <system_error>

namespace kesta {

ViewerPaths FindViewerPaths()
{
    std::error_code failure;
    const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (failure)
        return {};
    const std::filesystem::path folder = executable.parent_path();
    const std::filesystem::path build = folder.parent_path();
    ViewerPaths paths;
    paths.module_folder = (build / "plugins").string();
    paths.simulated_runtime = (build / "vrsim").string();
    paths.demo_config = (folder / "viewer_demo_vrsim.json").string();
    paths.default_out = (build / "run").string();
    return paths;
}

bool MakeFolders(const std::string& folder, std::string& error)
{
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    if (!std::filesystem::is_directory(folder)) {
        error = "cannot create the folder " + folder + (failure ? ": " + failure.message() : std::string());
        return false;
    }
    return true;
}

}  // namespace kesta
