#pragma once
// Capture of the current call stack and its text, with function names and, where the debug
// information has them, source files and lines.

#include <cstdint>
#include <string>
#include <vector>

namespace kesta {

struct CallstackFrame {
    std::uintptr_t address = 0;
    std::string module;    // file of the executable or library that holds the address
    std::string function;  // demangled; empty when no symbol covers the address
    std::string file;      // empty when no line information covers the address
    int line = 0;
};

// Fills `frames` with the callers of this function, innermost first, leaving out the `skip`
// innermost of them. `context` may be a signal handler's ucontext_t: its program counter then
// comes first.
void GetCallstack(std::vector<CallstackFrame>& frames, int skip, const void* context = nullptr);

// One line per frame: "  #<n> <function> at <file>:<line> [<module>]" with the parts that are known.
std::string CallstackToString(const std::vector<CallstackFrame>& frames);

}  // namespace kesta
