// The .isl to GLSL translation: its declarations and placeholders, and every shader file of the
// repository checked by the GLSL reference compiler and linked on the real context.

#include "plugins/gl/glsl_translator.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "engine/renderer/shader/shader.h"
#include "engine/renderer/shader/shader_parser.h"
#include "plugins/gl/testing/gl_renderer_fixture.h"

namespace kesta {
namespace {

bool translate(const std::string& source, std::string& vertex, std::string& pixel, std::string& error)
{
    Shader shader;
    shader.name = "test.isl";
    if (!ParseShader(shader, source))
        return false;
    return TranslateShaderToGlsl(shader, vertex, pixel, error);
}

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(GlslTranslator, DeclaresUniformsBuiltinsVaryingsAndOutputs)
{
    const std::string source = R"(
in { tex2D u_tex; vec4 u_tint = vec4(1,1,1,1); mat4 u_bones[4]; }
variant {
    vertex {
        out { vec2 v_uv; }
        source %{ v_uv = vUV0; %out.position% = _mtx_mul(vModelViewProjectionMatrix, vec4(vPosition, 1.0)); %}
    }
    pixel {
        in { vec2 v_uv; }
        source %{ %out.color% = texture(u_tex, v_uv) * u_tint; %out.color2% = vec4(vClock); %}
    }
})";
    std::string vertex, pixel, error;
    ASSERT_TRUE(translate(source, vertex, pixel, error)) << error;
    EXPECT_EQ(vertex.rfind("#version 330 core\n", 0), 0u);
    EXPECT_TRUE(contains(vertex, "uniform sampler2D u_tex;"));
    EXPECT_TRUE(contains(vertex, "uniform mat4 u_bones[4];"));
    EXPECT_TRUE(contains(vertex, "out vec2 v_uv;"));
    EXPECT_TRUE(contains(vertex, "layout(location = 0) in vec3 vPosition;"));
    EXPECT_TRUE(contains(vertex, "layout(location = 2) in vec2 vUV0;"));
    EXPECT_TRUE(contains(vertex, "uniform mat4 vModelViewProjectionMatrix;"));
    EXPECT_TRUE(contains(vertex, "gl_Position = _mtx_mul("));
    // Only the built-ins a stage mentions are declared in it.
    EXPECT_FALSE(contains(vertex, "vClock"));
    EXPECT_FALSE(contains(pixel, "vPosition"));
    EXPECT_TRUE(contains(pixel, "in vec2 v_uv;"));
    EXPECT_TRUE(contains(pixel, "uniform float vClock;"));
    EXPECT_TRUE(contains(pixel, "layout(location = 0) out vec4 _out_color0;"));
    EXPECT_TRUE(contains(pixel, "layout(location = 2) out vec4 _out_color2;"));
    EXPECT_FALSE(contains(pixel, "_out_color1"));
}

TEST(GlslTranslator, ResolvesEveryPlaceholderOfItsStageAndLeavesModuloAlone)
{
    const std::string source = R"(
variant {
    vertex { source %{ int a = %in.vertexid% % 3; int b = %in.instanceid%; %out.position% = vec4(a + b); %} }
    pixel { source %{ %out.color0% = %in.fragcoord%; %out.depth% = %in.frontfacing% ? 0.0 : 1.0; %} }
})";
    std::string vertex, pixel, error;
    ASSERT_TRUE(translate(source, vertex, pixel, error)) << error;
    EXPECT_TRUE(contains(vertex, "int a = gl_VertexID % 3; int b = gl_InstanceID;"));
    EXPECT_TRUE(contains(pixel, "_out_color0 = gl_FragCoord; gl_FragDepth = gl_FrontFacing ? 0.0 : 1.0;"));
}

TEST(GlslTranslator, RefusesPlaceholdersOutsideTheirStageAndShadersWithoutVariant)
{
    std::string vertex, pixel, error;
    EXPECT_FALSE(translate("variant { vertex { source %{ %out.color% = vec4(1); %} } }", vertex, pixel, error));
    EXPECT_EQ(error, "unknown placeholder '%out.color%' in the Vertex stage");
    EXPECT_FALSE(translate("variant { pixel { source %{ %out.colour% = vec4(1); %} } }", vertex, pixel, error));
    EXPECT_EQ(error, "unknown placeholder '%out.colour%' in the Pixel stage");
    EXPECT_FALSE(translate("in { float f; }", vertex, pixel, error));
    EXPECT_EQ(error, "the shader has no variant");
}

TEST(GlslTranslator, InstanceAttributesTakeTheirOwnLocations)
{
    EXPECT_EQ(GetVertexInputLocation(0), 0);
    EXPECT_EQ(GetVertexInputLocation(13), 13);
    EXPECT_EQ(GetVertexInputLocation(14), kInstanceModelMatrixLocation);
    EXPECT_EQ(GetVertexInputLocation(15), kInstancePreviousModelMatrixLocation);
    EXPECT_EQ(GetVertexInputLocation(16), kInstancePickingIdLocation);
    EXPECT_EQ(GetVertexInputLocation(17), -1);
    EXPECT_EQ(GetVertexInputLocation(-1), -1);
}

// Every .isl shader of the source tree; fuzz corpora are left out, they are malformed on purpose.
std::vector<std::filesystem::path> repository_shaders()
{
    std::vector<std::filesystem::path> paths;
    const std::filesystem::path root = NORVANE_SOURCE_DIR;
    for (auto it = std::filesystem::recursive_directory_iterator(root); it != decltype(it)(); ++it) {
        const std::string name = it->path().filename().string();
        if (it->is_directory() && (name.starts_with(".") || name.starts_with("build") || name.ends_with("_corpus"))) {
            it.disable_recursion_pending();
            continue;
        }
        if (it->is_regular_file() && it->path().extension() == ".isl")
            paths.push_back(it->path());
    }
    return paths;
}

std::string read_file(const std::filesystem::path& path)
{
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

using RepositoryShaders = testing::GLRendererTest;

TEST_F(RepositoryShaders, TranslateValidateWithTheReferenceCompilerAndLink)
{
    const auto paths = repository_shaders();
    ASSERT_GE(paths.size(), 5u);
    const std::filesystem::path output = std::filesystem::path(NORVANE_GL_TEST_OUTPUT_DIR) / "glsl";
    std::filesystem::create_directories(output);
    for (const auto& path : paths) {
        SCOPED_TRACE(path.string());
        const std::string text = read_file(path);
        Shader shader;
        shader.name = path.string();
        ASSERT_TRUE(ParseShader(shader, text));
        std::string vertex, pixel, error;
        ASSERT_TRUE(TranslateShaderToGlsl(shader, vertex, pixel, error)) << error;

        const std::string stem = (output / path.stem()).string();
        std::ofstream(stem + ".vert") << vertex;
        std::ofstream(stem + ".frag") << pixel;
        const std::string command =
            std::string(NORVANE_GLSLANG_VALIDATOR) + " -l " + stem + ".vert " + stem + ".frag > " + stem + ".log 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0) << read_file(stem + ".log") << vertex << pixel;

        // The same text through the renderer's own load path: parsed, translated, compiled, linked.
        const auto gpu_shader = renderer->LoadShaderFromSource(path.string(), text, false);
        ASSERT_NE(gpu_shader, nullptr);
        EXPECT_TRUE(gpu_shader->IsReady());
    }
}

}  // namespace
}  // namespace kesta
