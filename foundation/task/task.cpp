#include "foundation/task/task.h"

#include <cstdio>

namespace kesta {

task::~task() = default;

const char* task::get_name()
{
    static char buffer[64];
    std::snprintf(buffer, sizeof buffer, "task @%p", static_cast<void*>(this));
    return buffer;
}

}  // namespace kesta
