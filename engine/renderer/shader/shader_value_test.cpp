#include "engine/renderer/shader/shader_value.h"

#include <gtest/gtest.h>

#include <vector>

#include "engine/renderer/shader/shader_test_support.h"

namespace kesta {
namespace {

struct NumberCase {
    std::string_view text;
    ShaderType type;
    bool parsed;
    std::vector<float> numbers;  // row by row, four per row
    std::vector<CapturedLogLine> log;
};

TEST(ShaderValue, NumbersOfEveryType)
{
    const NumberCase cases[] = {
        {"3", ShaderType::kInt, true, {3}, {}},
        {" -12 ", ShaderType::kInt, true, {-12}, {}},
        {"7", ShaderType::kUint32, true, {7}, {}},
        {"abc", ShaderType::kInt, false, {}, {{"warn", "invalid stoi argument"}}},
        {"99999999999", ShaderType::kInt, false, {}, {{"warn", "stoi argument out of range"}}},
        {"0.5", ShaderType::kFloat, true, {0.5f}, {}},
        {"x", ShaderType::kFloat, false, {}, {{"warn", "invalid stof argument"}}},
        {"1e99", ShaderType::kFloat, false, {}, {{"warn", "stof argument out of range"}}},
        {"vec2(1, 2)", ShaderType::kVec2, true, {1, 2}, {}},
        {"1,2", ShaderType::kVec2, true, {1, 2}, {}},
        {"vec3(1,2,3)", ShaderType::kVec3, true, {1, 2, 3}, {}},
        {"vec4(1, 0.5, 0.25, 1)", ShaderType::kVec4, true, {1, 0.5f, 0.25f, 1}, {}},
        {"1, 2, 3, 4", ShaderType::kVec4, true, {1, 2, 3, 4}, {}},
        // The constructor must match the type's size, and the count must be exact.
        {"vec3(1,2,3)", ShaderType::kVec4, false, {}, {}},
        {"vec4(1,2,3,4)", ShaderType::kVec3, false, {}, {}},
        {"1,2,3", ShaderType::kVec4, false, {}, {}},
        {"vec4(1,2,3,4", ShaderType::kVec4, false, {}, {}},
        {"vec2(1,q)", ShaderType::kVec2, false, {}, {{"warn", "invalid stof argument"}}},
        {"1,,2", ShaderType::kVec3, false, {}, {{"warn", "invalid stof argument"}}},
        {"mat3(1,2,3,4,5,6,7,8,9)", ShaderType::kMat3, true, {1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0}, {}},
        {"1,0,0,0, 0,1,0,0, 0,0,1,0, 5,6,7,1",
         ShaderType::kMat4,
         true,
         {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1},
         {}},
        {"mat4(1,2,3)", ShaderType::kMat4, false, {}, {}},
        {"", ShaderType::kFloat, false, {}, {}},
        {"   ", ShaderType::kVec4, false, {}, {}},
    };
    for (const NumberCase& c : cases) {
        ShaderLogCapture log;
        ShaderValue value;
        EXPECT_EQ(ParseShaderValue(c.text, value, c.type, false), c.parsed) << c.text;
        EXPECT_EQ(log.lines(), c.log) << c.text;
        if (!c.parsed)
            continue;
        for (std::size_t i = 0; i < c.numbers.size(); ++i) {
            const float actual = c.type == ShaderType::kInt || c.type == ShaderType::kUint32
                                     ? static_cast<float>(value.ints[i / 4][i % 4])
                                     : value.floats[i / 4][i % 4];
            EXPECT_EQ(actual, c.numbers[i]) << c.text << " at " << i;
        }
    }
}

TEST(ShaderValue, TexturePathsLoseTheirQuotesUnlessAsked)
{
    ShaderLogCapture log;
    for (ShaderType type : {ShaderType::kTex2D, ShaderType::kTex3D, ShaderType::kTexCube, ShaderType::kTexShadow}) {
        ShaderValue value;
        EXPECT_TRUE(ParseShaderValue(" \"@core/textures/white.png\" ", value, type, false));
        EXPECT_EQ(value.texture_path, "@core/textures/white.png");
        EXPECT_TRUE(ParseShaderValue("\"a.png\"", value, type, true));
        EXPECT_EQ(value.texture_path, "\"a.png\"");
        EXPECT_TRUE(ParseShaderValue("plain.png", value, type, false));
        EXPECT_EQ(value.texture_path, "plain.png");
        // A lone quote is not a pair of quotes.
        EXPECT_TRUE(ParseShaderValue("\"", value, type, false));
        EXPECT_EQ(value.texture_path, "\"");
    }
    EXPECT_TRUE(log.lines().empty());
}

TEST(ShaderValue, TypesWithoutValuesAreRefusedWithTheirSpelling)
{
    ShaderLogCapture log;
    ShaderValue value;
    EXPECT_FALSE(ParseShaderValue("\"x\"", value, ShaderType::kTexExternal, false));
    EXPECT_FALSE(ParseShaderValue("1", value, ShaderType::kNone, false));
    EXPECT_EQ(log.lines(), (std::vector<CapturedLogLine>{
                               {"warn", "Parsing shader value of type texExternal is not implemented"},
                               {"warn", "Parsing shader value of type none is not implemented"},
                           }));
}

}  // namespace
}  // namespace kesta
