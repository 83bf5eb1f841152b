// The runtime's entry object and the exported factory that the client library looks up.
#include <cstdio>
#include <cstring>
#include <string>

#include "plugins/vr/openvr/openvr_client_core.h"
#include "plugins/vr/simulator/openvr_enum_names.h"
#include "plugins/vr/simulator/sim_session.h"

namespace kesta::vrsim {

namespace {

std::unique_ptr<SimSession>& SessionSlot()
{
    static std::unique_ptr<SimSession> session;
    return session;
}

bool Is(const char* name, const char* version) { return name != nullptr && std::strcmp(name, version) == 0; }

// The interface versions this runtime serves.
bool Offered(const char* name)
{
    return Is(name, vr::IVRSystem_Version) || Is(name, vr::IVRCompositor_Version) ||
           Is(name, vr::IVRRenderModels_Version);
}

class SimClientCore final : public vr::IVRClientCore {
public:
    vr::EVRInitError Init(vr::EVRApplicationType eApplicationType, const char*) override
    {
        if (eApplicationType < vr::VRApplication_Other || eApplicationType >= vr::VRApplication_Max)
            return vr::VRInitError_Init_InvalidApplicationType;
        SimConfig config;
        std::string error;
        if (!LoadSimConfig(config, error)) {
            // The application only sees the init error; the reason goes to the console.
            std::fprintf(stderr, "vrsim: bad configuration: %s\n", error.c_str());
            return vr::VRInitError_Init_SettingsInitFailed;
        }
        if (!config.hmd_present)
            return vr::VRInitError_Init_HmdNotFound;
        SetCurrentSession(std::make_unique<SimSession>(std::move(config)));
        return vr::VRInitError_None;
    }

    void Cleanup() override { SetCurrentSession(nullptr); }

    vr::EVRInitError IsInterfaceVersionValid(const char* pchInterfaceVersion) override
    {
        return Offered(pchInterfaceVersion) ? vr::VRInitError_None : vr::VRInitError_Init_InvalidInterface;
    }

    // Only these C++ interfaces exist; the C function tables ("FnTable:" names) are not offered.
    void* GetGenericInterface(const char* pchNameAndVersion, vr::EVRInitError* peError) override
    {
        SimSession* session = CurrentSession();
        vr::EVRInitError error = vr::VRInitError_None;
        void* result = nullptr;
        if (session == nullptr)
            error = vr::VRInitError_Init_NotInitialized;
        else if (Is(pchNameAndVersion, vr::IVRSystem_Version))
            result = static_cast<vr::IVRSystem*>(&session->system);
        else if (Is(pchNameAndVersion, vr::IVRCompositor_Version))
            result = static_cast<vr::IVRCompositor*>(&session->compositor);
        else if (Is(pchNameAndVersion, vr::IVRRenderModels_Version))
            result = static_cast<vr::IVRRenderModels*>(&session->render_models);
        else
            error = vr::VRInitError_Init_InvalidInterface;
        if (peError != nullptr)
            *peError = error;
        return result;
    }

    bool BIsHmdPresent() override
    {
        SimConfig config;
        std::string error;
        return LoadSimConfig(config, error) && config.hmd_present;
    }

    const char* GetEnglishStringForHmdError(vr::EVRInitError eError) override
    {
        switch (eError) {
            case vr::VRInitError_None:
                return "No Error (0)";
            case vr::VRInitError_Init_SettingsInitFailed:
                return "The simulated runtime's configuration file is invalid (118)";
            case vr::VRInitError_Init_HmdNotFound:
                return "The configuration says no headset is present (108)";
            default:
                return GetIDForVRInitError(eError);
        }
    }

    const char* GetIDForVRInitError(vr::EVRInitError eError) override
    {
        const char* name = NameOf(eError);
        return name != nullptr ? name : "Unknown error";
    }
};

}  // namespace

SimSession* CurrentSession() { return SessionSlot().get(); }

void SetCurrentSession(std::unique_ptr<SimSession> session) { SessionSlot() = std::move(session); }

}  // namespace kesta::vrsim

// Exported (see exports.map); the only symbol the client library looks up.
extern "C" void* VRClientCoreFactory(const char* pInterfaceName, int* pReturnCode);

// Hands out the one client core of this library for "IVRClientCore_003"; null otherwise.
void* VRClientCoreFactory(const char* pInterfaceName, int* pReturnCode)
{
    static kesta::vrsim::SimClientCore core;
    const bool known = pInterfaceName != nullptr && std::strcmp(pInterfaceName, vr::IVRClientCore_Version) == 0;
    if (pReturnCode != nullptr)
        *pReturnCode = known ? vr::VRInitError_None : vr::VRInitError_Init_InterfaceNotFound;
    return known ? static_cast<vr::IVRClientCore*>(&core) : nullptr;
}
