#pragma once

#include "plugins/vr/openvr/openvr.h"

namespace vr {

// The runtime's entry object, created by the runtime's exported VRClientCoreFactory. Not part of the
// application-facing API: only the loader and a runtime see it. Method order is the binary contract.
static constexpr const char* IVRClientCore_Version = "IVRClientCore_003";

class IVRClientCore {
public:
    virtual EVRInitError Init(EVRApplicationType eApplicationType, const char* pStartupInfo) = 0;
    virtual void Cleanup() = 0;
    virtual EVRInitError IsInterfaceVersionValid(const char* pchInterfaceVersion) = 0;
    virtual void* GetGenericInterface(const char* pchNameAndVersion, EVRInitError* peError) = 0;
    virtual bool BIsHmdPresent() = 0;
    virtual const char* GetEnglishStringForHmdError(EVRInitError eError) = 0;
    virtual const char* GetIDForVRInitError(EVRInitError eError) = 0;

protected:
    ~IVRClientCore() = default;
};

// Signature of the runtime library's exported factory.
typedef void* (*VRClientCoreFactoryFn)(const char* pInterfaceName, int* pReturnCode);

}  // namespace vr
