// Textures through the renderer: picture decoding, format mapping, caching and asynchronous loads.

#include <stb_image_write.h>

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>

#include "engine/picture/picture.h"
#include "engine/renderer/testing/renderer_test_environment.h"
#include "foundation/task/task_system.h"
#include "io/memory_file_driver.h"

namespace kesta {
namespace {

std::string png_bytes(int width, int height)
{
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) * height * 4);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<std::uint8_t>(i * 7);
    std::string out;
    stbi_write_png_to_func(
        [](void* context, void* data, int size) {
            static_cast<std::string*>(context)->append(static_cast<const char*>(data), size);
        },
        &out, width, height, 4, pixels.data(), width * 4);
    return out;
}

using RendererTextures = testing::OpenRendererTest;

TEST_F(RendererTextures, NativeFileNamesAreRecognisedByExtensionInAnyCase)
{
    EXPECT_TRUE(renderer.IsNativeTextureFile("a/b/c.dds"));
    EXPECT_TRUE(renderer.IsNativeTextureFile("C.DDS"));
    EXPECT_TRUE(renderer.IsNativeTextureFile("x.Pvr"));
    EXPECT_FALSE(renderer.IsNativeTextureFile("x.png"));
    EXPECT_FALSE(renderer.IsNativeTextureFile("x.dds.png"));
    EXPECT_FALSE(renderer.IsNativeTextureFile("dds"));
}

TEST_F(RendererTextures, MissingFileGivesNullAndNoMessage)
{
    EXPECT_FALSE(renderer.LoadTexture("@test/none.png", true));
    EXPECT_FALSE(renderer.LoadTexture("@test/none.png", false));
    // The filesystem reports the failed open at debug level; the renderer adds nothing.
    EXPECT_TRUE(env.NonDebugLines().empty()) << ::testing::PrintToString(env.log.Lines());
}

TEST_F(RendererTextures, PictureIsDecodedAndUploadedAsEightBitColour)
{
    const std::string path = env.WriteFile("pattern.png", png_bytes(4, 2));
    auto texture = renderer.LoadTexture(path, false);
    ASSERT_TRUE(texture);
    EXPECT_TRUE(texture->IsReady());
    EXPECT_EQ(texture->GetWidth(), 4);
    EXPECT_EQ(texture->GetHeight(), 2);
    EXPECT_EQ(renderer.Calls(),
              (std::vector<std::string>{"NewTexture(@test/pattern.png)",
                                        "CreateTexture(@test/pattern.png, 32, 4, 2, 0, 0, 1, true, 1)"}));
    const auto& pixels = static_cast<RecordingTexture&>(*texture).pixels;
    ASSERT_EQ(pixels.size(), 32u);
    EXPECT_EQ(pixels[5], 35);
    EXPECT_FALSE(renderer.FindCachedTexture(path));
}

TEST_F(RendererTextures, UndecodableFileFailsWithAWarning)
{
    const std::string path = env.WriteFile("garbage.png", "this is not a picture");
    auto texture = renderer.LoadTexture(path, true);
    ASSERT_TRUE(texture);
    EXPECT_TRUE(texture->IsFailed());
    EXPECT_TRUE(env.log.Contains("warn", "Cannot load texture '@test/garbage.png'"));
}

TEST_F(RendererTextures, NativeFilesGoToTheBackEndsLoader)
{
    const std::string path = env.WriteFile("native.DDS", "DDS ");
    auto texture = renderer.LoadTexture(path, true);
    EXPECT_EQ(renderer.CallNames(), (std::vector<std::string>{"NewTexture", "LoadNativeTexture"}));
    // The recording back end understands no container format.
    EXPECT_TRUE(texture->IsFailed());
}

TEST_F(RendererTextures, PictureFormatsMapToTextureFormats)
{
    const std::pair<std::uint32_t, int> mapped[] = {{0, 6}, {1, 7}, {2, 5}, {7, 0}, {8, 1}, {13, 2}, {19, 3}};
    for (const auto& [picture_format, texture_format] : mapped) {
        auto texture = renderer.NewTexture("t");
        Picture picture{2, 2, picture_format, std::vector<std::uint8_t>(16)};
        EXPECT_TRUE(renderer.UploadPicture(*texture, picture, kTextureUsageSampled, false));
        EXPECT_EQ(texture->format, texture_format) << picture_format;
        EXPECT_FALSE(texture->IsFailed());
    }
    for (std::uint32_t unknown : {3u, 4u, 5u, 6u, 9u, 12u, 18u, 20u}) {
        auto texture = renderer.NewTexture("t");
        renderer.ClearCalls();
        EXPECT_FALSE(renderer.UploadPicture(*texture, Picture{2, 2, unknown, {}}, kTextureUsageSampled, false));
        EXPECT_TRUE(texture->IsFailed());
        EXPECT_TRUE(renderer.Calls().empty());
    }
}

// A memory folder whose reads wait until the test opens the gate: a slow picture decode.
class GatedDriver : public MemoryFileDriver {
public:
    std::uint64_t Read(FileHandle& handle, void* buffer, std::uint64_t size) override
    {
        std::unique_lock lock(mutex_);
        ++readers_waiting_;
        changed_.notify_all();
        changed_.wait(lock, [this] { return open_; });
        lock.unlock();
        return MemoryFileDriver::Read(handle, buffer, size);
    }
    void WaitForReader()
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return readers_waiting_ > 0; });
    }
    void OpenGate()
    {
        std::lock_guard lock(mutex_);
        open_ = true;
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int readers_waiting_ = 0;
    bool open_ = false;
};

TEST_F(RendererTextures, AsynchronousLoadDoesNotBlockTheCaller)
{
    auto gated = std::make_shared<GatedDriver>();
    const std::string png = png_bytes(8, 8);
    {
        auto file = gated->Open("slow.png", kFileWrite);
        gated->Write(*file, png.data(), png.size());
        gated->Close(*file);
    }
    env.filesystem.Mount(gated, "@slow/");

    task_system tasks;
    task_system* previous = g_task_system;
    g_task_system = &tasks;
    ASSERT_TRUE(tasks.start(2));

    // The decode is stuck in its read, yet the caller has its pending texture.
    auto texture = renderer.LoadTexture("@slow/slow.png", true);
    ASSERT_TRUE(texture);
    gated->WaitForReader();
    EXPECT_FALSE(texture->IsReadyOrFailed());
    EXPECT_EQ(renderer.LoadTexture("@slow/slow.png", true), texture);

    std::promise<void> ready;
    texture->ConnectOnReady([&] { ready.set_value(); });
    gated->OpenGate();
    ASSERT_EQ(ready.get_future().wait_for(std::chrono::seconds(60)), std::future_status::ready);
    EXPECT_TRUE(texture->IsReady());
    EXPECT_EQ(texture->GetWidth(), 8);
    tasks.wait_for_all();
    tasks.stop();
    g_task_system = previous;
}

TEST_F(RendererTextures, ReloadRefillsTheSameTexture)
{
    const std::string path = env.WriteFile("pattern.png", png_bytes(4, 4));
    auto texture = renderer.LoadTexture(path, true);
    ASSERT_TRUE(texture->IsReady());
    env.WriteFile("pattern.png", png_bytes(2, 2));
    renderer.ClearCalls();
    renderer.Reload(path);
    EXPECT_EQ(renderer.FindCachedTexture(path), texture);
    EXPECT_TRUE(texture->IsReady());
    EXPECT_EQ(texture->GetWidth(), 2);
    EXPECT_EQ(renderer.CallNames(), (std::vector<std::string>{"FreeTexture", "CreateTexture"}));
}

TEST_F(RendererTextures, RenderTargetAttachmentsClearTheUnusedSlots)
{
    auto target = renderer.NewRenderTarget();
    std::shared_ptr<Texture> textures[8];
    for (auto& t : textures)
        t = renderer.NewTexture("colour");
    renderer.SetRenderTargetColorTextures(*target, textures, 8);
    renderer.SetRenderTargetColorTextures(*target, textures, 3);
    EXPECT_EQ(target->color_count, 3);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(target->color_textures[i] != nullptr, i < 3) << i;
    renderer.SetRenderTargetColorTexture(*target, textures[5]);
    EXPECT_EQ(target->color_textures[0], textures[5]);
    EXPECT_FALSE(target->color_textures[1]);
    renderer.SetRenderTargetDepthTexture(*target, textures[7]);
    EXPECT_EQ(target->depth_texture, textures[7]);
}

}  // namespace
}  // namespace kesta
