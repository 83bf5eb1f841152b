#pragma once
// Process and thread priorities, and the system timer resolution.

namespace kesta {

// Six process priority levels, from idle (0) over normal (2) to real time (5). Levels above 5 are
// refused. Raising the priority needs a privilege that a normal process lacks; failures are false.
bool set_process_priority(int level);
// Seven thread priority levels, from idle (0) over normal (3) to time critical (6). Levels of 7
// and above are refused.
bool set_thread_priority(int level);

// The system timer is already fine-grained here: both calls succeed and change nothing.
bool begin_timer_resolution();
void end_timer_resolution();

// What the engine does at start-up: process priority level 4 and a fine timer; failures are
// logged at debug level and otherwise ignored.
void apply_engine_process_settings();
// The reverse at shut-down: the timer back, process priority level 2.
void restore_engine_process_settings();

}  // namespace kesta
