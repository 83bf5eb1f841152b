#pragma once

namespace kesta {

// The thread that runs timed and periodic callbacks.
class timer_thread;

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern timer_thread* g_timer_thread;

}  // namespace kesta
