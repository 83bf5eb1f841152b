#include "io/path.h"

#include <vector>

namespace kesta {

std::string NormalizePath(std::string_view path)
{
    const bool absolute = !path.empty() && (path.front() == '/' || path.front() == '\\');
    std::vector<std::string_view> segments;
    std::size_t start = 0;
    while (start <= path.size()) {
        std::size_t end = path.find_first_of("/\\", start);
        if (end == std::string_view::npos)
            end = path.size();
        const std::string_view segment = path.substr(start, end - start);
        start = end + 1;
        if (segment.empty() || segment == ".")
            continue;
        if (segment == "..") {
            if (!segments.empty() && segments.back() != "..")
                segments.pop_back();
            else if (!absolute)
                segments.push_back(segment);
            continue;
        }
        segments.push_back(segment);
    }

    std::string result = absolute ? "/" : "";
    for (std::size_t i = 0; i < segments.size(); ++i) {
        if (i > 0)
            result += '/';
        result += segments[i];
    }
    return result;
}

}  // namespace kesta
