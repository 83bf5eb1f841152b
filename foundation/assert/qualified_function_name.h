#pragma once
// The qualified name of a function ("kesta::Renderer::Open") from the compiler's pretty function name
// ("bool kesta::Renderer::Open(const kesta::RendererConfig&) const"): the return type, the parameter
// list, the qualifiers after it and any template argument note ("[with T = int]") are dropped.

#include <string>
#include <string_view>

namespace kesta {

// A text that is not a pretty function name (a bare name, an empty text) comes back unchanged.
std::string QualifiedFunctionName(std::string_view pretty);

}  // namespace kesta
