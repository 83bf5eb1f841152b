// Unpaced frame rate of the default viewer (two 1512 x 1680 eyes and a 1280 x 720 side-by-side
// mirror, the demo scene, the simulated headset unpaced, Mesa's software rasteriser), beside a
// hand-written raw-GL program that does the same passes with the same geometry: per eye, clear a
// colour and depth target, draw the scene, copy it into the eye texture; then both eyes into the
// mirror. Both report frames per second ("fps").
#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

#include "apps/viewer/demo_scene.h"
#include "apps/viewer/viewer_runtime_config.h"
#include "apps/viewer/viewer_session.h"
#include "foundation/math/matrix44.h"
#include "foundation/math/projection.h"
#include "foundation/task/task_system.h"
#include "platform/headless_gl/headless_gl_context.h"
#include "plugins/engine_singletons.h"
#include "plugins/vr/runtime_choice/vr_runtime_choice.h"

namespace {

constexpr GLsizei kEyeWidth = 1512;
constexpr GLsizei kEyeHeight = 1680;
constexpr GLsizei kMirrorWidth = 1280;
constexpr GLsizei kMirrorHeight = 720;

void SetFramesPerSecond(benchmark::State& state)
{
    state.counters["fps"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// The viewer's own frame, as `make run` runs it, with the capture off.
void BM_ViewerFrame(benchmark::State& state)
{
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "norvane_viewer_frame_bench";
    std::filesystem::create_directories(folder);
    const std::string config = (folder / "vrsim.json").string();
    std::string error;
    // Capture frame 0 is never drawn: nothing is read back.
    if (!kesta::WriteViewerRuntimeConfig(NORVANE_VIEWER_DEMO_CONFIG, {false, folder.string(), 0}, config, error)) {
        state.SkipWithError(error.c_str());
        return;
    }
    kesta::SelectSimulatedRuntime(NORVANE_VRSIM_DIR, folder.string(), config);
    {
        kesta::EngineSingletons engine;
        engine.tasks().start(0);
        kesta::ViewerSession session(engine);
        if (!session.Start({NORVANE_PLUGIN_DIR, 0}, error)) {
            state.SkipWithError(error.c_str());
            return;
        }
        for (int warm_up = 0; warm_up < 3; ++warm_up)
            session.RunFrame();
        for (auto _ : state)
            session.RunFrame();
        session.Stop();
    }
    SetFramesPerSecond(state);
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_ViewerFrame)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(5.0);

GLuint Compile(GLenum stage, const char* source)
{
    const GLuint shader = glCreateShader(stage);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return shader;
}

GLuint Link(const char* vertex, const char* pixel)
{
    const GLuint program = glCreateProgram();
    const GLuint vs = Compile(GL_VERTEX_SHADER, vertex);
    const GLuint ps = Compile(GL_FRAGMENT_SHADER, pixel);
    glAttachShader(program, vs);
    glAttachShader(program, ps);
    glLinkProgram(program);
    glDeleteShader(vs);
    glDeleteShader(ps);
    GLint linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    return linked == GL_TRUE ? program : 0;
}

GLuint MakeTexture(GLsizei width, GLsizei height)
{
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    return texture;
}

GLuint MakeFramebuffer(GLuint color, GLuint depth)
{
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, color, 0);
    if (depth != 0)
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth);
    return framebuffer;
}

// Column-major 4 x 4 of a row-by-row Matrix44, as GL takes it.
void Transpose(const kesta::Matrix44& m, float out[16])
{
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            out[c * 4 + r] = m.m[r * 4 + c];
}

// The same passes by hand: one program, one vertex buffer, plain GL calls.
void BM_RawGLFrame(benchmark::State& state)
{
    std::string error;
    auto gl = kesta::HeadlessGLContext::Create(3, 3, &error);
    if (!gl || !gl->MakeCurrent()) {
        state.SkipWithError(("no headless GL context: " + error).c_str());
        return;
    }
    const GLuint scene_program = Link(
        "#version 330 core\nlayout(location = 0) in vec3 p; layout(location = 1) in vec4 c; uniform mat4 mvp;\n"
        "out vec4 v; void main() { v = c; gl_Position = mvp * vec4(p, 1.0); }\n",
        "#version 330 core\nin vec4 v; out vec4 o; void main() { o = v; }\n");
    const GLuint copy_program = Link(
        "#version 330 core\nout vec2 uv; void main() { vec2 q = vec2(gl_VertexID & 1, gl_VertexID >> 1);\n"
        "uv = q; gl_Position = vec4(q * 2.0 - 1.0, 0.0, 1.0); }\n",
        "#version 330 core\nin vec2 uv; uniform sampler2D t; out vec4 o; void main() { o = texture(t, uv); }\n");
    if (scene_program == 0 || copy_program == 0) {
        state.SkipWithError("shaders did not link");
        return;
    }

    // The viewer's scene with its three device markers, as interleaved position and colour.
    kesta::SceneGeometry geometry;
    kesta::AppendDemoScene(geometry);
    for (const kesta::Vector3 at :
         {kesta::Vector3{-0.35f, 1.2f, -0.6f}, kesta::Vector3{0.35f, 1.2f, -0.6f}, kesta::Vector3{0.0f, 0.9f, 0.7f}})
        kesta::AppendDeviceMarker(geometry, kesta::Matrix4::FromPosition(at), {1, 0.5f, 0.1f, 1});
    std::vector<kesta::SceneVertex> vertices = geometry.triangles;
    vertices.insert(vertices.end(), geometry.lines.begin(), geometry.lines.end());
    GLuint vao = 0, vbo = 0;
    glGenVertexArrays(1, &vao);
    glBindVertexArray(vao);
    glGenBuffers(1, &vbo);
    glBindBuffer(GL_ARRAY_BUFFER, vbo);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(kesta::SceneVertex)),
                 vertices.data(), GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, sizeof(kesta::SceneVertex), nullptr);
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 4, GL_FLOAT, GL_FALSE, sizeof(kesta::SceneVertex),
                          reinterpret_cast<const void*>(offsetof(kesta::SceneVertex, color)));
    const auto triangle_count = static_cast<GLsizei>(geometry.triangles.size());
    const auto line_count = static_cast<GLsizei>(geometry.lines.size());

    // Per eye a colour and depth target the scene is drawn into, and the eye texture it is copied
    // to; the mirror's target.
    GLuint depth = 0;
    glGenRenderbuffers(1, &depth);
    glBindRenderbuffer(GL_RENDERBUFFER, depth);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, kEyeWidth, kEyeHeight);
    const GLuint draw_target = MakeFramebuffer(MakeTexture(kEyeWidth, kEyeHeight), depth);
    const GLuint eye_textures[2] = {MakeTexture(kEyeWidth, kEyeHeight), MakeTexture(kEyeWidth, kEyeHeight)};
    const GLuint eye_targets[2] = {MakeFramebuffer(eye_textures[0], 0), MakeFramebuffer(eye_textures[1], 0)};
    const GLuint mirror_texture = MakeTexture(kMirrorWidth, kMirrorHeight);
    const GLuint mirror_target = MakeFramebuffer(mirror_texture, 0);

    // Eyes 63 mm apart, a metre and a half from the scene's centre.
    const kesta::Matrix44 projection = kesta::PerspectiveFromFieldOfView(1.75f, 0.9f, 0.05f, 100.0f);
    float mvp[2][16];
    for (int eye = 0; eye < 2; ++eye) {
        const kesta::Matrix4 view = kesta::Matrix4::FromPosition({eye == 0 ? 0.0315f : -0.0315f, -1.4f, 1.5f});
        kesta::Matrix44 view44;
        for (int i = 0; i < 12; ++i)
            view44.m[i] = view.m[i];
        Transpose(projection * view44, mvp[eye]);
    }
    const GLint mvp_location = glGetUniformLocation(scene_program, "mvp");

    for (auto _ : state) {
        for (int eye = 0; eye < 2; ++eye) {
            glBindFramebuffer(GL_FRAMEBUFFER, draw_target);
            glViewport(0, 0, kEyeWidth, kEyeHeight);
            glEnable(GL_DEPTH_TEST);
            glDepthMask(GL_TRUE);
            glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
            glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
            glUseProgram(scene_program);
            glUniformMatrix4fv(mvp_location, 1, GL_FALSE, mvp[eye]);
            glBindVertexArray(vao);
            glDrawArrays(GL_TRIANGLES, 0, triangle_count);
            glDrawArrays(GL_LINES, triangle_count, line_count);
            // Into the eye texture.
            glBindFramebuffer(GL_READ_FRAMEBUFFER, draw_target);
            glBindFramebuffer(GL_DRAW_FRAMEBUFFER, eye_targets[eye]);
            glBlitFramebuffer(0, 0, kEyeWidth, kEyeHeight, 0, 0, kEyeWidth, kEyeHeight, GL_COLOR_BUFFER_BIT,
                              GL_NEAREST);
        }
        // The eyes are complete before they are mirrored: the VR frame waits here too, so that the
        // compositor has them.
        glFinish();
        // Both eyes into the mirror, as textured quads.
        glBindFramebuffer(GL_FRAMEBUFFER, mirror_target);
        glDisable(GL_DEPTH_TEST);
        glUseProgram(copy_program);
        for (int eye = 0; eye < 2; ++eye) {
            glViewport(eye * kMirrorWidth / 2, 0, kMirrorWidth / 2, kMirrorHeight);
            glBindTexture(GL_TEXTURE_2D, eye_textures[eye]);
            glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
        }
    }
    glFinish();
    SetFramesPerSecond(state);
}
BENCHMARK(BM_RawGLFrame)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(5.0);

}  // namespace

BENCHMARK_MAIN();
