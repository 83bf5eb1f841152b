#include "engine/render_system/render_system.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <thread>
#include <tuple>

#include "engine/render_system/renderable.h"
#include "engine/renderer/renderer.h"
#include "foundation/assert/assertion.h"
#include "foundation/format.h"
#include "foundation/log/log.h"
#include "foundation/profiler/profiler.h"
#include "io/filesystem.h"

namespace kesta {

RenderSystem* g_render_system = nullptr;

namespace {

// The core shader files in the order they are loaded, with the slot each one fills.
struct CoreShaderFile {
    CoreShader slot;
    const char* path;
};

constexpr CoreShaderFile kCoreShaderFiles[] = {
    {kShaderSingleTexture2D, "@core/shaders/single_texture_2d.isl"},
    {kShaderSingleTextureColor, "@core/shaders/single_texture_color.isl"},
    {kShaderSingleTexture, "@core/shaders/single_texture.isl"},
    {kShaderSingleColor, "@core/shaders/single_color.isl"},
    {kShaderSimple, "@core/shaders/simple.isl"},
    {kShaderAmbient, "@core/shaders/ambient.isl"},
    {kShaderDSSpotLight, "@core/shaders/ds_spotlight.isl"},
    {kShaderDSSpotLightShadow, "@core/shaders/ds_spotlight_shadow.isl"},
    {kShaderDSPointLight, "@core/shaders/ds_pointlight.isl"},
    {kShaderDSPointLightShadow, "@core/shaders/ds_pointlight_shadow.isl"},
    {kShaderDSLinearLight, "@core/shaders/ds_linearlight.isl"},
    {kShaderDSLinearLightShadow, "@core/shaders/ds_linearlight_shadow.isl"},
    {kShaderDSFog, "@core/shaders/ds_fog.isl"},
};

constexpr std::uint16_t kQuadIndices[] = {2, 1, 0, 3, 2, 0};
constexpr std::uint16_t kCubeIndices[] = {0, 1, 2, 0, 2, 3, 1, 5, 6, 1, 6, 2, 5, 4, 7, 5, 7, 6,
                                          4, 0, 3, 4, 3, 7, 4, 5, 1, 4, 1, 0, 3, 2, 6, 3, 6, 7};

// Semantics of the default vertex layout.
constexpr std::uint8_t kSemanticPosition = 0;
constexpr std::uint8_t kSemanticUV0 = 2;
constexpr std::uint8_t kSemanticColor0 = 6;

constexpr Color kWhite{1, 1, 1, 1};

float Clamp01(float value) { return value > 0.0f ? (value < 1.0f ? value : 1.0f) : 0.0f; }

// One vertex in the default layout: position, colour as four bytes, UV as two 16-bit values.
// Out-of-range channels are clamped, then scaled and truncated; NaN reads as 0.
inline void PackVertex(std::uint8_t* out, const Vector3& position, const Color& color, const Vector2& uv)
{
    const float xyz[3] = {position.x, position.y, position.z};
    std::memcpy(out, xyz, sizeof xyz);
    const float rgba[4] = {color.r, color.g, color.b, color.a};
    for (int i = 0; i < 4; ++i)
        out[12 + i] = static_cast<std::uint8_t>(Clamp01(rgba[i]) * 255.0f);
    const std::uint16_t st[2] = {static_cast<std::uint16_t>(Clamp01(uv.x) * 65535.0f),
                                 static_cast<std::uint16_t>(Clamp01(uv.y) * 65535.0f)};
    std::memcpy(out + 16, st, sizeof st);
}

int MultisampleLevel(int count)
{
    if (count <= 1)
        return 0;
    if (count == 2)
        return 1;
    if (count <= 4)
        return 2;
    if (count <= 8)
        return 3;
    return 4;
}

}  // namespace

RenderSystem::RenderSystem()
{
    if (g_render_system)
        assertion_failed(__FILE__, __LINE__, "kesta::RenderSystem::RenderSystem", "!g_render_system", nullptr);
    g_render_system = this;
    default_vertex_layout_.AddAttribute(kSemanticPosition, 3, VertexLayout::kFloat, false);
    default_vertex_layout_.AddAttribute(kSemanticColor0, 4, VertexLayout::kUnsignedByte, true);
    default_vertex_layout_.AddAttribute(kSemanticUV0, 2, VertexLayout::kUnsignedShort, true);
    default_vertex_layout_.End();
}

RenderSystem::~RenderSystem()
{
    // GPU objects still held are released by their own deleters, which reach the render worker.
    if (g_render_system == this)
        g_render_system = nullptr;
}

// --- life ---

bool RenderSystem::Initialize(std::shared_ptr<Renderer> renderer, bool create_3d_resources)
{
    if (!renderer)
        return false;
    renderer_ = std::move(renderer);
    is_ready_ = true;
    has_3d_resources_ = create_3d_resources;

    LoadCoreShaders(create_3d_resources);

    compose_target_ = MakeRenderTarget();
    feedback_target_ = MakeRenderTarget();
    if (create_3d_resources) {
        output_target_ = MakeRenderTarget();
        postprocess_target_ = MakeRenderTarget();
        if (features_ & kFeatureShadowMapping) {
            shadow_target_ = MakeRenderTarget();
            CreateShadowMaps(kDefaultShadowMapSize);
        }
        SetRenderTechnique(kTechniqueForward);
    }

    CreateBuffers();
    CheckCapabilities();
    return true;
}

void RenderSystem::LoadCoreShaders(bool create_3d_resources)
{
    for (const CoreShaderFile& file : kCoreShaderFiles) {
        if (file.slot >= kCore2DShaderCount && !create_3d_resources)
            break;
        // The loader itself reports a file that exists but cannot be read.
        const bool exists = g_filesystem && g_filesystem->Exists(file.path);
        core_shaders_[file.slot] = renderer_->LoadShader(file.path, false);
        if (!core_shaders_[file.slot] && !exists)
            error(format("Shader file not found '%1'") << file.path);
    }
}

std::shared_ptr<RenderTarget> RenderSystem::MakeRenderTarget()
{
    std::shared_ptr<RenderTarget> target = renderer_->NewRenderTarget();
    if (target)
        renderer_->CreateRenderTarget(*target);
    return target;
}

void RenderSystem::CreateBuffers()
{
    Renderer& r = *renderer_;
    quad_index_buffer_ = r.NewBuffer();
    r.CreateBuffer(*quad_index_buffer_, kQuadIndices, sizeof kQuadIndices, kIndexBuffer, kStaticBuffer);
    quad_vertex_buffer_ = r.NewBuffer();
    r.CreateBuffer(*quad_vertex_buffer_, nullptr, kQuadVertexBufferBytes, kVertexBuffer, kDynamicBuffer);
    cube_index_buffer_ = r.NewBuffer();
    r.CreateBuffer(*cube_index_buffer_, kCubeIndices, sizeof kCubeIndices, kIndexBuffer, kStaticBuffer);
    dynamic_index_buffer_ = r.NewBuffer();
    r.CreateBuffer(*dynamic_index_buffer_, nullptr, kDynamicIndexBufferBytes, kIndexBuffer, kDynamicBuffer);
    dynamic_vertex_buffer_ = r.NewBuffer();
    r.CreateBuffer(*dynamic_vertex_buffer_, nullptr, kDynamicVertexBufferBytes, kVertexBuffer, kDynamicBuffer);
    // Sized by the first instanced draw.
    instance_buffer_ = r.NewBuffer();
}

void RenderSystem::CheckCapabilities()
{
    if (!(renderer_->GetCapabilities() & kCapabilityBitHardwareMultisample))
        warn("Insufficient RBO support, falling back to RTT: No hardware MSAA");
    if (!(features_ & kFeatureShadowMapping))
        warn("Shadow-mapping support disabled");
}

void RenderSystem::Free()
{
    if (renderer_) {
        for (const auto* buffer : {&quad_index_buffer_, &quad_vertex_buffer_, &cube_index_buffer_,
                                   &dynamic_index_buffer_, &dynamic_vertex_buffer_, &instance_buffer_})
            if (*buffer)
                renderer_->FreeBuffer(**buffer);
    }
    quad_index_buffer_.reset();
    quad_vertex_buffer_.reset();
    cube_index_buffer_.reset();
    dynamic_index_buffer_.reset();
    dynamic_vertex_buffer_.reset();
    instance_buffer_.reset();
    ReleaseFrameTextures();
    for (auto& shader : core_shaders_)
        shader.reset();
    compose_target_.reset();
    feedback_target_.reset();
    output_target_.reset();
    postprocess_target_.reset();
    read_target_.reset();
    draw_target_.reset();
    shadow_target_.reset();
    shadow_map_.reset();
    system_builtins_.shadow_map.reset();
    primitive_lists.Clear();
    private_lists_.Clear();
    {
        std::lock_guard lock(surface_shader_cache.lock);
        surface_shader_cache.items.clear();
    }
    {
        std::lock_guard lock(material_cache.lock);
        material_cache.items.clear();
    }
    {
        std::lock_guard lock(geometry_cache.lock);
        geometry_cache.items.clear();
    }
    has_3d_resources_ = false;
    is_ready_ = false;
    renderer_.reset();
}

void RenderSystem::Reload()
{
    if (renderer_) {
        Renderer& r = *renderer_;
        r.SetDepthFunc(kDepthLessEqual);
        r.SetDepthTest(true);
        r.SetDepthWrite(true);
        r.SetBlend(false);
        r.SetAlphaToCoverage(false);
        r.SetCullFront(false);
        r.SetFaceCulling(true);
    }
    log("Done reloading resources");
}

// --- the frame ---

void RenderSystem::SetView(const Matrix4& view, const Matrix4& previous_view, const Matrix44& projection,
                           std::uint8_t eye)
{
    view_ = view;
    eye_ = eye;
    if (renderer_) {
        renderer_->SetViewMatrix(view);
        renderer_->SetPreviousViewMatrix(previous_view);
        renderer_->SetProjectionMatrix(projection);
        frustum_ = Frustum::FromWorldToClip(projection * Matrix44::FromMatrix4(renderer_->GetInverseViewMatrix()));
    } else {
        frustum_ = Frustum::FromView(view, projection);
    }
}

void RenderSystem::BeginDrawFrame()
{
    ProfileSection section("RenderSystem.BeginDrawFrame");
    // Whoever bound a target before the frame (an eye of a headset, say) gets the frame there.
    frame_output_target_ = renderer_ ? renderer_->GetCurrentRenderTarget() : nullptr;
    has_output_target_ = frame_output_target_ != nullptr;
    statistics_ = RenderFrameStatistics{};
    statistics_.start = time_now();
    clock_ += kFrameDuration;
    frame_start_signal.Emit();
    if (technique_ != kTechniqueForward || !renderer_)
        return;

    // A slot that has bound (or cleared) the target itself votes, and this step is skipped.
    bool target_bound = false;
    frame_clear_query_signal.Emit(target_bound);
    if (!target_bound)
        renderer_->SetRenderTarget(draw_target_);
    bool target_cleared = false;
    frame_draw_query_signal.Emit(target_cleared);
    if (!target_cleared && (environment.clear_color || environment.clear_depth)) {
        const std::uint32_t planes =
            (environment.clear_color ? kClearColor : 0u) | (environment.clear_depth ? kClearDepth : 0u);
        renderer_->Clear(environment.clear_color_value, 1.0f, planes);
    }
    frame_cleared_signal.Emit();
}

void RenderSystem::BuildPrimitiveLists(std::vector<std::shared_ptr<Renderable>>& renderables, PrimitiveLists& lists)
{
    for (const std::shared_ptr<Renderable>& renderable : renderables)
        if (renderable && renderable->Cull(frustum_) != Frustum::kOutside)
            renderable->GetRenderPrimitives(frustum_, view_, lists, 0);
}

void RenderSystem::DrawRenderables(std::vector<std::shared_ptr<Renderable>>& renderables)
{
    ProfileSection section("RenderSystem.DrawRenderables");
    primitive_lists.Clear();
    {
        ProfileSection build("RenderSystem.DrawRenderables.BuildFrustumPrimitiveLists");
        BuildPrimitiveLists(renderables, primitive_lists);
    }
    // The forward and deferred pipelines draw the lists here once they exist; until then the
    // lists are built and left for the signal's slots.
    ProfileSection drawn("RenderSystem.DrawRenderables.renderables_drawn_signal");
    renderables_drawn_signal.Emit();
}

void RenderSystem::DrawRenderables(std::vector<std::shared_ptr<Renderable>>& renderables, LightSystem&)
{
    DrawRenderables(renderables);
}

void RenderSystem::DrawRenderPassShader(std::vector<std::shared_ptr<Renderable>>& renderables, std::uint8_t)
{
    ProfileSection section("RenderSystem.DrawRenderPassShader");
    if (!renderer_)
        return;
    renderer_->Clear(Color{0.5f, 0.5f, 0.5f, 1.0f}, 1.0f, kClearAll);
    private_lists_.Clear();
    BuildPrimitiveLists(renderables, private_lists_);
    // The opaque list is drawn in the given shader pass by the primitive path once it exists.
    frame_cleared_signal.Emit();
}

void RenderSystem::DrawRenderablesPicking(std::vector<std::shared_ptr<Renderable>>& renderables,
                                          const std::shared_ptr<RenderTarget>& target)
{
    ProfileSection section("RenderSystem.DrawRenderablesPicking");
    if (!renderer_)
        return;
    renderer_->SetRenderTarget(target);
    if (!renderer_->CheckRenderTarget())
        return;
    renderer_->Clear(Color{0, 0, 0, 1}, 1.0f, kClearAll);
    private_lists_.Clear();
    BuildPrimitiveLists(renderables, private_lists_);
    // The opaque list is drawn in the picking pass by the primitive path once it exists.
    frame_cleared_signal.Emit();
    renderer_->ResetRenderTarget();
    private_lists_.Clear();
}

void RenderSystem::ResolveMultisample()
{
    if (!renderer_ || technique_ != kTechniqueForward || GetMultisampleCount() <= 1 || !compose_target_)
        return;
    renderer_->SetRenderTargetColorTexture(*compose_target_, current_output_texture_);
    const Rect whole{0, 0, static_cast<float>(frame_width_), static_cast<float>(frame_height_)};
    renderer_->BlitRenderTarget(output_target_, compose_target_, whole, whole, true, true);
}

void RenderSystem::ApplyPostProcesses(std::vector<std::shared_ptr<Component>>&)
{
    ProfileSection section("RenderSystem.ApplyPostProcesses");
    if (!renderer_)
        return;
    renderer_->SetDepthTest(false);
    renderer_->SetDepthWrite(false);
    // Each slot that drew swaps input and output; the post-process components join the chain
    // with their effects.
    int swaps = 0;
    post_process_signal.Emit(*this, primitive_lists, postprocess_target_, compose_textures_[0], compose_textures_[1],
                             swaps);
    if (compose_textures_[0])
        current_output_texture_ = compose_textures_[swaps & 1];
    renderer_->SetDepthWrite(true);
    renderer_->SetDepthTest(true);
}

void RenderSystem::EmitEndRenderPassSignal(std::uint8_t list)
{
    ProfileSection section("RenderSystem.EmitEndRenderPassSignal");
    end_render_pass_signal.Emit(list);
}

void RenderSystem::EndDrawFrame()
{
    ProfileSection section("RenderSystem.EndDrawFrame");
    if (!renderer_)
        return;
    Renderer& r = *renderer_;
    if (compose_target_)
        r.SetRenderTargetColorTexture(*compose_target_, current_output_texture_);
    r.SetRenderTarget(compose_target_);
    r.SetBlend(false);
    r.SetFaceCulling(false);
    frame_complete_signal.Emit();

    if (has_output_target_)
        ComposeToTarget(frame_output_target_);
    else
        ComposeToWindow();
    frame_output_target_.reset();

    r.SetDepthWrite(true);
    r.SetDepthTest(true);
    if (compose_target_)
        r.SetRenderTargetColorTexture(*compose_target_, current_output_texture_);
}

void RenderSystem::ComposeToWindow()
{
    Renderer& r = *renderer_;
    const Rect viewport = r.GetViewport();
    // The frame fills the part of the internal-resolution textures that the viewport covers.
    const float width = frame_width_ > 0 ? static_cast<float>(frame_width_) : 1.0f;
    const float height = frame_height_ > 0 ? static_cast<float>(frame_height_) : 1.0f;
    const Vector2 uv_scale{(viewport.x2 - viewport.x1) / width, (viewport.y2 - viewport.y1) / height};
    r.ResetRenderTarget();
    r.SetDepthTest(false);
    r.SetDepthWrite(false);
    // Without 3D resources there is no frame texture to show.
    if (!current_output_texture_ || !r.SetShader(core_shaders_[kShaderSingleTexture2D]))
        return;
    r.SetShaderTexture(r.GetShaderVariable("u_tex"), current_output_texture_);
    DrawFullscreenQuad(uv_scale);
}

void RenderSystem::ComposeToTarget(const std::shared_ptr<RenderTarget>& target)
{
    Renderer& r = *renderer_;
    const Rect viewport = r.GetViewport();
    // The compose target holds the finished frame (the current output texture and its depth).
    r.BlitRenderTarget(compose_target_, target, viewport, viewport, true, true);
    r.SetRenderTarget(target);
    r.SetDepthTest(false);
    r.SetDepthWrite(false);
}

// --- set-up ---

void RenderSystem::ReleaseFrameTextures()
{
    for (const auto* target : {&output_target_, &compose_target_, &read_target_}) {
        if (!*target)
            continue;
        (*target)->color_textures = {};
        (*target)->color_count = 0;
        (*target)->depth_texture.reset();
    }
    frame_textures_.clear();
    compose_textures_ = {};
    current_output_texture_.reset();
}

std::shared_ptr<Texture> RenderSystem::MakeFrameTexture(const std::string& name, TextureFormat format,
                                                        std::uint8_t anti_aliasing)
{
    std::shared_ptr<Texture> texture = renderer_->NewTexture(name);
    if (!texture)
        return nullptr;
    renderer_->CreateTexture(*texture, nullptr, 0, frame_width_, frame_height_, format, anti_aliasing,
                             kTextureUsageColorTarget, true, 0);
    frame_textures_.push_back(texture);
    return texture;
}

void RenderSystem::SetRenderTechnique(RenderTechnique technique, bool hdr)
{
    if (!renderer_)
        return;
    Renderer& r = *renderer_;
    // Surface builds read the technique: let the ones under way finish first.
    while (surface_builds_in_flight_.load() > 0)
        std::this_thread::yield();
    ReleaseFrameTextures();
    technique_ = technique;
    hdr_ = hdr;

    const bool hardware_multisample = (r.GetCapabilities() & kCapabilityBitHardwareMultisample) != 0;
    int level = 0;
    if (technique == kTechniqueForward && hardware_multisample)
        level = MultisampleLevel(GetMultisampleCount());
    else
        fx_config_ &= ~kMultisampleMask;

    frame_width_ = internal_width_;
    frame_height_ = internal_height_;
    if (frame_width_ <= 0 || frame_height_ <= 0)
        std::tie(frame_width_, frame_height_) = r.GetOutputSize();
    if (frame_width_ <= 0 || frame_height_ <= 0)
        frame_width_ = frame_height_ = 256;
    log(format("SetRenderTechnique(): %1x%2:%3") << frame_width_ << frame_height_ << level);

    const TextureFormat compose_format = hdr ? kTextureFormatColorFloat : kTextureFormatColor8;
    compose_textures_[0] = MakeFrameTexture("t_compose0", compose_format, 0);
    compose_textures_[1] = MakeFrameTexture("t_compose1", compose_format, 0);
    current_output_texture_ = compose_textures_[0];

    if (!output_target_)
        output_target_ = MakeRenderTarget();
    if (!compose_target_)
        compose_target_ = MakeRenderTarget();
    std::shared_ptr<Texture> depth;
    if (technique == kTechniqueForward) {
        if (hardware_multisample) {
            const auto aa = static_cast<std::uint8_t>(level);
            r.SetRenderTargetColorTexture(*output_target_, MakeFrameTexture("t_color_aa", compose_format, aa));
            r.SetRenderTargetDepthTexture(*output_target_, MakeFrameTexture("t_depth_aa", kTextureFormatDepth, aa));
        }
        depth = MakeFrameTexture("t_depth", kTextureFormatDepth, 0);
        // Only a multisample count over 1 draws into the multisampled target: ResolveMultisample,
        // which brings its picture into the compose target, runs for those counts alone.
        draw_target_ = level > 0 ? output_target_ : compose_target_;
    } else {
        std::shared_ptr<Texture> gbuffer[4];
        for (int i = 0; i < 4; ++i)
            gbuffer[i] = MakeFrameTexture("t_gbuffer" + std::to_string(i), kTextureFormatColorFloat, 0);
        depth = MakeFrameTexture("t_depth", kTextureFormatDepth, 0);
        r.SetRenderTargetColorTextures(*output_target_, gbuffer, 4);
        r.SetRenderTargetDepthTexture(*output_target_, depth);
        draw_target_ = output_target_;
    }
    r.SetRenderTargetColorTexture(*compose_target_, compose_textures_[0]);
    r.SetRenderTargetDepthTexture(*compose_target_, depth);

    if (!read_target_)
        read_target_ = MakeRenderTarget();
    r.SetRenderTargetColorTexture(*read_target_, MakeFrameTexture("t_color_read", compose_format, 0));
    r.SetRenderTargetDepthTexture(*read_target_, MakeFrameTexture("t_depth_read", kTextureFormatDepth, 0));
}

void RenderSystem::SetInternalResolution(int width, int height)
{
    internal_width_ = std::max(width, 0);
    internal_height_ = std::max(height, 0);
    if (has_3d_resources_)
        SetRenderTechnique(technique_, hdr_);
}

void RenderSystem::SetMultisampleCount(int count)
{
    const auto value = static_cast<std::uint32_t>(std::clamp(count, 0, 15));
    fx_config_ = (fx_config_ & ~kMultisampleMask) | (value << kMultisampleShift);
}

void RenderSystem::SetShadowMapSize(std::uint16_t size)
{
    if (size == 0)
        return;
    if (renderer_ && shadow_target_)
        CreateShadowMaps(size);
    else
        shadow_map_size_ = size;
}

void RenderSystem::CreateShadowMaps(std::uint16_t size)
{
    features_ |= kFeatureShadowMapping;
    shadow_map_size_ = size;
    log(format("Create shadow maps (%1x%2)") << size << size);
    if (!renderer_)
        return;
    shadow_map_ = renderer_->NewShadowMap(size, size, "shadow_map");
    if (shadow_target_)
        renderer_->SetRenderTargetDepthTexture(*shadow_target_, shadow_map_);
}

// --- immediate drawing ---

void RenderSystem::UploadBuiltins()
{
    Renderer& r = *renderer_;
    // Both records live between draws: the shadow map handle is not copied per draw, and the model
    // inverse is worked out again only when the model matrix changed.
    ShaderSystemBuiltins& system = system_builtins_;
    system.clock_seconds = GetClockSeconds();
    system.internal_width = frame_width_;
    system.internal_height = frame_height_;
    system.fx_scale = GetFxScale();
    system.ambient_color = environment.ambient_color;
    system.fog_color = environment.fog_color;
    system.fog_near = environment.fog_near;
    system.fog_far = environment.fog_far;
    system.technique_is_forward = technique_ == kTechniqueForward;
    if (system.shadow_map != shadow_map_)
        system.shadow_map = shadow_map_;
    r.SetShaderSystemBuiltins(system);

    ShaderTransformationBuiltins& transformation = transformation_builtins_;
    const Matrix4& model = r.GetModelMatrix();
    if (!has_model_inverse_ || !(transformation.model == model)) {
        transformation.model = model;
        transformation.inverse_model = model.Inverse();
        has_model_inverse_ = true;
    }
    transformation.previous_model = model;
    transformation.normal = r.GetNormalMatrix();
    transformation.view = r.GetViewMatrix();
    transformation.inverse_view = r.GetInverseViewMatrix();
    transformation.projection = r.GetProjectionMatrix();
    r.SetShaderTransformationBuiltins(transformation);
}

void RenderSystem::EnsureBufferSize(const std::shared_ptr<GpuBuffer>& buffer, std::uint32_t size, BufferKind kind)
{
    const std::uint32_t current = renderer_->GetBufferSize(*buffer);
    if (current >= size)
        return;
    // Doubling keeps the number of re-creations logarithmic in the largest draw.
    const std::uint32_t grown = std::max(size, current * 2);
    renderer_->CreateBuffer(*buffer, nullptr, grown, kind, kDynamicBuffer);
}

bool RenderSystem::BindImmediateShader(const std::shared_ptr<Texture>& texture)
{
    Renderer& r = *renderer_;
    if (!texture)
        return r.SetShader(core_shaders_[kShaderSingleColor]);
    if (!r.SetShader(core_shaders_[kShaderSingleTexture]))
        return false;
    r.SetShaderTexture(r.GetShaderVariable("u_tex"), texture);
    return true;
}

void RenderSystem::DrawImmediate(const ImmediateVertices& vertices, const Color& color,
                                 const std::shared_ptr<Texture>& texture, PrimitiveType primitive)
{
    // 16-bit indices address at most 65536 vertices.
    constexpr std::uint32_t kMaxVertices = 65536;
    if (!renderer_ || !dynamic_vertex_buffer_ || vertices.vertex_count == 0 || vertices.vertex_count > kMaxVertices)
        return;
    const std::uint32_t index_count = vertices.indices ? vertices.index_count : vertices.vertex_count;
    if (index_count == 0)
        return;
    if (vertices.indices)
        for (std::uint32_t i = 0; i < index_count; ++i)
            if (vertices.indices[i] >= vertices.vertex_count)
                return;

    Renderer& r = *renderer_;
    const std::uint32_t stride = default_vertex_layout_.GetStride();
    EnsureBufferSize(dynamic_vertex_buffer_, vertices.vertex_count * stride, kVertexBuffer);
    EnsureBufferSize(dynamic_index_buffer_, index_count * 2u, kIndexBuffer);

    auto* out = static_cast<std::uint8_t*>(r.MapBuffer(*dynamic_vertex_buffer_));
    if (!out)
        return;
    // Missing arrays read as zero positions, the draw's colour and zero UVs.
    static constexpr Vector3 kNoPosition{};
    static constexpr Vector2 kNoUV{};
    const std::size_t position_step = vertices.positions ? 1 : 0;
    const std::size_t color_step = vertices.colors ? 1 : 0;
    const std::size_t uv_step = vertices.uvs ? 1 : 0;
    const Vector3* position = vertices.positions ? vertices.positions : &kNoPosition;
    const Color* vertex_color = vertices.colors ? vertices.colors : &color;
    const Vector2* uv = vertices.uvs ? vertices.uvs : &kNoUV;
    for (std::uint32_t i = 0; i < vertices.vertex_count; ++i, out += stride) {
        PackVertex(out, *position, *vertex_color, *uv);
        position += position_step;
        vertex_color += color_step;
        uv += uv_step;
    }
    r.UnmapBuffer(*dynamic_vertex_buffer_);

    auto* indices = static_cast<std::uint16_t*>(r.MapBuffer(*dynamic_index_buffer_));
    if (!indices)
        return;
    for (std::uint32_t i = 0; i < index_count; ++i)
        indices[i] = vertices.indices ? vertices.indices[i] : static_cast<std::uint16_t>(i);
    r.UnmapBuffer(*dynamic_index_buffer_);

    if (!BindImmediateShader(texture))
        return;
    r.SetIndexSource(dynamic_index_buffer_);
    r.SetVertexSource(dynamic_vertex_buffer_, default_vertex_layout_);
    UploadBuiltins();
    r.DrawBuffers(kIndex16, index_count, primitive, 0);
    if (primitive == kLines)
        statistics_.lines += index_count / 2;
    else
        statistics_.triangles += index_count / 3;
}

void RenderSystem::DrawLine(const ImmediateVertices& vertices, const Color& color,
                            const std::shared_ptr<Texture>& texture)
{
    DrawImmediate(vertices, color, texture, kLines);
}

void RenderSystem::DrawTriangle(const ImmediateVertices& vertices, const Color& color,
                                const std::shared_ptr<Texture>& texture)
{
    DrawImmediate(vertices, color, texture, kTriangles);
}

void RenderSystem::DrawSprite(const Rect& rect, const Rect& uv, const Color& color,
                              const std::shared_ptr<Texture>& texture)
{
    const Vector3 positions[4] = {
        {rect.x1, rect.y1, 0}, {rect.x2, rect.y1, 0}, {rect.x2, rect.y2, 0}, {rect.x1, rect.y2, 0}};
    const Vector2 uvs[4] = {{uv.x1, uv.y1}, {uv.x2, uv.y1}, {uv.x2, uv.y2}, {uv.x1, uv.y2}};
    ImmediateVertices vertices;
    vertices.positions = positions;
    vertices.uvs = uvs;
    vertices.vertex_count = 4;
    vertices.indices = kQuadIndices;
    vertices.index_count = 6;
    DrawImmediate(vertices, color, texture, kTriangles);
}

void RenderSystem::DrawFullscreenQuad(const Vector2& uv_scale)
{
    const Rect uv{0, 0, uv_scale.x, uv_scale.y};
    if (!renderer_ || !quad_vertex_buffer_)
        return;
    Renderer& r = *renderer_;
    // Corners in clip space, counter-clockwise from the bottom left; the quad index buffer makes
    // the two triangles.
    std::uint8_t bytes[4 * kDefaultVertexStride];
    PackVertex(bytes, {-1, -1, 0}, kWhite, {uv.x1, uv.y1});
    PackVertex(bytes + kDefaultVertexStride, {1, -1, 0}, kWhite, {uv.x2, uv.y1});
    PackVertex(bytes + 2 * kDefaultVertexStride, {1, 1, 0}, kWhite, {uv.x2, uv.y2});
    PackVertex(bytes + 3 * kDefaultVertexStride, {-1, 1, 0}, kWhite, {uv.x1, uv.y2});
    r.SetIdentityMatrices();
    r.SetModelMatrix(Matrix4::Identity());
    r.UpdateBuffer(*quad_vertex_buffer_, bytes, 0, sizeof bytes);
    r.SetIndexSource(quad_index_buffer_);
    r.SetVertexSource(quad_vertex_buffer_, default_vertex_layout_);
    UploadBuiltins();
    r.DrawBuffers(kIndex16, 6, kTriangles, 0);
}

void RenderSystem::DrawGeometrySimple(const std::vector<GeometryDisplayList>& display_lists)
{
    if (!renderer_)
        return;
    Renderer& r = *renderer_;
    for (const GeometryDisplayList& list : display_lists) {
        if (!list.index_buffer || !list.vertex_buffer || list.index_count == 0)
            continue;
        r.SetIndexSource(list.index_buffer);
        r.SetVertexSource(list.vertex_buffer, list.vertex_layout);
        UploadBuiltins();
        r.DrawBuffers(list.index_type, list.index_count, list.primitive_type, 0);
    }
}

}  // namespace kesta
