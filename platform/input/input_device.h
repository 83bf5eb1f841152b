#pragma once
// Every input of the engine, a keyboard as much as a VR headset, is read through InputDevice. The
// interface is wide on purpose: each operation has a harmless default, so a device overrides only
// what it has. "Was" means at the previous Update, so a caller detects an edge without state.

#include <cstdint>

#include "foundation/math/matrix4.h"

namespace kesta {

// What GetType answers. 0 and 4 name no kind.
enum InputDeviceKind : int {
    kInputDeviceKeyboard = 1,
    kInputDeviceMouse = 2,
    kInputDeviceGamePad = 3,
    kInputDeviceHeadMountedDisplay = 5,
    kInputDeviceTrackedController = 6,
};

class InputDevice {
public:
    virtual ~InputDevice() = default;

    virtual InputDeviceKind GetType() = 0;
    virtual void Update() = 0;

    virtual bool IsKeyDown(int key);
    virtual bool WasKeyDown(int key);
    // Never null: an unknown key has the empty name.
    virtual const char* GetKeyName(int key);

    virtual bool IsButtonDown(int button);
    virtual bool WasButtonDown(int button);
    virtual float GetValue(int value);
    virtual float GetLastValue(int value);
    // True, with the range in `minimum` and `maximum`, for a value code the device knows.
    virtual bool GetValueRange(int value, float& minimum, float& maximum);

    virtual Matrix4 GetMatrix(int matrix);
    // Kept so that the operations after it stay in their places; no device uses it.
    virtual bool Reserved();
    // True if the device accepted the effect.
    virtual bool SetEffect(int effect, float strength);
    virtual bool IsConnected();
};

}  // namespace kesta
