#pragma once
// What the debug overlay shares across modules. Dear ImGui keeps its current context in a global
// of each library that links it, so every module that carries its own copy listens here for the
// host's context changes.

#include "foundation/signal.h"

struct ImGuiContext;

namespace kesta {

struct ImGuiSharedState {
    // Emitted with the new current context whenever the host changes it.
    Signal<ImGuiContext*> context_changed;
};

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern ImGuiSharedState* g_imgui_shared_state;

}  // namespace kesta
