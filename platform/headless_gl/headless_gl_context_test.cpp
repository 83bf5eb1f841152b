#define GL_GLEXT_PROTOTYPES 1
#include "platform/headless_gl/headless_gl_context.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

namespace kesta {
namespace {

TEST(HeadlessGLContextTest, RendersIntoAFramebufferWithoutAWindow)
{
    std::string error;
    auto gl = HeadlessGLContext::Create(3, 3, &error);
    ASSERT_NE(gl, nullptr) << error;
    ASSERT_TRUE(gl->MakeCurrent());
    const char* version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    ASSERT_NE(version, nullptr);
    GLint major = 0, profile = 0;
    glGetIntegerv(GL_MAJOR_VERSION, &major);
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    EXPECT_GE(major, 3);
    EXPECT_NE(profile & GL_CONTEXT_CORE_PROFILE_BIT, 0);

    GLuint texture = 0, framebuffer = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    ASSERT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum(GL_FRAMEBUFFER_COMPLETE));
    glViewport(0, 0, 4, 4);
    glClearColor(1.0f, 0.5f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    uint8_t pixel[4] = {};
    glReadPixels(2, 2, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    EXPECT_EQ(pixel[0], 255);
    EXPECT_NEAR(pixel[1], 128, 1);
    EXPECT_EQ(pixel[2], 0);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    glDeleteFramebuffers(1, &framebuffer);
    glDeleteTextures(1, &texture);
    gl->ReleaseCurrent();
}

TEST(HeadlessGLContextTest, GetsFunctionsByNameAndRefusesImpossibleVersions)
{
    EXPECT_NE(HeadlessGLContext::GetProcAddress("glGenVertexArrays"), nullptr);
    std::string error;
    EXPECT_EQ(HeadlessGLContext::Create(9, 9, &error), nullptr);
    EXPECT_NE(error.find("eglCreateContext"), std::string::npos) << error;
}

// A context is current on one thread at a time; two contexts work side by side on two threads.
TEST(HeadlessGLContextTest, TwoContextsOnTwoThreads)
{
    std::string error;
    auto first = HeadlessGLContext::Create(3, 3, &error);
    auto second = HeadlessGLContext::Create(3, 3, &error);
    ASSERT_NE(first, nullptr) << error;
    ASSERT_NE(second, nullptr) << error;
    ASSERT_TRUE(first->MakeCurrent());
    bool other_ok = false;
    std::thread([&] {
        other_ok = second->MakeCurrent() && glGetString(GL_VERSION) != nullptr;
        second->ReleaseCurrent();
    }).join();
    EXPECT_TRUE(other_ok);
    EXPECT_NE(glGetString(GL_VERSION), nullptr);
    first->ReleaseCurrent();
    EXPECT_EQ(glGetString(GL_VERSION), nullptr) << "no context is current after the release";
}

}  // namespace
}  // namespace kesta
