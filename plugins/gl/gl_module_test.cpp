// The OpenGL module as a host sees it: loaded with dlopen, registering its renderer, which opens
// and draws on the render worker.

#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>
#include <thread>

#include "engine/picture/picture.h"
#include "engine/renderer/render_thread.h"
#include "engine/renderer/renderer.h"
#include "engine/renderer/renderer_factory.h"
#include "foundation/task/task_system.h"
#include "platform/plugin/plugin_library.h"
#include "plugins/engine_singletons.h"
#include "plugins/plugin_context.h"

namespace kesta {
namespace {

// The names a shared object defines in its dynamic symbol table, as binutils lists them.
std::set<std::string> exported_symbols(const std::string& path)
{
    std::set<std::string> names;
    FILE* listing = popen(("nm -D --defined-only " + path).c_str(), "r");
    if (!listing)
        return names;
    char line[512];
    while (std::fgets(line, sizeof line, listing)) {
        std::string text(line);
        while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
            text.pop_back();
        const std::size_t last_space = text.rfind(' ');
        names.insert(last_space == std::string::npos ? text : text.substr(last_space + 1));
    }
    pclose(listing);
    return names;
}

TEST(GLModuleExports, OnlyTheThreeEntryPointsAreExported)
{
    EXPECT_EQ(exported_symbols(NORVANE_GL_MODULE_PATH),
              (std::set<std::string>{"PluginGetDescription", "PluginLoad", "PluginUnload"}));
}

TEST(GLModule, RegistersOpenGLWhoseRendererDrawsOnTheRenderWorker)
{
    EngineSingletons singletons;
    singletons.tasks().start(2);
    PluginLibrary library;
    ASSERT_TRUE(library.Open(NORVANE_GL_MODULE_PATH)) << library.error();
    const PluginDescription description = library.get_description();
    EXPECT_EQ(description.api_version, 1);
    EXPECT_STREQ(description.name, "OpenGL");
    EXPECT_EQ(description.host_version, 1);
    EXPECT_EQ(description.build_flags & 0xff & 2, 2);
    EXPECT_TRUE(singletons.renderer_factory_table().empty());

    ASSERT_EQ(library.load(MakePluginContext()), 0);
    RendererFactoryTable& table = singletons.renderer_factory_table();
    ASSERT_EQ(table.count("OpenGL"), 1u);
    std::shared_ptr<Renderer> renderer = table.at("OpenGL")();
    ASSERT_NE(renderer, nullptr);

    std::thread::id render_thread;
    bool opened = false;
    std::uint64_t native_handle = 0;
    Picture picture;
    RunOnRenderThreadAndWait([&] {
        render_thread = std::this_thread::get_id();
        renderer->Open();
        opened = renderer->IsOpen();
        if (!opened)
            return;
        auto texture = renderer->NewTexture("eye");
        renderer->CreateTexture(*texture, nullptr, 0, 4, 4, kTextureFormatColor8, 0, kTextureUsageColorTarget, false,
                                1);
        // Created first, attached after: the order the VR session uses.
        auto target = renderer->NewRenderTarget();
        renderer->CreateRenderTarget(*target);
        renderer->SetRenderTargetColorTexture(*target, texture);
        renderer->SetRenderTarget(target);
        renderer->Clear(Color{1.0f, 0.5f, 0.0f, 1.0f}, 1.0f, kClearAll);
        renderer->CaptureTexture(*texture, picture);
        native_handle = texture->GetNativeHandle();
        renderer->ResetRenderTarget();
        renderer->Close();
    });
    EXPECT_NE(render_thread, std::this_thread::get_id());
    ASSERT_TRUE(opened);
    EXPECT_NE(native_handle, 0u);
    ASSERT_EQ(picture.data.size(), 4u * 4u * 4u);
    EXPECT_EQ(picture.data[0], 255);
    EXPECT_NEAR(picture.data[1], 128, 1);
    EXPECT_EQ(picture.data[2], 0);

    renderer.reset();
    // Releases queued by the module's deleters run before its code goes away.
    RunOnRenderThreadAndWait([] {});
    library.unload();
    EXPECT_EQ(table.count("OpenGL"), 0u);
    library.Close();
}

}  // namespace
}  // namespace kesta
