// Submitting OpenGL textures to the simulated compositor, with GL running on Mesa's software
// rasteriser through a headless EGL context.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>
#include <stb_image.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

#include "platform/headless_gl/headless_gl_context.h"
#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/openvr_tests/vrsim_test_support.h"

namespace kesta {
namespace {

using testing::IsolatedOpenVREnvironment;
using testing::ScopedVRSession;
using testing::VrSimIntrospection;

constexpr GLsizei kWidth = 64;
constexpr GLsizei kHeight = 32;

// A pattern in which every pixel differs from its neighbours and from the other eye's.
std::vector<uint8_t> Pattern(uint8_t eye)
{
    std::vector<uint8_t> rgba(size_t{kWidth} * kHeight * 4);
    for (GLsizei y = 0; y < kHeight; ++y) {
        for (GLsizei x = 0; x < kWidth; ++x) {
            uint8_t* p = &rgba[(size_t(y) * kWidth + x) * 4];
            p[0] = static_cast<uint8_t>(x * 4);
            p[1] = static_cast<uint8_t>(y * 8);
            p[2] = static_cast<uint8_t>(eye * 100 + (x ^ y));
            p[3] = 255;
        }
    }
    return rgba;
}

GLuint MakeTexture(const std::vector<uint8_t>& rgba)
{
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, kWidth, kHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    return texture;
}

vr::Texture_t GLTexture(GLuint name, vr::EColorSpace color_space = vr::ColorSpace_Gamma)
{
    return vr::Texture_t{reinterpret_cast<void*>(static_cast<uintptr_t>(name)), vr::TextureType_OpenGL, color_space};
}

class CompositorSubmitTest : public ::testing::Test {
protected:
    void Start(const std::string& config)
    {
        std::string error;
        gl_ = HeadlessGLContext::Create(3, 3, &error);
        ASSERT_NE(gl_, nullptr) << error;
        ASSERT_TRUE(gl_->MakeCurrent());
        isolated_.UseSimulatedRuntime(config);
        session_ = std::make_unique<ScopedVRSession>();
        ASSERT_NE(session_->system, nullptr);
        compositor_ = vr::VRCompositor();
        ASSERT_NE(compositor_, nullptr);
        sim_ = std::make_unique<VrSimIntrospection>();
        ASSERT_TRUE(sim_->loaded());
        left_ = MakeTexture(Pattern(0));
        right_ = MakeTexture(Pattern(1));
    }

    void TearDown() override
    {
        sim_.reset();
        session_.reset();
        if (gl_) {
            glDeleteTextures(1, &left_);
            glDeleteTextures(1, &right_);
        }
    }

    std::vector<uint8_t> LastPixels(vr::EVREye eye)
    {
        uint32_t width = 0, height = 0;
        const uint64_t size = sim_->copy_last_pixels(eye, nullptr, 0, &width, &height);
        std::vector<uint8_t> pixels(size);
        EXPECT_EQ(sim_->copy_last_pixels(eye, pixels.data(), pixels.size(), &width, &height), size);
        EXPECT_EQ(width, uint32_t(kWidth));
        EXPECT_EQ(height, uint32_t(kHeight));
        return pixels;
    }

    std::unique_ptr<HeadlessGLContext> gl_;
    IsolatedOpenVREnvironment isolated_;
    std::unique_ptr<ScopedVRSession> session_;
    std::unique_ptr<VrSimIntrospection> sim_;
    vr::IVRCompositor* compositor_ = nullptr;
    GLuint left_ = 0;
    GLuint right_ = 0;
};

TEST_F(CompositorSubmitTest, SubmittedTexturesComeBackAsTheSamePixels)
{
    Start(R"({"paced": false, "capture": {"readback": true}})");
    compositor_->WaitGetPoses(nullptr, 0, nullptr, 0);
    const vr::Texture_t left = GLTexture(left_);
    const vr::Texture_t right = GLTexture(right_, vr::ColorSpace_Linear);
    ASSERT_EQ(compositor_->Submit(vr::Eye_Left, &left, nullptr, vr::Submit_Default), vr::VRCompositorError_None);
    ASSERT_EQ(compositor_->Submit(vr::Eye_Right, &right, nullptr, vr::Submit_Default), vr::VRCompositorError_None);

    EXPECT_EQ(LastPixels(vr::Eye_Left), Pattern(0));
    EXPECT_EQ(LastPixels(vr::Eye_Right), Pattern(1));

    ASSERT_EQ(sim_->submission_count(), 2u);
    VrSimSubmission record{};
    ASSERT_TRUE(sim_->get_submission(1, &record));
    EXPECT_EQ(record.frame, 1u);
    EXPECT_EQ(record.eye, uint32_t(vr::Eye_Right));
    EXPECT_EQ(record.texture_type, uint32_t(vr::TextureType_OpenGL));
    EXPECT_EQ(record.color_space, uint32_t(vr::ColorSpace_Linear));
    EXPECT_EQ(record.texture_name, right_);
    EXPECT_EQ(record.width, uint32_t(kWidth));
    EXPECT_EQ(record.height, uint32_t(kHeight));
    EXPECT_EQ(record.has_bounds, 0);
}

TEST_F(CompositorSubmitTest, ChosenFramesAreWrittenAsPngFilesTopRowFirst)
{
    const std::string folder = isolated_.home.path().string();
    Start(R"({"paced": false, "capture": {"png_folder": ")" + folder + R"(", "png_frames": [2]}})");
    const vr::Texture_t left = GLTexture(left_);
    const vr::Texture_t right = GLTexture(right_);
    for (int frame = 1; frame <= 3; ++frame) {
        compositor_->WaitGetPoses(nullptr, 0, nullptr, 0);
        ASSERT_EQ(compositor_->Submit(vr::Eye_Left, &left, nullptr, vr::Submit_Default), vr::VRCompositorError_None);
        ASSERT_EQ(compositor_->Submit(vr::Eye_Right, &right, nullptr, vr::Submit_Default), vr::VRCompositorError_None);
    }
    EXPECT_FALSE(std::filesystem::exists(folder + "/frame_1_left.png"));
    EXPECT_FALSE(std::filesystem::exists(folder + "/frame_3_right.png"));
    for (int eye = 0; eye < 2; ++eye) {
        const std::string path = folder + (eye == 0 ? "/frame_2_left.png" : "/frame_2_right.png");
        int width = 0, height = 0, channels = 0;
        stbi_uc* png = stbi_load(path.c_str(), &width, &height, &channels, 4);
        ASSERT_NE(png, nullptr) << path;
        ASSERT_EQ(width, kWidth);
        ASSERT_EQ(height, kHeight);
        // GL's first row is the bottom one; the file's first row is the top one.
        const std::vector<uint8_t> expected = Pattern(static_cast<uint8_t>(eye));
        const size_t stride = size_t{kWidth} * 4;
        for (GLsizei row = 0; row < kHeight; ++row) {
            EXPECT_EQ(std::memcmp(png + row * stride, &expected[(kHeight - 1 - row) * stride], stride), 0)
                << "row " << row;
        }
        stbi_image_free(png);
    }
}

TEST_F(CompositorSubmitTest, RefusesWhatItCannotTakeAndRecordsOnlyWhatItTook)
{
    Start(R"({"paced": false})");
    compositor_->WaitGetPoses(nullptr, 0, nullptr, 0);
    const vr::Texture_t left = GLTexture(left_);
    EXPECT_EQ(compositor_->Submit(vr::Eye_Left, nullptr, nullptr, vr::Submit_Default),
              vr::VRCompositorError_InvalidTexture);
    const vr::Texture_t not_a_texture = GLTexture(left_ + right_ + 100);
    EXPECT_EQ(compositor_->Submit(vr::Eye_Left, &not_a_texture, nullptr, vr::Submit_Default),
              vr::VRCompositorError_InvalidTexture);
    const vr::Texture_t vulkan{left.handle, vr::TextureType_Vulkan, vr::ColorSpace_Auto};
    EXPECT_EQ(compositor_->Submit(vr::Eye_Left, &vulkan, nullptr, vr::Submit_Default),
              vr::VRCompositorError_InvalidTexture);
    const vr::VRTextureBounds_t outside{0.0f, 0.0f, 1.5f, 1.0f};
    EXPECT_EQ(compositor_->Submit(vr::Eye_Left, &left, &outside, vr::Submit_Default),
              vr::VRCompositorError_InvalidBounds);
    EXPECT_EQ(sim_->submission_count(), 0u);

    // Flipped bounds are how OpenGL applications mirror the picture vertically: accepted.
    const vr::VRTextureBounds_t flipped{0.0f, 1.0f, 1.0f, 0.0f};
    EXPECT_EQ(compositor_->Submit(vr::Eye_Left, &left, &flipped, vr::Submit_Default), vr::VRCompositorError_None);
    EXPECT_EQ(compositor_->Submit(vr::Eye_Left, &left, nullptr, vr::Submit_Default),
              vr::VRCompositorError_AlreadySubmitted);
    compositor_->WaitGetPoses(nullptr, 0, nullptr, 0);
    EXPECT_EQ(compositor_->Submit(vr::Eye_Left, &left, nullptr, vr::Submit_Default), vr::VRCompositorError_None);

    ASSERT_EQ(sim_->submission_count(), 2u);
    VrSimSubmission record{};
    ASSERT_TRUE(sim_->get_submission(0, &record));
    EXPECT_EQ(record.has_bounds, 1);
    EXPECT_FLOAT_EQ(record.bounds[1], 1.0f);
    EXPECT_FLOAT_EQ(record.bounds[3], 0.0f);
    ASSERT_TRUE(sim_->get_submission(1, &record));
    EXPECT_EQ(record.frame, 2u);
    // Readback is off: no pixels were kept.
    EXPECT_EQ(sim_->copy_last_pixels(vr::Eye_Left, nullptr, 0, nullptr, nullptr), 0u);
}

TEST_F(CompositorSubmitTest, SubmitLeavesTheApplicationsGLStateAlone)
{
    Start(R"({"paced": false, "capture": {"readback": true}})");
    GLuint other = 0;
    glGenTextures(1, &other);
    glBindTexture(GL_TEXTURE_2D, other);
    glPixelStorei(GL_PACK_ALIGNMENT, 8);
    compositor_->WaitGetPoses(nullptr, 0, nullptr, 0);
    const vr::Texture_t left = GLTexture(left_);
    ASSERT_EQ(compositor_->Submit(vr::Eye_Left, &left, nullptr, vr::Submit_Default), vr::VRCompositorError_None);
    GLint bound = 0, alignment = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
    EXPECT_EQ(GLuint(bound), other);
    EXPECT_EQ(alignment, 8);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    glDeleteTextures(1, &other);
}

TEST_F(CompositorSubmitTest, SubmitFromAThreadWithoutAContextIsRefused)
{
    Start(R"({"paced": false})");
    compositor_->WaitGetPoses(nullptr, 0, nullptr, 0);
    const vr::Texture_t left = GLTexture(left_);
    vr::EVRCompositorError result = vr::VRCompositorError_None;
    std::thread([&] { result = compositor_->Submit(vr::Eye_Left, &left, nullptr, vr::Submit_Default); }).join();
    EXPECT_EQ(result, vr::VRCompositorError_TextureIsOnWrongDevice);
    EXPECT_EQ(sim_->submission_count(), 0u);
}

TEST_F(CompositorSubmitTest, LogKeepsTheNewestEntriesUpToItsLimit)
{
    Start(R"({"paced": false, "log_limit": 3})");
    const vr::Texture_t left = GLTexture(left_);
    for (int frame = 1; frame <= 5; ++frame) {
        compositor_->WaitGetPoses(nullptr, 0, nullptr, 0);
        ASSERT_EQ(compositor_->Submit(vr::Eye_Left, &left, nullptr, vr::Submit_Default), vr::VRCompositorError_None);
    }
    ASSERT_EQ(sim_->submission_count(), 3u);
    VrSimSubmission record{};
    ASSERT_TRUE(sim_->get_submission(0, &record));
    EXPECT_EQ(record.frame, 3u);
    sim_->clear_logs();
    EXPECT_EQ(sim_->submission_count(), 0u);
    EXPECT_EQ(sim_->frame_count(), 5u);
}

}  // namespace
}  // namespace kesta
