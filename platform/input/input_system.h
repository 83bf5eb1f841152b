#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kesta {

class InputDevice;
class InputDeviceProvider;

// The registry of input devices and their providers, one per process. It has no lock: its maps
// change at start-up, in plug-in load and unload, and in GetDevice, all on the application's thread.
class InputSystem {
public:
    // False, dropping `device`, if the name is taken.
    bool AddDevice(const std::string& name, std::shared_ptr<InputDevice> device);
    // Devices already handed out by GetDevice stay reachable (and updated) under their name.
    void RemoveDevice(const std::string& name);
    bool AddProvider(const std::string& name, std::shared_ptr<InputDeviceProvider> provider);
    void RemoveProvider(const std::string& name);

    // A registered device by name, or "<provider>.<device>" from a provider, split at the first
    // dot. Whatever it returns once, it returns again for the same name. Empty for an unknown name.
    std::shared_ptr<InputDevice> GetDevice(const std::string& name);
    // The registered names, then each provider's devices as "<provider>.<device>", in name order.
    std::vector<std::string> GetDeviceNames();
    // Updates every device GetDevice has returned, in name order.
    void UpdateDevices();
    // Forgets every device GetDevice has returned. The code of a plug-in's devices goes with the
    // plug-in: a host calls this before it unloads plug-ins whose devices were asked for.
    void CloseOpenDevices();

private:
    std::map<std::string, std::shared_ptr<InputDevice>> devices_;
    std::map<std::string, std::shared_ptr<InputDeviceProvider>> providers_;
    std::map<std::string, std::shared_ptr<InputDevice>> open_devices_;
};

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern InputSystem* g_input_system;

}  // namespace kesta
