#pragma once

#include "plugins/vr/openvr/openvr.h"

namespace kesta::vrsim {

// The official names of enumeration values, as the runtime reports them in its *NameFromEnum methods.
// Null for a value the enumeration does not have. Where two names share a value the first one wins.
const char* NameOf(vr::EVRInitError value);
const char* NameOf(vr::ETrackedPropertyError value);
const char* NameOf(vr::ETrackedDeviceProperty value);
const char* NameOf(vr::EVREventType value);
const char* NameOf(vr::EVRButtonId value);
const char* NameOf(vr::EVRControllerAxisType value);
const char* NameOf(vr::EVRRenderModelError value);

}  // namespace kesta::vrsim
