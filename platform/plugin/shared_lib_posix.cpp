#include "platform/plugin/shared_lib_posix.h"

#include <dlfcn.h>

namespace kesta {

SharedLibPosix::~SharedLibPosix()
{
    if (handle_)
        dlclose(handle_);
}

void* SharedLibPosix::GetFunctionPointer(const char* name) { return handle_ && name ? dlsym(handle_, name) : nullptr; }

}  // namespace kesta
