#include "platform/window/window_system_signals.h"

namespace kesta {

WindowSystemSignals* g_window_system_signals = nullptr;

}  // namespace kesta
