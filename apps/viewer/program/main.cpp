// norvane_viewer: shows the demo scene in a VR headset. It picks the OpenVR runtime (the user's, or
// the simulated headset of this build), starts the engine, loads the modules through the plug-in
// host, runs the frames, writes the eye pictures, the mirror and a profile into the output folder,
// and ends with a short summary.

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "apps/viewer/frame_time_stats.h"
#include "apps/viewer/png_file.h"
#include "apps/viewer/profile_summary.h"
#include "apps/viewer/viewer_options.h"
#include "apps/viewer/viewer_paths.h"
#include "apps/viewer/viewer_runtime_config.h"
#include "apps/viewer/viewer_session.h"
#include "apps/viewer/vr_session_log.h"
#include "foundation/log/log.h"
#include "foundation/profiler/profiler.h"
#include "foundation/task/task_system.h"
#include "foundation/thread/scheduling.h"
#include "plugins/engine_singletons.h"
#include "plugins/vr/runtime_choice/simulated_runtime_report.h"
#include "plugins/vr/runtime_choice/vr_runtime_choice.h"

namespace {

constexpr const char* kProgram = "norvane_viewer";
// The profile covers at most this many of the last frames.
constexpr std::uint64_t kProfileFrames = 60;

int Fail(const std::string& message)
{
    std::fprintf(stderr, "%s: %s\n", kProgram, message.c_str());
    return 1;
}

const char* MonitoringText(int monitoring)
{
    static const char* const kTexts[] = {"both eyes side by side", "the right eye", "the left eye", "the head's view"};
    return kTexts[monitoring];
}

double Milliseconds(kesta::time_ns duration) { return static_cast<double>(duration) / 1e6; }

// Everything the closing summary tells.
struct RunResult {
    kesta::VRSessionLog session;
    bool session_known = false;
    int mirror_width = 0;
    int mirror_height = 0;
    kesta::FrameTimeStats frame_times;
    std::uint64_t pulses_requested = 0;
    bool simulated_report = false;
    kesta::SimulatedRuntimeReport report;
    std::vector<std::string> devices;
    std::vector<std::string> files;
};

std::string DeviceLine(const char* name, const kesta::ViewerScene::DeviceView& device)
{
    char text[160];
    const kesta::Vector3 p = device.pose.Translation();
    std::snprintf(text, sizeof text, "%s at (%.2f, %.2f, %.2f)", name, static_cast<double>(p.x),
                  static_cast<double>(p.y), static_cast<double>(p.z));
    return text;
}

// Runs the frames and collects what the summary tells. The engine's objects live for this call.
int RunViewer(const kesta::ViewerOptions& options, const kesta::ViewerPaths& paths,
              const kesta::VRRuntimeChoice& runtime, const std::string& out, RunResult& result)
{
    int status = 0;
    kesta::EngineSingletons engine;
    kesta::apply_engine_process_settings();
    engine.tasks().start(0);
    {
        kesta::ViewerSession session(engine);
        std::string error;
        if (!session.Start({paths.module_folder, options.monitoring}, error)) {
            status = Fail(error);
        } else {
            result.session_known = kesta::ParseVRSessionLog(engine.log_system().GetTail(), result.session);
            result.mirror_width = session.mirror_width();
            result.mirror_height = session.mirror_height();
            kesta::ProfileSummary profile;
            for (std::uint64_t frame = 1; frame <= options.frames; ++frame) {
                const kesta::time_ns start = kesta::time_now();
                session.RunFrame();
                result.frame_times.Add(kesta::time_now() - start);
                if (frame + kProfileFrames > options.frames)
                    profile.Add(engine.profiler().GetLastFrame());
            }
            result.pulses_requested = session.scene().HapticPulsesRequested();
            for (std::size_t i = 0; i < kesta::ViewerScene::kDeviceNames.size(); ++i) {
                if (session.scene().Devices()[i].seen)
                    result.devices.push_back(
                        DeviceLine(kesta::ViewerScene::kDeviceNames[i], session.scene().Devices()[i]));
            }
            // While the session is open, the runtime still holds what it recorded.
            result.simulated_report = kesta::ReadSimulatedRuntimeReport(runtime.runtime_folder, result.report);

            kesta::Picture mirror;
            const std::string mirror_file = out + "/mirror.png";
            if (session.CaptureMirror(mirror) && kesta::WritePngFile(mirror_file, mirror))
                result.files.push_back(mirror_file);
            else
                status = Fail("could not write the mirror picture " + mirror_file);
            const std::string profile_file = out + "/profile.txt";
            if (std::FILE* file = std::fopen(profile_file.c_str(), "w")) {
                const std::string text = profile.Format();
                const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
                if (std::fclose(file) == 0 && written)
                    result.files.push_back(profile_file);
            }
        }
        session.Stop();
    }
    engine.tasks().wait_for_all();
    kesta::restore_engine_process_settings();
    return status;
}

void PrintSummary(const kesta::ViewerOptions& options, const kesta::VRRuntimeChoice& runtime, const RunResult& result)
{
    std::printf("Summary\n");
    std::printf("  runtime        %s%s\n", runtime.user_runtime ? "" : "simulated, ", runtime.runtime_folder.c_str());
    if (result.session_known) {
        std::printf("  headset        serial %s (%s)\n", result.session.serial.c_str(),
                    result.session.tracking_system.c_str());
        std::printf("  render size    %d x %d per eye; mirror %d x %d, %s\n", result.session.render_width,
                    result.session.render_height, result.mirror_width, result.mirror_height,
                    MonitoringText(options.monitoring));
    }
    const kesta::time_ns mean = result.frame_times.Mean();
    std::printf("  frames         %llu, %s\n", static_cast<unsigned long long>(result.frame_times.Count()),
                options.unpaced && !runtime.user_runtime ? "unpaced" : "paced by the runtime");
    std::printf("  frame time     mean %.2f ms (%.1f frames per second), 99th percentile %.2f ms\n", Milliseconds(mean),
                mean > 0 ? 1e9 / static_cast<double>(mean) : 0.0, Milliseconds(result.frame_times.Percentile(99.0)));
    for (const std::string& device : result.devices)
        std::printf("  device         %s\n", device.c_str());
    std::printf("  haptic pulses  %llu asked for on a trigger press",
                static_cast<unsigned long long>(result.pulses_requested));
    if (result.simulated_report) {
        std::printf("; the simulated runtime recorded %zu", result.report.haptic_pulses.size());
        for (std::size_t i = 0; i < result.report.haptic_pulses.size(); ++i)
            std::printf("%s%llu", i == 0 ? ", at frames " : ", ",
                        static_cast<unsigned long long>(result.report.haptic_pulses[i].frame));
    }
    std::printf("\n");
    for (std::size_t i = 0; i < result.files.size(); ++i)
        std::printf("  %s  %s\n", i == 0 ? "files        " : "             ", result.files[i].c_str());
}

}  // namespace

int main(int argc, char** argv)
{
    kesta::ViewerOptions options;
    std::string error;
    if (!kesta::ParseViewerOptions(std::vector<std::string>(argv + 1, argv + argc), options, error)) {
        std::fprintf(stderr, "%s: %s\nTry '%s --help'.\n", kProgram, error.c_str(), kProgram);
        return 2;
    }
    if (options.help) {
        std::fputs(kesta::ViewerUsage(kProgram).c_str(), stdout);
        return 0;
    }
    const kesta::ViewerPaths paths = kesta::FindViewerPaths();
    if (paths.module_folder.empty())
        return Fail("cannot find the folder of this program");
    const std::string out = options.out.empty() ? paths.default_out : options.out;
    if (!kesta::MakeFolders(out, error))
        return Fail(error);

    const kesta::VRRuntimeChoice runtime = kesta::ChooseVRRuntime(paths.simulated_runtime);
    if (!runtime.user_runtime) {
        // The simulated headset runs the shipped demo, paced or not, and captures the last frame.
        const std::string state = out + "/vrsim";
        const std::string config = state + "/vrsim.json";
        if (!kesta::MakeFolders(state, error) ||
            !kesta::WriteViewerRuntimeConfig(paths.demo_config, {!options.unpaced, out, options.frames}, config, error))
            return Fail(error);
        kesta::SelectSimulatedRuntime(paths.simulated_runtime, state, config);
    }
    std::printf("VR runtime: %s%s, because %s\n", runtime.user_runtime ? "" : "the simulated headset in ",
                runtime.runtime_folder.c_str(), runtime.reason.c_str());

    // Eye pictures of an earlier run must not pass for this run's.
    const std::string eye_files[2] = {out + "/frame_" + std::to_string(options.frames) + "_left.png",
                                      out + "/frame_" + std::to_string(options.frames) + "_right.png"};
    std::error_code ignored;
    for (const std::string& file : eye_files)
        std::filesystem::remove(file, ignored);

    RunResult result;
    const int status = RunViewer(options, paths, runtime, out, result);
    if (status != 0)
        return status;
    std::vector<std::string> written;
    for (const std::string& file : eye_files) {
        if (std::filesystem::exists(file))
            written.push_back(file);
    }
    result.files.insert(result.files.begin(), written.begin(), written.end());
    PrintSummary(options, runtime, result);
    return 0;
}
