#pragma once

#include <memory>
#include <string>
#include <vector>

namespace kesta {

class InputDevice;

// A family of devices found when asked for, such as the game pads of one API. The input system
// reaches them under "<provider>.<device>".
class InputDeviceProvider {
public:
    virtual ~InputDeviceProvider() = default;
    // The devices it can give now.
    virtual std::vector<std::string> GetDeviceNames() = 0;
    // Empty for a name it does not know.
    virtual std::shared_ptr<InputDevice> GetDevice(const std::string& name) = 0;
};

}  // namespace kesta
