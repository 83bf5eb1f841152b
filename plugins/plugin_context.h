#pragma once

#include "platform/plugin/plugin_api.h"

namespace kesta {

// The context a host hands to its plug-ins: the current values of the process's engine globals.
PluginContext MakePluginContext();

// Overwrites every engine global of this module with the host's object: the assertion handler
// first, then the context's fields in order. Then connects this module's Dear ImGui to the host's
// current context, so that the module follows every change the host makes.
void AdoptPluginContext(const PluginContext& context);

// Disconnects what AdoptPluginContext connected to the host's objects. A module calls it before it
// is released, since the connected functions are code of the module.
void ReleasePluginContext();

}  // namespace kesta
