#include "engine/renderer/shader/shader_parser.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <vector>

#include "engine/renderer/shader/shader_declarations.h"
#include "engine/renderer/shader/shader_scope.h"
#include "engine/renderer/shader/shader_text.h"
#include "foundation/format.h"
#include "foundation/log/log.h"

namespace kesta {

namespace {

constexpr bool IsFalseWord(std::string_view value)
{
    return value == "false" || value == "False" || value == "0" || value == "FALSE";
}

bool IsTrueWord(std::string_view value)
{
    return value == "true" || value == "True" || value == "1" || value == "TRUE";
}

bool AddInputs(std::string_view text, ShaderVariableTable& table)
{
    std::vector<ShaderDeclaration> declarations;
    const bool ok = ParseShaderDeclarations(text, declarations);
    for (ShaderDeclaration& declaration : declarations) {
        if (declaration.has_known_type)
            table.variables.push_back(std::move(declaration.variable));
    }
    return ok;
}

void ApplyAlphaThreshold(std::string_view text, Shader& shader)
{
    float threshold = 0.0f;
    try {
        threshold = std::stof(std::string(text));
    } catch (const std::invalid_argument&) {
        warn("invalid stof argument");
        return;
    } catch (const std::out_of_range&) {
        warn("stof argument out of range");
        return;
    }
    if (std::isnan(threshold))
        return;
    shader.alpha_threshold = static_cast<std::uint8_t>(std::clamp(threshold, 0.0f, 1.0f) * 255.0f);
}

// A boolean key of `surface`: the kind of word that switches it, and the bit it then sets or
// clears. A word of the other sense leaves the shader alone.
struct SurfaceSwitch {
    std::string_view key;
    bool (*switches)(std::string_view value);
    bool in_attributes;  // surface_attributes rather than flags
    std::uint16_t bit;
    bool clears;
};

constexpr SurfaceSwitch kSurfaceSwitches[] = {
    {"z-write", IsFalseWord, false, kRenderStateNoDepthWrite, false},
    {"z-test", IsFalseWord, false, kRenderStateNoDepthTest, false},
    {"alpha-test", IsTrueWord, false, kRenderStateAlphaTest, false},
    {"double-sided", IsTrueWord, false, kRenderStateDoubleSided, false},
    {"cast-shadow", IsFalseWord, false, kRenderStateCastShadow, true},
    {"receive-shadow", IsFalseWord, false, kRenderStateReceiveShadow, true},
    {"no-light", IsTrueWord, false, kRenderStateNoLight, false},
    {"force-depth-func-always", IsTrueWord, false, kRenderStateDepthFuncAlways, false},
    {"skinned", IsTrueWord, true, kSurfaceSkinned, false},
    {"terrain", IsTrueWord, true, kSurfaceTerrain, false},
};

void ApplySurfaceSwitch(const SurfaceSwitch& entry, Shader& shader)
{
    if (entry.in_attributes) {
        shader.surface_attributes |= static_cast<std::uint8_t>(entry.bit);
    } else if (entry.clears) {
        shader.flags &= static_cast<std::uint16_t>(~entry.bit);
    } else {
        shader.flags |= entry.bit;
    }
}

void ApplySurface(std::string_view text, Shader& shader)
{
    for (const auto& [key, value] : ParseShaderKeyValues(text, ',', ':')) {
        if (key == "blend") {
            if (value == "alpha")
                shader.flags |= kRenderStateBlendAlpha;
            else if (value == "additive")
                shader.flags |= kRenderStateBlendAdditive;
        } else if (key == "alpha-threshold") {
            ApplyAlphaThreshold(value, shader);
        } else {
            for (const SurfaceSwitch& entry : kSurfaceSwitches) {
                if (key == entry.key && entry.switches(value))
                    ApplySurfaceSwitch(entry, shader);
            }
        }
    }
}

void ParseHead(std::string_view text, ShaderVariant& variant)
{
    for (auto& [key, value] : ParseShaderKeyValues(text, ';', ':')) {
        if (key == "require-extension")
            variant.required_extensions.push_back(std::move(value));
        else
            warn((format("Unknown entry '%1' in variant head section") << key).str());
    }
}

ShaderVarying& FindOrAddVarying(ShaderVariant& variant, const ShaderVariableValue& variable)
{
    for (ShaderVarying& varying : variant.varyings) {
        if (varying.name == variable.name)
            return varying;
    }
    ShaderVarying& varying = variant.varyings.emplace_back();
    varying.name = variable.name;
    varying.type = variable.type;
    return varying;
}

bool AddVaryings(std::string_view text, ShaderStageIndex stage, ShaderVaryingDirection direction,
                 ShaderVariant& variant)
{
    std::vector<ShaderDeclaration> declarations;
    const bool ok = ParseShaderDeclarations(text, declarations);
    for (const ShaderDeclaration& declaration : declarations) {
        if (!declaration.has_known_type) {
            warn((format(direction == kVaryingIn ? "Ignoring in declaration for '%1' in stage %2"
                                                 : "Ignoring out declaration for '%1' in stage %2")
                  << declaration.variable.name << GetShaderStageName(stage))
                     .str());
            continue;
        }
        FindOrAddVarying(variant, declaration.variable).direction[stage] = direction;
    }
    return ok;
}

bool ParseStage(const ShaderScope& scope, ShaderStageIndex stage, ShaderVariant& variant)
{
    bool ok = true;
    for (const ShaderScope& child : scope.children) {
        if (child.name == "in")
            ok = AddVaryings(child.text, stage, kVaryingIn, variant) && ok;
        else if (child.name == "out")
            ok = AddVaryings(child.text, stage, kVaryingOut, variant) && ok;
        else if (child.name == "global")
            variant.stages[stage].global = child.text;
        else if (child.name == "source")
            variant.stages[stage].source = child.text;
    }
    return ok;
}

bool ParseVariant(const ShaderScope& scope, ShaderVariant& variant)
{
    // A variant body that is not a list of scopes cannot be read at all.
    bool ok = scope.text.empty();
    for (const ShaderScope& child : scope.children) {
        if (child.name == "head")
            ParseHead(child.text, variant);
        else if (child.name == "vertex")
            ok = ParseStage(child, kVertexStage, variant) && ok;
        else if (child.name == "pixel")
            ok = ParseStage(child, kPixelStage, variant) && ok;
    }
    return ok;
}

}  // namespace

bool ParseShader(Shader& shader, std::string_view source, const ShaderFileReader& reader)
{
    std::vector<ShaderScope> scopes;
    bool ok = ScanShaderScopes(source, scopes, reader);
    for (const ShaderScope& scope : scopes) {
        if (scope.name == "in") {
            ok = AddInputs(scope.text, *shader.variables) && ok;
        } else if (scope.name == "surface") {
            ApplySurface(scope.text, shader);
        } else if (scope.name == "variant") {
            auto variant = std::make_unique<ShaderVariant>();
            ok = ParseVariant(scope, *variant) && ok;
            shader.variants.push_back(std::move(variant));
        }
    }
    return ok;
}

bool ParseShaderVariables(const std::string& path, ShaderVariableTable& table, const ShaderFileReader& reader)
{
    std::string source;
    if (!ReadShaderFile(reader, path, source))
        return false;
    std::vector<ShaderScope> scopes;
    bool ok = ScanShaderScopes(source, scopes, reader);
    for (const ShaderScope& scope : scopes) {
        if (scope.name == "in")
            ok = AddInputs(scope.text, table) && ok;
    }
    return ok;
}

}  // namespace kesta
