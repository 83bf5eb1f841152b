#pragma once
// Virtual and file-system paths share one canonical form: "/" separates segments, "." segments
// disappear and "x/.." collapses, so that two spellings of one file compare equal.

#include <string>
#include <string_view>

namespace kesta {

// Backslashes become "/", empty and "." segments are dropped, "name/.." cancels out. A ".." that
// has nothing left to cancel stays at the front of a relative path ("../a"); above the root of an
// absolute path it is dropped. A trailing "/" is removed; a leading "/" is kept.
std::string NormalizePath(std::string_view path);

}  // namespace kesta
