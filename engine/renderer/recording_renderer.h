#pragma once
// A Renderer that draws nothing and records everything: each call with its arguments, in order,
// plus plausible state (viewport, clip, target, bound shader and its variables, buffer and texture
// sizes). Tests use it to assert the exact call sequences of the engine; headless runs use it as
// a stand-in back end. What the GPU would decide (capabilities, whether a shader translates or
// compiles) is set by the test.

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "engine/renderer/renderer.h"
#include "engine/renderer/shader/texture_unit_config.h"

namespace kesta {

class RecordingTexture : public Texture {
public:
    explicit RecordingTexture(std::string name, std::uint64_t handle) : Texture(std::move(name)), handle_(handle) {}
    void SetTextureUnitConfig(const TextureUnitConfig& config) override { unit_config = config; }
    std::uint64_t GetNativeHandle() const override { return handle_; }

    TextureUnitConfig unit_config;
    std::vector<std::uint8_t> pixels;
    bool created = false;

private:
    std::uint64_t handle_;
};

class RecordingBuffer : public GpuBuffer {
public:
    std::vector<std::uint8_t> bytes;
    BufferKind kind = kVertexBuffer;
    BufferUsage usage = kStaticBuffer;
    bool created = false;
    bool mapped = false;
};

class RecordingShader : public GpuShader {
public:
    using GpuShader::GpuShader;
    bool HasSemantic(int semantic) const override { return semantics.count(semantic) != 0; }

    std::set<int> semantics;
    std::string vertex_text, pixel_text;
    bool compiled = false;
};

class RecordingRenderTarget : public RenderTarget {
public:
    bool created = false;
};

class RecordingRenderer : public Renderer {
public:
    RecordingRenderer();
    ~RecordingRenderer() override;

    // --- what the test decides ---
    bool open_back_end_result = true;
    bool translate_result = true;
    bool compile_result = true;
    bool check_render_target_result = true;
    std::map<int, CapabilityValue> capabilities;
    std::pair<int, int> output_size{1280, 720};
    std::string back_end_name = "Recording";
    // Off: calls and shader values are not recorded, and the renderer allocates nothing per call
    // (for allocation and timing measurements of its callers).
    bool record_calls = true;

    // --- what happened ---
    // Every call as "Name(arguments)", in order.
    std::vector<std::string> Calls() const;
    // The names only, without arguments.
    std::vector<std::string> CallNames() const;
    void ClearCalls();
    // Variables set on the bound shader, by variable name, as text.
    std::map<std::string, std::string> ShaderValues() const;

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

    // --- state, for tests ---
    Rect viewport;
    Rect clip_rect;
    bool clip_enabled = false;
    bool depth_test = true, depth_write = true, blend = false, face_culling = true, cull_front = false;
    std::shared_ptr<GpuShader> bound_shader;
    std::shared_ptr<GpuBuffer> index_source, vertex_source;
    int draw_count = 0;
    int present_count = 0;

private:
    // Builds the call's text only while calls are recorded.
    template <typename MakeCall>
    void Record(MakeCall&& make_call)
    {
        if (record_calls)
            RecordText(make_call());
    }
    void RecordText(std::string call);
    std::string NameOf(const std::shared_ptr<Texture>& texture) const;

    mutable std::mutex calls_lock_;
    std::vector<std::string> calls_;
    std::map<std::string, std::int64_t> variable_names_;
    std::map<std::int64_t, std::string> variable_by_handle_;
    std::map<std::string, std::string> shader_values_;
    std::uint64_t next_texture_handle_ = 1;
};

}  // namespace kesta
