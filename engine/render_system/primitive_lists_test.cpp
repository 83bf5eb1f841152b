#include "engine/render_system/primitive_lists.h"

#include <gtest/gtest.h>

#include <string>

namespace kesta {
namespace {

class CountingCustom : public CustomRenderPrimitive {
public:
    MinMax GetBounds() override { return {}; }
    void Draw(RenderSystem&, RenderStateCache&, const RenderPass&) override {}
};

TEST(PrimitiveLists, ClearReleasesHoldingsAndKeepsCapacity)
{
    PrimitiveLists lists;
    auto buffer = std::make_shared<int>(0);
    auto custom = std::make_shared<CountingCustom>();
    RenderPrimitive primitive;
    for (int i = 0; i < 10; ++i)
        lists.Add(primitive, kRenderListTransparent);
    lists.AddCustom(custom, kRenderListShadow);
    lists.AddCustom(nullptr, kRenderListShadow);
    lists.Add(primitive, static_cast<RenderList>(7));  // no such list: ignored
    EXPECT_EQ(lists.primitives[kRenderListTransparent].size(), 10u);
    EXPECT_EQ(lists.custom[kRenderListShadow].size(), 1u);
    EXPECT_EQ(custom.use_count(), 2);
    const auto capacity = lists.primitives[kRenderListTransparent].capacity();
    lists.Clear();
    EXPECT_TRUE(lists.Empty());
    EXPECT_EQ(custom.use_count(), 1);
    EXPECT_EQ(lists.primitives[kRenderListTransparent].capacity(), capacity);
}

TEST(PrimitiveLists, NamesOfListsAndPasses)
{
    EXPECT_STREQ(RenderListName(kRenderListFramebufferDependent), "FramebufferDependent");
    EXPECT_STREQ(ShaderPassName(kShaderPassFSSpotLightProjectionShadowMap), "FS_SpotLightProjectionShadowMap");
    EXPECT_STREQ(ShaderPassName(kShaderPassPicking), "Picking");
    EXPECT_STREQ(ShaderPassName(static_cast<ShaderPass>(14)), "");
}

}  // namespace
}  // namespace kesta
