#pragma once

namespace kesta {

// Decides what happens after a failed assertion has been reported. `detail` may be null.
using AssertionHandler = void (*)(const char* file, int line, const char* function, const char* condition,
                                  const char* detail);

// The process-wide handler; the host sets it, a plug-in adopts the host's.
extern AssertionHandler g_assertion_handler;

}  // namespace kesta
