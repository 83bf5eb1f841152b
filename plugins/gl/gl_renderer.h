#pragma once
// The Renderer contract on OpenGL 3.3 core, with functions loaded through libepoxy. The context is
// made in OpenBackEnd on the render worker and every GL call runs there (checked in debug
// builds). The default output is an off-screen framebuffer of the size the host sets; PresentFrame
// keeps a copy of the last complete output, which ReadOutput and WriteOutputPng give back.
//
// Rectangles (viewport, clip, blit) are in GL window coordinates: x from the left, y from the
// bottom row of the target. 2D drawing with Set2DMatrices(false) has y growing downwards.
// Mapping a dynamic buffer gives up its contents: the caller writes what it draws.

#include <epoxy/gl.h>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "engine/renderer/renderer.h"
#include "engine/vertex_layout.h"
#include "plugins/gl/gl_context.h"
#include "plugins/gl/gl_objects.h"

namespace kesta {

class GLRenderer : public Renderer {
public:
    static constexpr int kDefaultOutputWidth = 1280;
    static constexpr int kDefaultOutputHeight = 720;

    // Without a factory the renderer opens a headless context.
    explicit GLRenderer(GLContextFactory context_factory = {});
    ~GLRenderer() override;

    // The size of the default output. Before Open it is only stored; while open the output is
    // made again at the new size (its content is lost) and output_resized_signal fires.
    void SetOutputSize(int width, int height);
    // The last presented output as RGBA8, top row first. False before the first PresentFrame.
    bool ReadOutput(Picture& picture);
    // The same, written as a PNG file.
    bool WriteOutputPng(const std::string& path);
    // The GL version and renderer strings of the open context.
    const std::string& GetVersionText() const { return version_text_; }

    // --- Renderer ---
    std::string GetName() override;
    std::shared_ptr<RenderTarget> NewRenderTarget() override;
    void BlitRenderTarget(const std::shared_ptr<RenderTarget>& source, const std::shared_ptr<RenderTarget>& destination,
                          const Rect& source_rect, const Rect& destination_rect, bool color, bool depth) override;
    void ResetRenderTarget() override;
    void SetRenderTarget(const std::shared_ptr<RenderTarget>& target) override;
    bool CheckRenderTarget() override;
    void CreateRenderTarget(RenderTarget& target) override;
    void FreeRenderTarget(RenderTarget& target) override;
    std::shared_ptr<GpuBuffer> NewBuffer() override;
    std::uint32_t GetBufferSize(const GpuBuffer& buffer) override;
    void* MapBuffer(GpuBuffer& buffer) override;
    void UnmapBuffer(GpuBuffer& buffer) override;
    void UpdateBuffer(GpuBuffer& buffer, const void* data, std::uint32_t offset, std::uint32_t size) override;
    void CreateBuffer(GpuBuffer& buffer, const void* data, std::uint32_t size, BufferKind kind,
                      BufferUsage usage) override;
    void FreeBuffer(GpuBuffer& buffer) override;
    std::shared_ptr<Texture> NewTexture(const std::string& name) override;
    std::shared_ptr<Texture> NewShadowMap(int width, int height, const std::string& name) override;
    void CreateTexture(Texture& texture, const void* data, std::uint32_t size, int width, int height,
                       TextureFormat format, std::uint8_t anti_aliasing, TextureUsage usage, bool mipmapped,
                       int flag) override;
    void FreeTexture(Texture& texture) override;
    bool LoadNativeTexture(Texture& texture, const std::string& path) override;
    void UpdateTexture(Texture& texture, const void* data, std::uint32_t size) override;
    bool CaptureTexture(Texture& texture, Picture& picture) override;
    void RefreshTextureBinding(Texture& texture) override;
    std::shared_ptr<GpuShader> NewShader(const std::string& name) override;
    std::shared_ptr<GpuShader> GetShader() override;
    void FreeShader(GpuShader& shader) override;
    ShaderVariable GetShaderVariable(const std::string& name) override;
    ShaderVariable GetShaderVariableBySemantic(int semantic) override;
    void SetShaderInt(ShaderVariable variable, const int* values, int count) override;
    void SetShaderFloat(ShaderVariable variable, const float* values, int count) override;
    void SetShaderFloat2(ShaderVariable variable, const float* values, int count) override;
    void SetShaderFloat3(ShaderVariable variable, const float* values, int count) override;
    void SetShaderTexture(ShaderVariable variable, const std::shared_ptr<Texture>& texture) override;
    void SetShaderSystemBuiltins(const ShaderSystemBuiltins& builtins) override;
    void SetShaderCameraBuiltins(const Matrix4& view, float znear, float zfar, float zoom) override;
    void SetShaderTransformationBuiltins(const ShaderTransformationBuiltins& builtins) override;
    void SetShaderLightBuiltins(const ShaderLightBuiltins& builtins) override;
    void SetShaderPickingId(std::uint32_t id) override;
    void SetShaderValues(const ShaderVariableTable& table, const ShaderVariableTable* material_values) override;
    CapabilityValue GetCapability(int query) override;
    void SetCullFront(bool cull_front) override;
    void SetFaceCulling(bool enable) override;
    void SetDepthFunc(DepthFunc function) override;
    void SetDepthTest(bool enable) override;
    void SetDepthWrite(bool enable) override;
    void SetBlendFunc(BlendFactor source, BlendFactor destination) override;
    void SetBlend(bool enable) override;
    void SetAlphaToCoverage(bool enable) override;
    void SetIndexSource(const std::shared_ptr<GpuBuffer>& buffer) override;
    void SetVertexSource(const std::shared_ptr<GpuBuffer>& buffer, const VertexLayout& layout) override;
    bool SetShader(const std::shared_ptr<GpuShader>& shader) override;
    bool TranslateShader(const Shader& shader, std::string& vertex_text, std::string& pixel_text) override;
    bool CompileShader(GpuShader& shader, const std::string& vertex_text, const std::string& pixel_text) override;
    std::pair<int, int> GetOutputSize() override;
    bool IsOutputFocused() override;
    bool OpenBackEnd() override;
    void CloseBackEnd() override;
    void ClearClipRect() override;
    void SetClipRect(const Rect& rect) override;
    Rect GetClipRect() override;
    void SetViewport(const Rect& rect) override;
    Rect GetViewport() override;
    void Clear(const Color& color, float depth, std::uint32_t planes) override;
    void DrawBuffers(IndexType index_type, std::uint32_t index_count, PrimitiveType primitive,
                     std::uint32_t first_index) override;
    void DrawBuffersInstanced(const std::shared_ptr<GpuBuffer>& instances, std::uint32_t instance_count,
                              IndexType index_type, std::uint32_t index_count, PrimitiveType primitive) override;
    void PresentFrame() override;
    void FlushRenderer() override;

private:
    // The off-screen output: a colour texture and a depth buffer behind one framebuffer.
    struct Output {
        GLuint framebuffer = 0, color = 0, depth = 0;
    };
    struct VertexArrayKey {
        GLuint buffer = 0;
        VertexLayout layout;
        bool operator<(const VertexArrayKey& other) const;
    };

    void AssertRenderThread() const;
    bool MakeOutput(Output& output, int width, int height, bool with_depth);
    void FreeOutput(Output& output);
    void BindFramebuffer(GLuint framebuffer, int width, int height);
    // Brings a target's GL attachments in line with its texture slots.
    void SyncAttachments(GLRenderTarget& target);
    std::pair<int, int> SizeOf(const RenderTarget* target) const;
    GLuint FramebufferOf(const std::shared_ptr<RenderTarget>& target);
    void ApplyTextureConfig(GLTexture& texture);
    void BindTexture(int unit, const std::shared_ptr<Texture>& texture);
    void UploadFloats(GLint location, const float* values, int float_count);
    void UploadMatrix(int semantic, const float* row_major_4x4);
    // Uploads the built-ins the bound program uses and has not seen yet; false when nothing can be drawn.
    bool PrepareDraw(IndexType index_type, std::uint32_t index_count, std::uint32_t first_index);
    // Gives GL the first `size` staged bytes of a mapped dynamic buffer (all of them for 0).
    void UploadStaged(GLBuffer& buffer, std::uint32_t size);
    void UploadBuiltins(GLShader& shader);
    void ReleaseVertexArraysOf(GLuint buffer);
    void BindVertexArray(GLuint vertex_array);
    void BindArrayBuffer(GLuint buffer);
    // Binds a buffer for writing and gives the target it is bound to.
    GLenum BindForWrite(const GLBuffer& buffer);
    void InstallDebugOutput();

    GLContextFactory context_factory_;
    std::unique_ptr<GLContext> context_;
    std::shared_ptr<GLObjectReleaser> releaser_;
    std::thread::id gl_thread_;
    std::string version_text_;
    int output_width_ = kDefaultOutputWidth, output_height_ = kDefaultOutputHeight;
    Output output_, presented_;
    bool has_presented_ = false;

    // Current state, as last given to GL.
    std::shared_ptr<GLShader> bound_shader_;
    std::shared_ptr<GLBuffer> index_source_, vertex_source_;
    GLuint vertex_array_ = 0;
    std::uint32_t vertex_stride_ = 0;
    VertexLayout vertex_layout_;
    GLuint vertex_array_buffer_ = 0;  // the buffer vertex_array_ reads
    // The vertex range of the draw being prepared, when its indices are at hand.
    bool draw_range_known_ = false;
    std::uint32_t draw_first_vertex_ = 0, draw_last_vertex_ = 0;
    // What GL has bound now, so that repeated draws skip rebinding; 0 also stands for "unknown".
    GLuint bound_vertex_array_ = 0, bound_index_buffer_ = 0, bound_array_buffer_ = 0;
    std::map<VertexArrayKey, GLuint> vertex_arrays_;
    std::shared_ptr<RenderTarget> bound_target_;
    int target_width_ = 0, target_height_ = 0;
    Rect viewport_, clip_rect_;
    bool clip_enabled_ = false;
    bool depth_write_ = true;
    std::uint64_t builtins_generation_ = 1;

    // Built-in values besides the matrices, for the programs that use them.
    ShaderSystemBuiltins system_builtins_;
    float znear_ = 0.1f, zfar_ = 1000.0f, zoom_ = 1.0f;
    Matrix4 previous_model_;
    std::vector<float> bone_matrices_;
    ShaderLightBuiltins light_builtins_;
    std::uint32_t picking_id_ = 0;
};

}  // namespace kesta
