#include "plugins/gl/gl_renderer.h"

#include <stb_image_write.h>

#include <algorithm>
#include <cstring>
#include <tuple>

#include "engine/picture/picture.h"
#include "foundation/assert/assertion.h"
#include "foundation/format.h"
#include "foundation/log/log.h"
#include "plugins/gl/glsl_translator.h"

namespace kesta {

namespace {

GLenum gl_depth_func(DepthFunc function)
{
    switch (function) {
        case kDepthLess:
            return GL_LESS;
        case kDepthLessEqual:
            return GL_LEQUAL;
        case kDepthGreater:
            return GL_GREATER;
        case kDepthAlways:
            return GL_ALWAYS;
    }
    // The remaining codes follow GL's order from GL_NEVER.
    return GL_NEVER + std::min<GLenum>(function, 7);
}

GLenum gl_blend_factor(BlendFactor factor)
{
    switch (factor) {
        case kBlendOne:
            return GL_ONE;
        case kBlendSourceAlpha:
            return GL_SRC_ALPHA;
        case kBlendOneMinusSourceAlpha:
            return GL_ONE_MINUS_SRC_ALPHA;
    }
    return GL_ZERO;
}

GLint to_int(float value) { return static_cast<GLint>(value); }

}  // namespace

bool GLRenderer::VertexArrayKey::operator<(const VertexArrayKey& other) const
{
    if (buffer != other.buffer)
        return buffer < other.buffer;
    if (layout.GetStride() != other.layout.GetStride())
        return layout.GetStride() < other.layout.GetStride();
    const auto& a = layout.GetAttributes();
    const auto& b = other.layout.GetAttributes();
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i].semantic != b[i].semantic || a[i].format != b[i].format)
            return std::tie(a[i].semantic, a[i].format) < std::tie(b[i].semantic, b[i].format);
    return false;
}

GLRenderer::GLRenderer(GLContextFactory context_factory) : context_factory_(std::move(context_factory))
{
    if (!context_factory_)
        context_factory_ = &CreateHeadlessGLContext;
}

GLRenderer::~GLRenderer() { Close(); }

void GLRenderer::AssertRenderThread() const
{
#ifndef NDEBUG
    KESTA_ASSERT_MSG(std::this_thread::get_id() == gl_thread_, "OpenGL call off the render worker");
#endif
}

std::string GLRenderer::GetName() { return "OpenGL"; }

bool GLRenderer::OpenBackEnd()
{
    std::string reason;
    context_ = context_factory_(reason);
    if (!context_ || !context_->MakeCurrent()) {
        error(format("Cannot create the OpenGL context: %1") << (context_ ? "it cannot be made current" : reason));
        context_.reset();
        return false;
    }
    gl_thread_ = std::this_thread::get_id();
    if (epoxy_gl_version() < 33) {
        error(format("OpenGL 3.3 is required, the context offers %1.%2")
              << epoxy_gl_version() / 10 << epoxy_gl_version() % 10);
        context_.reset();
        return false;
    }
    renderer_name_ = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    vendor_name_ = reinterpret_cast<const char*>(glGetString(GL_VENDOR));
    version_text_ = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    InstallDebugOutput();

    releaser_ = std::make_shared<GLObjectReleaser>();
    releaser_->on_buffer_deleted = [this](GLuint buffer) {
        ReleaseVertexArraysOf(buffer);
        // GL unbinds a deleted buffer, and may hand its name out again.
        if (bound_array_buffer_ == buffer)
            bound_array_buffer_ = 0;
        if (bound_index_buffer_ == buffer)
            bound_index_buffer_ = 0;
    };
    if (!MakeOutput(output_, output_width_, output_height_, true) ||
        !MakeOutput(presented_, output_width_, output_height_, false)) {
        error("Cannot create the OpenGL output framebuffer");
        CloseBackEnd();
        return false;
    }
    has_presented_ = false;
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glEnable(GL_CULL_FACE);
    glCullFace(GL_BACK);
    // The engine is left-handed with y up: its front faces wind clockwise on screen.
    glFrontFace(GL_CW);
    depth_write_ = true;
    bound_target_.reset();
    BindFramebuffer(output_.framebuffer, output_width_, output_height_);
    SetViewport(Rect{0, 0, static_cast<float>(output_width_), static_cast<float>(output_height_)});
    clip_rect_ = viewport_;
    clip_enabled_ = false;
    glDisable(GL_SCISSOR_TEST);
    return true;
}

void GLRenderer::CloseBackEnd()
{
    if (!context_)
        return;
    AssertRenderThread();
    bound_shader_.reset();
    index_source_.reset();
    vertex_source_.reset();
    bound_target_.reset();
    for (const auto& [key, vertex_array] : vertex_arrays_)
        glDeleteVertexArrays(1, &vertex_array);
    vertex_arrays_.clear();
    vertex_array_ = bound_vertex_array_ = bound_index_buffer_ = bound_array_buffer_ = 0;
    FreeOutput(output_);
    FreeOutput(presented_);
    has_presented_ = false;
    // Handles still held elsewhere find the releaser gone and delete nothing: the context takes
    // its objects with it.
    releaser_.reset();
    context_->ReleaseCurrent();
    context_.reset();
}

void GLRenderer::InstallDebugOutput()
{
    if (!epoxy_has_gl_extension("GL_KHR_debug") && epoxy_gl_version() < 43)
        return;
    glEnable(GL_DEBUG_OUTPUT);
    glDebugMessageCallback(
        [](GLenum, GLenum, GLuint, GLenum severity, GLsizei length, const GLchar* message, const void*) {
            const std::string text = "OpenGL: " + std::string(message, length > 0 ? length : std::strlen(message));
            switch (severity) {
                case GL_DEBUG_SEVERITY_HIGH:
                    error(text);
                    break;
                case GL_DEBUG_SEVERITY_MEDIUM:
                    warn(text);
                    break;
                default:
                    debug(text);
                    break;
            }
        },
        nullptr);
}

bool GLRenderer::MakeOutput(Output& output, int width, int height, bool with_depth)
{
    glGenFramebuffers(1, &output.framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, output.framebuffer);
    glGenTextures(1, &output.color);
    glBindTexture(GL_TEXTURE_2D, output.color);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, output.color, 0);
    if (with_depth) {
        glGenRenderbuffers(1, &output.depth);
        glBindRenderbuffer(GL_RENDERBUFFER, output.depth);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, width, height);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, output.depth);
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

void GLRenderer::FreeOutput(Output& output)
{
    glDeleteFramebuffers(1, &output.framebuffer);
    glDeleteTextures(1, &output.color);
    glDeleteRenderbuffers(1, &output.depth);
    output = Output{};
}

void GLRenderer::SetOutputSize(int width, int height)
{
    width = std::max(width, 1);
    height = std::max(height, 1);
    if (width == output_width_ && height == output_height_)
        return;
    output_width_ = width;
    output_height_ = height;
    if (!context_)
        return;
    AssertRenderThread();
    FreeOutput(output_);
    FreeOutput(presented_);
    has_presented_ = false;
    if (!MakeOutput(output_, width, height, true) || !MakeOutput(presented_, width, height, false))
        error("Cannot create the OpenGL output framebuffer");
    if (!bound_target_) {
        BindFramebuffer(output_.framebuffer, width, height);
        SetViewport(Rect{0, 0, static_cast<float>(width), static_cast<float>(height)});
    }
    output_resized_signal.Emit(this);
}

std::pair<int, int> GLRenderer::GetOutputSize() { return {output_width_, output_height_}; }

bool GLRenderer::IsOutputFocused() { return true; }

bool GLRenderer::ReadOutput(Picture& picture)
{
    if (!context_ || !has_presented_)
        return false;
    AssertRenderThread();
    const std::size_t row = static_cast<std::size_t>(output_width_) * 4;
    std::vector<std::uint8_t> pixels(row * output_height_);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, presented_.framebuffer);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, output_width_, output_height_, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glBindFramebuffer(GL_READ_FRAMEBUFFER, FramebufferOf(bound_target_));
    // GL's first row is the bottom one; pictures start at the top.
    picture.width = output_width_;
    picture.height = output_height_;
    picture.format = kPictureRGBA8;
    picture.data.resize(pixels.size());
    for (int y = 0; y < output_height_; ++y)
        std::memcpy(picture.data.data() + y * row, pixels.data() + (output_height_ - 1 - y) * row, row);
    return true;
}

bool GLRenderer::WriteOutputPng(const std::string& path)
{
    Picture picture;
    if (!ReadOutput(picture))
        return false;
    if (!stbi_write_png(path.c_str(), picture.width, picture.height, 4, picture.data.data(), picture.width * 4)) {
        error(format("Cannot write '%1'") << path);
        return false;
    }
    return true;
}

void GLRenderer::PresentFrame()
{
    AssertRenderThread();
    glBindFramebuffer(GL_READ_FRAMEBUFFER, output_.framebuffer);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, presented_.framebuffer);
    glDisable(GL_SCISSOR_TEST);
    glBlitFramebuffer(0, 0, output_width_, output_height_, 0, 0, output_width_, output_height_, GL_COLOR_BUFFER_BIT,
                      GL_NEAREST);
    BindFramebuffer(FramebufferOf(bound_target_), target_width_, target_height_);
    if (clip_enabled_)
        glEnable(GL_SCISSOR_TEST);
    has_presented_ = true;
    context_->SwapBuffers();
    frame_presented_signal.Emit(this);
}

void GLRenderer::FlushRenderer()
{
    AssertRenderThread();
    glFinish();
}

// --- render targets ---

std::shared_ptr<RenderTarget> GLRenderer::NewRenderTarget() { return WrapRenderTarget(new GLRenderTarget); }

std::pair<int, int> GLRenderer::SizeOf(const RenderTarget* target) const
{
    if (!target)
        return {output_width_, output_height_};
    for (const auto& texture : target->color_textures)
        if (texture)
            return {texture->width, texture->height};
    if (target->depth_texture)
        return {target->depth_texture->width, target->depth_texture->height};
    return {0, 0};
}

void GLRenderer::CreateRenderTarget(RenderTarget& target)
{
    AssertRenderThread();
    auto& gl_target = static_cast<GLRenderTarget&>(target);
    if (!gl_target.framebuffer)
        glGenFramebuffers(1, &gl_target.framebuffer);
    gl_target.attached_count = -1;
    SyncAttachments(gl_target);
    glBindFramebuffer(GL_FRAMEBUFFER, FramebufferOf(bound_target_));
}

void GLRenderer::SyncAttachments(GLRenderTarget& target)
{
    glBindFramebuffer(GL_FRAMEBUFFER, target.framebuffer);
    auto name_of = [](const std::shared_ptr<Texture>& texture) {
        return texture ? static_cast<GLuint>(texture->GetNativeHandle()) : 0u;
    };
    auto attach = [](GLenum point, const std::shared_ptr<Texture>& texture, GLuint name) {
        const GLenum texture_target = texture ? static_cast<const GLTexture&>(*texture).target : GL_TEXTURE_2D;
        glFramebufferTexture2D(GL_FRAMEBUFFER, point, texture_target, name, 0);
    };
    bool changed = target.attached_count != target.color_count;
    for (int i = 0; i < RenderTarget::kMaxColorTextures; ++i) {
        const GLuint name = name_of(target.color_textures[i]);
        if (name != target.attached_colors[i]) {
            attach(GL_COLOR_ATTACHMENT0 + i, target.color_textures[i], name);
            target.attached_colors[i] = name;
            changed = true;
        }
    }
    const GLuint depth = name_of(target.depth_texture);
    if (depth != target.attached_depth) {
        attach(GL_DEPTH_ATTACHMENT, target.depth_texture, depth);
        target.attached_depth = depth;
    }
    if (changed) {
        std::array<GLenum, RenderTarget::kMaxColorTextures> buffers{};
        int count = 0;
        for (int i = 0; i < RenderTarget::kMaxColorTextures; ++i)
            if (target.attached_colors[i])
                buffers[count++] = GL_COLOR_ATTACHMENT0 + i;
        if (count == 0) {
            glDrawBuffer(GL_NONE);
            glReadBuffer(GL_NONE);
        } else {
            glDrawBuffers(count, buffers.data());
            glReadBuffer(buffers[0]);
        }
        target.attached_count = target.color_count;
    }
}

GLuint GLRenderer::FramebufferOf(const std::shared_ptr<RenderTarget>& target)
{
    if (!target)
        return output_.framebuffer;
    auto& gl_target = static_cast<GLRenderTarget&>(*target);
    if (!gl_target.framebuffer)
        glGenFramebuffers(1, &gl_target.framebuffer);
    SyncAttachments(gl_target);
    return gl_target.framebuffer;
}

void GLRenderer::BindFramebuffer(GLuint framebuffer, int width, int height)
{
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    target_width_ = width;
    target_height_ = height;
}

void GLRenderer::FreeRenderTarget(RenderTarget& target)
{
    AssertRenderThread();
    auto& gl_target = static_cast<GLRenderTarget&>(target);
    if (bound_target_.get() == &target)
        ResetRenderTarget();
    glDeleteFramebuffers(1, &gl_target.framebuffer);
    gl_target.framebuffer = 0;
    gl_target.attached_colors.fill(0);
    gl_target.attached_depth = 0;
    gl_target.attached_count = -1;
}

void GLRenderer::ResetRenderTarget() { SetRenderTarget(nullptr); }

void GLRenderer::SetRenderTarget(const std::shared_ptr<RenderTarget>& target)
{
    AssertRenderThread();
    bound_target_ = target;
    SetCurrentRenderTarget(target);
    const auto [width, height] = SizeOf(target.get());
    BindFramebuffer(FramebufferOf(target), width, height);
    SetViewport(Rect{0, 0, static_cast<float>(width), static_cast<float>(height)});
}

bool GLRenderer::CheckRenderTarget()
{
    AssertRenderThread();
    const GLenum status = glCheckFramebufferStatus(GL_FRAMEBUFFER);
    if (status == GL_FRAMEBUFFER_COMPLETE)
        return true;
    warn(format("Render target is incomplete (status 0x%1)") << [status] {
        char text[16];
        std::snprintf(text, sizeof text, "%x", status);
        return std::string(text);
    }());
    return false;
}

void GLRenderer::BlitRenderTarget(const std::shared_ptr<RenderTarget>& source,
                                  const std::shared_ptr<RenderTarget>& destination, const Rect& source_rect,
                                  const Rect& destination_rect, bool color, bool depth)
{
    AssertRenderThread();
    const GLbitfield mask = (color ? GL_COLOR_BUFFER_BIT : 0u) | (depth ? GL_DEPTH_BUFFER_BIT : 0u);
    if (!mask)
        return;
    // Looking a framebuffer up binds it to both points: take both names before binding either.
    const GLuint read = FramebufferOf(source);
    const GLuint draw = FramebufferOf(destination);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, read);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, draw);
    glDisable(GL_SCISSOR_TEST);
    const bool same_size =
        source_rect.Width() == destination_rect.Width() && source_rect.Height() == destination_rect.Height();
    // Depth may only be copied unfiltered.
    glBlitFramebuffer(to_int(source_rect.x1), to_int(source_rect.y1), to_int(source_rect.x2), to_int(source_rect.y2),
                      to_int(destination_rect.x1), to_int(destination_rect.y1), to_int(destination_rect.x2),
                      to_int(destination_rect.y2), mask, same_size || depth ? GL_NEAREST : GL_LINEAR);
    glBindFramebuffer(GL_FRAMEBUFFER, FramebufferOf(bound_target_));
    if (clip_enabled_)
        glEnable(GL_SCISSOR_TEST);
}

// --- fixed-function state ---

CapabilityValue GLRenderer::GetCapability(int query)
{
    AssertRenderThread();
    GLint max_samples = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &max_samples);
    switch (query) {
        case kCapabilityHardwareMultisample:
            return max_samples >= 2;
        // Float colour targets can be rendered to and blended: core in 3.3.
        case kCapabilitySecondary:
            return true;
        case kCapabilityMaxAntiAliasing: {
            std::uint8_t level = 0;
            while (level < 4 && (2 << level) <= max_samples)
                ++level;
            return level;
        }
        default:
            return Renderer::GetCapability(query);
    }
}

void GLRenderer::SetCullFront(bool cull_front)
{
    AssertRenderThread();
    glCullFace(cull_front ? GL_FRONT : GL_BACK);
}

void GLRenderer::SetFaceCulling(bool enable)
{
    AssertRenderThread();
    enable ? glEnable(GL_CULL_FACE) : glDisable(GL_CULL_FACE);
}

void GLRenderer::SetDepthFunc(DepthFunc function)
{
    AssertRenderThread();
    glDepthFunc(gl_depth_func(function));
}

void GLRenderer::SetDepthTest(bool enable)
{
    AssertRenderThread();
    enable ? glEnable(GL_DEPTH_TEST) : glDisable(GL_DEPTH_TEST);
}

void GLRenderer::SetDepthWrite(bool enable)
{
    AssertRenderThread();
    depth_write_ = enable;
    glDepthMask(enable ? GL_TRUE : GL_FALSE);
}

void GLRenderer::SetBlendFunc(BlendFactor source, BlendFactor destination)
{
    AssertRenderThread();
    glBlendFunc(gl_blend_factor(source), gl_blend_factor(destination));
}

void GLRenderer::SetBlend(bool enable)
{
    AssertRenderThread();
    enable ? glEnable(GL_BLEND) : glDisable(GL_BLEND);
}

void GLRenderer::SetAlphaToCoverage(bool enable)
{
    AssertRenderThread();
    enable ? glEnable(GL_SAMPLE_ALPHA_TO_COVERAGE) : glDisable(GL_SAMPLE_ALPHA_TO_COVERAGE);
}

void GLRenderer::ClearClipRect()
{
    AssertRenderThread();
    clip_enabled_ = false;
    glDisable(GL_SCISSOR_TEST);
}

void GLRenderer::SetClipRect(const Rect& rect)
{
    AssertRenderThread();
    clip_rect_ = rect;
    clip_enabled_ = true;
    glEnable(GL_SCISSOR_TEST);
    glScissor(to_int(rect.x1), to_int(rect.y1), std::max(0, to_int(rect.Width())), std::max(0, to_int(rect.Height())));
}

Rect GLRenderer::GetClipRect() { return clip_rect_; }

void GLRenderer::SetViewport(const Rect& rect)
{
    AssertRenderThread();
    viewport_ = rect;
    ++builtins_generation_;
    glViewport(to_int(rect.x1), to_int(rect.y1), std::max(0, to_int(rect.Width())), std::max(0, to_int(rect.Height())));
}

Rect GLRenderer::GetViewport() { return viewport_; }

void GLRenderer::Clear(const Color& color, float depth, std::uint32_t planes)
{
    AssertRenderThread();
    GLbitfield mask = 0;
    if (planes & kClearColor) {
        glClearColor(color.r, color.g, color.b, color.a);
        mask |= GL_COLOR_BUFFER_BIT;
    }
    if (planes & kClearDepth) {
        glClearDepth(depth);
        mask |= GL_DEPTH_BUFFER_BIT;
        // A clear writes depth only where writing is on.
        glDepthMask(GL_TRUE);
    }
    glClear(mask);
    glDepthMask(depth_write_ ? GL_TRUE : GL_FALSE);
}

// --- drawing ---

void GLRenderer::SetIndexSource(const std::shared_ptr<GpuBuffer>& buffer)
{
    if (buffer.get() != index_source_.get())
        index_source_ = std::static_pointer_cast<GLBuffer>(buffer);
}

void GLRenderer::SetVertexSource(const std::shared_ptr<GpuBuffer>& buffer, const VertexLayout& layout)
{
    AssertRenderThread();
    // The same buffer with the same layout keeps its vertex array.
    if (buffer && buffer.get() == vertex_source_.get() && vertex_array_ && layout == vertex_layout_ &&
        vertex_source_->gl_name == vertex_array_buffer_)
        return;
    vertex_source_ = std::static_pointer_cast<GLBuffer>(buffer);
    vertex_stride_ = layout.GetStride();
    vertex_layout_ = layout;
    vertex_array_buffer_ = vertex_source_ ? vertex_source_->gl_name : 0;
    if (!vertex_source_ || !vertex_source_->gl_name) {
        vertex_array_ = 0;
        return;
    }
    const VertexArrayKey key{vertex_source_->gl_name, layout};
    if (auto it = vertex_arrays_.find(key); it != vertex_arrays_.end()) {
        vertex_array_ = it->second;
        return;
    }
    glGenVertexArrays(1, &vertex_array_);
    BindVertexArray(vertex_array_);
    BindArrayBuffer(vertex_source_->gl_name);
    static constexpr GLenum kTypes[] = {GL_BYTE, GL_UNSIGNED_BYTE, GL_SHORT, GL_UNSIGNED_SHORT,
                                        GL_INT,  GL_UNSIGNED_INT,  GL_FLOAT, GL_FLOAT};
    std::uintptr_t offset = 0;
    for (const VertexLayout::Attribute& attribute : layout.GetAttributes()) {
        if (attribute.semantic == VertexLayout::kEnd)
            break;
        const int count = attribute.format & 0x0f;
        const int type = (attribute.format >> 4) & 0x07;
        const bool normalised = (attribute.format & 0x80) != 0;
        if (attribute.semantic < 14) {
            glEnableVertexAttribArray(attribute.semantic);
            glVertexAttribPointer(attribute.semantic, count, kTypes[type], normalised ? GL_TRUE : GL_FALSE,
                                  layout.GetStride(), reinterpret_cast<const void*>(offset));
        }
        offset += (VertexLayout::ComponentSize(static_cast<std::uint8_t>(type)) * count + 1) & ~1;
    }
    vertex_arrays_.emplace(key, vertex_array_);
}

void GLRenderer::ReleaseVertexArraysOf(GLuint buffer)
{
    for (auto it = vertex_arrays_.begin(); it != vertex_arrays_.end();) {
        if (it->first.buffer == buffer) {
            if (vertex_array_ == it->second)
                vertex_array_ = 0;
            if (bound_vertex_array_ == it->second)
                bound_vertex_array_ = 0;
            glDeleteVertexArrays(1, &it->second);
            it = vertex_arrays_.erase(it);
        } else {
            ++it;
        }
    }
}

void GLRenderer::BindVertexArray(GLuint vertex_array)
{
    if (bound_vertex_array_ == vertex_array && vertex_array)
        return;
    glBindVertexArray(vertex_array);
    bound_vertex_array_ = vertex_array;
    // Each vertex array has its own index buffer binding.
    bound_index_buffer_ = 0;
}

void GLRenderer::BindArrayBuffer(GLuint buffer)
{
    if (bound_array_buffer_ == buffer && buffer)
        return;
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    bound_array_buffer_ = buffer;
}

bool GLRenderer::PrepareDraw(IndexType index_type, std::uint32_t index_count, std::uint32_t first_index)
{
    AssertRenderThread();
    draw_range_known_ = false;
    if (!bound_shader_ || !vertex_array_ || !index_source_ || !index_source_->gl_name)
        return false;
    if (index_source_->staged || vertex_source_->staged) {
        const std::uint32_t index_size = index_type == kIndex16 ? 2u : 4u;
        // The vertices a draw reads are known when its indices are in staging memory.
        std::uint32_t first_vertex = ~0u, last_vertex = 0;
        bool vertex_range_known = index_source_->staged;
        if (vertex_range_known) {
            const std::uint64_t end = (std::uint64_t{first_index} + index_count) * index_size;
            vertex_range_known = end <= index_source_->size;
            for (std::uint32_t i = 0; vertex_range_known && i < index_count; ++i) {
                const std::uint8_t* at = index_source_->staging.data() + (std::size_t{first_index} + i) * index_size;
                std::uint32_t index = 0;
                if (index_type == kIndex16) {
                    std::uint16_t short_index;
                    std::memcpy(&short_index, at, 2);
                    index = short_index;
                } else {
                    std::memcpy(&index, at, 4);
                }
                first_vertex = std::min(first_vertex, index);
                last_vertex = std::max(last_vertex, index);
            }
            // Told the range, GL need not read the indices back to find it.
            draw_range_known_ = vertex_range_known && index_count > 0;
            draw_first_vertex_ = first_vertex;
            draw_last_vertex_ = last_vertex;
            UploadStaged(*index_source_, (first_index + index_count) * index_size);
        }
        if (vertex_source_->staged) {
            const std::uint64_t bytes = (std::uint64_t{last_vertex} + 1) * vertex_stride_;
            UploadStaged(*vertex_source_,
                         vertex_range_known && bytes < vertex_source_->size ? static_cast<std::uint32_t>(bytes) : 0);
        }
    }
    BindVertexArray(vertex_array_);
    if (bound_index_buffer_ != index_source_->gl_name) {
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, index_source_->gl_name);
        bound_index_buffer_ = index_source_->gl_name;
    }
    UploadBuiltins(*bound_shader_);
    return true;
}

void GLRenderer::DrawBuffers(IndexType index_type, std::uint32_t index_count, PrimitiveType primitive,
                             std::uint32_t first_index)
{
    if (!PrepareDraw(index_type, index_count, first_index))
        return;
    const std::uintptr_t offset = first_index * (index_type == kIndex16 ? 2u : 4u);
    const GLenum mode = primitive == kLines ? GL_LINES : GL_TRIANGLES;
    const GLenum type = index_type == kIndex16 ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT;
    if (draw_range_known_)
        glDrawRangeElements(mode, draw_first_vertex_, draw_last_vertex_, static_cast<GLsizei>(index_count), type,
                            reinterpret_cast<const void*>(offset));
    else
        glDrawElements(mode, static_cast<GLsizei>(index_count), type, reinterpret_cast<const void*>(offset));
}

void GLRenderer::DrawBuffersInstanced(const std::shared_ptr<GpuBuffer>& instances, std::uint32_t instance_count,
                                      IndexType index_type, std::uint32_t index_count, PrimitiveType primitive)
{
    auto* instance_buffer = static_cast<GLBuffer*>(instances.get());
    if (!instance_buffer || !instance_buffer->gl_name || !PrepareDraw(index_type, index_count, 0))
        return;
    UploadStaged(*instance_buffer, instance_count * 36 * sizeof(float));
    // A record is 36 floats: model and previous model as four columns each, then the picking id.
    constexpr GLsizei kRecordBytes = 36 * sizeof(float);
    BindArrayBuffer(instance_buffer->gl_name);
    auto attribute = [](GLuint location, std::uintptr_t float_offset) {
        glEnableVertexAttribArray(location);
        glVertexAttribPointer(location, 4, GL_FLOAT, GL_FALSE, kRecordBytes,
                              reinterpret_cast<const void*>(float_offset * sizeof(float)));
        glVertexAttribDivisor(location, 1);
    };
    for (GLuint column = 0; column < 4; ++column) {
        attribute(kInstanceModelMatrixLocation + column, column * 4);
        attribute(kInstancePreviousModelMatrixLocation + column, 16 + column * 4);
    }
    attribute(kInstancePickingIdLocation, 32);
    glDrawElementsInstanced(primitive == kLines ? GL_LINES : GL_TRIANGLES, static_cast<GLsizei>(index_count),
                            index_type == kIndex16 ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT, nullptr,
                            static_cast<GLsizei>(instance_count));
    // The vertex array is shared with plain draws: take the instance attributes off again.
    for (GLuint location = kInstanceModelMatrixLocation; location <= kInstancePickingIdLocation; ++location)
        glDisableVertexAttribArray(location);
}

}  // namespace kesta
