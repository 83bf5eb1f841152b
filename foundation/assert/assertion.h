#pragma once
// Failed assertions: the report text, with the call stack, goes to standard error and to the log,
// then the installed handler decides what happens. The default handler ends the process.

#include <string>

namespace kesta {

// Decides what happens after a failed assertion has been reported. `detail` may be null.
using AssertionHandler = void (*)(const char* file, int line, const char* function, const char* condition,
                                  const char* detail);

// Ends the process with abort().
[[noreturn]] void DefaultAssertionHandler(const char* file, int line, const char* function, const char* condition,
                                          const char* detail);

// The process-wide handler; the host sets it, a plug-in adopts the host's. Null means the default.
extern AssertionHandler g_assertion_handler;

// The report's text, without the call stack. `detail` may be null.
std::string MakeAssertionText(const char* file, int line, const char* function, const char* condition,
                              const char* detail);

// Reports the failure and calls the handler. Returns only if the handler returns. `function` may be
// the compiler's pretty function name: the report and the handler get its qualified name.
void assertion_failed(const char* file, int line, const char* function, const char* condition, const char* detail);

}  // namespace kesta

// Checked in every build type: engine asserts guard invariants whose failure would corrupt state.
// __PRETTY_FUNCTION__ rather than __func__: the report names the function with its namespaces and
// class, as "kesta::Renderer::Open".
#define KESTA_ASSERT(condition)         \
    ((condition) ? static_cast<void>(0) \
                 : ::kesta::assertion_failed(__FILE__, __LINE__, __PRETTY_FUNCTION__, #condition, nullptr))
#define KESTA_ASSERT_MSG(condition, detail)                                                       \
    ((condition) ? static_cast<void>(0)                                                           \
                 : ::kesta::assertion_failed(__FILE__, __LINE__, __PRETTY_FUNCTION__, #condition, \
                                             std::string(detail).c_str()))
