// Loading shaders through the renderer: caches, failures, reload, render-thread deletion.

#include <gtest/gtest.h>

#include <thread>
#include "engine/renderer/testing/renderer_test_environment.h"

#include "foundation/task/future_call.h"
#include "foundation/task/task_system.h"

namespace kesta {
namespace {

const std::string kShaderText = R"(
in { vec4 u_color = vec4(1, 0, 0, 1); }
variant {
    vertex { source %{ %out.position% = vec4(vPosition, 1.0); %} }
    pixel { source %{ %out.color% = u_color; %include("@test/tint.i") %} }
}
)";

using RendererShaders = testing::OpenRendererTest;

TEST_F(RendererShaders, MissingFileGivesNullAndNoMessage)
{
    EXPECT_FALSE(renderer.LoadShader("@test/nothing.isl", false));
    EXPECT_FALSE(renderer.LoadShader("@test/nothing.isl", true));
    // The filesystem reports the failed open at debug level; the renderer adds nothing.
    EXPECT_TRUE(env.NonDebugLines().empty()) << ::testing::PrintToString(env.log.Lines());
    EXPECT_TRUE(renderer.Calls().empty());
}

TEST_F(RendererShaders, EmptyFileIsReportedAsNotFound)
{
    const std::string path = env.WriteFile("empty.isl", "");
    EXPECT_FALSE(renderer.LoadShader(path, false));
    EXPECT_TRUE(env.log.Contains("error", "Shader file not found '@test/empty.isl'"));
}

TEST_F(RendererShaders, SynchronousLoadExpandsIncludesTranslatesAndCompiles)
{
    env.WriteFile("tint.i", "/* tint */");
    const std::string path = env.WriteFile("red.isl", kShaderText);
    auto shader = renderer.LoadShader(path, false);
    ASSERT_TRUE(shader);
    EXPECT_TRUE(shader->IsReady());
    EXPECT_EQ(renderer.CallNames(),
              (std::vector<std::string>{"NewShader", "FreeShader", "TranslateShader", "CompileShader"}));
    const auto& recorded = static_cast<RecordingShader&>(*shader);
    EXPECT_NE(recorded.pixel_text.find("/* tint */"), std::string::npos);
    EXPECT_EQ(recorded.pixel_text.find("%include"), std::string::npos);
    // Synchronous loads are not cached.
    EXPECT_FALSE(renderer.FindCachedShader(path));
    EXPECT_TRUE(env.log.Contains("debug", "CreateShader(@test/red.isl) (" +
                                              std::to_string(reinterpret_cast<std::uintptr_t>(shader.get())) + ")"));
}

TEST_F(RendererShaders, ParseFailureMarksTheShaderFailed)
{
    auto shader = renderer.LoadShaderFromSource("broken", "variant { vertex %{ never closed", false);
    ASSERT_TRUE(shader);
    EXPECT_TRUE(shader->IsFailed());
    EXPECT_EQ(renderer.CallNames(), std::vector<std::string>{"NewShader"});
}

TEST_F(RendererShaders, RefusedTranslationLeavesTheShaderPendingAndUnbindable)
{
    renderer.translate_result = false;
    auto shader = renderer.LoadShaderFromSource("untranslatable", kShaderText, false);
    ASSERT_TRUE(shader);
    EXPECT_FALSE(shader->IsReadyOrFailed());
    EXPECT_EQ(renderer.CallNames(), (std::vector<std::string>{"NewShader", "FreeShader", "TranslateShader"}));
    EXPECT_FALSE(renderer.SetShader(shader));
}

TEST_F(RendererShaders, RefusedCompilationFailsTheShader)
{
    renderer.compile_result = false;
    auto shader = renderer.LoadShaderFromSource("uncompilable", kShaderText, false);
    EXPECT_TRUE(shader->IsFailed());
    EXPECT_FALSE(renderer.SetShader(shader));
}

TEST_F(RendererShaders, AsynchronousLoadsOfOnePathShareOneObject)
{
    const std::string path = env.WriteFile("red.isl", kShaderText);
    auto first = renderer.LoadShader(path, true);
    auto second = renderer.LoadShader(path, true);
    ASSERT_TRUE(first);
    EXPECT_EQ(first, second);
    EXPECT_EQ(renderer.FindCachedShader(path), first);
    // Without started workers the work ran on this thread.
    EXPECT_TRUE(first->IsReady());
}

TEST_F(RendererShaders, ReloadKeepsTheSharedPointerAndRunsTheLoadAgain)
{
    const std::string path = env.WriteFile("red.isl", kShaderText);
    auto shader = renderer.LoadShader(path, true);
    ASSERT_TRUE(shader && shader->IsReady());
    int readiness_reports = 0;
    shader->ConnectOnReady([&] { ++readiness_reports; });
    EXPECT_EQ(readiness_reports, 1);  // already ready: at once

    env.WriteFile("red.isl", "variant { vertex { source %{ changed %} } pixel { source %{ %} } }");
    renderer.ClearCalls();
    renderer.Reload(path);
    EXPECT_EQ(renderer.FindCachedShader(path), shader);
    EXPECT_TRUE(shader->IsReady());
    EXPECT_EQ(renderer.CallNames(),
              (std::vector<std::string>{"FreeShader", "FreeShader", "TranslateShader", "CompileShader"}));
    EXPECT_NE(static_cast<RecordingShader&>(*shader).vertex_text.find("changed"), std::string::npos);
}

TEST_F(RendererShaders, DroppedShaderIsFreedOnTheBackEndWhileOpen)
{
    auto shader = renderer.LoadShaderFromSource("transient", kShaderText, false);
    std::weak_ptr<GpuShader> watch = shader;
    renderer.ClearCalls();
    shader.reset();
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(renderer.Calls(), std::vector<std::string>{"FreeShader(transient)"});
    bool logged = false;
    for (const std::string& line : env.log.Lines())
        logged = logged || line.rfind("debug: DeleteShaderOnRenderThread(transient) (", 0) == 0;
    EXPECT_TRUE(logged);
}

TEST_F(RendererShaders, ShaderDroppedAfterCloseIsDestroyedWithoutTheBackEnd)
{
    auto shader = renderer.LoadShaderFromSource("survivor", kShaderText, false);
    std::weak_ptr<GpuShader> watch = shader;
    renderer.Close();
    renderer.ClearCalls();
    shader.reset();
    EXPECT_TRUE(watch.expired());
    EXPECT_TRUE(renderer.Calls().empty());
}

TEST_F(RendererShaders, ShaderOutlivingItsRendererIsStillDestroyed)
{
    auto shader = renderer.LoadShaderFromSource("orphan", kShaderText, false);
    std::weak_ptr<GpuShader> watch = shader;
    renderer.Close();
    env.renderer.reset();
    shader.reset();
    EXPECT_TRUE(watch.expired());
    env.renderer = std::static_pointer_cast<RecordingRenderer>(AdoptRenderer(std::make_shared<RecordingRenderer>()));
}

TEST_F(RendererShaders, ShaderDroppedOnAnotherThreadIsFreedOnTheRenderWorker)
{
    task_system tasks;
    task_system* previous = g_task_system;
    g_task_system = &tasks;
    ASSERT_TRUE(tasks.start(2));
    auto shader = renderer.LoadShaderFromSource("threaded", kShaderText, false);
    // Parsed at once, but created by a call queued to the render worker.
    tasks.wait_for_all();
    // A worker lets go of a finished task (here: the creation call, which holds the shader) only
    // when it takes its next one: one more call through worker 0 makes `shader` the last owner.
    run_call_with_return_value<void>(
        tasks, [] {}, 0)
        .get();
    EXPECT_TRUE(shader->IsReady());
    std::weak_ptr<GpuShader> watch = shader;
    renderer.ClearCalls();
    std::thread dropper([&shader] { shader.reset(); });
    dropper.join();
    tasks.wait_for_all();
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(renderer.Calls(), std::vector<std::string>{"FreeShader(threaded)"});
    tasks.stop();
    g_task_system = previous;
}

TEST_F(RendererShaders, PendingShaderCannotBeBound)
{
    renderer.translate_result = false;
    auto pending = renderer.LoadShaderFromSource("pending", kShaderText, false);
    EXPECT_FALSE(renderer.SetShader(pending));
    EXPECT_FALSE(renderer.SetShader(nullptr));
    EXPECT_TRUE(renderer.SetShader(renderer.GetDefaultShader()));
}

}  // namespace
}  // namespace kesta
