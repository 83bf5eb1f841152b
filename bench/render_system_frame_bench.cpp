// The render system's per-frame cost on the recording back end (with call recording off, so
// that the back end itself costs next to nothing):
// - BM_SteadyFrameAllocations: after a warm-up, 1,000 frames of BeginDrawFrame, 100 DrawTriangle
//   and EndDrawFrame must make no heap allocation. Any allocation fails the program.
// - BM_EmptyMonoFrame: SetView, BeginDrawFrame, DrawRenderables of nothing, EndDrawFrame; the
//   target is at most 5 microseconds a frame.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <vector>

#include "bench/heap_allocation_count.h"
#include "engine/render_system/render_system.h"
#include "engine/renderer/gpu_resource_registry.h"
#include "engine/renderer/recording_renderer.h"
#include "foundation/math/projection.h"
#include "io/filesystem.h"

namespace {

bool g_failed = false;

}  // namespace

namespace {

using namespace kesta;

// An open recording renderer that records nothing, and a render system with 3D resources on it.
class BenchEngine {
public:
    BenchEngine()
    {
        g_filesystem = &filesystem;
        g_gpu_resource_registry = &registry;
        renderer = std::static_pointer_cast<RecordingRenderer>(AdoptRenderer(std::make_shared<RecordingRenderer>()));
        renderer->Open();
        render_system.Initialize(renderer, true);
        renderer->record_calls = false;
    }
    ~BenchEngine()
    {
        render_system.Free();
        renderer->Close();
        renderer.reset();
        g_gpu_resource_registry = nullptr;
        g_filesystem = nullptr;
    }

    Filesystem filesystem;
    GpuResourceRegistry registry;
    std::shared_ptr<RecordingRenderer> renderer;
    RenderSystem render_system;
};

void TriangleFrame(RenderSystem& rs, const ImmediateVertices& triangle)
{
    rs.BeginDrawFrame();
    for (int i = 0; i < 100; ++i)
        rs.DrawTriangle(triangle, Color{1, 0.5f, 0.25f, 1});
    rs.EndDrawFrame();
}

void BM_SteadyFrameAllocations(benchmark::State& state)
{
    BenchEngine engine;
    const Vector3 positions[3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    const Color colors[3] = {{1, 0, 0, 1}, {0, 1, 0, 1}, {0, 0, 1, 1}};
    const ImmediateVertices triangle{positions, colors, nullptr, 3};
    for (int frame = 0; frame < 10; ++frame)
        TriangleFrame(engine.render_system, triangle);

    long allocations = 0;
    for (auto _ : state) {
        bench::StartCountingHeapAllocations();
        for (int frame = 0; frame < 1000; ++frame)
            TriangleFrame(engine.render_system, triangle);
        allocations += bench::StopCountingHeapAllocations();
    }
    state.counters["allocations"] = static_cast<double>(allocations);
    if (allocations != 0) {
        std::fprintf(stderr, "FAILED: %ld heap allocation(s) in steady-state frames, expected none\n", allocations);
        state.SkipWithError("steady-state frames allocate");
        g_failed = true;
    }
}
BENCHMARK(BM_SteadyFrameAllocations)->Unit(benchmark::kMillisecond);

void BM_EmptyMonoFrame(benchmark::State& state)
{
    BenchEngine engine;
    RenderSystem& rs = engine.render_system;
    const Matrix4 camera = Matrix4::FromPosition({0, 1.7f, -5});
    const Matrix44 projection = PerspectiveFromZoom(1.5f, 16.0f / 9.0f, 0.1f, 1000);
    std::vector<std::shared_ptr<Renderable>> nothing;
    for (auto _ : state) {
        rs.SetView(camera, camera, projection, kEyeMono);
        rs.BeginDrawFrame();
        rs.DrawRenderables(nothing);
        rs.EndDrawFrame();
    }
}
BENCHMARK(BM_EmptyMonoFrame)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return g_failed ? 1 : 0;
}
