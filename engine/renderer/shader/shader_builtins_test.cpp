#include "engine/renderer/shader/shader_builtins.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace kesta {
namespace {

TEST(ShaderBuiltins, TableHoldsSeventyUniqueRowsOfWhichSeventeenAreVertexInputs)
{
    const auto builtins = GetShaderBuiltins();
    ASSERT_EQ(builtins.size(), 70u);
    std::set<std::string_view> names;
    for (const ShaderBuiltin& builtin : builtins)
        names.insert(builtin.name);
    EXPECT_EQ(names.size(), 70u);
    EXPECT_EQ(builtins[0].name, "vPosition");
    EXPECT_EQ(builtins[16].name, "vInstancePickingId");
    EXPECT_EQ(builtins[17].name, "vClock");
    EXPECT_EQ(kShaderSemanticCount, 53u);
    for (std::size_t i = 0; i < kShaderVertexInputCount; ++i)
        EXPECT_FALSE(FindShaderSemantic(builtins[i].name).has_value()) << builtins[i].name;
}

struct SemanticRow {
    std::uint32_t semantic;
    std::string_view name;
    ShaderType type;
    int precision;
    int array_size;
};

TEST(ShaderBuiltins, SemanticsNumberTheLeftHalfThenTheRightHalf)
{
    const SemanticRow rows[] = {
        {0, "vClock", ShaderType::kFloat, 2, 0},
        {2, "vTechniqueIsForward", ShaderType::kInt, 1, 0},
        {9, "vDepthBuffer", ShaderType::kTex2D, 0, 0},
        {14, "vGBuffer3", ShaderType::kTex2D, 0, 0},
        {19, "vPreviousBoneMatrix", ShaderType::kMat4, 2, 48},
        {22, "vTerrainPatchSize", ShaderType::kVec3, 0, 0},
        {23, "vModelMatrix", ShaderType::kMat4, 3, 0},
        {25, "vNormalMatrix", ShaderType::kMat3, 3, 0},
        {44, "vLightShadowMatrix", ShaderType::kMat4, 2, 6},
        {46, "vLightShadowMap", ShaderType::kTexShadow, 0, 0},
        {49, "vBoneMatrix", ShaderType::kMat4, 2, 48},
        {52, "vTerrainPatchOrigin", ShaderType::kVec3, 0, 0},
    };
    for (const SemanticRow& row : rows) {
        const ShaderBuiltin* builtin = GetShaderBuiltinBySemantic(row.semantic);
        ASSERT_NE(builtin, nullptr) << row.semantic;
        EXPECT_EQ(builtin->name, row.name);
        EXPECT_EQ(builtin->type, row.type) << row.name;
        EXPECT_EQ(builtin->precision, row.precision) << row.name;
        EXPECT_EQ(builtin->array_size, row.array_size) << row.name;
        EXPECT_EQ(FindShaderSemantic(row.name), static_cast<ShaderSemantic>(row.semantic)) << row.name;
        EXPECT_EQ(FindShaderBuiltin(row.name), builtin);
    }
    EXPECT_EQ(static_cast<int>(ShaderSemantic::kViewProjectionMatrix), 32);
    EXPECT_EQ(GetShaderBuiltinBySemantic(static_cast<std::uint32_t>(ShaderSemantic::kPickingId))->name, "vPickingId");
}

TEST(ShaderBuiltins, UnknownNamesAndNumbersFindNothing)
{
    EXPECT_EQ(GetShaderBuiltinBySemantic(53), nullptr);
    EXPECT_EQ(GetShaderBuiltinBySemantic(0xffffffffu), nullptr);
    EXPECT_EQ(FindShaderBuiltin("vclock"), nullptr);
    EXPECT_EQ(FindShaderBuiltin(""), nullptr);
    EXPECT_FALSE(FindShaderSemantic("vUV4").has_value());
    ASSERT_NE(FindShaderBuiltin("vUV3"), nullptr);
    EXPECT_EQ(FindShaderBuiltin("vUV3")->type, ShaderType::kVec2);
}

}  // namespace
}  // namespace kesta
