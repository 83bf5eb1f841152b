// Programs, their variables and the built-in values of the OpenGL renderer.

#include <algorithm>
#include <cstring>
#include <vector>

#include "engine/renderer/shader/shader.h"
#include "engine/renderer/shader/shader_builtins.h"
#include "foundation/format.h"
#include "foundation/log/log.h"
#include "plugins/gl/gl_renderer.h"
#include "plugins/gl/glsl_translator.h"

namespace kesta {

namespace {

std::string info_log(GLuint object, bool program)
{
    GLint length = 0;
    program ? glGetProgramiv(object, GL_INFO_LOG_LENGTH, &length) : glGetShaderiv(object, GL_INFO_LOG_LENGTH, &length);
    std::string text(static_cast<std::size_t>(length > 0 ? length : 0), '\0');
    if (length > 0)
        program ? glGetProgramInfoLog(object, length, nullptr, text.data())
                : glGetShaderInfoLog(object, length, nullptr, text.data());
    while (!text.empty() && (text.back() == '\0' || text.back() == '\n'))
        text.pop_back();
    return text;
}

GLuint compile_stage(GLenum kind, const std::string& text, const std::string& shader_name)
{
    const GLuint stage = glCreateShader(kind);
    const char* source = text.c_str();
    glShaderSource(stage, 1, &source, nullptr);
    glCompileShader(stage);
    GLint compiled = GL_FALSE;
    glGetShaderiv(stage, GL_COMPILE_STATUS, &compiled);
    if (compiled == GL_TRUE)
        return stage;
    error(format("Cannot compile the %1 stage of shader '%2': %3")
          << (kind == GL_VERTEX_SHADER ? "Vertex" : "Pixel") << shader_name << info_log(stage, false));
    glDeleteShader(stage);
    return 0;
}

bool is_sampler(GLenum type)
{
    return type == GL_SAMPLER_2D || type == GL_SAMPLER_3D || type == GL_SAMPLER_CUBE || type == GL_SAMPLER_2D_SHADOW;
}

// Row-major 4 by 4 from the engine's 3 by 4 transform.
void expand(const Matrix4& m, float* out)
{
    std::memcpy(out, m.m, sizeof m.m);
    out[12] = out[13] = out[14] = 0.0f;
    out[15] = 1.0f;
}

void expand(const Matrix44& m, float* out) { std::memcpy(out, m.m, sizeof m.m); }

// Bitwise equality: what decides whether GL already holds a value. Cheaper than comparing the
// floats one by one, and a NaN the caller sets again counts as unchanged.
template <typename Matrix>
bool same_bits(const Matrix& a, const Matrix& b)
{
    return std::memcmp(a.m, b.m, sizeof a.m) == 0;
}

}  // namespace

std::shared_ptr<GpuShader> GLRenderer::NewShader(const std::string& name) { return WrapShader(new GLShader(name)); }

std::shared_ptr<GpuShader> GLRenderer::GetShader() { return bound_shader_; }

bool GLRenderer::TranslateShader(const Shader& shader, std::string& vertex_text, std::string& pixel_text)
{
    std::string reason;
    if (TranslateShaderToGlsl(shader, vertex_text, pixel_text, reason))
        return true;
    error(format("Cannot translate shader '%1': %2") << shader.name << reason);
    return false;
}

bool GLRenderer::CompileShader(GpuShader& shader, const std::string& vertex_text, const std::string& pixel_text)
{
    AssertRenderThread();
    auto& gl_shader = static_cast<GLShader&>(shader);
    FreeShader(shader);
    const GLuint vertex = compile_stage(GL_VERTEX_SHADER, vertex_text, shader.GetName());
    const GLuint pixel = vertex ? compile_stage(GL_FRAGMENT_SHADER, pixel_text, shader.GetName()) : 0;
    if (!pixel) {
        glDeleteShader(vertex);
        return false;
    }
    const GLuint program = glCreateProgram();
    glAttachShader(program, vertex);
    glAttachShader(program, pixel);
    glLinkProgram(program);
    glDeleteShader(vertex);
    glDeleteShader(pixel);
    GLint linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked != GL_TRUE) {
        error(format("Cannot link shader '%1': %2") << shader.GetName() << info_log(program, true));
        glDeleteProgram(program);
        return false;
    }
    gl_shader.program = program;

    // Every active uniform, with a texture unit for each sampler, fixed for the program's life.
    GLint count = 0, name_length = 0;
    glGetProgramiv(program, GL_ACTIVE_UNIFORMS, &count);
    glGetProgramiv(program, GL_ACTIVE_UNIFORM_MAX_LENGTH, &name_length);
    std::string name(static_cast<std::size_t>(name_length) + 1, '\0');
    int next_unit = 0;
    glUseProgram(program);
    for (GLint i = 0; i < count; ++i) {
        GLsizei length = 0;
        GLShader::Uniform uniform;
        glGetActiveUniform(program, static_cast<GLuint>(i), static_cast<GLsizei>(name.size()), &length, &uniform.size,
                           &uniform.type, name.data());
        std::string uniform_name(name.data(), static_cast<std::size_t>(length));
        // Arrays are reported as "name[0]"; the engine names them without the index.
        if (uniform_name.size() > 3 && uniform_name.compare(uniform_name.size() - 3, 3, "[0]") == 0)
            uniform_name.resize(uniform_name.size() - 3);
        const GLint location = glGetUniformLocation(program, uniform_name.c_str());
        if (location < 0)
            continue;
        if (is_sampler(uniform.type)) {
            uniform.texture_unit = next_unit++;
            glUniform1i(location, uniform.texture_unit);
        }
        gl_shader.uniforms[location] = uniform;
        gl_shader.locations[uniform_name] = location;
    }
    for (std::size_t semantic = 0; semantic < kShaderSemanticCount; ++semantic) {
        const ShaderBuiltin* builtin = GetShaderBuiltinBySemantic(static_cast<std::uint32_t>(semantic));
        const auto it = gl_shader.locations.find(builtin->name);
        gl_shader.semantic_locations[semantic] = it == gl_shader.locations.end() ? -1 : it->second;
    }
    gl_shader.builtins_generation = 0;
    gl_shader.matrices_valid = false;
    glUseProgram(bound_shader_ ? bound_shader_->program : 0);
    return true;
}

void GLRenderer::FreeShader(GpuShader& shader)
{
    AssertRenderThread();
    auto& gl_shader = static_cast<GLShader&>(shader);
    if (bound_shader_.get() == &gl_shader) {
        bound_shader_.reset();
        glUseProgram(0);
    }
    if (gl_shader.program)
        glDeleteProgram(gl_shader.program);
    gl_shader.program = 0;
    gl_shader.uniforms.clear();
    gl_shader.locations.clear();
    gl_shader.semantic_locations.fill(-1);
}

bool GLRenderer::SetShader(const std::shared_ptr<GpuShader>& shader)
{
    AssertRenderThread();
    // Binding the bound program again is the common case: no reference is copied for it.
    if (shader && shader.get() == bound_shader_.get())
        return shader->IsReady();
    auto gl_shader = std::static_pointer_cast<GLShader>(shader);
    if (!gl_shader || !gl_shader->IsReady() || !gl_shader->program)
        return false;
    if (gl_shader != bound_shader_) {
        glUseProgram(gl_shader->program);
        bound_shader_ = std::move(gl_shader);
    }
    return true;
}

ShaderVariable GLRenderer::GetShaderVariable(const std::string& name)
{
    if (!bound_shader_)
        return {};
    const auto it = bound_shader_->locations.find(name);
    return it == bound_shader_->locations.end() ? ShaderVariable{} : ShaderVariable{it->second};
}

ShaderVariable GLRenderer::GetShaderVariableBySemantic(int semantic)
{
    if (!bound_shader_ || !bound_shader_->HasSemantic(semantic))
        return {};
    return ShaderVariable{bound_shader_->semantic_locations[semantic]};
}

void GLRenderer::SetShaderInt(ShaderVariable variable, const int* values, int count)
{
    AssertRenderThread();
    if (!variable.IsValid() || !values || count <= 0 || !bound_shader_)
        return;
    const auto it = bound_shader_->uniforms.find(static_cast<GLint>(variable.handle));
    if (it == bound_shader_->uniforms.end())
        return;
    const GLint location = it->first;
    switch (it->second.type) {
        case GL_INT_VEC2:
            glUniform2iv(location, count / 2, values);
            break;
        case GL_INT_VEC3:
            glUniform3iv(location, count / 3, values);
            break;
        case GL_INT_VEC4:
            glUniform4iv(location, count / 4, values);
            break;
        case GL_UNSIGNED_INT:
            glUniform1uiv(location, count, reinterpret_cast<const GLuint*>(values));
            break;
        case GL_FLOAT: {
            std::vector<float> floats(values, values + count);
            glUniform1fv(location, count, floats.data());
            break;
        }
        default:
            glUniform1iv(location, count, values);
            break;
    }
}

void GLRenderer::UploadFloats(GLint location, const float* values, int float_count)
{
    const auto it = bound_shader_->uniforms.find(location);
    if (it == bound_shader_->uniforms.end() || !values || float_count <= 0)
        return;
    // The engine's matrices are row-major: GL transposes them on upload.
    switch (it->second.type) {
        case GL_FLOAT:
            glUniform1fv(location, float_count, values);
            break;
        case GL_FLOAT_VEC2:
            glUniform2fv(location, float_count / 2, values);
            break;
        case GL_FLOAT_VEC3:
            glUniform3fv(location, float_count / 3, values);
            break;
        case GL_FLOAT_VEC4:
            glUniform4fv(location, float_count / 4, values);
            break;
        case GL_FLOAT_MAT3:
            glUniformMatrix3fv(location, float_count / 9, GL_TRUE, values);
            break;
        case GL_FLOAT_MAT4:
            glUniformMatrix4fv(location, float_count / 16, GL_TRUE, values);
            break;
        default:
            break;
    }
}

void GLRenderer::SetShaderFloat(ShaderVariable variable, const float* values, int count)
{
    AssertRenderThread();
    if (variable.IsValid() && bound_shader_)
        UploadFloats(static_cast<GLint>(variable.handle), values, count);
}

void GLRenderer::SetShaderFloat2(ShaderVariable variable, const float* values, int count)
{
    SetShaderFloat(variable, values, count * 2);
}

void GLRenderer::SetShaderFloat3(ShaderVariable variable, const float* values, int count)
{
    SetShaderFloat(variable, values, count * 3);
}

void GLRenderer::BindTexture(int unit, const std::shared_ptr<Texture>& texture)
{
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
    auto* gl_texture = static_cast<GLTexture*>(texture.get());
    // A texture made directly with CreateTexture (a render target's colour) is never marked ready
    // by a loader: what counts is that its GL side exists and did not fail.
    if (!gl_texture || gl_texture->IsFailed() || !gl_texture->gl_name) {
        glBindTexture(GL_TEXTURE_2D, 0);
        return;
    }
    glBindTexture(gl_texture->target, gl_texture->gl_name);
    ApplyTextureConfig(*gl_texture);
}

void GLRenderer::SetShaderTexture(ShaderVariable variable, const std::shared_ptr<Texture>& texture)
{
    AssertRenderThread();
    if (!variable.IsValid() || !bound_shader_)
        return;
    const auto it = bound_shader_->uniforms.find(static_cast<GLint>(variable.handle));
    if (it != bound_shader_->uniforms.end() && it->second.texture_unit >= 0)
        BindTexture(it->second.texture_unit, texture);
}

void GLRenderer::SetShaderValues(const ShaderVariableTable& table, const ShaderVariableTable* material_values)
{
    AssertRenderThread();
    if (!bound_shader_)
        return;
    for (const ShaderVariableValue& variable : table.variables) {
        const ShaderVariableValue* chosen = &variable;
        if (material_values)
            if (const ShaderVariableValue* own = material_values->Find(variable.name); own && own->value)
                chosen = own;
        if (!chosen->value)
            continue;
        const ShaderValue& value = *chosen->value;
        const ShaderVariable handle = GetShaderVariable(variable.name);
        if (!handle.IsValid())
            continue;
        switch (variable.type) {
            case ShaderType::kInt:
            case ShaderType::kUint32:
                SetShaderInt(handle, value.ints[0].data(), 1);
                break;
            case ShaderType::kFloat:
                SetShaderFloat(handle, value.floats[0].data(), 1);
                break;
            case ShaderType::kVec2:
                SetShaderFloat(handle, value.floats[0].data(), 2);
                break;
            case ShaderType::kVec3:
                SetShaderFloat(handle, value.floats[0].data(), 3);
                break;
            case ShaderType::kVec4:
                SetShaderFloat(handle, value.floats[0].data(), 4);
                break;
            case ShaderType::kMat3: {
                float rows[9];
                for (int r = 0; r < 3; ++r)
                    for (int c = 0; c < 3; ++c)
                        rows[r * 3 + c] = value.floats[r][c];
                SetShaderFloat(handle, rows, 9);
                break;
            }
            case ShaderType::kMat4:
                SetShaderFloat(handle, value.floats[0].data(), 16);
                break;
            default:
                if (IsTextureShaderType(variable.type) && !value.texture_path.empty()) {
                    std::shared_ptr<Texture> texture = LoadTexture(value.texture_path, true);
                    if (texture)
                        texture->SetTextureUnitConfig(value.texture_unit);
                    SetShaderTexture(handle, texture);
                }
                break;
        }
    }
}

// --- built-ins ---

void GLRenderer::SetShaderSystemBuiltins(const ShaderSystemBuiltins& builtins)
{
    const ShaderSystemBuiltins& current = system_builtins_;
    const bool unchanged =
        builtins.clock_seconds == current.clock_seconds && builtins.internal_width == current.internal_width &&
        builtins.internal_height == current.internal_height && builtins.fx_scale == current.fx_scale &&
        builtins.ambient_color == current.ambient_color && builtins.fog_color == current.fog_color &&
        builtins.fog_near == current.fog_near && builtins.fog_far == current.fog_far &&
        builtins.technique_is_forward == current.technique_is_forward && builtins.fog_enabled == current.fog_enabled &&
        builtins.shadow_map == current.shadow_map;
    if (unchanged)
        return;
    system_builtins_ = builtins;
    ++builtins_generation_;
}

void GLRenderer::SetShaderCameraBuiltins(const Matrix4& view, float znear, float zfar, float zoom)
{
    SetViewMatrix(view);
    znear_ = znear;
    zfar_ = zfar;
    zoom_ = zoom;
    ++builtins_generation_;
}

void GLRenderer::SetShaderTransformationBuiltins(const ShaderTransformationBuiltins& builtins)
{
    // Callers set these before every draw, mostly unchanged: the derived matrices are kept then.
    const bool same_model = same_bits(builtins.model, GetModelMatrix());
    const bool same_view = same_bits(builtins.view, GetViewMatrix());
    if (same_model && same_view && same_bits(builtins.projection, GetProjectionMatrix()) &&
        same_bits(builtins.previous_model, previous_model_) && builtins.bone_count == 0 && bone_matrices_.empty())
        return;
    if (!same_model)
        SetModelMatrix(builtins.model);
    if (!same_view)
        SetViewMatrix(builtins.view);
    SetProjectionMatrix(builtins.projection);
    previous_model_ = builtins.previous_model;
    bone_matrices_.clear();
    for (int i = 0; i < builtins.bone_count && builtins.bone_matrices; ++i) {
        float row_major[16];
        expand(builtins.bone_matrices[i], row_major);
        bone_matrices_.insert(bone_matrices_.end(), row_major, row_major + 16);
    }
    ++builtins_generation_;
}

void GLRenderer::SetShaderLightBuiltins(const ShaderLightBuiltins& builtins)
{
    light_builtins_ = builtins;
    ++builtins_generation_;
}

void GLRenderer::SetShaderPickingId(std::uint32_t id)
{
    picking_id_ = id;
    ++builtins_generation_;
}

void GLRenderer::UploadMatrix(int semantic, const float* row_major_4x4)
{
    const GLint location = bound_shader_->semantic_locations[semantic];
    if (location < 0)
        return;
    const auto it = bound_shader_->uniforms.find(location);
    if (it != bound_shader_->uniforms.end() && it->second.type == GL_FLOAT_MAT3) {
        const float* m = row_major_4x4;
        const float rows[9] = {m[0], m[1], m[2], m[4], m[5], m[6], m[8], m[9], m[10]};
        glUniformMatrix3fv(location, 1, GL_TRUE, rows);
    } else {
        glUniformMatrix4fv(location, 1, GL_TRUE, row_major_4x4);
    }
}

void GLRenderer::UploadBuiltins(GLShader& shader)
{
    using S = ShaderSemantic;
    auto has = [&shader](S semantic) { return shader.semantic_locations[static_cast<int>(semantic)] >= 0; };
    auto location = [&shader](S semantic) { return shader.semantic_locations[static_cast<int>(semantic)]; };

    // The program's copy of the matrices says whether they changed since it last drew.
    if (!shader.matrices_valid || !same_bits(GetModelMatrix(), shader.model_uploaded) ||
        !same_bits(GetViewMatrix(), shader.view_uploaded) ||
        !same_bits(GetProjectionMatrix(), shader.projection_uploaded)) {
        shader.model_uploaded = GetModelMatrix();
        shader.view_uploaded = GetViewMatrix();
        shader.projection_uploaded = GetProjectionMatrix();
        shader.matrices_valid = true;
        const Matrix44 model = Matrix44::FromMatrix4(GetModelMatrix());
        // The renderer's view matrix is the camera's world matrix; shaders take the transform from
        // world to view space, its inverse, as vViewMatrix and in every product.
        const Matrix44 view = Matrix44::FromMatrix4(GetInverseViewMatrix());
        const Matrix44& projection = GetProjectionMatrix();
        const Matrix44 model_view = view * model;
        const Matrix44 view_projection = projection * view;
        float m[16];
        auto upload = [&](S semantic, const Matrix44& matrix) {
            if (has(semantic)) {
                expand(matrix, m);
                UploadMatrix(static_cast<int>(semantic), m);
            }
        };
        upload(S::kModelMatrix, model);
        upload(S::kInverseModelMatrix, Matrix44::FromMatrix4(GetModelMatrix().Inverse()));
        upload(S::kNormalMatrix, Matrix44::FromMatrix4(GetNormalMatrix()));
        upload(S::kViewMatrix, view);
        upload(S::kInverseViewMatrix, Matrix44::FromMatrix4(GetViewMatrix()));
        upload(S::kModelViewMatrix, model_view);
        upload(S::kNormalViewMatrix, view * Matrix44::FromMatrix4(GetNormalMatrix()));
        upload(S::kProjectionMatrix, projection);
        upload(S::kViewProjectionMatrix, view_projection);
        upload(S::kModelViewProjectionMatrix, projection * model_view);
        upload(S::kInverseViewProjectionMatrix, view_projection.Inverse());
        if (has(S::kInverseViewProjectionMatrixAtOrigin)) {
            Matrix4 rotation_only = GetInverseViewMatrix();
            rotation_only.SetTranslation({});
            upload(S::kInverseViewProjectionMatrixAtOrigin,
                   (projection * Matrix44::FromMatrix4(rotation_only)).Inverse());
        }
    }
    if (shader.builtins_generation == builtins_generation_)
        return;
    shader.builtins_generation = builtins_generation_;

    float m[16];
    auto upload4 = [&](S semantic, const Matrix4& matrix) {
        if (has(semantic)) {
            expand(matrix, m);
            UploadMatrix(static_cast<int>(semantic), m);
        }
    };
    upload4(S::kPreviousModelMatrix, previous_model_);
    upload4(S::kPreviousViewMatrix, GetPreviousInverseViewMatrix());
    upload4(S::kInversePreviousViewMatrix, GetPreviousViewMatrix());
    if (has(S::kBoneMatrix) && !bone_matrices_.empty())
        glUniformMatrix4fv(location(S::kBoneMatrix), static_cast<GLsizei>(bone_matrices_.size() / 16), GL_TRUE,
                           bone_matrices_.data());

    const ShaderSystemBuiltins& system = system_builtins_;
    if (has(S::kClock))
        glUniform1f(location(S::kClock), system.clock_seconds);
    if (has(S::kViewport))
        glUniform4f(location(S::kViewport), viewport_.x1, viewport_.y1, viewport_.Width(), viewport_.Height());
    if (has(S::kInverseViewportSize))
        glUniform4f(location(S::kInverseViewportSize), viewport_.Width() > 0 ? 1.0f / viewport_.Width() : 0.0f,
                    viewport_.Height() > 0 ? 1.0f / viewport_.Height() : 0.0f, viewport_.Width(), viewport_.Height());
    if (has(S::kInverseInternalResolution)) {
        const float width = static_cast<float>(system.internal_width > 0 ? system.internal_width : output_width_);
        const float height = static_cast<float>(system.internal_height > 0 ? system.internal_height : output_height_);
        glUniform4f(location(S::kInverseInternalResolution), 1.0f / width, 1.0f / height, width, height);
    }
    if (has(S::kTechniqueIsForward))
        glUniform1i(location(S::kTechniqueIsForward), system.technique_is_forward ? 1 : 0);
    if (has(S::kFxScale))
        glUniform1i(location(S::kFxScale), system.fx_scale);
    if (has(S::kAmbientColor))
        glUniform3f(location(S::kAmbientColor), system.ambient_color.r, system.ambient_color.g, system.ambient_color.b);
    if (has(S::kFogColor))
        glUniform3f(location(S::kFogColor), system.fog_color.r, system.fog_color.g, system.fog_color.b);
    if (has(S::kFogState))
        glUniform3f(location(S::kFogState), system.fog_near, system.fog_far, system.fog_enabled ? 1.0f : 0.0f);
    if (has(S::kViewPosition)) {
        // The camera's place: the translation of its world matrix.
        const Vector3 position = GetViewMatrix().Translation();
        glUniform4f(location(S::kViewPosition), position.x, position.y, position.z, 1.0f);
    }
    if (has(S::kViewState))
        glUniform4f(location(S::kViewState), znear_, zfar_, zoom_, 0.0f);
    if (has(S::kPickingId)) {
        const std::uint32_t id = picking_id_;
        glUniform4f(location(S::kPickingId), static_cast<float>(id & 0xff) / 255.0f,
                    static_cast<float>((id >> 8) & 0xff) / 255.0f, static_cast<float>((id >> 16) & 0xff) / 255.0f,
                    static_cast<float>((id >> 24) & 0xff) / 255.0f);
    }

    const ShaderLightBuiltins& light = light_builtins_;
    if (has(S::kLightDiffuseColor))
        glUniform3f(location(S::kLightDiffuseColor), light.diffuse.r, light.diffuse.g, light.diffuse.b);
    if (has(S::kLightSpecularColor))
        glUniform3f(location(S::kLightSpecularColor), light.specular.r, light.specular.g, light.specular.b);
    if (has(S::kLightShadowColor))
        glUniform3f(location(S::kLightShadowColor), light.shadow_color.r, light.shadow_color.g, light.shadow_color.b);
    if (has(S::kLightViewPosition)) {
        const Vector3 position = light.view_space_transform.Translation();
        glUniform3f(location(S::kLightViewPosition), position.x, position.y, position.z);
    }
    if (has(S::kLightViewDirection)) {
        const Vector3 direction = light.view_space_transform.Axis(2);
        glUniform3f(location(S::kLightViewDirection), direction.x, direction.y, direction.z);
    }
    if (has(S::kLightState))
        glUniform4f(location(S::kLightState), light.range, light.cone_cos_inner, light.cone_cos_outer,
                    light.shadow_bias);
    if (has(S::kInverseShadowMapSize))
        glUniform1f(location(S::kInverseShadowMapSize), light.inverse_shadow_map_size);
    if (has(S::kLightPSSMSliceDistance) && light.slice_distances) {
        float distances[4] = {};
        for (int i = 0; i < std::min(light.slice_count, 4); ++i)
            distances[i] = light.slice_distances[i];
        glUniform4fv(location(S::kLightPSSMSliceDistance), 1, distances);
    }
    if (has(S::kLightShadowMatrix) && light.slice_matrices && light.slice_count > 0)
        glUniformMatrix4fv(location(S::kLightShadowMatrix), std::min(light.slice_count, 6), GL_TRUE,
                           light.slice_matrices[0].m);
    auto texture_semantic = [&](S semantic, const std::shared_ptr<Texture>& texture) {
        if (!has(semantic))
            return;
        const auto it = shader.uniforms.find(location(semantic));
        if (it != shader.uniforms.end() && it->second.texture_unit >= 0)
            BindTexture(it->second.texture_unit, texture);
    };
    texture_semantic(S::kLightShadowMap, light.shadow_map ? light.shadow_map : system.shadow_map);
    texture_semantic(S::kLightProjectionMap, light.projection_map);
}

}  // namespace kesta
