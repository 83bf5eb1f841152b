// The shader reader's default file access: through the process-wide filesystem, on real files.

#include <gtest/gtest.h>

#include <memory>

#include "engine/renderer/shader/shader_includes.h"
#include "engine/renderer/shader/shader_parser.h"
#include "engine/renderer/shader/shader_test_support.h"
#include "io/filesystem.h"
#include "io/std_file_driver.h"
#include "io/testing/temp_dir.h"

namespace kesta {
namespace {

// Files in a temporary folder, mounted on "shaders/" of a filesystem installed as g_filesystem.
class ShaderFileReadingTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        previous_ = g_filesystem;
        filesystem_.Mount(std::make_shared<StdFileDriver>(folder_.path()), "shaders/");
        g_filesystem = &filesystem_;
        folder_.Write("surface.isl", "in { float roughness = 0.5; vec4 tint; } variant { }");
        folder_.Write("helpers.i", "float helper() { return 2.0; }");
        folder_.Write("empty.i", "");
        folder_.Write("outer.i", "a %include(\"shaders/inner.i\") c");
        folder_.Write("inner.i", "b");
    }
    void TearDown() override { g_filesystem = previous_; }

    ShaderLogCapture log_;
    testing::TempDir folder_;
    Filesystem filesystem_;
    Filesystem* previous_ = nullptr;
};

TEST_F(ShaderFileReadingTest, VariablesOfAFileOnDisk)
{
    ShaderVariableTable table;
    EXPECT_TRUE(ParseShaderVariables("shaders/surface.isl", table));
    ASSERT_EQ(table.variables.size(), 2u);
    EXPECT_EQ(table.variables[0].name, "roughness");
    EXPECT_EQ(table.variables[0].type, ShaderType::kFloat);
    EXPECT_EQ(table.variables[1].name, "tint");
    EXPECT_EQ(table.variables[1].type, ShaderType::kVec4);
    EXPECT_FALSE(ParseShaderVariables("shaders/absent.isl", table));
    EXPECT_EQ(table.variables.size(), 2u);
}

TEST_F(ShaderFileReadingTest, HashIncludeOfAFileOnDiskIsExpanded)
{
    Shader shader;
    ASSERT_TRUE(ParseShader(shader,
                            "variant { pixel { global %{\n#include \"shaders/helpers.i\"\n"
                            "#include \"shaders/empty.i\"\n#include \"shaders/absent.i\"\n%} } }"));
    ASSERT_EQ(shader.variants.size(), 1u);
    EXPECT_EQ(shader.variants[0]->stages[kPixelStage].global, "\nfloat helper() { return 2.0; }\n");
}

TEST_F(ShaderFileReadingTest, PercentIncludeReadsNestedFilesOnDisk)
{
    EXPECT_EQ(ExpandIncludes("[%include(\"shaders/outer.i\")]"), "[a b c]");
}

TEST_F(ShaderFileReadingTest, WithoutAFilesystemNothingIsRead)
{
    g_filesystem = nullptr;
    ShaderVariableTable table;
    EXPECT_FALSE(ParseShaderVariables("shaders/surface.isl", table));
    EXPECT_EQ(ExpandIncludes("[%include(\"shaders/inner.i\")]"), "[]");
}

}  // namespace
}  // namespace kesta
