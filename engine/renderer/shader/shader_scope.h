#pragma once
// A .isl text is a tree of named scopes:
//   name [key: value, ...] { child scopes, or text when the body is not scopes }
//   name [key: value, ...] %{ text, taken as it is %}
// The scanner turns a text into that tree and is forgiving: what is read before a failure stays.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/renderer/shader/shader_file_reader.h"
#include "engine/renderer/shader/shader_text.h"

namespace kesta {

enum class ShaderScopeKind : std::uint8_t {
    kBraces = 0,  // { }: nested scopes, or text
    kText = 1,    // %{ %}: always text, with #include lines expanded
};

struct ShaderScope {
    std::string name;
    ShaderKeyValues parameters;
    ShaderScopeKind kind = ShaderScopeKind::kBraces;
    std::vector<ShaderScope> children;
    // A %{ %} body, or the trimmed body of a { } scope that does not read as scopes.
    std::string text;
};

// Bodies nested deeper than this are kept as text rather than scanned, which bounds the
// recursion on hostile input.
inline constexpr int kMaxShaderScopeDepth = 32;

// The end of the word that starts at `position`: a run of characters up to a blank or one of
// ! " # % & ' ( ) * + , - . / 0-9 : ; < = > [ ]. With `allow_dash` a '-' does not end it.
std::size_t FindShaderWordEnd(std::string_view text, std::size_t position, bool allow_dash);

// Appends the scopes of `text` to `scopes`. Answers false at the first thing that is not a
// scope (the scopes read before it stay) or when a bracket has no match (logged as an error).
bool ScanShaderScopes(std::string_view text, std::vector<ShaderScope>& scopes, const ShaderFileReader& reader);

}  // namespace kesta
