#pragma once
// Where the viewer finds what it needs, relative to its own executable, so that the build tree (and
// a copy of it elsewhere) runs without any set-up: <build>/apps/norvane_viewer finds its modules in
// <build>/plugins, the simulated runtime in <build>/vrsim and writes to <build>/run.

#include <string>

namespace kesta {

struct ViewerPaths {
    std::string module_folder;
    std::string simulated_runtime;
    std::string demo_config;  // the simulated runtime's demo configuration, beside the executable
    std::string default_out;
};

// Empty strings when the executable's own path cannot be found.
ViewerPaths FindViewerPaths();

// Creates the folder and its parents. False with the reason when it does not exist afterwards.
bool MakeFolders(const std::string& folder, std::string& error);

}  // namespace kesta
