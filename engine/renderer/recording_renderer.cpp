#include "engine/renderer/recording_renderer.h"

#include <algorithm>
#include <cstring>
#include <sstream>

#include "engine/picture/picture.h"
#include "engine/renderer/shader/shader.h"
#include "engine/vertex_layout.h"

namespace kesta {

namespace {

std::string text_of(const Rect& r)
{
    std::ostringstream out;
    out << r.x1 << "," << r.y1 << "," << r.x2 << "," << r.y2;
    return out.str();
}

std::string text_of(bool value) { return value ? "true" : "false"; }

template <typename T>
std::string list_of(const T* values, int count)
{
    std::ostringstream out;
    for (int i = 0; i < count && values; ++i)
        out << (i ? " " : "") << values[i];
    return out.str();
}

const char* kind_name(BufferKind kind) { return kind == kIndexBuffer ? "index" : "vertex"; }
const char* usage_name(BufferUsage usage) { return usage == kStaticBuffer ? "static" : "dynamic"; }

}  // namespace

RecordingRenderer::RecordingRenderer() { renderer_name_ = "recording", vendor_name_ = "Norvane"; }

RecordingRenderer::~RecordingRenderer() { Close(); }

void RecordingRenderer::RecordText(std::string call)
{
    std::lock_guard lock(calls_lock_);
    calls_.push_back(std::move(call));
}

std::vector<std::string> RecordingRenderer::Calls() const
{
    std::lock_guard lock(calls_lock_);
    return calls_;
}

std::vector<std::string> RecordingRenderer::CallNames() const
{
    std::vector<std::string> names = Calls();
    for (std::string& call : names)
        call = call.substr(0, call.find('('));
    return names;
}

void RecordingRenderer::ClearCalls()
{
    std::lock_guard lock(calls_lock_);
    calls_.clear();
}

std::map<std::string, std::string> RecordingRenderer::ShaderValues() const
{
    std::lock_guard lock(calls_lock_);
    return shader_values_;
}

std::string RecordingRenderer::NameOf(const std::shared_ptr<Texture>& texture) const
{
    return texture ? texture->GetName() : "null";
}

std::string RecordingRenderer::GetName() { return back_end_name; }

std::shared_ptr<RenderTarget> RecordingRenderer::NewRenderTarget()
{
    Record([&] { return std::string("NewRenderTarget()"); });
    return WrapRenderTarget(new RecordingRenderTarget);
}

void RecordingRenderer::BlitRenderTarget(const std::shared_ptr<RenderTarget>& source,
                                         const std::shared_ptr<RenderTarget>& destination, const Rect& source_rect,
                                         const Rect& destination_rect, bool color, bool depth)
{
    Record([&] {
        return std::string("BlitRenderTarget(" + std::string(source ? "target" : "null") + ", " +
                           (destination ? "target" : "null") + ", " + text_of(source_rect) + ", " +
                           text_of(destination_rect) + ", " + text_of(color) + ", " + text_of(depth) + ")");
    });
}

void RecordingRenderer::ResetRenderTarget()
{
    Record([&] { return std::string("ResetRenderTarget()"); });
    SetCurrentRenderTarget(nullptr);
}

void RecordingRenderer::SetRenderTarget(const std::shared_ptr<RenderTarget>& target)
{
    Record([&] { return std::string(std::string("SetRenderTarget(") + (target ? "target" : "null") + ")"); });
    SetCurrentRenderTarget(target);
}

bool RecordingRenderer::CheckRenderTarget()
{
    Record([&] { return std::string("CheckRenderTarget()"); });
    return check_render_target_result;
}

void RecordingRenderer::CreateRenderTarget(RenderTarget& target)
{
    Record([&] { return std::string("CreateRenderTarget(" + std::to_string(target.color_count) + ")"); });
    if (auto* recording = dynamic_cast<RecordingRenderTarget*>(&target))
        recording->created = true;
}

void RecordingRenderer::FreeRenderTarget(RenderTarget& target)
{
    Record([&] { return std::string("FreeRenderTarget()"); });
    if (auto* recording = dynamic_cast<RecordingRenderTarget*>(&target))
        recording->created = false;
}

std::shared_ptr<GpuBuffer> RecordingRenderer::NewBuffer()
{
    Record([&] { return std::string("NewBuffer()"); });
    return std::make_shared<RecordingBuffer>();
}

std::uint32_t RecordingRenderer::GetBufferSize(const GpuBuffer& buffer)
{
    Record([&] { return std::string("GetBufferSize()"); });
    return static_cast<std::uint32_t>(static_cast<const RecordingBuffer&>(buffer).bytes.size());
}

void* RecordingRenderer::MapBuffer(GpuBuffer& buffer)
{
    Record([&] { return std::string("MapBuffer()"); });
    auto& recording = static_cast<RecordingBuffer&>(buffer);
    recording.mapped = true;
    return recording.bytes.data();
}

void RecordingRenderer::UnmapBuffer(GpuBuffer& buffer)
{
    Record([&] { return std::string("UnmapBuffer()"); });
    static_cast<RecordingBuffer&>(buffer).mapped = false;
}

void RecordingRenderer::UpdateBuffer(GpuBuffer& buffer, const void* data, std::uint32_t offset, std::uint32_t size)
{
    Record([&] { return std::string("UpdateBuffer(" + std::to_string(offset) + ", " + std::to_string(size) + ")"); });
    auto& bytes = static_cast<RecordingBuffer&>(buffer).bytes;
    // A GPU would reject a write past the end; copy what fits.
    if (data && offset < bytes.size())
        std::memcpy(bytes.data() + offset, data, std::min<std::size_t>(size, bytes.size() - offset));
}

void RecordingRenderer::CreateBuffer(GpuBuffer& buffer, const void* data, std::uint32_t size, BufferKind kind,
                                     BufferUsage usage)
{
    Record([&] {
        return std::string("CreateBuffer(" + std::to_string(size) + ", " + kind_name(kind) + ", " + usage_name(usage) +
                           ")");
    });
    auto& recording = static_cast<RecordingBuffer&>(buffer);
    recording.bytes.assign(size, 0);
    if (data)
        std::memcpy(recording.bytes.data(), data, size);
    recording.kind = kind;
    recording.usage = usage;
    recording.created = true;
}

void RecordingRenderer::FreeBuffer(GpuBuffer& buffer)
{
    Record([&] { return std::string("FreeBuffer()"); });
    auto& recording = static_cast<RecordingBuffer&>(buffer);
    recording.bytes.clear();
    recording.created = false;
}

std::shared_ptr<Texture> RecordingRenderer::NewTexture(const std::string& name)
{
    Record([&] { return std::string("NewTexture(" + name + ")"); });
    std::lock_guard lock(calls_lock_);
    return std::make_shared<RecordingTexture>(name, next_texture_handle_++);
}

std::shared_ptr<Texture> RecordingRenderer::NewShadowMap(int width, int height, const std::string& name)
{
    Record([&] {
        return std::string("NewShadowMap(" + std::to_string(width) + ", " + std::to_string(height) + ", " + name + ")");
    });
    std::shared_ptr<Texture> texture;
    {
        std::lock_guard lock(calls_lock_);
        texture = std::make_shared<RecordingTexture>(name, next_texture_handle_++);
    }
    texture->width = width;
    texture->height = height;
    texture->format = kTextureFormatDepth;
    return texture;
}

void RecordingRenderer::CreateTexture(Texture& texture, const void* data, std::uint32_t size, int width, int height,
                                      TextureFormat format, std::uint8_t anti_aliasing, TextureUsage usage,
                                      bool mipmapped, int flag)
{
    Record([&] {
        return std::string("CreateTexture(" + texture.GetName() + ", " + std::to_string(size) + ", " +
                           std::to_string(width) + ", " + std::to_string(height) + ", " + std::to_string(format) +
                           ", " + std::to_string(anti_aliasing) + ", " + std::to_string(usage) + ", " +
                           text_of(mipmapped) + ", " + std::to_string(flag) + ")");
    });
    texture.width = width;
    texture.height = height;
    texture.format = format;
    texture.anti_aliasing = anti_aliasing;
    if (auto* recording = dynamic_cast<RecordingTexture*>(&texture)) {
        const auto* bytes = static_cast<const std::uint8_t*>(data);
        recording->pixels.assign(bytes, bytes ? bytes + size : bytes);
        recording->created = true;
    }
}

void RecordingRenderer::FreeTexture(Texture& texture)
{
    Record([&] { return std::string("FreeTexture(" + texture.GetName() + ")"); });
    if (auto* recording = dynamic_cast<RecordingTexture*>(&texture)) {
        recording->pixels.clear();
        recording->created = false;
    }
}

bool RecordingRenderer::LoadNativeTexture(Texture& texture, const std::string& path)
{
    // No container format is understood here: a native texture always fails to load.
    Record([&] { return std::string("LoadNativeTexture(" + texture.GetName() + ", " + path + ")"); });
    return false;
}

void RecordingRenderer::UpdateTexture(Texture& texture, const void* data, std::uint32_t size)
{
    Record([&] { return std::string("UpdateTexture(" + texture.GetName() + ", " + std::to_string(size) + ")"); });
    if (auto* recording = dynamic_cast<RecordingTexture*>(&texture); recording && data) {
        const auto* bytes = static_cast<const std::uint8_t*>(data);
        recording->pixels.assign(bytes, bytes + size);
    }
}

bool RecordingRenderer::CaptureTexture(Texture& texture, Picture& picture)
{
    Record([&] { return std::string("CaptureTexture(" + texture.GetName() + ")"); });
    auto* recording = dynamic_cast<RecordingTexture*>(&texture);
    if (!recording || !recording->created)
        return false;
    picture.width = texture.width;
    picture.height = texture.height;
    picture.format = kPictureRGBA8;
    picture.data = recording->pixels;
    return true;
}

void RecordingRenderer::RefreshTextureBinding(Texture& texture)
{
    Record([&] { return std::string("RefreshTextureBinding(" + texture.GetName() + ")"); });
}

std::shared_ptr<GpuShader> RecordingRenderer::NewShader(const std::string& name)
{
    Record([&] { return std::string("NewShader(" + name + ")"); });
    return WrapShader(new RecordingShader(name));
}

std::shared_ptr<GpuShader> RecordingRenderer::GetShader() { return bound_shader; }

void RecordingRenderer::FreeShader(GpuShader& shader)
{
    Record([&] { return std::string("FreeShader(" + shader.GetName() + ")"); });
    if (auto* recording = dynamic_cast<RecordingShader*>(&shader))
        recording->compiled = false;
}

ShaderVariable RecordingRenderer::GetShaderVariable(const std::string& name)
{
    Record([&] { return std::string("GetShaderVariable(" + name + ")"); });
    std::lock_guard lock(calls_lock_);
    auto [it, added] = variable_names_.try_emplace(name, static_cast<std::int64_t>(variable_names_.size()));
    variable_by_handle_[it->second] = name;
    return ShaderVariable{it->second};
}

ShaderVariable RecordingRenderer::GetShaderVariableBySemantic(int semantic)
{
    Record([&] { return std::string("GetShaderVariableBySemantic(" + std::to_string(semantic) + ")"); });
    auto* shader = dynamic_cast<RecordingShader*>(bound_shader.get());
    if (!shader || !shader->HasSemantic(semantic))
        return {};
    std::lock_guard lock(calls_lock_);
    const std::string name = "#" + std::to_string(semantic);
    auto [it, added] = variable_names_.try_emplace(name, static_cast<std::int64_t>(variable_names_.size()));
    variable_by_handle_[it->second] = name;
    return ShaderVariable{it->second};
}

namespace {
// Remembers the last value set on a named variable, for tests to read back.
void store_value(std::mutex& lock, std::map<std::int64_t, std::string>& names,
                 std::map<std::string, std::string>& values, ShaderVariable variable, const std::string& text)
{
    std::lock_guard guard(lock);
    const auto it = names.find(variable.handle);
    if (it != names.end())
        values[it->second] = text;
}
}  // namespace

void RecordingRenderer::SetShaderInt(ShaderVariable variable, const int* values, int count)
{
    Record([&] {
        return std::string("SetShaderInt(" + std::to_string(variable.handle) + ", " + list_of(values, count) + ")");
    });
    if (record_calls)
        store_value(calls_lock_, variable_by_handle_, shader_values_, variable, list_of(values, count));
}

void RecordingRenderer::SetShaderFloat(ShaderVariable variable, const float* values, int count)
{
    Record([&] {
        return std::string("SetShaderFloat(" + std::to_string(variable.handle) + ", " + list_of(values, count) + ")");
    });
    if (record_calls)
        store_value(calls_lock_, variable_by_handle_, shader_values_, variable, list_of(values, count));
}

void RecordingRenderer::SetShaderFloat2(ShaderVariable variable, const float* values, int count)
{
    Record([&] {
        return std::string("SetShaderFloat2(" + std::to_string(variable.handle) + ", " + list_of(values, count * 2) +
                           ")");
    });
    if (record_calls)
        store_value(calls_lock_, variable_by_handle_, shader_values_, variable, list_of(values, count * 2));
}

void RecordingRenderer::SetShaderFloat3(ShaderVariable variable, const float* values, int count)
{
    Record([&] {
        return std::string("SetShaderFloat3(" + std::to_string(variable.handle) + ", " + list_of(values, count * 3) +
                           ")");
    });
    if (record_calls)
        store_value(calls_lock_, variable_by_handle_, shader_values_, variable, list_of(values, count * 3));
}

void RecordingRenderer::SetShaderTexture(ShaderVariable variable, const std::shared_ptr<Texture>& texture)
{
    Record([&] {
        return std::string("SetShaderTexture(" + std::to_string(variable.handle) + ", " + NameOf(texture) + ")");
    });
    if (record_calls)
        store_value(calls_lock_, variable_by_handle_, shader_values_, variable, NameOf(texture));
}

void RecordingRenderer::SetShaderSystemBuiltins(const ShaderSystemBuiltins& builtins)
{
    Record([&] {
        std::ostringstream out;
        out << "SetShaderSystemBuiltins(" << builtins.clock_seconds << ", " << builtins.internal_width << "x"
            << builtins.internal_height << ", " << builtins.fx_scale << ", " << text_of(builtins.technique_is_forward)
            << ")";
        return out.str();
    });
}

void RecordingRenderer::SetShaderCameraBuiltins(const Matrix4&, float znear, float zfar, float zoom)
{
    Record([&] {
        std::ostringstream out;
        out << "SetShaderCameraBuiltins(" << znear << ", " << zfar << ", " << zoom << ")";
        return out.str();
    });
}

void RecordingRenderer::SetShaderTransformationBuiltins(const ShaderTransformationBuiltins& builtins)
{
    Record([&] { return std::string("SetShaderTransformationBuiltins(" + std::to_string(builtins.bone_count) + ")"); });
}

void RecordingRenderer::SetShaderLightBuiltins(const ShaderLightBuiltins& builtins)
{
    Record([&] { return std::string("SetShaderLightBuiltins(" + std::to_string(builtins.slice_count) + ")"); });
}

void RecordingRenderer::SetShaderPickingId(std::uint32_t id)
{
    Record([&] { return std::string("SetShaderPickingId(" + std::to_string(id) + ")"); });
}

void RecordingRenderer::SetShaderValues(const ShaderVariableTable&, const ShaderVariableTable* material_values)
{
    Record(
        [&] { return std::string(std::string("SetShaderValues(") + (material_values ? "material" : "null") + ")"); });
}

CapabilityValue RecordingRenderer::GetCapability(int query)
{
    Record([&] { return std::string("GetCapability(" + std::to_string(query) + ")"); });
    const auto it = capabilities.find(query);
    return it == capabilities.end() ? Renderer::GetCapability(query) : it->second;
}

void RecordingRenderer::SetCullFront(bool value)
{
    Record([&] { return std::string("SetCullFront(" + text_of(value) + ")"); });
    cull_front = value;
}

void RecordingRenderer::SetFaceCulling(bool enable)
{
    Record([&] { return std::string("SetFaceCulling(" + text_of(enable) + ")"); });
    face_culling = enable;
}

void RecordingRenderer::SetDepthFunc(DepthFunc function)
{
    Record([&] { return std::string("SetDepthFunc(" + std::to_string(function) + ")"); });
}

void RecordingRenderer::SetDepthTest(bool enable)
{
    Record([&] { return std::string("SetDepthTest(" + text_of(enable) + ")"); });
    depth_test = enable;
}

void RecordingRenderer::SetDepthWrite(bool enable)
{
    Record([&] { return std::string("SetDepthWrite(" + text_of(enable) + ")"); });
    depth_write = enable;
}

void RecordingRenderer::SetBlendFunc(BlendFactor source, BlendFactor destination)
{
    Record([&] {
        return std::string("SetBlendFunc(" + std::to_string(source) + ", " + std::to_string(destination) + ")");
    });
}

void RecordingRenderer::SetBlend(bool enable)
{
    Record([&] { return std::string("SetBlend(" + text_of(enable) + ")"); });
    blend = enable;
}

void RecordingRenderer::SetAlphaToCoverage(bool enable)
{
    Record([&] { return std::string("SetAlphaToCoverage(" + text_of(enable) + ")"); });
}

void RecordingRenderer::SetIndexSource(const std::shared_ptr<GpuBuffer>& buffer)
{
    Record([&] { return std::string(std::string("SetIndexSource(") + (buffer ? "buffer" : "null") + ")"); });
    index_source = buffer;
}

void RecordingRenderer::SetVertexSource(const std::shared_ptr<GpuBuffer>& buffer, const VertexLayout& layout)
{
    Record([&] {
        return std::string(std::string("SetVertexSource(") + (buffer ? "buffer" : "null") + ", " +
                           std::to_string(layout.GetStride()) + ")");
    });
    vertex_source = buffer;
}

bool RecordingRenderer::SetShader(const std::shared_ptr<GpuShader>& shader)
{
    Record([&] { return std::string("SetShader(" + (shader ? shader->GetName() : std::string("null")) + ")"); });
    if (!shader || !shader->IsReady())
        return false;
    bound_shader = shader;
    return true;
}

bool RecordingRenderer::TranslateShader(const Shader& shader, std::string& vertex_text, std::string& pixel_text)
{
    Record([&] { return std::string("TranslateShader(" + shader.name + ")"); });
    if (!translate_result)
        return false;
    // The stage texts of the first variant stand in for a translation.
    if (!shader.variants.empty()) {
        const auto& stages = shader.variants.front()->stages;
        vertex_text = stages[0].global + stages[0].source;
        pixel_text = stages[1].global + stages[1].source;
    }
    return true;
}

bool RecordingRenderer::CompileShader(GpuShader& shader, const std::string& vertex_text, const std::string& pixel_text)
{
    Record([&] { return std::string("CompileShader(" + shader.GetName() + ")"); });
    if (auto* recording = dynamic_cast<RecordingShader*>(&shader)) {
        recording->vertex_text = vertex_text;
        recording->pixel_text = pixel_text;
        recording->compiled = compile_result;
    }
    return compile_result;
}

std::pair<int, int> RecordingRenderer::GetOutputSize() { return output_size; }

bool RecordingRenderer::IsOutputFocused() { return true; }

bool RecordingRenderer::OpenBackEnd()
{
    Record([&] { return std::string("OpenBackEnd()"); });
    if (open_back_end_result)
        viewport = Rect{0, 0, static_cast<float>(output_size.first), static_cast<float>(output_size.second)};
    return open_back_end_result;
}

void RecordingRenderer::CloseBackEnd()
{
    Record([&] { return std::string("CloseBackEnd()"); });
    bound_shader.reset();
    index_source.reset();
    vertex_source.reset();
}

void RecordingRenderer::ClearClipRect()
{
    Record([&] { return std::string("ClearClipRect()"); });
    clip_enabled = false;
}

void RecordingRenderer::SetClipRect(const Rect& rect)
{
    Record([&] { return std::string("SetClipRect(" + text_of(rect) + ")"); });
    clip_rect = rect;
    clip_enabled = true;
}

Rect RecordingRenderer::GetClipRect() { return clip_rect; }

void RecordingRenderer::SetViewport(const Rect& rect)
{
    Record([&] { return std::string("SetViewport(" + text_of(rect) + ")"); });
    viewport = rect;
}

Rect RecordingRenderer::GetViewport() { return viewport; }

void RecordingRenderer::Clear(const Color& color, float depth, std::uint32_t planes)
{
    Record([&] {
        std::ostringstream out;
        out << "Clear(" << color.r << "," << color.g << "," << color.b << "," << color.a << ", " << depth << ", "
            << planes << ")";
        return out.str();
    });
}

void RecordingRenderer::DrawBuffers(IndexType index_type, std::uint32_t index_count, PrimitiveType primitive,
                                    std::uint32_t first_index)
{
    Record([&] {
        return std::string("DrawBuffers(" + std::to_string(index_type) + ", " + std::to_string(index_count) + ", " +
                           std::to_string(primitive) + ", " + std::to_string(first_index) + ")");
    });
    ++draw_count;
}

void RecordingRenderer::DrawBuffersInstanced(const std::shared_ptr<GpuBuffer>&, std::uint32_t instance_count,
                                             IndexType index_type, std::uint32_t index_count, PrimitiveType primitive)
{
    Record([&] {
        return std::string("DrawBuffersInstanced(" + std::to_string(instance_count) + ", " +
                           std::to_string(index_type) + ", " + std::to_string(index_count) + ", " +
                           std::to_string(primitive) + ")");
    });
    ++draw_count;
}

void RecordingRenderer::PresentFrame()
{
    Record([&] { return std::string("PresentFrame()"); });
    ++present_count;
}

void RecordingRenderer::FlushRenderer()
{
    Record([&] { return std::string("FlushRenderer()"); });
}

}  // namespace kesta
