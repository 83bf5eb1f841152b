// The renderer's own call sequences, seen through the recording back end.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/engine_signals.h"
#include "engine/renderer/testing/renderer_test_environment.h"
#include "foundation/assert/assertion.h"
#include "io/memory_file_driver.h"

namespace kesta {
namespace {

using Calls = std::vector<std::string>;

class RendererOpenClose : public ::testing::Test {
protected:
    testing::RendererTestEnvironment env;
    RecordingRenderer& renderer = *env.renderer;
};

const Calls kOpenCalls = {
    "OpenBackEnd()",
    "GetCapability(2)",
    "GetCapability(3)",
    "GetCapability(4)",
    "NewBuffer()",
    "CreateBuffer(12, index, static)",
    "NewBuffer()",
    "CreateBuffer(80, vertex, dynamic)",
    "NewShader(@core/shaders/single_texture_2d.isl)",
    "FreeShader(@core/shaders/single_texture_2d.isl)",
    "TranslateShader(@core/shaders/single_texture_2d.isl)",
    "CompileShader(@core/shaders/single_texture_2d.isl)",
};

TEST_F(RendererOpenClose, OpenMountsCoreResourcesCreatesTheQuadAndTheDefaultShader)
{
    int opened = 0;
    renderer.open_signal.Connect([&](Renderer* r) {
        EXPECT_EQ(r, &renderer);
        EXPECT_FALSE(r->IsOpen());  // the flag is set after the signal
        ++opened;
    });
    renderer.capabilities[2] = true;
    renderer.capabilities[4] = std::uint8_t{4};
    renderer.Open();

    EXPECT_EQ(renderer.Calls(), kOpenCalls);
    EXPECT_TRUE(renderer.IsOpen());
    EXPECT_EQ(g_renderer, &renderer);
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(renderer.GetCapabilities(), kCapabilityBitHardwareMultisample);
    EXPECT_EQ(renderer.GetMaxAntiAliasing(), 4);
    ASSERT_TRUE(renderer.GetDefaultShader());
    EXPECT_TRUE(renderer.GetDefaultShader()->IsReady());
    EXPECT_TRUE(env.log.Contains("", "GPU renderer Recording ready on recording by Norvane"));
    EXPECT_TRUE(env.log.Contains("debug", "Filesystem '@core/' is not mounted, mounting from internal resources"));
    EXPECT_TRUE(env.filesystem.GetDriver("@core/"));
}

TEST_F(RendererOpenClose, OpenTwiceIsANoOp)
{
    renderer.Open();
    renderer.ClearCalls();
    renderer.Open();
    EXPECT_TRUE(renderer.Calls().empty());
}

TEST_F(RendererOpenClose, FailingBackEndLeavesNothingOpen)
{
    renderer.open_back_end_result = false;
    renderer.Open();
    EXPECT_EQ(renderer.Calls(), Calls{"OpenBackEnd()"});
    EXPECT_FALSE(renderer.IsOpen());
    EXPECT_EQ(g_renderer, nullptr);
}

TEST_F(RendererOpenClose, CapabilityAnswersOfTheWrongTypeCountAsAbsent)
{
    renderer.capabilities[2] = std::uint8_t{1};
    renderer.capabilities[3] = true;
    renderer.capabilities[4] = false;
    renderer.Open();
    EXPECT_EQ(renderer.GetCapabilities(), kCapabilityBitSecondary);
    EXPECT_EQ(renderer.GetMaxAntiAliasing(), 0);
}

TEST_F(RendererOpenClose, CloseReleasesEverythingAndClearsTheGlobal)
{
    renderer.Open();
    renderer.ClearCalls();
    int closing = 0;
    renderer.closing_signal.Connect([&](Renderer*) {
        EXPECT_TRUE(renderer.Calls().empty());  // fired first
        ++closing;
    });
    renderer.Close();
    EXPECT_EQ(closing, 1);
    EXPECT_EQ(renderer.Calls(), (Calls{"FreeBuffer()", "FreeBuffer()",
                                       "FreeShader(@core/shaders/single_texture_2d.isl)", "CloseBackEnd()"}));
    EXPECT_FALSE(renderer.IsOpen());
    EXPECT_EQ(g_renderer, nullptr);
    EXPECT_FALSE(renderer.GetDefaultShader());

    renderer.ClearCalls();
    renderer.Close();
    EXPECT_TRUE(renderer.Calls().empty());
}

TEST_F(RendererOpenClose, CoreMountedByTheHostIsKept)
{
    auto host_core = std::make_shared<MemoryFileDriver>();
    env.filesystem.Mount(host_core, "@core/");
    renderer.Open();
    EXPECT_EQ(env.filesystem.GetDriver("@core/"), host_core);
    EXPECT_FALSE(env.log.Contains("debug", "Filesystem '@core/' is not mounted, mounting from internal resources"));
    // The host's folder has no default shader: it is simply absent.
    EXPECT_FALSE(renderer.GetDefaultShader());
}

std::vector<std::string> g_assertions;
void record_assertion(const char*, int, const char*, const char* condition, const char*)
{
    g_assertions.push_back(condition);
}

TEST_F(RendererOpenClose, SecondOpenRendererFailsTheAssertion)
{
    renderer.Open();
    const AssertionHandler previous = g_assertion_handler;
    g_assertion_handler = &record_assertion;
    g_assertions.clear();
    {
        auto second = AdoptRenderer(std::make_shared<RecordingRenderer>());
        second->Open();
        EXPECT_EQ(g_assertions, std::vector<std::string>{"!g_renderer"});
        // The recording handler returned: the second renderer went on and took the global.
        g_renderer = &renderer;
    }
    g_assertion_handler = previous;
}

TEST_F(RendererOpenClose, DestructorLogsAndSignals)
{
    EngineSignals signals;
    EngineSignals* previous = g_engine_signals;
    g_engine_signals = &signals;
    Renderer* deleted = nullptr;
    signals.renderer_deleted.Connect([&](Renderer* r) { deleted = r; });
    auto doomed = AdoptRenderer(std::make_shared<RecordingRenderer>());
    Renderer* address = doomed.get();
    doomed.reset();
    EXPECT_EQ(deleted, address);
    EXPECT_TRUE(env.log.Contains("", "Deleting renderer"));
    g_engine_signals = previous;
}

}  // namespace
}  // namespace kesta
