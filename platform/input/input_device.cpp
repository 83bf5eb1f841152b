#include "platform/input/input_device.h"

namespace kesta {

bool InputDevice::IsKeyDown(int) { return false; }

bool InputDevice::WasKeyDown(int) { return false; }

const char* InputDevice::GetKeyName(int) { return ""; }

bool InputDevice::IsButtonDown(int) { return false; }

bool InputDevice::WasButtonDown(int) { return false; }

float InputDevice::GetValue(int) { return 0.0f; }

float InputDevice::GetLastValue(int) { return 0.0f; }

bool InputDevice::GetValueRange(int, float&, float&) { return false; }

Matrix4 InputDevice::GetMatrix(int) { return Matrix4::Identity(); }

bool InputDevice::Reserved() { return false; }

bool InputDevice::SetEffect(int, float) { return false; }

bool InputDevice::IsConnected() { return true; }

}  // namespace kesta
