#pragma once

namespace kesta {

// Named sections of time, recorded per frame.
class Profiler;

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern Profiler* g_profiler;

}  // namespace kesta
