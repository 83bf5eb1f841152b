// The client library's loader: finds the runtime, loads its vrclient.so and keeps its client core.
// These are the functions the inline helpers of openvr.h call; they hold process-wide state.
#include <dlfcn.h>
#include <sys/stat.h>

#include <mutex>
#include <string>

#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/openvr/openvr_client_core.h"
#include "plugins/vr/openvr/openvr_paths.h"

namespace {

struct LoaderState {
    // Recursive: a runtime's Init or Cleanup may call back into the loader on the same thread.
    std::recursive_mutex mutex;
    void* library = nullptr;
    vr::IVRClientCore* core = nullptr;
    uint32_t init_token = 0;
};

LoaderState& State()
{
    static LoaderState state;
    return state;
}

bool IsDirectory(const std::string& path)
{
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

void UnloadLocked(LoaderState& state)
{
    state.core = nullptr;
    if (state.library != nullptr)
        dlclose(state.library);
    state.library = nullptr;
}

void ShutdownLocked(LoaderState& state)
{
    if (state.core != nullptr)
        state.core->Cleanup();
    UnloadLocked(state);
    ++state.init_token;
}

vr::EVRInitError LoadRuntimeLocked(LoaderState& state, vr::EVRApplicationType type, const char* startup_info)
{
    kesta::OpenVRPaths paths;
    if (vr::EVRInitError error = kesta::FindOpenVRPaths(paths); error != vr::VRInitError_None)
        return error;
    if (!IsDirectory(paths.runtime))
        return vr::VRInitError_Init_InstallationNotFound;
    const std::string bin = paths.runtime + "/bin/linux64";
    if (!IsDirectory(bin))
        return vr::VRInitError_Init_InstallationCorrupt;

    // RTLD_LOCAL: the runtime's symbols never satisfy anyone else's references.
    state.library = dlopen((bin + "/vrclient.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    if (state.library == nullptr)
        return vr::VRInitError_Init_VRClientDLLNotFound;
    auto factory = reinterpret_cast<vr::VRClientCoreFactoryFn>(dlsym(state.library, "VRClientCoreFactory"));
    if (factory == nullptr)
        return vr::VRInitError_Init_FactoryNotFound;
    int return_code = 0;
    state.core = static_cast<vr::IVRClientCore*>(factory(vr::IVRClientCore_Version, &return_code));
    if (state.core == nullptr)
        return vr::VRInitError_Init_InterfaceNotFound;
    const vr::EVRInitError error = state.core->Init(type, startup_info);
    if (error != vr::VRInitError_None)
        state.core->Cleanup();
    return error;
}

}  // namespace

namespace vr {
extern "C" {

uint32_t VR_InitInternal2(vr::EVRInitError* peError, vr::EVRApplicationType eApplicationType, const char* pStartupInfo)
{
    LoaderState& state = State();
    std::lock_guard lock(state.mutex);
    // A second init without a shutdown starts over: the old core is cleaned up and the token moves on,
    // so no module keeps a pointer into it.
    if (state.core != nullptr || state.library != nullptr)
        ShutdownLocked(state);

    const vr::EVRInitError error = LoadRuntimeLocked(state, eApplicationType, pStartupInfo);
    if (peError != nullptr)
        *peError = error;
    if (error != vr::VRInitError_None) {
        UnloadLocked(state);
        return 0;
    }
    return ++state.init_token;
}

void VR_ShutdownInternal()
{
    LoaderState& state = State();
    std::lock_guard lock(state.mutex);
    ShutdownLocked(state);
}

void* VR_GetGenericInterface(const char* pchInterfaceVersion, vr::EVRInitError* peError)
{
    LoaderState& state = State();
    std::lock_guard lock(state.mutex);
    if (state.core == nullptr) {
        if (peError != nullptr)
            *peError = vr::VRInitError_Init_NotInitialized;
        return nullptr;
    }
    return state.core->GetGenericInterface(pchInterfaceVersion, peError);
}

bool VR_IsInterfaceVersionValid(const char* pchInterfaceVersion)
{
    LoaderState& state = State();
    std::lock_guard lock(state.mutex);
    return state.core != nullptr && state.core->IsInterfaceVersionValid(pchInterfaceVersion) == vr::VRInitError_None;
}

uint32_t VR_GetInitToken()
{
    LoaderState& state = State();
    std::lock_guard lock(state.mutex);
    return state.init_token;
}

}  // extern "C"
}  // namespace vr
