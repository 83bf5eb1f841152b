#pragma once

namespace kesta {

// Renderer and frame signals that other parts of the engine connect to.
class EngineSignals;

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern EngineSignals* g_engine_signals;

}  // namespace kesta
