#include "foundation/format.h"

#include <cstdio>

namespace kesta {

format& format::operator<<(std::string_view value)
{
    // Built by appending: GCC 12 at -O3 misreports `"%" + std::string` as an overlapping copy.
    std::string placeholder(1, '%');
    placeholder += std::to_string(next_++);
    std::string out;
    out.reserve(text_.size() + value.size());
    std::size_t from = 0;
    for (std::size_t at = text_.find(placeholder); at != std::string::npos; at = text_.find(placeholder, from)) {
        // "%1" must not match the start of "%10".
        const std::size_t end = at + placeholder.size();
        const bool longer_number = end < text_.size() && text_[end] >= '0' && text_[end] <= '9';
        out.append(text_, from, at - from);
        out.append(longer_number ? std::string_view(placeholder) : value);
        from = end;
    }
    out.append(text_, from, std::string::npos);
    text_ = std::move(out);
    return *this;
}

format& format::operator<<(double value)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%g", value);
    return *this << std::string_view(buffer);
}

}  // namespace kesta
