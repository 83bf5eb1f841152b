#include "apps/viewer/testing/program_run.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

extern char** environ;

namespace kesta::testing {

namespace {

std::string ReadAll(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

ProgramRun RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                      const std::map<std::string, std::optional<std::string>>& environment)
{
    ProgramRun run;
    std::map<std::string, std::string> variables;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const std::size_t equals = text.find('=');
        if (equals != std::string::npos)
            variables[text.substr(0, equals)] = text.substr(equals + 1);
    }
    for (const auto& [name, value] : environment) {
        if (value)
            variables[name] = *value;
        else
            variables.erase(name);
    }
    std::vector<std::string> env_texts;
    for (const auto& [name, value] : variables)
        env_texts.push_back(name + "=" + value);
    std::vector<char*> env_pointers;
    for (std::string& text : env_texts)
        env_pointers.push_back(text.data());
    env_pointers.push_back(nullptr);

    std::vector<std::string> argument_texts = {program};
    argument_texts.insert(argument_texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> argument_pointers;
    for (std::string& text : argument_texts)
        argument_pointers.push_back(text.data());
    argument_pointers.push_back(nullptr);

    // Output goes to files rather than pipes: nothing to drain while waiting, however much it prints.
    std::string pattern = (std::filesystem::temp_directory_path() / "norvane_run_XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        return run;
    const std::string out_file = pattern + "/out";
    const std::string err_file = pattern + "/err";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t child = 0;
    run.started =
        posix_spawn(&child, program.c_str(), &actions, nullptr, argument_pointers.data(), env_pointers.data()) == 0;
    posix_spawn_file_actions_destroy(&actions);
    if (run.started) {
        int status = 0;
        pid_t waited = -1;
        do {
            waited = waitpid(child, &status, 0);
        } while (waited < 0 && errno == EINTR);
        run.exited = WIFEXITED(status);
        run.exit_code = run.exited ? WEXITSTATUS(status) : -1;
        run.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        run.out = ReadAll(out_file);
        run.err = ReadAll(err_file);
    }
    std::error_code ignored;
    std::filesystem::remove_all(pattern, ignored);
    return run;
}

}  // namespace kesta::testing
