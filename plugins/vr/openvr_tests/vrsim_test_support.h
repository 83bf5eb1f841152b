#pragma once

// Helpers for tests that run the simulated runtime through the client layer, as an application does.
#include <dlfcn.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>

#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/simulator/vrsim_api.h"

namespace kesta::testing {

// Sets or unsets environment variables for one scope and restores what was there before.
class ScopedEnvironment {
public:
    ScopedEnvironment() = default;
    ~ScopedEnvironment()
    {
        for (const auto& [name, value] : saved_) {
            if (value)
                setenv(name.c_str(), value->c_str(), 1);
            else
                unsetenv(name.c_str());
        }
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

    void Set(const std::string& name, const std::string& value)
    {
        Save(name);
        setenv(name.c_str(), value.c_str(), 1);
    }
    void Unset(const std::string& name)
    {
        Save(name);
        unsetenv(name.c_str());
    }

private:
    void Save(const std::string& name)
    {
        if (saved_.count(name) != 0)
            return;
        const char* value = getenv(name.c_str());
        saved_[name] = value ? std::optional<std::string>(value) : std::nullopt;
    }

    std::map<std::string, std::optional<std::string>> saved_;
};

// A fresh folder under the system's temporary folder, removed with everything in it.
class TempFolder {
public:
    TempFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "norvane_vr_XXXXXX").string();
        if (mkdtemp(pattern.data()) != nullptr)
            path_ = pattern;
    }
    ~TempFolder()
    {
        std::error_code ignored;
        if (!path_.empty())
            std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

    std::filesystem::path Write(const std::string& relative, const std::string& text) const
    {
        const std::filesystem::path file = path_ / relative;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << text;
        return file;
    }

private:
    std::filesystem::path path_;
};

inline std::string SimulatedRuntimeFolder() { return NORVANE_VRSIM_DIR; }

// Isolates a test from the user's OpenVR set-up: no registry file is found (HOME and XDG_CONFIG_HOME
// point at an empty folder) and no runtime variable is set, unless the test sets one.
class IsolatedOpenVREnvironment {
public:
    IsolatedOpenVREnvironment()
    {
        env.Set("HOME", home.path().string());
        env.Set("XDG_CONFIG_HOME", (home.path() / "config").string());
        env.Unset("VR_OVERRIDE");
        env.Unset("VR_CONFIG_PATH");
        env.Unset("VR_LOG_PATH");
        env.Unset("NORVANE_VRSIM_CONFIG");
    }

    // Points the variables at the simulated runtime, with `config_json` as its configuration (none
    // when empty, so the defaults apply).
    void UseSimulatedRuntime(const std::string& config_json = {})
    {
        env.Set("VR_OVERRIDE", SimulatedRuntimeFolder());
        env.Set("VR_CONFIG_PATH", (home.path() / "vrconfig").string());
        env.Set("VR_LOG_PATH", (home.path() / "vrlog").string());
        if (!config_json.empty())
            env.Set("NORVANE_VRSIM_CONFIG", home.Write("vrsim.json", config_json).string());
    }

    TempFolder home;
    ScopedEnvironment env;
};

// The simulated runtime's introspection functions, found in the runtime library that VR_Init loaded.
// Holding this keeps the library loaded: destroy it before the end of the test.
class VrSimIntrospection {
public:
    VrSimIntrospection()
    {
        const std::string library = SimulatedRuntimeFolder() + "/bin/linux64/vrclient.so";
        handle_ = dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD);
        if (handle_ == nullptr)
            return;
        frame_count = Find<decltype(frame_count)>("VrSimFrameCount");
        submission_count = Find<decltype(submission_count)>("VrSimSubmissionCount");
        get_submission = Find<decltype(get_submission)>("VrSimGetSubmission");
        haptic_pulse_count = Find<decltype(haptic_pulse_count)>("VrSimHapticPulseCount");
        get_haptic_pulse = Find<decltype(get_haptic_pulse)>("VrSimGetHapticPulse");
        copy_last_pixels = Find<decltype(copy_last_pixels)>("VrSimCopyLastPixels");
        clear_logs = Find<decltype(clear_logs)>("VrSimClearLogs");
    }
    ~VrSimIntrospection()
    {
        if (handle_ != nullptr)
            dlclose(handle_);
    }
    VrSimIntrospection(const VrSimIntrospection&) = delete;
    VrSimIntrospection& operator=(const VrSimIntrospection&) = delete;

    bool loaded() const { return handle_ != nullptr && clear_logs != nullptr; }

    decltype(&VrSimFrameCount) frame_count = nullptr;
    decltype(&VrSimSubmissionCount) submission_count = nullptr;
    decltype(&VrSimGetSubmission) get_submission = nullptr;
    decltype(&VrSimHapticPulseCount) haptic_pulse_count = nullptr;
    decltype(&VrSimGetHapticPulse) get_haptic_pulse = nullptr;
    decltype(&VrSimCopyLastPixels) copy_last_pixels = nullptr;
    decltype(&VrSimClearLogs) clear_logs = nullptr;

private:
    template <typename F>
    F Find(const char* name)
    {
        return reinterpret_cast<F>(dlsym(handle_, name));
    }

    void* handle_ = nullptr;
};

// Starts the runtime and shuts it down at the end of the scope.
class ScopedVRSession {
public:
    explicit ScopedVRSession(vr::EVRApplicationType type = vr::VRApplication_Scene)
    {
        system = vr::VR_Init(&error, type);
    }
    ~ScopedVRSession()
    {
        if (system != nullptr)
            vr::VR_Shutdown();
    }
    ScopedVRSession(const ScopedVRSession&) = delete;
    ScopedVRSession& operator=(const ScopedVRSession&) = delete;

    vr::EVRInitError error = vr::VRInitError_Unknown;
    vr::IVRSystem* system = nullptr;
};

}  // namespace kesta::testing
