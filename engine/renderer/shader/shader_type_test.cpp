#include "engine/renderer/shader/shader_type.h"

#include <gtest/gtest.h>

namespace kesta {
namespace {

TEST(ShaderType, EverySpellingMapsBothWays)
{
    const std::string_view spellings[] = {"none", "int",  "uint32_t", "float", "vec2",    "vec3",      "vec4",
                                          "mat3", "mat4", "tex2D",    "tex3D", "texCube", "texShadow", "texExternal"};
    for (int value = 0; value < kShaderTypeCount; ++value) {
        const auto type = static_cast<ShaderType>(value);
        EXPECT_EQ(GetShaderTypeName(type), spellings[value]);
        EXPECT_EQ(FindShaderType(spellings[value]), type) << spellings[value];
    }
}

TEST(ShaderType, LookUpIsExact)
{
    for (std::string_view wrong : {"", "Vec4", "vec", "uint", "tex2d", "vec4 ", "sampler2D"})
        EXPECT_FALSE(FindShaderType(wrong).has_value()) << wrong;
    EXPECT_EQ(GetShaderTypeName(static_cast<ShaderType>(kShaderTypeCount)), "");
}

TEST(ShaderType, OnlyTheFourSampledTypesAreTextures)
{
    for (int value = 0; value < kShaderTypeCount; ++value)
        EXPECT_EQ(IsTextureShaderType(static_cast<ShaderType>(value)), value >= 9 && value <= 12) << value;
}

}  // namespace
}  // namespace kesta
