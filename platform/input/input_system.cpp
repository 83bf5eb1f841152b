#include "platform/input/input_system.h"

#include "platform/input/input_device.h"
#include "platform/input/input_device_provider.h"

namespace kesta {

InputSystem* g_input_system = nullptr;

bool InputSystem::AddDevice(const std::string& name, std::shared_ptr<InputDevice> device)
{
    return devices_.try_emplace(name, std::move(device)).second;
}

void InputSystem::RemoveDevice(const std::string& name) { devices_.erase(name); }

bool InputSystem::AddProvider(const std::string& name, std::shared_ptr<InputDeviceProvider> provider)
{
    return providers_.try_emplace(name, std::move(provider)).second;
}

void InputSystem::RemoveProvider(const std::string& name) { providers_.erase(name); }

std::shared_ptr<InputDevice> InputSystem::GetDevice(const std::string& name)
{
    if (const auto open = open_devices_.find(name); open != open_devices_.end())
        return open->second;

    std::shared_ptr<InputDevice> device;
    const std::size_t dot = name.find('.');
    if (dot == std::string::npos) {
        if (const auto found = devices_.find(name); found != devices_.end())
            device = found->second;
    } else if (const auto provider = providers_.find(name.substr(0, dot)); provider != providers_.end()) {
        device = provider->second->GetDevice(name.substr(dot + 1));
    }
    if (device)
        open_devices_[name] = device;
    return device;
}

std::vector<std::string> InputSystem::GetDeviceNames()
{
    std::vector<std::string> names;
    names.reserve(devices_.size());
    for (const auto& [name, device] : devices_)
        names.push_back(name);
    for (const auto& [provider_name, provider] : providers_)
        for (const std::string& device_name : provider->GetDeviceNames())
            names.push_back(provider_name + "." + device_name);
    return names;
}

void InputSystem::UpdateDevices()
{
    for (const auto& [name, device] : open_devices_)
        device->Update();
}

void InputSystem::CloseOpenDevices() { open_devices_.clear(); }

}  // namespace kesta
