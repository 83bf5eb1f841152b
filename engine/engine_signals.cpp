#include "engine/engine_signals.h"

namespace kesta {

EngineSignals* g_engine_signals = nullptr;

}  // namespace kesta
