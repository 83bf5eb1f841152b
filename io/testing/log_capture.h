#pragma once
// Installs a private log for the length of a test and records every line with its level, so that
// tests can check the messages a component writes. One capture at a time.

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/log/log.h"

namespace kesta::testing {

class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // Lines as "level: message", the level being "", "warn", "error" or "debug".
    std::vector<std::string> Lines() const;
    bool Contains(std::string_view level, std::string_view message) const;
    std::size_t Count(std::string_view level, std::string_view message) const;
    void Clear();

private:
    static void Record(const std::string& message, const std::string& category, const std::string& details,
                       std::uint32_t output_mask, bool output_details);

    LogSystem log_;
    LogSystem* previous_;
    mutable std::mutex lock_;
    std::vector<std::string> lines_;
};

}  // namespace kesta::testing
