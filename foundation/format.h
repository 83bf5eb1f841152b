#pragma once
// Message templates with numbered placeholders: format("Task worker #%1") << 3 gives
// "Task worker #3". Each value replaces every occurrence of the current placeholder, then the
// next number is current. Placeholders without a value stay in the text.

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

namespace kesta {

class format {
public:
    explicit format(std::string_view text) : text_(text) {}

    format& operator<<(std::string_view value);
    format& operator<<(const std::string& value) { return *this << std::string_view(value); }
    format& operator<<(const char* value) { return *this << std::string_view(value ? value : ""); }
    format& operator<<(char value) { return *this << std::string_view(&value, 1); }
    format& operator<<(bool value) { return *this << (value ? 1 : 0); }
    format& operator<<(double value);
    format& operator<<(float value) { return *this << static_cast<double>(value); }
    // Pointers print as decimal addresses.
    format& operator<<(const void* value) { return *this << reinterpret_cast<std::uintptr_t>(value); }

    template <std::integral T>
    format& operator<<(T value)
    {
        return *this << std::string_view(std::to_string(value));
    }

    const std::string& str() const { return text_; }
    operator const std::string&() const { return text_; }  // NOLINT: reads like a string
    operator std::string_view() const { return text_; }    // NOLINT: reads like a string

private:
    std::string text_;
    int next_ = 1;
};

}  // namespace kesta
