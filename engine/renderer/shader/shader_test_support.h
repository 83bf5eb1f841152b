#pragma once
// Test helpers: a log capture and an in-memory file reader. ShaderLogCapture, while alive,
// makes the global log write into a list instead of the console.

#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "engine/renderer/shader/shader_file_reader.h"
#include "foundation/log/log.h"

namespace kesta {

struct CapturedLogLine {
    std::string category;
    std::string message;
    bool operator==(const CapturedLogLine&) const = default;
    // Readable failure messages in tests.
    friend void PrintTo(const CapturedLogLine& line, std::ostream* out)
    {
        *out << line.category << ": \"" << line.message << "\"";
    }
};

class ShaderLogCapture {
public:
    ShaderLogCapture() : previous_(g_log_system)
    {
        Lines().clear();
        system_.SetOutputFunction(&Append);
        g_log_system = &system_;
    }
    ~ShaderLogCapture() { g_log_system = previous_; }
    ShaderLogCapture(const ShaderLogCapture&) = delete;
    ShaderLogCapture& operator=(const ShaderLogCapture&) = delete;

    const std::vector<CapturedLogLine>& lines() const { return Lines(); }
    void Clear() { Lines().clear(); }

private:
    // The log takes a plain function pointer, so the lines live in one static list.
    static std::vector<CapturedLogLine>& Lines()
    {
        static std::vector<CapturedLogLine> lines;
        return lines;
    }
    static void Append(const std::string& message, const std::string& category, const std::string&, std::uint32_t, bool)
    {
        Lines().push_back({category, message});
    }

    LogSystem system_;
    LogSystem* previous_;
};

// A reader that serves files from a map, as the filesystem would.
class InMemoryShaderFiles {
public:
    InMemoryShaderFiles(std::initializer_list<std::pair<std::string, std::string>> files) : files_(files) {}

    ShaderFileReader Reader() const
    {
        return [this](const std::string& path, std::string& text) {
            for (const auto& [name, contents] : files_) {
                if (name == path) {
                    text = contents;
                    return true;
                }
            }
            return false;
        };
    }

private:
    std::vector<std::pair<std::string, std::string>> files_;
};

}  // namespace kesta
