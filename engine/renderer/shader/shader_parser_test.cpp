#include "engine/renderer/shader/shader_parser.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "engine/renderer/shader/shader_test_support.h"

namespace kesta {
namespace {

std::string FormatNumber(float number)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(number));
    return text;
}

// One line per table: "type name[size] hint=h = value; ..." where the value is the numbers the
// type uses, or a texture's "path" with wrap u,v and filters min,mag.
std::string DescribeVariables(const ShaderVariableTable& table)
{
    std::string out;
    for (const ShaderVariableValue& variable : table.variables) {
        out += std::string(GetShaderTypeName(variable.type)) + " " + variable.name;
        if (variable.array_size)
            out += "[" + std::to_string(variable.array_size) + "]";
        if (!variable.hint.empty())
            out += " hint=" + variable.hint;
        if (const auto& value = variable.value) {
            out += " =";
            switch (variable.type) {
                case ShaderType::kInt:
                case ShaderType::kUint32:
                    out += " " + std::to_string(value->ints[0][0]);
                    break;
                case ShaderType::kFloat:
                    out += " " + FormatNumber(value->floats[0][0]);
                    break;
                case ShaderType::kVec2:
                case ShaderType::kVec3:
                case ShaderType::kVec4:
                    for (int i = 0; i < static_cast<int>(variable.type) - 2; ++i)
                        out += " " + FormatNumber(value->floats[0][i]);
                    break;
                case ShaderType::kMat3:
                case ShaderType::kMat4: {
                    const int size = variable.type == ShaderType::kMat3 ? 3 : 4;
                    for (int row = 0; row < size; ++row)
                        for (int column = 0; column < size; ++column)
                            out += " " + FormatNumber(value->floats[row][column]);
                    break;
                }
                default:
                    out += " \"" + value->texture_path + "\" wrap=" + std::to_string(value->texture_unit.wrap_u) + "," +
                           std::to_string(value->texture_unit.wrap_v) +
                           " filter=" + std::to_string(value->texture_unit.min_filter) + "," +
                           std::to_string(value->texture_unit.mag_filter);
            }
        }
        out += "; ";
    }
    return out;
}

struct DeclarationCase {
    std::string_view text;
    bool ok;
    std::string_view variables;
    std::vector<CapturedLogLine> log;
};

TEST(ShaderParser, InputDeclarations)
{
    const DeclarationCase cases[] = {
        {"in { }", true, "", {}},
        {"in { float a; int b; uint32_t c; vec2 d; }", true, "float a; int b; uint32_t c; vec2 d; ", {}},
        {"in { float a }", true, "float a; ", {}},
        {"in { ; ; float a;; }", true, "float a; ", {}},
        {"in { // the colour\r\n vec4 c; /* x */ }", true, "vec4 c; ", {}},
        // Unknown types are dropped without a word; a missing name skips the piece.
        {"in { sampler2D s; float a; float; }", true, "float a; ", {}},
        {"in { vec4 a = vec4(1,1,1,1) [hint:color]; }", true, "vec4 a hint=color = 1 1 1 1; ", {}},
        {"in { vec3 a = 1, 0.5, 2; float b = 0.25 [hint: roughness, other: x]; }",
         true,
         "vec3 a = 1 0.5 2; float b hint=roughness = 0.25; ",
         {}},
        {"in { int i = 4; uint32_t u = 9; }", true, "int i = 4; uint32_t u = 9; ", {}},
        {"in { mat3 m = mat3(1,0,0, 0,1,0, 0,0,1); }", true, "mat3 m = 1 0 0 0 1 0 0 0 1; ", {}},
        {"in { mat4 m[2]; vec4 v[16] = 1,2,3,4 [hint:c]; }", true, "mat4 m[2]; vec4 v[16] hint=c = 1 2 3 4; ", {}},
        // A bracket that is not all digits is the parameter block.
        {"in { float f[hint:x]; }", true, "float f hint=x; ", {}},
        {"in { float f[]; }", true, "float f; ", {}},
        {"in { tex2D t = \"@core/white.png\"; }", true, "tex2D t = \"@core/white.png\" wrap=0,0 filter=1,1; ", {}},
        {"in { tex2D t = \"a.png\" [wrap: repeat, filter: trilinear, hint: albedo]; }",
         true,
         "tex2D t hint=albedo = \"a.png\" wrap=1,1 filter=2,2; ",
         {}},
        {"in { texCube t [wrap-u: mirror, wrap-v: repeat, min-filter: nearest, max-filter: anisotropic]; }",
         true,
         "texCube t = \"\" wrap=2,1 filter=0,3; ",
         {}},
        {"in { texShadow t [wrap: clamp, filter: bilinear]; tex3D u [wrap: mirror, wrap: other]; }",
         true,
         "texShadow t = \"\" wrap=0,0 filter=1,1; tex3D u = \"\" wrap=0,0 filter=1,1; ",
         {}},
        // Sampling keys mean nothing to other types.
        {"in { vec4 v [wrap: repeat]; }", true, "vec4 v; ", {}},
        // Bad values keep the variable without its value.
        {"in { float f = fast; vec2 v = vec3(1,2,3); }",
         true,
         "float f; vec2 v; ",
         {{"warn", "invalid stof argument"}}},
        {"in { texExternal e = \"cam\"; }",
         true,
         "texExternal e; ",
         {{"warn", "Parsing shader value of type texExternal is not implemented"}}},
        {"in { float a[4; float b; }", false, "float b; ", {{"error", "Missing ']' in variable a declaration"}}},
        {"in { float a [hint: x; float b; }",
         false,
         "float b; ",
         {{"error", "Missing ']' in variable a parameters block declaration"}}},
        // Inside parentheses a '[' belongs to the value, which then cannot be read.
        {"in { vec2 v = vec2(1, 2 [x; }", true, "vec2 v; ", {}},
        {"in { float a[99999999999]; }", true, "float a; ", {{"warn", "stoi argument out of range"}}},
        {"in { float a; } in { int b; }", true, "float a; int b; ", {}},
        {"in %{ float a; %}", true, "float a; ", {}},
    };
    for (const DeclarationCase& c : cases) {
        ShaderLogCapture log;
        Shader shader;
        EXPECT_EQ(ParseShader(shader, c.text), c.ok) << c.text;
        EXPECT_EQ(DescribeVariables(*shader.variables), c.variables) << c.text;
        EXPECT_EQ(log.lines(), c.log) << c.text;
    }
}

struct SurfaceCase {
    std::string_view text;
    std::uint16_t flags;
    std::uint8_t attributes;
    std::uint8_t alpha_threshold;
    std::vector<CapturedLogLine> log;
};

TEST(ShaderParser, SurfaceRenderState)
{
    constexpr std::uint16_t kDefault = kRenderStateCastShadow | kRenderStateReceiveShadow;
    const SurfaceCase cases[] = {
        {"", kDefault, 0, 128, {}},
        {"surface { }", kDefault, 0, 128, {}},
        {"surface { blend: alpha }", kDefault | kRenderStateBlendAlpha, 0, 128, {}},
        {"surface { blend: additive }", kDefault | kRenderStateBlendAdditive, 0, 128, {}},
        {"surface { blend: opaque }", kDefault, 0, 128, {}},
        // Only a false word sets the no-depth-write bit.
        {"surface { blend: alpha, z-write: 1 }", kDefault | kRenderStateBlendAlpha, 0, 128, {}},
        {"surface { z-write: false, z-test: 0 }",
         kDefault | kRenderStateNoDepthWrite | kRenderStateNoDepthTest,
         0,
         128,
         {}},
        {"surface { z-write: FALSE, z-test: False }",
         kDefault | kRenderStateNoDepthWrite | kRenderStateNoDepthTest,
         0,
         128,
         {}},
        {"surface { z-write: no, z-test: fALSE }", kDefault, 0, 128, {}},
        {"surface { alpha-test: true, double-sided: True, no-light: 1, force-depth-func-always: TRUE }",
         kDefault | kRenderStateAlphaTest | kRenderStateDoubleSided | kRenderStateNoLight | kRenderStateDepthFuncAlways,
         0,
         128,
         {}},
        {"surface { alpha-test: false, double-sided: 0, no-light: yes }", kDefault, 0, 128, {}},
        {"surface { cast-shadow: false }", kRenderStateReceiveShadow, 0, 128, {}},
        {"surface { receive-shadow: 0, cast-shadow: true }", kRenderStateCastShadow, 0, 128, {}},
        {"surface { skinned: true, terrain: 1 }", kDefault, kSurfaceSkinned | kSurfaceTerrain, 128, {}},
        {"surface { skinned: false, terrain: 0 }", kDefault, 0, 128, {}},
        {"surface { alpha-threshold: 0.5 }", kDefault, 0, 127, {}},
        {"surface { alpha-threshold: 1 }", kDefault, 0, 255, {}},
        {"surface { alpha-threshold: 7 }", kDefault, 0, 255, {}},
        {"surface { alpha-threshold: -2 }", kDefault, 0, 0, {}},
        {"surface { alpha-threshold: nan }", kDefault, 0, 128, {}},
        {"surface { alpha-threshold: half }", kDefault, 0, 128, {{"warn", "invalid stof argument"}}},
        {"surface { alpha-threshold: 1e99 }", kDefault, 0, 128, {{"warn", "stof argument out of range"}}},
        // Malformed pairs and unknown keys are skipped quietly.
        {"surface { blend, blend: alpha: additive, : 1, shiny: 1, z-write: , double-sided : 1 }",
         kDefault | kRenderStateDoubleSided,
         0,
         128,
         {}},
        {"surface { blend: alpha } surface { blend: additive }",
         kDefault | kRenderStateBlendAlpha | kRenderStateBlendAdditive,
         0,
         128,
         {}},
    };
    for (const SurfaceCase& c : cases) {
        ShaderLogCapture log;
        Shader shader;
        EXPECT_TRUE(ParseShader(shader, c.text)) << c.text;
        EXPECT_EQ(shader.flags, c.flags) << c.text;
        EXPECT_EQ(shader.surface_attributes, c.attributes) << c.text;
        EXPECT_EQ(shader.alpha_threshold, c.alpha_threshold) << c.text;
        EXPECT_EQ(log.lines(), c.log) << c.text;
    }
}

constexpr std::string_view kTexturedShader = R"(// A textured quad in 2D.
in {
    tex2D u_texture [hint: albedo, wrap: repeat];
    vec4 u_color = vec4(1, 1, 1, 1);
}

variant {
    head { require-extension: GL_EXT_shader_texture_lod; require-extension: GL_OES_standard_derivatives; }
    vertex {
        out { vec2 v_uv; vec4 v_tint; }
        source %{
            v_uv = vUV0;
            %out.position% = vec4(vPosition, 1.0);
        %}
    }
    pixel {
        in { vec2 v_uv; }
        global %{
            #include "helpers.i"
        %}
        source %{
            %out.color% = texture2D(u_texture, v_uv) * u_color;
        %}
    }
}
)";

TEST(ShaderParser, TexturedShaderReadsEverySection)
{
    ShaderLogCapture log;
    const InMemoryShaderFiles files(
        {{"helpers.i", "float luminance(vec3 c) { return dot(c, vec3(0.3, 0.59, 0.11)); }"}});
    Shader shader;
    ASSERT_TRUE(ParseShader(shader, kTexturedShader, files.Reader()));
    EXPECT_TRUE(log.lines().empty());

    EXPECT_EQ(DescribeVariables(*shader.variables),
              "tex2D u_texture hint=albedo = \"\" wrap=1,1 filter=1,1; vec4 u_color = 1 1 1 1; ");
    ASSERT_EQ(shader.variants.size(), 1u);
    const ShaderVariant& variant = *shader.variants[0];
    EXPECT_EQ(variant.required_extensions,
              (std::vector<std::string>{"GL_EXT_shader_texture_lod", "GL_OES_standard_derivatives"}));
    ASSERT_EQ(variant.varyings.size(), 2u);
    EXPECT_EQ(variant.varyings[0].name, "v_uv");
    EXPECT_EQ(variant.varyings[0].type, ShaderType::kVec2);
    EXPECT_EQ(variant.varyings[0].direction[kVertexStage], kVaryingOut);
    EXPECT_EQ(variant.varyings[0].direction[kPixelStage], kVaryingIn);
    EXPECT_EQ(variant.varyings[1].name, "v_tint");
    EXPECT_EQ(variant.varyings[1].type, ShaderType::kVec4);
    EXPECT_EQ(variant.stages[kVertexStage].global, "");
    EXPECT_EQ(variant.stages[kVertexStage].source,
              "\n            v_uv = vUV0;\n            %out.position% = vec4(vPosition, 1.0);\n        \n");
    EXPECT_EQ(variant.stages[kPixelStage].global,
              "\nfloat luminance(vec3 c) { return dot(c, vec3(0.3, 0.59, 0.11)); }\n        \n");
    EXPECT_EQ(variant.stages[kPixelStage].source,
              "\n            %out.color% = texture2D(u_texture, v_uv) * u_color;\n        \n");
}

TEST(ShaderParser, VaryingDirectionsFollowTheDeclaringStage)
{
    // A varying first met as a pixel output still starts as vertex out, pixel in; each
    // declaration then sets its own stage's direction.
    Shader shader;
    ASSERT_TRUE(
        ParseShader(shader, "variant { pixel { out { vec4 a; } in { vec4 b; } } vertex { in { vec4 b; float c; } } }"));
    ASSERT_EQ(shader.variants.size(), 1u);
    const auto& varyings = shader.variants[0]->varyings;
    ASSERT_EQ(varyings.size(), 3u);
    const std::pair<std::string_view, std::array<ShaderVaryingDirection, 2>> expected[] = {
        {"a", {kVaryingOut, kVaryingOut}},
        {"b", {kVaryingIn, kVaryingIn}},
        {"c", {kVaryingIn, kVaryingIn}},
    };
    for (std::size_t i = 0; i < varyings.size(); ++i) {
        EXPECT_EQ(varyings[i].name, expected[i].first);
        EXPECT_EQ(varyings[i].direction, expected[i].second) << varyings[i].name;
    }
}

struct VariantCase {
    std::string_view text;
    bool ok;
    std::size_t variants;
    std::vector<CapturedLogLine> log;
};

TEST(ShaderParser, VariantsAndTheirMessages)
{
    const VariantCase cases[] = {
        {"variant { }", true, 1, {}},
        {"variant { } variant { } other { } variant { }", true, 3, {}},
        {"variant { head { shading: smooth; require-extension: X; ; broken } }",
         true,
         1,
         {{"warn", "Unknown entry 'shading' in variant head section"}}},
        {"variant { vertex { in { vec3 p; mat2 m; } out { color c; } } pixel { in { half h; } } }",
         true,
         1,
         {{"warn", "Ignoring in declaration for 'm' in stage Vertex"},
          {"warn", "Ignoring out declaration for 'c' in stage Vertex"},
          {"warn", "Ignoring in declaration for 'h' in stage Pixel"}}},
        {"variant { vertex { in { vec2 a[4; } } }", false, 1, {{"error", "Missing ']' in variable a declaration"}}},
        // Unknown sections of a variant and of a stage are ignored.
        {"variant { geometry { } vertex { uniforms { } } }", true, 1, {}},
        // A variant body that is not scopes cannot be read.
        {"variant { vec4 x; }", false, 1, {}},
        {"variant { } junk", false, 1, {}},
        {"variant { } variant %{ x",
         false,
         1,
         {{"error", "Expected '}' or '%}' while looking for the end of scope 'variant'"}}},
    };
    for (const VariantCase& c : cases) {
        ShaderLogCapture log;
        Shader shader;
        EXPECT_EQ(ParseShader(shader, c.text), c.ok) << c.text;
        EXPECT_EQ(shader.variants.size(), c.variants) << c.text;
        EXPECT_EQ(log.lines(), c.log) << c.text;
    }
}

TEST(ShaderParser, AFailedRootScanKeepsWhatCameBefore)
{
    ShaderLogCapture log;
    Shader shader;
    EXPECT_FALSE(ParseShader(shader, "in { float a; } surface { blend: alpha } ; variant { }"));
    EXPECT_EQ(DescribeVariables(*shader.variables), "float a; ");
    EXPECT_TRUE(shader.flags & kRenderStateBlendAlpha);
    EXPECT_TRUE(shader.variants.empty());
    EXPECT_TRUE(log.lines().empty());
}

TEST(ShaderParser, StrayTextOpenerIsAnError)
{
    ShaderLogCapture log;
    Shader shader;
    EXPECT_FALSE(ParseShader(shader, "variant { vertex { source { } } } source %{ void main() { }"));
    EXPECT_EQ(shader.variants.size(), 1u);
    EXPECT_EQ(
        log.lines(),
        (std::vector<CapturedLogLine>{{"error", "Expected '}' or '%}' while looking for the end of scope 'source'"}}));
}

TEST(ShaderParser, ShaderVariablesReadOnlyTheInputsOfAFile)
{
    const InMemoryShaderFiles files({
        {"surface.isl", "in { float roughness = 0.5; } variant { vertex { in { foo x; } } } surface { blend: alpha }"},
        {"broken.isl", "in { float a[2; vec2 b; }"},
        {"parts.isl", "variant { pixel { global %{\n#include \"parts.i\"\n%} } } in { vec3 c; }"},
        {"parts.i", "float helper();"},
    });
    ShaderLogCapture log;
    ShaderVariableTable table;
    EXPECT_TRUE(ParseShaderVariables("surface.isl", table, files.Reader()));
    EXPECT_EQ(DescribeVariables(table), "float roughness = 0.5; ");
    // Stage declarations are not looked at, so nothing is logged about them.
    EXPECT_TRUE(log.lines().empty());

    EXPECT_FALSE(ParseShaderVariables("broken.isl", table, files.Reader()));
    EXPECT_TRUE(ParseShaderVariables("parts.isl", table, files.Reader()));
    EXPECT_EQ(DescribeVariables(table), "float roughness = 0.5; vec2 b; vec3 c; ");

    EXPECT_FALSE(ParseShaderVariables("missing.isl", table, files.Reader()));
    EXPECT_FALSE(ParseShaderVariables("surface.isl", table));
    EXPECT_EQ(table.variables.size(), 3u);
}

}  // namespace
}  // namespace kesta
