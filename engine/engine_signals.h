#pragma once

#include "foundation/signal.h"

namespace kesta {

class Renderer;

// Renderer and frame signals that other parts of the engine connect to.
class EngineSignals {
public:
    // Fired by a renderer's destructor.
    Signal<Renderer*> renderer_deleted;
};

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern EngineSignals* g_engine_signals;

}  // namespace kesta
