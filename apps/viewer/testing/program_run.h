#pragma once
// Runs a program as a child process, as a person at a shell does, and keeps what it printed.

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kesta::testing {

struct ProgramRun {
    bool started = false;
    bool exited = false;  // false: it ended by a signal (a crash)
    int exit_code = -1;
    int signal = 0;
    std::string out;  // standard output
    std::string err;  // standard error
};

// Runs `program` with `arguments` and this process's environment changed by `environment`: a
// value sets the variable, nullopt removes it. Waits for it to end.
ProgramRun RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                      const std::map<std::string, std::optional<std::string>>& environment);

}  // namespace kesta::testing
