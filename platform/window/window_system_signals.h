#pragma once

namespace kesta {

// Signals of the desktop window system.
class WindowSystemSignals;

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern WindowSystemSignals* g_window_system_signals;

}  // namespace kesta
