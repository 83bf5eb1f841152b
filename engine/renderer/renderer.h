#pragma once
// The abstract boundary between the engine and a GPU API. A back end derives from Renderer and
// implements the pure operations; the class itself carries what every back end shares: opening
// and closing, the texture and shader caches and their load paths, the current matrices, and the
// shared quad. Exactly one Renderer is open at a time, published in g_renderer.
//
// Threads: every operation that touches GPU state runs on the render worker (worker 0 of the task
// system). LoadTexture, LoadShader, the cache look-ups and readiness tests are safe on any thread.

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "engine/renderer/gpu_objects.h"
#include "engine/renderer/render_values.h"
#include "foundation/math/color.h"
#include "foundation/math/matrix4.h"
#include "foundation/math/matrix44.h"
#include "foundation/math/rect.h"
#include "foundation/signal.h"

namespace kesta {

struct Shader;
struct Picture;
class ShaderVariableTable;
class VertexLayout;

// What GetCapability answers: nothing, a flag or a byte, depending on the query.
using CapabilityValue = std::variant<std::monostate, bool, std::uint8_t>;

// Values of the per-frame built-ins.
struct ShaderSystemBuiltins {
    float clock_seconds = 0;
    int internal_width = 0, internal_height = 0;
    int fx_scale = 1;
    Color ambient_color;
    Color fog_color;
    float fog_near = 0, fog_far = 0;
    bool technique_is_forward = true;
    bool fog_enabled = false;
    std::shared_ptr<Texture> shadow_map;
};

struct ShaderTransformationBuiltins {
    Matrix4 model, previous_model, normal, view, inverse_model, inverse_view;
    Matrix44 projection;
    const Matrix4* bone_matrices = nullptr;
    const Matrix4* previous_bone_matrices = nullptr;
    int bone_count = 0;
};

struct ShaderLightBuiltins {
    Matrix4 view_space_transform;
    Color diffuse, specular;  // intensity multiplied in
    float shadow_bias = 0, range = 0, cone_cos_inner = 0, cone_cos_outer = 0;
    Color shadow_color;
    std::shared_ptr<Texture> shadow_map;
    float inverse_shadow_map_size = 0;
    int slice_count = 0;
    const Matrix44* slice_matrices = nullptr;
    const float* slice_distances = nullptr;
    std::shared_ptr<Texture> projection_map;
};

class Renderer {
public:
    Renderer();
    // Logs "Deleting renderer" and fires the engine's renderer-deleted signal.
    virtual ~Renderer();
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;

    virtual std::string GetName() = 0;

    // .dds and .pvr (any case) go straight to LoadNativeTexture.
    virtual bool IsNativeTextureFile(std::string_view path);

    virtual std::shared_ptr<RenderTarget> NewRenderTarget() = 0;
    // Stores up to eight colour attachments and clears the remaining slots.
    virtual void SetRenderTargetColorTextures(RenderTarget& target, const std::shared_ptr<Texture>* textures,
                                              int count);
    virtual void SetRenderTargetColorTexture(RenderTarget& target, const std::shared_ptr<Texture>& texture);
    virtual void SetRenderTargetDepthTexture(RenderTarget& target, const std::shared_ptr<Texture>& texture);
    virtual void BlitRenderTarget(const std::shared_ptr<RenderTarget>& source,
                                  const std::shared_ptr<RenderTarget>& destination, const Rect& source_rect,
                                  const Rect& destination_rect, bool color, bool depth) = 0;
    virtual void ResetRenderTarget() = 0;
    virtual void SetRenderTarget(const std::shared_ptr<RenderTarget>& target) = 0;
    virtual bool CheckRenderTarget() = 0;
    virtual void CreateRenderTarget(RenderTarget& target) = 0;
    virtual void FreeRenderTarget(RenderTarget& target) = 0;

    virtual std::shared_ptr<GpuBuffer> NewBuffer() = 0;
    virtual std::uint32_t GetBufferSize(const GpuBuffer& buffer) = 0;
    virtual void* MapBuffer(GpuBuffer& buffer) = 0;
    virtual void UnmapBuffer(GpuBuffer& buffer) = 0;
    virtual void UpdateBuffer(GpuBuffer& buffer, const void* data, std::uint32_t offset, std::uint32_t size) = 0;
    // May be called again on the same buffer to grow it.
    virtual void CreateBuffer(GpuBuffer& buffer, const void* data, std::uint32_t size, BufferKind kind,
                              BufferUsage usage) = 0;
    virtual void FreeBuffer(GpuBuffer& buffer) = 0;

    virtual std::shared_ptr<Texture> NewTexture(const std::string& name) = 0;
    virtual std::shared_ptr<Texture> NewShadowMap(int width, int height, const std::string& name) = 0;
    virtual void CreateTexture(Texture& texture, const void* data, std::uint32_t size, int width, int height,
                               TextureFormat format, std::uint8_t anti_aliasing, TextureUsage usage, bool mipmapped,
                               int flag) = 0;
    virtual void FreeTexture(Texture& texture) = 0;
    virtual bool LoadNativeTexture(Texture& texture, const std::string& path) = 0;
    virtual void UpdateTexture(Texture& texture, const void* data, std::uint32_t size) = 0;
    virtual bool CaptureTexture(Texture& texture, Picture& picture) = 0;
    virtual void RefreshTextureBinding(Texture& texture) = 0;

    virtual std::shared_ptr<GpuShader> NewShader(const std::string& name) = 0;
    virtual std::shared_ptr<GpuShader> GetShader() = 0;
    virtual std::shared_ptr<GpuShader> LoadShader(const std::string& path, bool asynchronous);
    virtual std::shared_ptr<GpuShader> LoadShaderFromSource(const std::string& name, const std::string& source,
                                                            bool asynchronous);
    virtual void CreateShader(const std::shared_ptr<GpuShader>& gpu_shader, const std::shared_ptr<Shader>& shader);
    virtual void FreeShader(GpuShader& shader) = 0;
    virtual ShaderVariable GetShaderVariable(const std::string& name) = 0;
    virtual ShaderVariable GetShaderVariableBySemantic(int semantic) = 0;
    virtual void SetShaderInt(ShaderVariable variable, const int* values, int count) = 0;
    virtual void SetShaderFloat(ShaderVariable variable, const float* values, int count) = 0;
    virtual void SetShaderFloat2(ShaderVariable variable, const float* values, int count) = 0;
    virtual void SetShaderFloat3(ShaderVariable variable, const float* values, int count) = 0;
    virtual void SetShaderTexture(ShaderVariable variable, const std::shared_ptr<Texture>& texture) = 0;
    virtual void SetShaderSystemBuiltins(const ShaderSystemBuiltins& builtins) = 0;
    virtual void SetShaderCameraBuiltins(const Matrix4& view, float znear, float zfar, float zoom) = 0;
    virtual void SetShaderTransformationBuiltins(const ShaderTransformationBuiltins& builtins) = 0;
    virtual void SetShaderLightBuiltins(const ShaderLightBuiltins& builtins) = 0;
    virtual void SetShaderPickingId(std::uint32_t id) = 0;
    // Uploads the bound shader's default values, overridden by the material's (may be null).
    virtual void SetShaderValues(const ShaderVariableTable& table, const ShaderVariableTable* material_values) = 0;
    virtual CapabilityValue GetCapability(int query);

    virtual void SetCullFront(bool cull_front) = 0;
    virtual void SetFaceCulling(bool enable) = 0;
    virtual void SetDepthFunc(DepthFunc function) = 0;
    virtual void SetDepthTest(bool enable) = 0;
    virtual void SetDepthWrite(bool enable) = 0;
    virtual void SetBlendFunc(BlendFactor source, BlendFactor destination) = 0;
    virtual void SetBlend(bool enable) = 0;
    virtual void SetAlphaToCoverage(bool enable) = 0;
    virtual void SetIndexSource(const std::shared_ptr<GpuBuffer>& buffer) = 0;
    virtual void SetVertexSource(const std::shared_ptr<GpuBuffer>& buffer, const VertexLayout& layout) = 0;
    // False while the shader is not ready: the caller skips the draw.
    virtual bool SetShader(const std::shared_ptr<GpuShader>& shader) = 0;
    // Produces the two stage texts of a parsed shader in the back end's language.
    virtual bool TranslateShader(const Shader& shader, std::string& vertex_text, std::string& pixel_text) = 0;
    // Compiles and links translated stage texts into `shader`; false when the GPU refuses them.
    virtual bool CompileShader(GpuShader& shader, const std::string& vertex_text, const std::string& pixel_text) = 0;

    virtual std::pair<int, int> GetOutputSize() = 0;
    virtual bool IsOutputFocused() = 0;
    virtual bool OpenBackEnd() = 0;
    virtual void CloseBackEnd() = 0;
    virtual void ClearClipRect() = 0;
    virtual void SetClipRect(const Rect& rect) = 0;
    virtual Rect GetClipRect() = 0;
    virtual void SetViewport(const Rect& rect) = 0;
    virtual Rect GetViewport() = 0;
    virtual void Clear(const Color& color, float depth, std::uint32_t planes) = 0;
    virtual void DrawBuffers(IndexType index_type, std::uint32_t index_count, PrimitiveType primitive,
                             std::uint32_t first_index) = 0;
    virtual void DrawBuffersInstanced(const std::shared_ptr<GpuBuffer>& instances, std::uint32_t instance_count,
                                      IndexType index_type, std::uint32_t index_count, PrimitiveType primitive) = 0;
    virtual void PresentFrame() = 0;
    // Completes the pending GPU work, before a frame is mirrored.
    virtual void FlushRenderer() = 0;

    // --- shared behaviour ---

    // Opens the back end and the shared resources; a second Open is a no-op.
    void Open();
    // Releases the shared resources and closes the back end; a no-op when not open.
    void Close();
    bool IsOpen() const { return is_open_; }

    // A texture from a picture file. Asynchronous loads are cached by path and come back pending.
    std::shared_ptr<Texture> LoadTexture(const std::string& path, bool asynchronous);
    // Loads a cached texture or shader again into the same object.
    void Reload(const std::string& path);
    // Uploads a decoded picture into `texture`; false (and the texture failed) for a format the
    // GPU side has no counterpart for.
    bool UploadPicture(Texture& texture, const Picture& picture, TextureUsage usage, bool mipmapped);

    // Draws `rect` textured with `uv` through the shared quad, with the bound shader.
    void DrawQuad(const Rect& rect, const Rect& uv);

    void SetViewMatrix(const Matrix4& view);
    const Matrix4& GetViewMatrix() const { return view_; }
    const Matrix4& GetInverseViewMatrix() const { return inverse_view_; }
    void SetModelMatrix(const Matrix4& model);
    const Matrix4& GetModelMatrix() const { return model_; }
    const Matrix4& GetNormalMatrix() const { return normal_; }
    void SetProjectionMatrix(const Matrix44& projection) { projection_ = projection; }
    const Matrix44& GetProjectionMatrix() const { return projection_; }
    void SetPreviousViewMatrix(const Matrix4& view);
    const Matrix4& GetPreviousViewMatrix() const { return previous_view_; }
    const Matrix4& GetPreviousInverseViewMatrix() const { return previous_inverse_view_; }
    // View and projection to identity, for full-screen draws.
    void SetIdentityMatrices();
    // Model and view to identity, projection orthographic over the current viewport in pixels,
    // y growing downwards, or upwards with `flip_y`.
    void Set2DMatrices(bool flip_y);

    std::uint8_t GetCapabilities() const { return capabilities_; }
    std::uint8_t GetMaxAntiAliasing() const { return max_anti_aliasing_; }
    const std::shared_ptr<GpuShader>& GetDefaultShader() const { return default_shader_; }
    const std::string& GetRendererName() const { return renderer_name_; }
    const std::string& GetVendorName() const { return vendor_name_; }

    std::shared_ptr<Texture> FindCachedTexture(const std::string& name);
    std::shared_ptr<GpuShader> FindCachedShader(const std::string& name);

    // The current render target as last set through SetRenderTarget by the engine.
    const std::shared_ptr<RenderTarget>& GetCurrentRenderTarget() const { return current_target_; }

    Signal<Renderer*> closing_signal;
    Signal<Renderer*> open_signal;
    Signal<Renderer*> reload_signal;
    Signal<Renderer*> output_resized_signal;
    Signal<Renderer*> frame_presented_signal;

protected:
    // Shader and render-target pointers made by a back end should come from these: their deleter
    // sends the release to the render worker, so the last reference may drop on any thread.
    std::shared_ptr<GpuShader> WrapShader(GpuShader* shader);
    std::shared_ptr<RenderTarget> WrapRenderTarget(RenderTarget* target);

    void SetCurrentRenderTarget(const std::shared_ptr<RenderTarget>& target) { current_target_ = target; }

    std::string renderer_name_;
    std::string vendor_name_;

private:
    void RunTextureLoad(const std::shared_ptr<Texture>& texture, const std::string& path);
    void RunShaderLoad(const std::shared_ptr<GpuShader>& gpu_shader, const std::string& name, const std::string& source,
                       bool asynchronous);
    void CompileShaderStep(const std::shared_ptr<GpuShader>& gpu_shader, const std::string& vertex_text,
                           const std::string& pixel_text);

    std::weak_ptr<Renderer> self_;
    std::mutex texture_cache_lock_;
    std::vector<std::shared_ptr<Texture>> texture_cache_;
    std::mutex shader_cache_lock_;
    std::vector<std::shared_ptr<GpuShader>> shader_cache_;
    std::uint8_t capabilities_ = 0;
    std::uint8_t max_anti_aliasing_ = 0;
    std::shared_ptr<GpuBuffer> quad_index_buffer_;
    std::shared_ptr<GpuBuffer> quad_vertex_buffer_;
    std::shared_ptr<GpuShader> default_shader_;
    bool is_open_ = false;
    // From the back end's opening until Close: shaders may be created (Open loads its own).
    bool accepts_shaders_ = false;
    Matrix4 view_, inverse_view_, model_, normal_;
    Matrix44 projection_;
    Matrix4 previous_view_, previous_inverse_view_;
    std::shared_ptr<RenderTarget> current_target_;

    friend std::shared_ptr<Renderer> AdoptRenderer(std::shared_ptr<Renderer> renderer);
};

// The open renderer, or null.
extern Renderer* g_renderer;

// Gives a renderer made with make_shared its weak self reference; every factory passes its new
// renderer through here.
std::shared_ptr<Renderer> AdoptRenderer(std::shared_ptr<Renderer> renderer);

}  // namespace kesta
