#pragma once
// Names of threads, for the debugger, the profiler and the task view. The kernel keeps at most 15
// bytes of a name; the full name stays in a process-wide map from thread id to name.

#include <string>
#include <string_view>
#include <thread>

namespace kesta {

void set_current_thread_name(std::string_view name);
// The full name given to a thread, or an empty text if it was never named.
std::string get_thread_name(std::thread::id id);

}  // namespace kesta
