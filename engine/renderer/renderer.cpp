#include "engine/renderer/renderer.h"

#include <algorithm>
#include <cctype>

#include "engine/engine_signals.h"
#include "engine/picture/picture.h"
#include "engine/renderer/render_thread.h"
#include "engine/renderer/shader/shader.h"
#include "engine/renderer/shader/shader_file_reader.h"
#include "engine/renderer/shader/shader_includes.h"
#include "engine/renderer/shader/shader_parser.h"
#include "engine/vertex_layout.h"
#include "foundation/assert/assertion.h"
#include "foundation/format.h"
#include "foundation/log/log.h"
#include "foundation/math/projection.h"
#include "io/core_resources.h"
#include "io/filesystem.h"

namespace kesta {

Renderer* g_renderer = nullptr;

namespace {

constexpr const char* kDefaultShaderPath = "@core/shaders/single_texture_2d.isl";
constexpr std::uint16_t kQuadIndices[6] = {0, 1, 2, 0, 2, 3};
constexpr std::uint32_t kQuadVertexBytes = 4 * 20;

// Picture formats that have a texture counterpart, and that counterpart.
bool texture_format_of(std::uint32_t picture_format, TextureFormat& format)
{
    static constexpr std::pair<std::uint32_t, TextureFormat> kMapping[] = {
        {0, 6}, {1, 7}, {2, 5}, {7, 0}, {8, 1}, {13, 2}, {19, 3},
    };
    for (const auto& [picture, texture] : kMapping) {
        if (picture == picture_format) {
            format = texture;
            return true;
        }
    }
    return false;
}

const VertexLayout& quad_layout()
{
    static const VertexLayout layout = [] {
        VertexLayout l;
        l.AddAttribute(0, 3, VertexLayout::kFloat, false);  // vPosition
        l.AddAttribute(2, 2, VertexLayout::kFloat, false);  // vUV0
        l.End();
        return l;
    }();
    return layout;
}

template <typename T>
std::shared_ptr<T> find_in(const std::vector<std::shared_ptr<T>>& cache, const std::string& name)
{
    for (const auto& entry : cache)
        if (entry->GetName() == name)
            return entry;
    return nullptr;
}

template <typename T>
std::shared_ptr<T> find_by_name(std::mutex& lock, const std::vector<std::shared_ptr<T>>& cache, const std::string& name)
{
    std::lock_guard guard(lock);
    return find_in(cache, name);
}

// The cached entry of `name`, or a new one from `make` entered in the cache; the flag tells which.
// Look-up and insert happen under one lock so that two loads of a name share one object.
template <typename T, typename Make>
std::pair<std::shared_ptr<T>, bool> find_or_add(std::mutex& lock, std::vector<std::shared_ptr<T>>& cache,
                                                const std::string& name, Make make)
{
    std::lock_guard guard(lock);
    if (std::shared_ptr<T> entry = find_in(cache, name))
        return {entry, false};
    std::shared_ptr<T> entry = make();
    cache.push_back(entry);
    return {entry, true};
}

}  // namespace

std::shared_ptr<Renderer> AdoptRenderer(std::shared_ptr<Renderer> renderer)
{
    if (renderer)
        renderer->self_ = renderer;
    return renderer;
}

Renderer::Renderer() = default;

Renderer::~Renderer()
{
    log("Deleting renderer");
    if (g_engine_signals)
        g_engine_signals->renderer_deleted.Emit(this);
    is_open_ = false;
}

bool Renderer::IsNativeTextureFile(std::string_view path)
{
    const std::size_t dot = path.rfind('.');
    if (dot == std::string_view::npos)
        return false;
    std::string extension(path.substr(dot));
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension == ".dds" || extension == ".pvr";
}

void Renderer::SetRenderTargetColorTextures(RenderTarget& target, const std::shared_ptr<Texture>* textures, int count)
{
    count = std::clamp(count, 0, RenderTarget::kMaxColorTextures);
    for (int i = 0; i < RenderTarget::kMaxColorTextures; ++i)
        target.color_textures[i] = i < count && textures ? textures[i] : nullptr;
    target.color_count = count;
}

void Renderer::SetRenderTargetColorTexture(RenderTarget& target, const std::shared_ptr<Texture>& texture)
{
    SetRenderTargetColorTextures(target, &texture, 1);
}

void Renderer::SetRenderTargetDepthTexture(RenderTarget& target, const std::shared_ptr<Texture>& texture)
{
    target.depth_texture = texture;
}

CapabilityValue Renderer::GetCapability(int) { return {}; }

void Renderer::Open()
{
    if (is_open_ || !OpenBackEnd())
        return;
    KESTA_ASSERT(!g_renderer);
    g_renderer = this;
    accepts_shaders_ = true;
    log(format("GPU renderer %1 ready on %2 by %3") << GetName() << renderer_name_ << vendor_name_);

    // Capability answers of another type than asked for count as "not available".
    auto flag = [this](int query) {
        const CapabilityValue value = GetCapability(query);
        return std::holds_alternative<bool>(value) && std::get<bool>(value);
    };
    capabilities_ = 0;
    if (flag(kCapabilityHardwareMultisample))
        capabilities_ |= kCapabilityBitHardwareMultisample;
    if (flag(kCapabilitySecondary))
        capabilities_ |= kCapabilityBitSecondary;
    const CapabilityValue anti_aliasing = GetCapability(kCapabilityMaxAntiAliasing);
    max_anti_aliasing_ =
        std::holds_alternative<std::uint8_t>(anti_aliasing) ? std::get<std::uint8_t>(anti_aliasing) : 0;

    if (g_filesystem && !g_filesystem->GetDriver("@core/")) {
        debug("Filesystem '@core/' is not mounted, mounting from internal resources");
        MountCoreResources();
    }

    quad_index_buffer_ = NewBuffer();
    CreateBuffer(*quad_index_buffer_, kQuadIndices, sizeof kQuadIndices, kIndexBuffer, kStaticBuffer);
    quad_vertex_buffer_ = NewBuffer();
    CreateBuffer(*quad_vertex_buffer_, nullptr, kQuadVertexBytes, kVertexBuffer, kDynamicBuffer);
    default_shader_ = LoadShader(kDefaultShaderPath, false);
    open_signal.Emit(this);
    is_open_ = true;
}

void Renderer::Close()
{
    if (!is_open_)
        return;
    closing_signal.Emit(this);
    FreeBuffer(*quad_index_buffer_);
    FreeBuffer(*quad_vertex_buffer_);
    quad_index_buffer_.reset();
    quad_vertex_buffer_.reset();
    default_shader_.reset();
    // Cached objects are released outside the cache locks: their deleters may queue work.
    std::vector<std::shared_ptr<GpuShader>> shaders;
    std::vector<std::shared_ptr<Texture>> textures;
    {
        std::lock_guard lock(shader_cache_lock_);
        shaders.swap(shader_cache_);
    }
    {
        std::lock_guard lock(texture_cache_lock_);
        textures.swap(texture_cache_);
    }
    shaders.clear();
    textures.clear();
    CloseBackEnd();
    is_open_ = false;
    accepts_shaders_ = false;
    g_renderer = nullptr;
}

std::shared_ptr<Texture> Renderer::FindCachedTexture(const std::string& name)
{
    return find_by_name(texture_cache_lock_, texture_cache_, name);
}

std::shared_ptr<GpuShader> Renderer::FindCachedShader(const std::string& name)
{
    return find_by_name(shader_cache_lock_, shader_cache_, name);
}

std::shared_ptr<Texture> Renderer::LoadTexture(const std::string& path, bool asynchronous)
{
    if (!g_filesystem || !g_filesystem->Exists(path))
        return nullptr;
    if (!asynchronous) {
        std::shared_ptr<Texture> texture = NewTexture(path);
        RunTextureLoad(texture, path);
        return texture;
    }
    const auto cached = find_or_add(texture_cache_lock_, texture_cache_, path, [&] { return NewTexture(path); });
    const std::shared_ptr<Texture>& texture = cached.first;
    if (!cached.second)
        return texture;
    RunOnWorker([this, texture, path] { RunTextureLoad(texture, path); });
    return texture;
}

void Renderer::RunTextureLoad(const std::shared_ptr<Texture>& texture, const std::string& path)
{
    auto fail = [texture, path] {
        warn(format("Cannot load texture '%1'") << path);
        texture->SetFailed();
    };
    if (IsNativeTextureFile(path)) {
        RunOnRenderThread([this, texture, path, fail] {
            if (LoadNativeTexture(*texture, path))
                texture->SetReady();
            else
                fail();
        });
        return;
    }
    auto picture = std::make_shared<Picture>();
    if (!LoadPicture(path, *picture)) {
        fail();
        return;
    }
    RunOnRenderThread([this, texture, picture, fail] {
        if (UploadPicture(*texture, *picture, kTextureUsageSampled, true))
            texture->SetReady();
        else
            fail();
    });
}

bool Renderer::UploadPicture(Texture& texture, const Picture& picture, TextureUsage usage, bool mipmapped)
{
    TextureFormat format = 0;
    if (!texture_format_of(picture.format, format)) {
        texture.SetFailed();
        return false;
    }
    CreateTexture(texture, picture.data.data(), static_cast<std::uint32_t>(picture.data.size()), picture.width,
                  picture.height, format, 0, usage, mipmapped, 1);
    texture.width = picture.width;
    texture.height = picture.height;
    texture.format = format;
    return true;
}

std::shared_ptr<GpuShader> Renderer::LoadShader(const std::string& path, bool asynchronous)
{
    if (!g_filesystem || !g_filesystem->Exists(path))
        return nullptr;
    const std::string text = g_filesystem->FileToString(path);
    if (text.empty()) {
        error(format("Shader file not found '%1'") << path);
        return nullptr;
    }
    return LoadShaderFromSource(path, text, asynchronous);
}

std::shared_ptr<GpuShader> Renderer::LoadShaderFromSource(const std::string& name, const std::string& source,
                                                          bool asynchronous)
{
    if (!asynchronous) {
        std::shared_ptr<GpuShader> gpu_shader = NewShader(name);
        RunShaderLoad(gpu_shader, name, source, false);
        return gpu_shader;
    }
    const auto cached = find_or_add(shader_cache_lock_, shader_cache_, name, [&] { return NewShader(name); });
    const std::shared_ptr<GpuShader>& gpu_shader = cached.first;
    if (!cached.second)
        return gpu_shader;
    RunShaderLoad(gpu_shader, name, source, true);
    return gpu_shader;
}

void Renderer::RunShaderLoad(const std::shared_ptr<GpuShader>& gpu_shader, const std::string& name,
                             const std::string& source, bool asynchronous)
{
    auto parse_and_create = [this, gpu_shader, name, source] {
        auto shader = std::make_shared<Shader>();
        shader->name = name;
        if (!ParseShader(*shader, source)) {
            gpu_shader->SetFailed();
            return;
        }
        RunOnRenderThread([this, gpu_shader, shader] { CreateShader(gpu_shader, shader); });
    };
    if (asynchronous)
        RunOnWorker(std::move(parse_and_create));
    else
        parse_and_create();
}

void Renderer::CreateShader(const std::shared_ptr<GpuShader>& gpu_shader, const std::shared_ptr<Shader>& shader)
{
    debug(format("CreateShader(%1) (%2)") << shader->name << static_cast<const void*>(gpu_shader.get()));
    // Freeing first is what lets a reload reuse the same object.
    FreeShader(*gpu_shader);
    if (!accepts_shaders_)
        return;
    for (auto& variant : shader->variants) {
        for (auto& stage : variant->stages) {
            stage.global = ExpandIncludes(stage.global);
            stage.source = ExpandIncludes(stage.source);
        }
    }
    std::string vertex_text, pixel_text;
    if (!TranslateShader(*shader, vertex_text, pixel_text))
        return;
    RunOnRenderThread([this, gpu_shader, vertex_text = std::move(vertex_text), pixel_text = std::move(pixel_text)] {
        CompileShaderStep(gpu_shader, vertex_text, pixel_text);
    });
}

void Renderer::CompileShaderStep(const std::shared_ptr<GpuShader>& gpu_shader, const std::string& vertex_text,
                                 const std::string& pixel_text)
{
    if (CompileShader(*gpu_shader, vertex_text, pixel_text))
        gpu_shader->SetReady();
    else
        gpu_shader->SetFailed();
}

void Renderer::Reload(const std::string& path)
{
    if (std::shared_ptr<Texture> texture = FindCachedTexture(path)) {
        RunOnRenderThreadAndWait([this, texture] { FreeTexture(*texture); });
        texture->ResetState();
        RunOnWorker([this, texture, path] { RunTextureLoad(texture, path); });
        return;
    }
    if (std::shared_ptr<GpuShader> gpu_shader = FindCachedShader(path)) {
        RunOnRenderThreadAndWait([this, gpu_shader] { FreeShader(*gpu_shader); });
        std::string text;
        if (ReadShaderFileThroughFilesystem(path, text) && !text.empty()) {
            gpu_shader->ResetState();
            RunShaderLoad(gpu_shader, path, text, true);
        }
    }
}

std::shared_ptr<GpuShader> Renderer::WrapShader(GpuShader* shader)
{
    std::weak_ptr<Renderer> renderer = self_;
    return std::shared_ptr<GpuShader>(shader, [renderer](GpuShader* dying) {
        RunOnRenderThread([renderer, dying] {
            debug(format("DeleteShaderOnRenderThread(%1) (%2)") << dying->GetName() << static_cast<const void*>(dying));
            if (auto alive = renderer.lock(); alive && alive->is_open_)
                alive->FreeShader(*dying);
            delete dying;
        });
    });
}

std::shared_ptr<RenderTarget> Renderer::WrapRenderTarget(RenderTarget* target)
{
    std::weak_ptr<Renderer> renderer = self_;
    return std::shared_ptr<RenderTarget>(target, [renderer](RenderTarget* dying) {
        RunOnRenderThread([renderer, dying] {
            if (auto alive = renderer.lock(); alive && alive->is_open_)
                alive->FreeRenderTarget(*dying);
            delete dying;
        });
    });
}

void Renderer::DrawQuad(const Rect& rect, const Rect& uv)
{
    const float vertices[4][5] = {
        {rect.x1, rect.y1, 0.0f, uv.x1, uv.y1},
        {rect.x2, rect.y1, 0.0f, uv.x2, uv.y1},
        {rect.x2, rect.y2, 0.0f, uv.x2, uv.y2},
        {rect.x1, rect.y2, 0.0f, uv.x1, uv.y2},
    };
    static_assert(sizeof vertices == kQuadVertexBytes);
    UpdateBuffer(*quad_vertex_buffer_, vertices, 0, kQuadVertexBytes);
    SetIndexSource(quad_index_buffer_);
    SetVertexSource(quad_vertex_buffer_, quad_layout());
    DrawBuffers(kIndex16, 6, kTriangles, 0);
}

void Renderer::SetViewMatrix(const Matrix4& view)
{
    view_ = view;
    inverse_view_ = view.Inverse();
}

void Renderer::SetModelMatrix(const Matrix4& model)
{
    model_ = model;
    // Normals transform by the inverse transpose of the linear part.
    normal_ = Matrix4::FromRotation(model.Linear().Inverse().Transposed());
}

void Renderer::SetPreviousViewMatrix(const Matrix4& view)
{
    previous_view_ = view;
    previous_inverse_view_ = view.Inverse();
}

void Renderer::SetIdentityMatrices()
{
    view_ = inverse_view_ = Matrix4::Identity();
    projection_ = Matrix44::Identity();
}

void Renderer::Set2DMatrices(bool flip_y)
{
    model_ = normal_ = view_ = inverse_view_ = Matrix4::Identity();
    const Rect viewport = GetViewport();
    projection_ = flip_y ? Orthographic(viewport.x1, viewport.x2, viewport.y1, viewport.y2, -1.0f, 1.0f)
                         : Orthographic(viewport.x1, viewport.x2, viewport.y2, viewport.y1, -1.0f, 1.0f);
}

}  // namespace kesta
