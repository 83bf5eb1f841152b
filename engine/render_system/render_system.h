#pragma once
// The engine's drawing front end, one per process behind g_render_system. It owns the core shaders
// and geometry buffers, the frame's targets and the frame clock, and runs a frame in the order a
// frame renderer calls it:
//
//     SetView, BeginDrawFrame, DrawRenderables, ResolveMultisample, ApplyPostProcesses, EndDrawFrame
//
// Threads: everything here runs on the render worker, except is_ready and the surface-build count
// (atomic), connecting to the signals, and the resource caches (each under its own mutex). Other
// threads go through RenderSystemAsync.

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "engine/frustum.h"
#include "engine/render_system/primitive_lists.h"
#include "engine/render_system/render_frame_statistics.h"
#include "engine/renderer/gpu_objects.h"
#include "engine/vertex_layout.h"
#include "foundation/math/color.h"
#include "foundation/math/matrix4.h"
#include "foundation/math/matrix44.h"
#include "foundation/math/rect.h"
#include "foundation/math/vector.h"
#include "foundation/signal.h"
#include "foundation/time/clock.h"

namespace kesta {

class Renderer;
class LightSystem;
class Renderable;
class Component;
class SurfaceShader;
class RenderMaterial;
class Geometry;

enum RenderTechnique : std::uint32_t { kTechniqueForward = 0, kTechniqueDeferred = 1 };

// Which eye a view is for.
enum ViewEye : std::uint8_t { kEyeMono = 0, kEyeLeft = 1, kEyeRight = 2 };

// The core shaders, in the order they are loaded.
enum CoreShader : int {
    kShaderSingleTexture2D = 0,
    kShaderSingleTextureColor,
    kShaderSingleTexture,
    kShaderSingleColor,
    kShaderSimple,
    kShaderAmbient,
    kShaderDSPointLight,
    kShaderDSPointLightShadow,
    kShaderDSSpotLight,
    kShaderDSSpotLightShadow,
    kShaderDSLinearLight,
    kShaderDSLinearLightShadow,
    kShaderDSFog,
    kCoreShaderCount,
};

// The 2D core shaders come first; the rest belong to the 3D pipelines.
inline constexpr int kCore2DShaderCount = kShaderAmbient;

// How the scene's surroundings look, as last set.
struct RenderEnvironmentValues {
    float fog_near = 0;
    float fog_far = 0;
    Color ambient_color;
    bool clear_color = true;
    bool clear_depth = true;
    Color clear_color_value;
    Color fog_color;
    bool assume_continuous_normals = true;
};

// The raster font the debug text uses; the font itself is made from this record by the font code.
struct RasterFontRecord {
    std::string path = "@core/fonts/default.ttf";
    int size = 12;
    int page_width = 512;
    int page_height = 512;
};

// A shared list of resources under its own mutex, never held across a load.
template <typename T>
struct RenderResourceCache {
    std::mutex lock;
    std::vector<std::shared_ptr<T>> items;
};

// The vertices of an immediate draw. Arrays that are null read defaults: position (0, 0, 0),
// colour opaque white, UV (0, 0). Without indices the vertices are drawn in order.
struct ImmediateVertices {
    const Vector3* positions = nullptr;
    const Color* colors = nullptr;
    const Vector2* uvs = nullptr;
    std::uint32_t vertex_count = 0;
    const std::uint16_t* indices = nullptr;
    std::uint32_t index_count = 0;
};

// One drawable part of a geometry: its buffers and how to read them.
struct GeometryDisplayList {
    std::shared_ptr<GpuBuffer> index_buffer;
    std::shared_ptr<GpuBuffer> vertex_buffer;
    VertexLayout vertex_layout;
    IndexType index_type = kIndex16;
    std::uint32_t index_count = 0;
    PrimitiveType primitive_type = kTriangles;
};

class RenderSystem {
public:
    // The bytes of one vertex of the immediate paths: position, colour, UV.
    static constexpr int kDefaultVertexStride = 20;
    static constexpr time_ns kFrameDuration = 16000000;
    static constexpr std::uint16_t kDefaultShadowMapSize = 1024;
    static constexpr std::uint32_t kQuadVertexBufferBytes = 1024;
    static constexpr std::uint32_t kDynamicIndexBufferBytes = 4096;
    static constexpr std::uint32_t kDynamicVertexBufferBytes = 16384;

    // Bits of fx_config.
    static constexpr std::uint32_t kFxScaleMask = 0x0f;
    static constexpr std::uint32_t kFxBit4 = 0x10;
    static constexpr int kMultisampleShift = 8;
    static constexpr std::uint32_t kMultisampleMask = 0x0f00;
    // Bits of features.
    static constexpr std::uint32_t kFeatureShadowMapping = 1;

    // Asserts that no other render system exists and publishes this one in g_render_system.
    RenderSystem();
    ~RenderSystem();
    RenderSystem(const RenderSystem&) = delete;
    RenderSystem& operator=(const RenderSystem&) = delete;

    // --- life ---

    // Once the renderer is open: core shaders, targets and buffers. Without 3D resources only the
    // 2D shaders are loaded and no scene can be drawn. False without a renderer.
    bool Initialize(std::shared_ptr<Renderer> renderer, bool create_3d_resources);
    // Releases every GPU object and the renderer; the system can be initialised again.
    void Free();
    // Re-applies the default renderer state after the renderer reloaded its resources.
    void Reload();

    // --- the frame ---

    // The camera's world matrix (and last frame's), its projection and the eye code.
    void SetView(const Matrix4& view, const Matrix4& previous_view, const Matrix44& projection, std::uint8_t eye);
    void BeginDrawFrame();
    void DrawRenderables(std::vector<std::shared_ptr<Renderable>>& renderables);
    void DrawRenderables(std::vector<std::shared_ptr<Renderable>>& renderables, LightSystem& lights);
    void DrawRenderPassShader(std::vector<std::shared_ptr<Renderable>>& renderables, std::uint8_t pass_shader);
    // Draws the renderables' picking ids into `target`.
    void DrawRenderablesPicking(std::vector<std::shared_ptr<Renderable>>& renderables,
                                const std::shared_ptr<RenderTarget>& target);
    void ResolveMultisample();
    void ApplyPostProcesses(std::vector<std::shared_ptr<Component>>& post_processes);
    // Copies the frame into the render target that was current when BeginDrawFrame was called,
    // or into the window when none was.
    void EndDrawFrame();
    // Fires end-of-render-pass for `list` (one of RenderList).
    void EmitEndRenderPassSignal(std::uint8_t list);

    // --- set-up ---

    const VertexLayout& GetDefaultVertexLayout() const { return default_vertex_layout_; }
    // 0 by 0 follows the output size. Re-makes the frame's targets.
    void SetInternalResolution(int width, int height);
    // Makes the frame's textures and targets for the technique at the internal resolution.
    void SetRenderTechnique(RenderTechnique technique, bool hdr = false);
    void SetShadowMapSize(std::uint16_t size);
    void CreateShadowMaps(std::uint16_t size);
    // 1 to 8 samples; takes effect at the next SetRenderTechnique.
    void SetMultisampleCount(int count);
    int GetMultisampleCount() const { return static_cast<int>((fx_config_ & kMultisampleMask) >> kMultisampleShift); }
    int GetFxScale() const { return static_cast<int>(fx_config_ & kFxScaleMask); }

    // --- immediate drawing, with the bound matrices ---

    // Pairs of vertices as lines; with a texture through single_texture, else single_color.
    // `color` is the colour of vertices that bring none. Lines count in the frame statistics.
    void DrawLine(const ImmediateVertices& vertices, const Color& color,
                  const std::shared_ptr<Texture>& texture = nullptr);
    // Triples of vertices as triangles.
    void DrawTriangle(const ImmediateVertices& vertices, const Color& color,
                      const std::shared_ptr<Texture>& texture = nullptr);
    // A rectangle in the z = 0 plane, textured with `uv`.
    void DrawSprite(const Rect& rect, const Rect& uv, const Color& color,
                    const std::shared_ptr<Texture>& texture = nullptr);
    // A quad over the whole viewport with identity matrices and the bound shader, sampling UVs
    // from (0, 0) to `uv_scale`.
    void DrawFullscreenQuad(const Vector2& uv_scale);
    // Draws each display list with the bound shader and its default values.
    void DrawGeometrySimple(const std::vector<GeometryDisplayList>& display_lists);

    // --- state ---

    const std::shared_ptr<Renderer>& GetRenderer() const { return renderer_; }
    bool IsReady() const { return is_ready_.load(); }
    RenderTechnique GetRenderTechnique() const { return technique_; }
    // The internal resolution as set; 0 follows the output size.
    int GetInternalWidth() const { return internal_width_; }
    int GetInternalHeight() const { return internal_height_; }
    // The size the frame's textures were made with.
    int GetFrameWidth() const { return frame_width_; }
    int GetFrameHeight() const { return frame_height_; }
    std::uint16_t GetShadowMapSize() const { return shadow_map_size_; }
    std::uint32_t GetFxConfig() const { return fx_config_; }
    std::uint32_t GetFeatures() const { return features_; }
    void SetFeatures(std::uint32_t features) { features_ = features; }
    // The frame clock: 16 ms a frame, independent of the wall clock.
    time_ns GetClock() const { return clock_; }
    float GetClockSeconds() const { return static_cast<float>(static_cast<double>(clock_) / 1e9); }
    std::uint8_t GetEye() const { return eye_; }
    const Frustum& GetFrustum() const { return frustum_; }
    const RenderFrameStatistics& GetFrameStatistics() const { return statistics_; }
    const std::shared_ptr<GpuShader>& GetCoreShader(CoreShader shader) const { return core_shaders_[shader]; }
    int GetSurfaceBuildsInFlight() const { return surface_builds_in_flight_.load(); }

    // The multisampled or g-buffer target of the technique; without hardware multisampling the
    // forward technique draws straight into the compose target, see GetDrawTarget.
    const std::shared_ptr<RenderTarget>& GetOutputTarget() const { return output_target_; }
    // The target a frame draws the scene into.
    const std::shared_ptr<RenderTarget>& GetDrawTarget() const { return draw_target_; }
    const std::shared_ptr<RenderTarget>& GetComposeTarget() const { return compose_target_; }
    const std::shared_ptr<RenderTarget>& GetFeedbackTarget() const { return feedback_target_; }
    const std::shared_ptr<RenderTarget>& GetReadTarget() const { return read_target_; }
    const std::shared_ptr<RenderTarget>& GetPostProcessTarget() const { return postprocess_target_; }
    const std::shared_ptr<RenderTarget>& GetShadowTarget() const { return shadow_target_; }
    const std::shared_ptr<Texture>& GetShadowMap() const { return shadow_map_; }
    const std::shared_ptr<Texture>& GetCurrentOutputTexture() const { return current_output_texture_; }
    const std::shared_ptr<GpuBuffer>& GetQuadIndexBuffer() const { return quad_index_buffer_; }
    const std::shared_ptr<GpuBuffer>& GetQuadVertexBuffer() const { return quad_vertex_buffer_; }
    const std::shared_ptr<GpuBuffer>& GetDynamicIndexBuffer() const { return dynamic_index_buffer_; }
    const std::shared_ptr<GpuBuffer>& GetDynamicVertexBuffer() const { return dynamic_vertex_buffer_; }
    const std::shared_ptr<GpuBuffer>& GetCubeIndexBuffer() const { return cube_index_buffer_; }
    const std::shared_ptr<GpuBuffer>& GetInstanceBuffer() const { return instance_buffer_; }
    const RasterFontRecord& GetDefaultFont() const { return default_font_; }

    // Environment values as last set; read by the pipelines each frame.
    RenderEnvironmentValues environment;

    // The frame's primitive lists, filled by DrawRenderables.
    PrimitiveLists primitive_lists;

    // Fired at the start of each frame.
    Signal<> frame_start_signal;
    // In forward technique, before binding the output target: a slot sets the flag when it has
    // bound the target itself.
    Signal<bool&> frame_clear_query_signal;
    // Then before clearing: a slot sets the flag when the target is already cleared.
    Signal<bool&> frame_draw_query_signal;
    Signal<> frame_cleared_signal;
    Signal<> renderables_drawn_signal;
    // With the list (RenderList) whose pass has ended.
    Signal<std::uint8_t> end_render_pass_signal;
    // Before the frame is composed to the output.
    Signal<> frame_complete_signal;
    // Before the post-process components run: a slot may draw from the input into the output
    // compose texture through the post-process target, and then adds 1 to the count of swaps.
    Signal<RenderSystem&, PrimitiveLists&, const std::shared_ptr<RenderTarget>& /*target*/,
           const std::shared_ptr<Texture>& /*input*/, const std::shared_ptr<Texture>& /*output*/, int& /*swaps*/>
        post_process_signal;

    RenderResourceCache<SurfaceShader> surface_shader_cache;
    RenderResourceCache<RenderMaterial> material_cache;
    RenderResourceCache<Geometry> geometry_cache;

private:
    void LoadCoreShaders(bool create_3d_resources);
    std::shared_ptr<RenderTarget> MakeRenderTarget();
    void CreateBuffers();
    void CheckCapabilities();
    void ReleaseFrameTextures();
    std::shared_ptr<Texture> MakeFrameTexture(const std::string& name, TextureFormat format,
                                              std::uint8_t anti_aliasing);
    void UploadBuiltins();
    void BuildPrimitiveLists(std::vector<std::shared_ptr<Renderable>>& renderables, PrimitiveLists& lists);
    void ComposeToWindow();
    void ComposeToTarget(const std::shared_ptr<RenderTarget>& target);
    void DrawImmediate(const ImmediateVertices& vertices, const Color& color, const std::shared_ptr<Texture>& texture,
                       PrimitiveType primitive);
    bool BindImmediateShader(const std::shared_ptr<Texture>& texture);
    void EnsureBufferSize(const std::shared_ptr<GpuBuffer>& buffer, std::uint32_t size, BufferKind kind);

    int internal_width_ = 0;
    int internal_height_ = 0;
    int frame_width_ = 0;
    int frame_height_ = 0;
    RenderFrameStatistics statistics_;

    std::shared_ptr<RenderTarget> output_target_;
    std::shared_ptr<RenderTarget> compose_target_;
    std::shared_ptr<RenderTarget> feedback_target_;
    std::shared_ptr<RenderTarget> read_target_;
    std::shared_ptr<RenderTarget> postprocess_target_;
    std::shared_ptr<RenderTarget> draw_target_;
    std::vector<std::shared_ptr<Texture>> frame_textures_;
    std::array<std::shared_ptr<Texture>, 2> compose_textures_;

    std::array<std::shared_ptr<GpuShader>, kCoreShaderCount> core_shaders_;

    std::shared_ptr<Renderer> renderer_;
    std::atomic<bool> is_ready_{false};
    std::atomic<int> surface_builds_in_flight_{0};
    std::uint16_t shadow_map_size_ = kDefaultShadowMapSize;
    std::uint32_t fx_config_ = 2 | kFxBit4 | (1u << kMultisampleShift);
    std::uint32_t features_ = kFeatureShadowMapping;
    bool has_3d_resources_ = false;

    RenderTechnique technique_ = kTechniqueForward;
    bool hdr_ = false;
    time_ns clock_ = 0;
    VertexLayout default_vertex_layout_;
    bool has_output_target_ = false;
    // The target current at BeginDrawFrame, where EndDrawFrame puts the frame.
    std::shared_ptr<RenderTarget> frame_output_target_;
    std::uint8_t eye_ = kEyeMono;
    Frustum frustum_;
    Matrix4 view_;
    // The lists of the pass-shader and picking draws, kept for their capacity.
    PrimitiveLists private_lists_;

    std::shared_ptr<GpuBuffer> quad_index_buffer_;
    std::shared_ptr<GpuBuffer> quad_vertex_buffer_;
    std::shared_ptr<GpuBuffer> dynamic_index_buffer_;
    std::shared_ptr<GpuBuffer> dynamic_vertex_buffer_;
    std::shared_ptr<GpuBuffer> cube_index_buffer_;
    std::shared_ptr<GpuBuffer> instance_buffer_;

    std::shared_ptr<RenderTarget> shadow_target_;
    std::shared_ptr<Texture> shadow_map_;
    std::shared_ptr<Texture> current_output_texture_;

    RasterFontRecord default_font_;
};

// The process's render system, or null.
extern RenderSystem* g_render_system;

}  // namespace kesta
