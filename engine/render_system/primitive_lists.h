#pragma once
// The frame's draw lists: renderables add records here, the pipelines sort and draw them. Clearing
// releases what the records hold and keeps every vector's capacity, so steady frames allocate
// nothing.

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "engine/renderer/render_values.h"
#include "engine/vertex_layout.h"
#include "foundation/math/matrix4.h"
#include "foundation/math/minmax.h"
#include "foundation/math/vector.h"

namespace kesta {

class GpuBuffer;
class RenderMaterial;
class RenderSystem;
class RenderStateCache;
class Skeleton;
class Node;

// Which list a primitive is drawn from.
enum RenderList : std::uint8_t {
    kRenderListOpaque = 0,
    kRenderListTransparent = 1,
    kRenderListFramebufferDependent = 2,
    kRenderListShadow = 3,
    kRenderListCount = 4,
};

// Which shader of a surface draws a primitive.
enum ShaderPass : std::uint8_t {
    kShaderPassDepth = 0,
    kShaderPassDS = 1,
    kShaderPassFSConstant = 2,
    kShaderPassFSPointLight = 3,
    kShaderPassFSPointLightShadowMap = 4,
    kShaderPassFSLinearLight = 5,
    kShaderPassFSLinearLightShadowMap = 6,
    kShaderPassFSSpotLight = 7,
    kShaderPassFSSpotLightShadowMap = 8,
    kShaderPassFSSpotLightProjection = 9,
    kShaderPassFSSpotLightProjectionShadowMap = 10,
    kShaderPassPPNormalDepth = 11,
    kShaderPassPPVelocity = 12,
    kShaderPassPicking = 13,
    kShaderPassCount = 14,
};

// The names used in messages, indexed by value.
const char* RenderListName(RenderList list);
const char* ShaderPassName(ShaderPass pass);

struct RenderPass {
    RenderList list = kRenderListOpaque;
    ShaderPass shader = kShaderPassDepth;
    std::shared_ptr<Node> light;
};

struct RenderPrimitive {
    std::uint32_t index_count = 0;
    IndexType index_type = kIndex16;
    PrimitiveType primitive_type = kTriangles;
    std::shared_ptr<GpuBuffer> index_buffer;
    std::shared_ptr<GpuBuffer> vertex_buffer;
    VertexLayout vertex_layout;
    Matrix4 previous_model;
    Matrix4 model;
    Vector3 aabb_min, aabb_max;
    std::shared_ptr<const Skeleton> skeleton;
    std::shared_ptr<RenderMaterial> material;
    std::uint32_t picking_id = 0;
};

// A primitive that draws itself instead of going through the sorted path.
class CustomRenderPrimitive {
public:
    virtual ~CustomRenderPrimitive() = default;
    virtual MinMax GetBounds() = 0;
    virtual void Draw(RenderSystem& render_system, RenderStateCache& state_cache, const RenderPass& pass) = 0;
};

class PrimitiveLists {
public:
    void Add(const RenderPrimitive& primitive, RenderList list);
    void Add(RenderPrimitive&& primitive, RenderList list);
    void AddCustom(std::shared_ptr<CustomRenderPrimitive> primitive, RenderList list);
    // Empties every list and keeps its capacity.
    void Clear();
    bool Empty() const;

    std::array<std::vector<RenderPrimitive>, kRenderListCount> primitives;
    std::array<std::vector<std::shared_ptr<CustomRenderPrimitive>>, kRenderListCount> custom;
};

}  // namespace kesta
