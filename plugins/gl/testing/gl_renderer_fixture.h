#pragma once
// A test with an open OpenGL renderer on Mesa's software rasteriser, drawing into a small
// off-screen output. The engine's process-wide objects exist but no worker runs: every call meant
// for the render worker runs at once on the test's thread, which is where the context lives.

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/picture/picture.h"
#include "io/testing/log_capture.h"
#include "plugins/engine_singletons.h"
#include "plugins/gl/gl_renderer.h"

namespace kesta::testing {

// Position and an 8-bit colour: the vertices of the coloured test geometry.
struct ColoredVertex {
    float x, y, z;
    std::uint8_t r, g, b, a;
};

class GLRendererTest : public ::testing::Test {
protected:
    static constexpr int kOutputSize = 64;

    void SetUp() override;
    void TearDown() override;

    // Presents the frame and reads the output back, top row first.
    Picture Present();
    // A core shader (by file name), loaded synchronously; fails the test unless it is ready.
    std::shared_ptr<GpuShader> CoreShader(const std::string& file_name);
    // Draws indexed triangles with the bound shader, through fresh buffers.
    void DrawColored(const std::vector<ColoredVertex>& vertices, const std::vector<std::uint16_t>& indices);
    // A texture made on the spot, ready.
    std::shared_ptr<Texture> MakeTexture(int width, int height, TextureFormat format, const void* data,
                                         std::uint32_t size, bool mipmapped = false, std::uint8_t anti_aliasing = 0,
                                         TextureUsage usage = kTextureUsageSampled);
    // Pixel coordinates over the whole output, y down, no depth: for 2D drawing.
    void Use2DMatrices();

    EngineSingletons singletons;
    LogCapture log;
    std::shared_ptr<GLRenderer> renderer;
};

// An RGBA8 checkerboard of two colours, `cell` pixels a square.
std::vector<std::uint8_t> Checkerboard(int width, int height, int cell, std::uint32_t first, std::uint32_t second);

}  // namespace kesta::testing
