#pragma once
// The engine's own file-name pattern match, independent of the operating system: archive listings
// and the plug-in blacklist use it.

#include <string_view>

namespace kesta {

// "*" matches any run of characters (also none, also "/"), "?" exactly one character; every other
// character matches itself, case-sensitively. The whole text must match.
bool WildcardMatch(std::string_view pattern, std::string_view text);

}  // namespace kesta
