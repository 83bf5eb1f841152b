#include "platform/plugin/shared_library.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <mutex>

#include "foundation/format.h"
#include "foundation/log/log.h"
#include "platform/plugin/shared_lib_posix.h"

namespace kesta {

namespace {

std::mutex g_library_path_lock;
std::string g_library_path;  // guarded by g_library_path_lock

bool is_file(const std::string& path)
{
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

// dlopen has no folder of its own for bare names: a bare name found in the recorded folder opens
// by its full path there, anything else goes to the system's search as it stands.
std::string resolve(std::string_view path)
{
    std::string name(path);
    if (name.find('/') != std::string::npos)
        return name;
    const std::string folder = GetSharedLibraryPath();
    if (folder.empty())
        return name;
    std::string candidate = folder.back() == '/' ? folder + name : folder + "/" + name;
    return is_file(candidate) ? candidate : name;
}

}  // namespace

std::unique_ptr<SharedLibrary> LoadSharedLibrary(std::string_view path, std::string* reason)
{
    // dlopen takes an empty name for the main program, which is no library to load.
    // RTLD_LOCAL: a module's symbols never satisfy another module's references.
    void* handle = path.empty() ? nullptr : dlopen(resolve(path).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        const char* text = path.empty() ? "no file name" : dlerror();
        const std::string why = text ? text : "unknown";
        error(format("LoadSharedLibrary('%1') failed, reason: %2") << path << why);
        if (reason)
            *reason = why;
        return nullptr;
    }
    return std::make_unique<SharedLibPosix>(handle);
}

void SetSharedLibraryPath(std::string_view folder)
{
    std::lock_guard guard(g_library_path_lock);
    g_library_path = folder;
}

std::string GetSharedLibraryPath()
{
    std::lock_guard guard(g_library_path_lock);
    return g_library_path;
}

}  // namespace kesta
