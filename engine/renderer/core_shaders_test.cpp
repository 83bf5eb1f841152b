// The shaders of the core archive, read through the mounted archive as the renderer reads them.

#include <gtest/gtest.h>

#include "engine/renderer/shader/shader.h"
#include "engine/renderer/shader/shader_parser.h"
#include "io/core_resources.h"
#include "io/filesystem.h"
#include "io/testing/log_capture.h"

namespace kesta {
namespace {

struct CoreShader {
    const char* path;
    std::vector<std::pair<std::string, ShaderType>> uniforms;
    std::vector<std::string> varyings;
};

TEST(CoreShaders, ParseCleanlyWithTheirUniformsAndVaryings)
{
    testing::LogCapture log;
    Filesystem filesystem;
    Filesystem* previous = g_filesystem;
    g_filesystem = &filesystem;
    MountCoreResources();

    const CoreShader shaders[] = {
        {"@core/shaders/single_texture_2d.isl", {{"u_tex", ShaderType::kTex2D}}, {"v_uv"}},
        {"@core/shaders/single_texture_color.isl", {{"u_tex", ShaderType::kTex2D}}, {"v_uv", "v_color"}},
        {"@core/shaders/single_texture.isl", {{"u_tex", ShaderType::kTex2D}, {"u_color", ShaderType::kVec4}}, {"v_uv"}},
        {"@core/shaders/single_color.isl", {}, {"v_color"}},
        {"@core/shaders/simple.isl", {{"u_color", ShaderType::kVec4}}, {}},
    };
    for (const CoreShader& expected : shaders) {
        SCOPED_TRACE(expected.path);
        Shader shader;
        const std::string text = filesystem.FileToString(expected.path);
        ASSERT_FALSE(text.empty());
        ASSERT_TRUE(ParseShader(shader, text));
        ASSERT_EQ(shader.variants.size(), 1u);
        ASSERT_EQ(shader.variables->variables.size(), expected.uniforms.size());
        for (std::size_t i = 0; i < expected.uniforms.size(); ++i) {
            EXPECT_EQ(shader.variables->variables[i].name, expected.uniforms[i].first);
            EXPECT_EQ(shader.variables->variables[i].type, expected.uniforms[i].second);
        }
        std::vector<std::string> varyings;
        for (const auto& varying : shader.variants[0]->varyings)
            varyings.push_back(varying.name);
        EXPECT_EQ(varyings, expected.varyings);
        for (const auto& stage : shader.variants[0]->stages)
            EXPECT_NE(stage.source.find("%out."), std::string::npos);
    }
    // A texture's unit settings come from its parameter block.
    Shader textured;
    ASSERT_TRUE(ParseShader(textured, filesystem.FileToString("@core/shaders/single_texture.isl")));
    const ShaderVariableValue* texture = textured.variables->Find("u_tex");
    ASSERT_TRUE(texture && texture->value);
    EXPECT_EQ(texture->value->texture_unit.GetWrapU(), TextureUV::kRepeat);
    EXPECT_EQ(texture->value->texture_unit.GetMinFilter(), TextureFilter::kTrilinear);
    const ShaderVariableValue* color = textured.variables->Find("u_color");
    ASSERT_TRUE(color && color->value);
    EXPECT_EQ(color->hint, "color");
    EXPECT_EQ(color->value->floats[0][3], 1.0f);

    for (const std::string& line : log.Lines())
        EXPECT_FALSE(line.rfind("warn", 0) == 0 || line.rfind("error", 0) == 0) << line;
    g_filesystem = previous;
}

}  // namespace
}  // namespace kesta
