// CPU cost and heap allocations of one VR frame of the real module: both eyes through the render
// system and a side-by-side mirror, no renderables, against the unpaced simulated runtime and the
// recording back end with call recording off. Everything runs on this thread, as it does on the
// render worker.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "bench/heap_allocation_count.h"
#include "engine/frame_renderer_factory.h"
#include "engine/render_system/render_system.h"
#include "engine/renderer/recording_renderer.h"
#include "foundation/log/log.h"
#include "foundation/profiler/profiler.h"
#include "platform/input/input_system.h"
#include "platform/plugin/plugin_library.h"
#include "plugins/engine_singletons.h"
#include "plugins/plugin_context.h"

namespace {

// With `profiled` false no profiler is set, so profile sections cost nothing, as in the render
// system's benchmark; the frame must then make no heap allocation at all. With a profiler, each
// profiler frame makes its section names anew, and the counter shows what that costs.
void RunVRFrames(benchmark::State& state, bool profiled)
{
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "norvane_vr_frame_bench";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "vrsim.json") << R"({"paced": false, "devices": [{"class": "controller"},
        {"class": "controller"}, {"class": "tracker"}]})";
    setenv("VR_OVERRIDE", NORVANE_VRSIM_DIR, 1);
    setenv("VR_CONFIG_PATH", folder.c_str(), 1);
    setenv("VR_LOG_PATH", folder.c_str(), 1);
    setenv("NORVANE_VRSIM_CONFIG", (folder / "vrsim.json").c_str(), 1);

    // No worker is started: the render worker's calls run at once on this thread.
    kesta::EngineSingletons engine;
    // The recording back end has no GPU shaders of the 3D pipelines to report on.
    engine.log_system().SetOutputMask(0);
    if (!profiled)
        kesta::g_profiler = nullptr;
    kesta::InputSystem input;
    auto renderer = std::static_pointer_cast<kesta::RecordingRenderer>(
        kesta::AdoptRenderer(std::make_shared<kesta::RecordingRenderer>()));
    renderer->Open();
    renderer->record_calls = false;
    kesta::RenderSystem render_system;
    render_system.Initialize(renderer, true);

    kesta::PluginLibrary library;
    if (!library.Open(NORVANE_VR_MODULE_PATH)) {
        state.SkipWithError(library.error().c_str());
        return;
    }
    kesta::PluginContext context = kesta::MakePluginContext();
    context.input_system = &input;
    context.profiler = kesta::g_profiler;
    library.load(context);
    {
        std::shared_ptr<kesta::FrameRenderer> frame_renderer = engine.frame_renderer_factory().at("VR")();
        frame_renderer->SetConfiguration("MonitoringConfiguration", "0");
        if (!frame_renderer->Initialize(render_system)) {
            state.SkipWithError("the VR session did not start");
        } else {
            std::vector<std::shared_ptr<kesta::Renderable>> renderables;
            std::vector<std::shared_ptr<kesta::Component>> post_processes;
            auto& lights = *reinterpret_cast<kesta::LightSystem*>(&render_system);  // only passed on
            auto frame = [&] {
                frame_renderer->RenderFrame(render_system, lights, renderables, post_processes);
                // The engine ends a profiler frame per scene frame.
                if (profiled)
                    engine.profiler().EndFrame();
            };
            // Steady state: the first frames size the profiler's and render system's tables.
            for (int i = 0; i < 16; ++i)
                frame();
            // The frame's own thread only: the engine's timer thread keeps running meanwhile.
            kesta::bench::StartCountingHeapAllocations();
            for (auto _ : state)
                frame();
            const auto allocations = static_cast<double>(kesta::bench::StopCountingHeapAllocations());
            state.counters["allocations_per_frame"] = allocations / static_cast<double>(state.iterations());
            if (!profiled && allocations != 0)
                state.SkipWithError("a steady-state VR frame allocated on the heap");
            frame_renderer->Shutdown(render_system);
        }
    }
    library.unload();
    library.Close();
    render_system.Free();
    renderer->Close();
}

void BM_VRFrameSideBySide(benchmark::State& state) { RunVRFrames(state, false); }
void BM_VRFrameSideBySideProfiled(benchmark::State& state) { RunVRFrames(state, true); }

}  // namespace

BENCHMARK(BM_VRFrameSideBySide)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_VRFrameSideBySideProfiled)->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
