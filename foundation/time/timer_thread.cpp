#include "foundation/time/timer_thread.h"

namespace kesta {

timer_thread* g_timer_thread = nullptr;

}  // namespace kesta
