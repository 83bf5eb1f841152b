// A small OpenVR application in the usual "hello VR" shape, run against the simulated runtime through
// the client layer: it loads every device's render model, uploads it to OpenGL (core profile on the
// headless EGL context), draws a few frames for both eyes and submits them. The captured pictures
// must show the controllers where the scripted poses put them and nothing anywhere else.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>
#include <stb_image.h>
#include <stb_image_write.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "platform/headless_gl/headless_gl_context.h"
#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/openvr_tests/vrsim_test_support.h"

namespace kesta {
namespace {

using testing::IsolatedOpenVREnvironment;

constexpr int kEyeSize = 256;
constexpr double kHalfFovDegrees = 30.0;
constexpr double kIpd = 0.064;
constexpr int kFrames = 3;
constexpr float kClear[3] = {0.05f, 0.05f, 0.1f};

// Head at (0, 1.6, 0) looking down -Z; both controllers in front of it, the base station behind it.
constexpr double kHead[3] = {0.0, 1.6, 0.0};
constexpr double kLeftController[3] = {-0.15, 1.5, -0.5};
constexpr double kRightController[3] = {0.12, 1.65, -0.4};

std::string WorldConfig(const std::string& png_folder)
{
    return R"({"paced": false, "render_width": 256, "render_height": 256, "ipd_meters": 0.064,
      "fov_degrees": {"left": {"left": 30, "right": 30, "up": 30, "down": 30},
                      "right": {"left": 30, "right": 30, "up": 30, "down": 30}},
      "head": {"path": "static", "position": [0, 1.6, 0]},
      "devices": [
        {"class": "controller", "role": "left_hand", "position": [-0.15, 1.5, -0.5]},
        {"class": "controller", "role": "right_hand", "position": [0.12, 1.65, -0.4]},
        {"class": "tracking_reference", "position": [0, 2.2, 3]}],
      "capture": {"png_folder": ")" +
           png_folder + R"(", "png_frames": [3]}})";
}

// Row-major 4x4 matrices, uploaded with transpose = GL_TRUE.
using Mat4 = std::array<float, 16>;

Mat4 FromPose(const vr::HmdMatrix34_t& m)
{
    return {m.m[0][0], m.m[0][1], m.m[0][2], m.m[0][3], m.m[1][0], m.m[1][1], m.m[1][2], m.m[1][3],
            m.m[2][0], m.m[2][1], m.m[2][2], m.m[2][3], 0.0f,      0.0f,      0.0f,      1.0f};
}

Mat4 FromProjection(const vr::HmdMatrix44_t& m)
{
    Mat4 out{};
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            out[r * 4 + c] = m.m[r][c];
    return out;
}

Mat4 Multiply(const Mat4& a, const Mat4& b)
{
    Mat4 out{};
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            for (int k = 0; k < 4; ++k)
                out[r * 4 + c] += a[r * 4 + k] * b[k * 4 + c];
    return out;
}

// Inverse of a rotation plus translation: transposed rotation, rotated and negated translation.
Mat4 InverseRigid(const Mat4& m)
{
    Mat4 out{};
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c)
            out[r * 4 + c] = m[c * 4 + r];
        out[r * 4 + 3] = -(m[0 * 4 + r] * m[3] + m[1 * 4 + r] * m[7] + m[2 * 4 + r] * m[11]);
    }
    out[15] = 1.0f;
    return out;
}

GLuint Compile(GLenum type, const char* source)
{
    const GLuint shader = glCreateShader(type);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint ok = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &ok);
    EXPECT_EQ(ok, GL_TRUE) << "shader does not compile";
    return shader;
}

GLuint TexturedProgram()
{
    const GLuint vertex = Compile(GL_VERTEX_SHADER, R"(#version 330 core
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec2 uv;
uniform mat4 mvp;
out vec3 v_normal;
out vec2 v_uv;
void main() { gl_Position = mvp * vec4(position, 1.0); v_normal = normal; v_uv = uv; })");
    const GLuint fragment = Compile(GL_FRAGMENT_SHADER, R"(#version 330 core
in vec3 v_normal;
in vec2 v_uv;
uniform sampler2D diffuse;
out vec4 colour;
void main() {
    float light = 0.7 + 0.3 * max(dot(normalize(v_normal), normalize(vec3(0.3, 1.0, 0.6))), 0.0);
    colour = vec4(texture(diffuse, v_uv).rgb * light, 1.0);
})");
    const GLuint program = glCreateProgram();
    glAttachShader(program, vertex);
    glAttachShader(program, fragment);
    glLinkProgram(program);
    glDeleteShader(vertex);
    glDeleteShader(fragment);
    GLint ok = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &ok);
    EXPECT_EQ(ok, GL_TRUE) << "program does not link";
    return program;
}

// One device's model as the GL objects it was uploaded to.
struct GLModel {
    GLuint vertex_array = 0;
    GLuint buffers[2] = {};
    GLuint texture = 0;
    GLsizei index_count = 0;
};

struct EyeTarget {
    GLuint framebuffer = 0;
    GLuint colour = 0;
    GLuint depth = 0;
};

class HelloVrApplication {
public:
    ~HelloVrApplication()
    {
        for (auto& [name, model] : models_) {
            glDeleteVertexArrays(1, &model.vertex_array);
            glDeleteBuffers(2, model.buffers);
            glDeleteTextures(1, &model.texture);
        }
        for (EyeTarget& eye : eyes_) {
            glDeleteFramebuffers(1, &eye.framebuffer);
            glDeleteTextures(1, &eye.colour);
            glDeleteRenderbuffers(1, &eye.depth);
        }
        if (program_ != 0)
            glDeleteProgram(program_);
        if (system_ != nullptr)
            vr::VR_Shutdown();
    }

    void Start()
    {
        vr::EVRInitError error = vr::VRInitError_Unknown;
        system_ = vr::VR_Init(&error, vr::VRApplication_Scene);
        ASSERT_EQ(error, vr::VRInitError_None);
        ASSERT_NE(system_, nullptr);
        render_models_ =
            static_cast<vr::IVRRenderModels*>(vr::VR_GetGenericInterface(vr::IVRRenderModels_Version, &error));
        ASSERT_EQ(error, vr::VRInitError_None);
        ASSERT_NE(render_models_, nullptr);
        compositor_ = vr::VRCompositor();
        ASSERT_NE(compositor_, nullptr);
        program_ = TexturedProgram();
        uint32_t width = 0, height = 0;
        system_->GetRecommendedRenderTargetSize(&width, &height);
        for (EyeTarget& eye : eyes_)
            MakeEyeTarget(eye, static_cast<GLsizei>(width), static_cast<GLsizei>(height));
        target_width_ = static_cast<GLsizei>(width);
        target_height_ = static_cast<GLsizei>(height);
    }

    // Each connected device other than the headset gets its render model, polled until it is ready.
    void SetUpRenderModels()
    {
        for (vr::TrackedDeviceIndex_t device = vr::k_unTrackedDeviceIndex_Hmd + 1;
             device < vr::k_unMaxTrackedDeviceCount; ++device) {
            if (!system_->IsTrackedDeviceConnected(device))
                continue;
            const std::string name = RenderModelName(device);
            ASSERT_FALSE(name.empty()) << "device " << device;
            device_models_[device] = name;
            if (models_.count(name) == 0) {
                ASSERT_NO_FATAL_FAILURE(LoadModel(name));
            }
        }
    }

    void RunFrame()
    {
        std::array<vr::TrackedDevicePose_t, vr::k_unMaxTrackedDeviceCount> poses{};
        ASSERT_EQ(compositor_->WaitGetPoses(poses.data(), vr::k_unMaxTrackedDeviceCount, nullptr, 0),
                  vr::VRCompositorError_None);
        vr::VREvent_t event{};
        while (system_->PollNextEvent(&event, sizeof(event)))
            ++events_seen_;
        ASSERT_FALSE(system_->IsInputFocusCapturedByAnotherProcess());
        for (vr::TrackedDeviceIndex_t device = 0; device < vr::k_unMaxTrackedDeviceCount; ++device) {
            if (system_->GetTrackedDeviceClass(device) != vr::TrackedDeviceClass_Controller)
                continue;
            vr::VRControllerState_t state{};
            ASSERT_TRUE(system_->GetControllerState(device, &state, sizeof(state))) << "controller " << device;
        }
        ASSERT_TRUE(poses[vr::k_unTrackedDeviceIndex_Hmd].bPoseIsValid);
        const Mat4 head = FromPose(poses[vr::k_unTrackedDeviceIndex_Hmd].mDeviceToAbsoluteTracking);
        for (vr::EVREye eye : {vr::Eye_Left, vr::Eye_Right}) {
            const Mat4 view = InverseRigid(Multiply(head, FromPose(system_->GetEyeToHeadTransform(eye))));
            const Mat4 view_projection =
                Multiply(FromProjection(system_->GetProjectionMatrix(eye, 0.05f, 20.0f)), view);
            DrawEye(eyes_[eye], view_projection, poses);
            const vr::Texture_t texture{reinterpret_cast<void*>(static_cast<uintptr_t>(eyes_[eye].colour)),
                                        vr::TextureType_OpenGL, vr::ColorSpace_Gamma};
            ASSERT_EQ(compositor_->Submit(eye, &texture, nullptr, vr::Submit_Default), vr::VRCompositorError_None);
        }
        ASSERT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    }

    int events_seen() const { return events_seen_; }
    int loading_answers() const { return loading_answers_; }
    const std::map<vr::TrackedDeviceIndex_t, std::string>& device_models() const { return device_models_; }

private:
    std::string RenderModelName(vr::TrackedDeviceIndex_t device)
    {
        vr::ETrackedPropertyError error = vr::TrackedProp_Success;
        const uint32_t size =
            system_->GetStringTrackedDeviceProperty(device, vr::Prop_RenderModelName_String, nullptr, 0, &error);
        if (size == 0)
            return {};
        std::string name(size, '\0');
        system_->GetStringTrackedDeviceProperty(device, vr::Prop_RenderModelName_String, name.data(), size, &error);
        EXPECT_EQ(error, vr::TrackedProp_Success);
        name.resize(size - 1);
        return name;
    }

    // The polling loops of a real application, without its sleep: the runtime answers "loading" a
    // fixed number of times, so the loops end; the bound only guards against a runtime that never
    // finishes.
    void LoadModel(const std::string& name)
    {
        vr::RenderModel_t* model = nullptr;
        vr::EVRRenderModelError error = vr::VRRenderModelError_Loading;
        for (int attempt = 0; attempt < 100 && error == vr::VRRenderModelError_Loading; ++attempt) {
            error = render_models_->LoadRenderModel_Async(name.c_str(), &model);
            loading_answers_ += error == vr::VRRenderModelError_Loading ? 1 : 0;
        }
        ASSERT_EQ(error, vr::VRRenderModelError_None) << render_models_->GetRenderModelErrorNameFromEnum(error);
        ASSERT_NE(model, nullptr);
        vr::RenderModel_TextureMap_t* texture = nullptr;
        error = vr::VRRenderModelError_Loading;
        for (int attempt = 0; attempt < 100 && error == vr::VRRenderModelError_Loading; ++attempt) {
            error = render_models_->LoadTexture_Async(model->diffuseTextureId, &texture);
            loading_answers_ += error == vr::VRRenderModelError_Loading ? 1 : 0;
        }
        ASSERT_EQ(error, vr::VRRenderModelError_None) << render_models_->GetRenderModelErrorNameFromEnum(error);
        ASSERT_NE(texture, nullptr);

        GLModel& gl = models_[name];
        glGenVertexArrays(1, &gl.vertex_array);
        glBindVertexArray(gl.vertex_array);
        glGenBuffers(2, gl.buffers);
        glBindBuffer(GL_ARRAY_BUFFER, gl.buffers[0]);
        glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(sizeof(vr::RenderModel_Vertex_t) * model->unVertexCount),
                     model->rVertexData, GL_STATIC_DRAW);
        constexpr GLsizei kStride = sizeof(vr::RenderModel_Vertex_t);
        glEnableVertexAttribArray(0);
        glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, kStride,
                              reinterpret_cast<void*>(offsetof(vr::RenderModel_Vertex_t, vPosition)));
        glEnableVertexAttribArray(1);
        glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, kStride,
                              reinterpret_cast<void*>(offsetof(vr::RenderModel_Vertex_t, vNormal)));
        glEnableVertexAttribArray(2);
        glVertexAttribPointer(2, 2, GL_FLOAT, GL_FALSE, kStride,
                              reinterpret_cast<void*>(offsetof(vr::RenderModel_Vertex_t, rfTextureCoord)));
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, gl.buffers[1]);
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, GLsizeiptr(sizeof(uint16_t) * model->unTriangleCount * 3),
                     model->rIndexData, GL_STATIC_DRAW);
        glBindVertexArray(0);
        gl.index_count = static_cast<GLsizei>(model->unTriangleCount * 3);

        glGenTextures(1, &gl.texture);
        glBindTexture(GL_TEXTURE_2D, gl.texture);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, texture->unWidth, texture->unHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     texture->rubTextureMapData);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glBindTexture(GL_TEXTURE_2D, 0);

        render_models_->FreeRenderModel(model);
        render_models_->FreeTexture(texture);
    }

    static void MakeEyeTarget(EyeTarget& eye, GLsizei width, GLsizei height)
    {
        glGenTextures(1, &eye.colour);
        glBindTexture(GL_TEXTURE_2D, eye.colour);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glBindTexture(GL_TEXTURE_2D, 0);
        glGenRenderbuffers(1, &eye.depth);
        glBindRenderbuffer(GL_RENDERBUFFER, eye.depth);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, width, height);
        glGenFramebuffers(1, &eye.framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, eye.framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, eye.colour, 0);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, eye.depth);
        EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum(GL_FRAMEBUFFER_COMPLETE));
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
    }

    void DrawEye(const EyeTarget& eye, const Mat4& view_projection,
                 const std::array<vr::TrackedDevicePose_t, vr::k_unMaxTrackedDeviceCount>& poses)
    {
        glBindFramebuffer(GL_FRAMEBUFFER, eye.framebuffer);
        glViewport(0, 0, target_width_, target_height_);
        glClearColor(kClear[0], kClear[1], kClear[2], 1.0f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_DEPTH_TEST);
        glUseProgram(program_);
        glUniform1i(glGetUniformLocation(program_, "diffuse"), 0);
        glActiveTexture(GL_TEXTURE0);
        for (const auto& [device, name] : device_models_) {
            if (!poses[device].bPoseIsValid)
                continue;
            const GLModel& model = models_.at(name);
            const Mat4 mvp = Multiply(view_projection, FromPose(poses[device].mDeviceToAbsoluteTracking));
            glUniformMatrix4fv(glGetUniformLocation(program_, "mvp"), 1, GL_TRUE, mvp.data());
            glBindTexture(GL_TEXTURE_2D, model.texture);
            glBindVertexArray(model.vertex_array);
            glDrawElements(GL_TRIANGLES, model.index_count, GL_UNSIGNED_SHORT, nullptr);
        }
        glBindVertexArray(0);
        glUseProgram(0);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glFinish();
    }

    vr::IVRSystem* system_ = nullptr;
    vr::IVRRenderModels* render_models_ = nullptr;
    vr::IVRCompositor* compositor_ = nullptr;
    GLuint program_ = 0;
    EyeTarget eyes_[2];
    GLsizei target_width_ = 0;
    GLsizei target_height_ = 0;
    std::map<std::string, GLModel> models_;
    std::map<vr::TrackedDeviceIndex_t, std::string> device_models_;
    int events_seen_ = 0;
    int loading_answers_ = 0;
};

// Where a point of the tracking space lands in an eye's picture (pixels from the left and from the
// top), worked out from the configuration alone: the head does not turn, the eyes sit half the IPD to
// either side of it, and the field of view is symmetric.
struct ScreenCircle {
    double x = 0;
    double y = 0;
    double radius = 0;
};

ScreenCircle Expected(const double (&point)[3], vr::EVREye eye)
{
    // Every corner of the controller model lies within this distance of its origin.
    constexpr double kModelRadius = 0.1;
    const double eye_x = kHead[0] + (eye == vr::Eye_Left ? -kIpd / 2 : kIpd / 2);
    const double depth = -(point[2] - kHead[2]);
    const double tangent = std::tan(kHalfFovDegrees * std::numbers::pi / 180.0);
    const double ndc_x = (point[0] - eye_x) / depth / tangent;
    const double ndc_y = (point[1] - kHead[1]) / depth / tangent;
    return ScreenCircle{(ndc_x + 1) / 2 * kEyeSize, (1 - ndc_y) / 2 * kEyeSize,
                        kModelRadius / (depth - kModelRadius) / tangent * kEyeSize / 2};
}

struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> rgba;

    const uint8_t* At(int x, int y) const { return &rgba[(size_t(y) * width + x) * 4]; }
    bool IsClear(int x, int y) const
    {
        const uint8_t* p = At(x, y);
        for (int c = 0; c < 3; ++c) {
            if (std::abs(int(p[c]) - int(std::lround(kClear[c] * 255))) > 8)
                return false;
        }
        return true;
    }
};

Picture LoadPng(const std::filesystem::path& path)
{
    Picture picture;
    int channels = 0;
    stbi_uc* data = stbi_load(path.c_str(), &picture.width, &picture.height, &channels, 4);
    if (data != nullptr) {
        picture.rgba.assign(data, data + size_t(picture.width) * picture.height * 4);
        stbi_image_free(data);
    }
    return picture;
}

bool Inside(const ScreenCircle& circle, int x, int y)
{
    const double dx = x + 0.5 - circle.x, dy = y + 0.5 - circle.y;
    return dx * dx + dy * dy <= circle.radius * circle.radius;
}

// Keeps the captured picture and a map of what was wrong (red: drawn where nothing belongs, yellow:
// missing where a controller belongs) next to the test's output, for a person to look at.
void KeepForInspection(const Picture& picture, const std::vector<uint8_t>& faults, const std::string& name)
{
    const std::filesystem::path folder = std::filesystem::current_path() / "render_models_application_test";
    std::filesystem::create_directories(folder);
    stbi_write_png((folder / (name + "_actual.png")).c_str(), picture.width, picture.height, 4, picture.rgba.data(),
                   picture.width * 4);
    stbi_write_png((folder / (name + "_difference.png")).c_str(), picture.width, picture.height, 4, faults.data(),
                   picture.width * 4);
    ADD_FAILURE() << "pictures kept in " << folder;
}

void CheckEyePicture(const Picture& picture, vr::EVREye eye, const std::string& name)
{
    ASSERT_EQ(picture.width, kEyeSize) << name;
    ASSERT_EQ(picture.height, kEyeSize) << name;
    const ScreenCircle left = Expected(kLeftController, eye);
    const ScreenCircle right = Expected(kRightController, eye);
    std::vector<uint8_t> faults(picture.rgba.size(), 0);
    int stray = 0;
    int drawn[2] = {0, 0};
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            uint8_t* fault = &faults[(size_t(y) * picture.width + x) * 4];
            fault[3] = 255;
            if (picture.IsClear(x, y))
                continue;
            if (Inside(left, x, y))
                ++drawn[0];
            else if (Inside(right, x, y))
                ++drawn[1];
            else {
                ++stray;
                fault[0] = 255;
            }
        }
    }
    // The origin of each controller lies inside its handle, so that pixel shows the orange texture.
    bool centres_ok = true;
    for (const ScreenCircle* circle : {&left, &right}) {
        const int x = static_cast<int>(circle->x), y = static_cast<int>(circle->y);
        const uint8_t* p = picture.At(x, y);
        const bool orange = !picture.IsClear(x, y) && p[0] > p[2] + 40;
        EXPECT_TRUE(orange) << name << ": no controller at (" << x << ", " << y << ")";
        if (!orange) {
            centres_ok = false;
            uint8_t* fault = &faults[(size_t(y) * picture.width + x) * 4];
            fault[0] = fault[1] = 255;
        }
    }
    EXPECT_EQ(stray, 0) << name << ": pixels drawn away from both controllers";
    // Each controller covers a good part of its circle, not a stray pixel or two.
    EXPECT_GT(drawn[0], 150) << name;
    EXPECT_GT(drawn[1], 150) << name;
    if (stray != 0 || !centres_ok || drawn[0] <= 150 || drawn[1] <= 150)
        KeepForInspection(picture, faults, name);
}

TEST(RenderModelsApplicationTest, HelloVrDrawsTheControllersWhereTheirPosesAre)
{
    std::string error;
    const std::unique_ptr<HeadlessGLContext> gl = HeadlessGLContext::Create(3, 3, &error);
    ASSERT_NE(gl, nullptr) << error;
    ASSERT_TRUE(gl->MakeCurrent());
    IsolatedOpenVREnvironment isolated;
    const std::filesystem::path captures = isolated.home.path() / "captures";
    std::filesystem::create_directories(captures);
    isolated.UseSimulatedRuntime(WorldConfig(captures.string()));
    {
        HelloVrApplication application;
        ASSERT_NO_FATAL_FAILURE(application.Start());
        ASSERT_NO_FATAL_FAILURE(application.SetUpRenderModels());
        // Two controllers share one model; the base station has its own.
        const std::map<vr::TrackedDeviceIndex_t, std::string> expected_models = {
            {1, "norvane_vrsim_controller"}, {2, "norvane_vrsim_controller"}, {3, "norvane_vrsim_base_station"}};
        EXPECT_EQ(application.device_models(), expected_models);
        // Two models and two textures, each answered "loading" twice before it is ready.
        EXPECT_EQ(application.loading_answers(), 8);
        for (int frame = 0; frame < kFrames; ++frame)
            ASSERT_NO_FATAL_FAILURE(application.RunFrame());
        // Every device's activation, reported once at start-up.
        EXPECT_EQ(application.events_seen(), 4);
    }
    for (vr::EVREye eye : {vr::Eye_Left, vr::Eye_Right}) {
        const std::string name = eye == vr::Eye_Left ? "frame_3_left" : "frame_3_right";
        const Picture picture = LoadPng(captures / (name + ".png"));
        ASSERT_FALSE(picture.rgba.empty()) << name << ".png was not written";
        CheckEyePicture(picture, eye, name);
    }
}

}  // namespace
}  // namespace kesta
