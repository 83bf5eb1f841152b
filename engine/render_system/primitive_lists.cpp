#include "engine/render_system/primitive_lists.h"

namespace kesta {

const char* RenderListName(RenderList list)
{
    static constexpr const char* kNames[] = {"Opaque", "Transparent", "FramebufferDependent", "Shadow"};
    return list < kRenderListCount ? kNames[list] : "";
}

const char* ShaderPassName(ShaderPass pass)
{
    static constexpr const char* kNames[] = {"Depth",
                                             "DS",
                                             "FS_Constant",
                                             "FS_PointLight",
                                             "FS_PointLightShadowMap",
                                             "FS_LinearLight",
                                             "FS_LinearLightShadowMap",
                                             "FS_SpotLight",
                                             "FS_SpotLightShadowMap",
                                             "FS_SpotLightProjection",
                                             "FS_SpotLightProjectionShadowMap",
                                             "PP_NormalDepth",
                                             "PP_Velocity",
                                             "Picking"};
    return pass < kShaderPassCount ? kNames[pass] : "";
}

void PrimitiveLists::Add(const RenderPrimitive& primitive, RenderList list)
{
    if (list < kRenderListCount)
        primitives[list].push_back(primitive);
}

void PrimitiveLists::Add(RenderPrimitive&& primitive, RenderList list)
{
    if (list < kRenderListCount)
        primitives[list].push_back(std::move(primitive));
}

void PrimitiveLists::AddCustom(std::shared_ptr<CustomRenderPrimitive> primitive, RenderList list)
{
    if (list < kRenderListCount && primitive)
        custom[list].push_back(std::move(primitive));
}

void PrimitiveLists::Clear()
{
    // clear() destroys the elements, which releases their shared pointers, and keeps the storage.
    for (auto& list : primitives)
        list.clear();
    for (auto& list : custom)
        list.clear();
}

bool PrimitiveLists::Empty() const
{
    for (const auto& list : primitives)
        if (!list.empty())
            return false;
    for (const auto& list : custom)
        if (!list.empty())
            return false;
    return true;
}

}  // namespace kesta
