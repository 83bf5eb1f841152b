#include "plugins/gl/testing/gl_renderer_fixture.h"

#include "engine/vertex_layout.h"

namespace kesta::testing {

void GLRendererTest::SetUp()
{
    renderer = std::static_pointer_cast<GLRenderer>(AdoptRenderer(std::make_shared<GLRenderer>()));
    renderer->SetOutputSize(kOutputSize, kOutputSize);
    renderer->Open();
    ASSERT_TRUE(renderer->IsOpen()) << "no OpenGL 3.3 context through EGL";
}

void GLRendererTest::TearDown()
{
    if (renderer)
        renderer->Close();
    renderer.reset();
}

Picture GLRendererTest::Present()
{
    renderer->PresentFrame();
    Picture picture;
    EXPECT_TRUE(renderer->ReadOutput(picture));
    return picture;
}

std::shared_ptr<GpuShader> GLRendererTest::CoreShader(const std::string& file_name)
{
    std::shared_ptr<GpuShader> shader = renderer->LoadShader("@core/shaders/" + file_name, false);
    EXPECT_TRUE(shader && shader->IsReady()) << file_name;
    return shader;
}

void GLRendererTest::DrawColored(const std::vector<ColoredVertex>& vertices, const std::vector<std::uint16_t>& indices)
{
    static_assert(sizeof(ColoredVertex) == 16);
    VertexLayout layout;
    layout.AddAttribute(0, 3, VertexLayout::kFloat, false);        // vPosition
    layout.AddAttribute(6, 4, VertexLayout::kUnsignedByte, true);  // vColor0
    layout.End();
    auto vertex_buffer = renderer->NewBuffer();
    renderer->CreateBuffer(*vertex_buffer, vertices.data(), static_cast<std::uint32_t>(vertices.size() * 16),
                           kVertexBuffer, kStaticBuffer);
    auto index_buffer = renderer->NewBuffer();
    renderer->CreateBuffer(*index_buffer, indices.data(), static_cast<std::uint32_t>(indices.size() * 2), kIndexBuffer,
                           kStaticBuffer);
    renderer->SetVertexSource(vertex_buffer, layout);
    renderer->SetIndexSource(index_buffer);
    renderer->DrawBuffers(kIndex16, static_cast<std::uint32_t>(indices.size()), kTriangles, 0);
    renderer->FreeBuffer(*vertex_buffer);
    renderer->FreeBuffer(*index_buffer);
}

std::shared_ptr<Texture> GLRendererTest::MakeTexture(int width, int height, TextureFormat format, const void* data,
                                                     std::uint32_t size, bool mipmapped, std::uint8_t anti_aliasing,
                                                     TextureUsage usage)
{
    std::shared_ptr<Texture> texture = renderer->NewTexture("test texture");
    renderer->CreateTexture(*texture, data, size, width, height, format, anti_aliasing, usage, mipmapped, 1);
    if (!texture->IsFailed())
        texture->SetReady();
    return texture;
}

void GLRendererTest::Use2DMatrices()
{
    renderer->Set2DMatrices(false);
    renderer->SetDepthTest(false);
    renderer->SetFaceCulling(false);
}

std::vector<std::uint8_t> Checkerboard(int width, int height, int cell, std::uint32_t first, std::uint32_t second)
{
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) * height * 4);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const std::uint32_t colour = ((x / cell) + (y / cell)) % 2 ? second : first;
            for (int c = 0; c < 4; ++c)
                pixels[(static_cast<std::size_t>(y) * width + x) * 4 + c] =
                    static_cast<std::uint8_t>(colour >> (24 - 8 * c));
        }
    }
    return pixels;
}

}  // namespace kesta::testing
