#pragma once
// A shared library mapped into the process, and the loader that opens one.

#include <memory>
#include <string>
#include <string_view>

namespace kesta {

// One mapped library. Destroying it releases the library; every pointer into it dies with it.
class SharedLibrary {
public:
    SharedLibrary() = default;
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;
    virtual ~SharedLibrary() = default;

    // The address of an exported symbol, or null.
    virtual void* GetFunctionPointer(const char* name) = 0;
};

// Maps a library. A bare file name is looked up first in the folder of SetSharedLibraryPath, then
// by the system's own search. On failure logs "LoadSharedLibrary('<path>') failed, reason: <loader's
// text>" as an error and returns null; the loader's text also goes to *reason when given. Opening a
// file that is already mapped hands back the same module, counted once more.
std::unique_ptr<SharedLibrary> LoadSharedLibrary(std::string_view path, std::string* reason = nullptr);

// The folder in which LoadSharedLibrary resolves bare file names; an empty string forgets it. The
// setting stays until the next call.
void SetSharedLibraryPath(std::string_view folder);
std::string GetSharedLibraryPath();

}  // namespace kesta
