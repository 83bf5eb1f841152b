#include "platform/input/input_system.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/input/input_device.h"
#include "platform/input/input_device_provider.h"

namespace kesta {
namespace {

// A device that only has the two required operations, and records its updates by name.
class RecordingDevice : public InputDevice {
public:
    RecordingDevice(std::string name, std::vector<std::string>* updates) : name_(std::move(name)), updates_(updates) {}
    InputDeviceKind GetType() override { return kInputDeviceGamePad; }
    void Update() override
    {
        if (updates_)
            updates_->push_back(name_);
    }

private:
    std::string name_;
    std::vector<std::string>* updates_;
};

// Makes a new device for each name it knows, and counts what it was asked for.
class FakeProvider : public InputDeviceProvider {
public:
    explicit FakeProvider(std::vector<std::string> names) : names_(std::move(names)) {}
    std::vector<std::string> GetDeviceNames() override { return names_; }
    std::shared_ptr<InputDevice> GetDevice(const std::string& name) override
    {
        asked.push_back(name);
        for (const std::string& known : names_)
            if (known == name)
                return std::make_shared<RecordingDevice>(name, nullptr);
        return nullptr;
    }

    std::vector<std::string> asked;

private:
    std::vector<std::string> names_;
};

TEST(InputDeviceDefaults, EveryOperationIsHarmless)
{
    RecordingDevice device("pad", nullptr);
    InputDevice& base = device;
    EXPECT_FALSE(base.IsKeyDown(1));
    EXPECT_FALSE(base.WasKeyDown(1));
    ASSERT_NE(base.GetKeyName(65), nullptr);
    EXPECT_STREQ(base.GetKeyName(65), "");
    EXPECT_FALSE(base.IsButtonDown(0));
    EXPECT_FALSE(base.WasButtonDown(0));
    EXPECT_EQ(base.GetValue(12), 0.0f);
    EXPECT_EQ(base.GetLastValue(12), 0.0f);
    float minimum = 7, maximum = 9;
    EXPECT_FALSE(base.GetValueRange(12, minimum, maximum));
    EXPECT_EQ(base.GetMatrix(0), Matrix4::Identity());
    EXPECT_EQ(base.GetMatrix(5), Matrix4::Identity());
    EXPECT_FALSE(base.Reserved());
    EXPECT_FALSE(base.SetEffect(0, 1.0f));
    EXPECT_TRUE(base.IsConnected());
}

class InputSystemTest : public ::testing::Test {
protected:
    std::shared_ptr<RecordingDevice> Device(const std::string& name)
    {
        return std::make_shared<RecordingDevice>(name, &updates);
    }

    InputSystem input;
    std::vector<std::string> updates;
};

TEST_F(InputSystemTest, AddDeviceTwiceKeepsTheFirst)
{
    const auto first = Device("first");
    EXPECT_TRUE(input.AddDevice("pad", first));
    std::weak_ptr<RecordingDevice> second;
    {
        auto second_device = Device("second");
        second = second_device;
        EXPECT_FALSE(input.AddDevice("pad", second_device));
    }
    // The refused device was dropped, not kept anywhere.
    EXPECT_TRUE(second.expired());
    EXPECT_EQ(input.GetDevice("pad"), first);
}

TEST_F(InputSystemTest, RemovedDeviceStaysOpenAndUpdatedOnceAskedFor)
{
    const auto asked = Device("asked");
    const auto never_asked = Device("never_asked");
    input.AddDevice("asked", asked);
    input.AddDevice("never_asked", never_asked);
    ASSERT_EQ(input.GetDevice("asked"), asked);

    input.RemoveDevice("asked");
    input.RemoveDevice("never_asked");
    EXPECT_EQ(input.GetDevice("asked"), asked);
    EXPECT_EQ(input.GetDevice("never_asked"), nullptr);
    EXPECT_TRUE(input.GetDeviceNames().empty());

    input.UpdateDevices();
    EXPECT_EQ(updates, (std::vector<std::string>{"asked"}));
}

TEST_F(InputSystemTest, ClosedDevicesAreReleasedAndOnlyRegisteredOnesAreFoundAgain)
{
    std::weak_ptr<RecordingDevice> removed;
    {
        const auto device = Device("removed");
        removed = device;
        input.AddDevice("removed", device);
    }
    const auto kept = Device("kept");
    input.AddDevice("kept", kept);
    ASSERT_NE(input.GetDevice("removed"), nullptr);
    ASSERT_EQ(input.GetDevice("kept"), kept);
    input.RemoveDevice("removed");

    input.CloseOpenDevices();
    // Nothing of the removed device is held any more: its plug-in may go.
    EXPECT_TRUE(removed.expired());
    EXPECT_EQ(input.GetDevice("removed"), nullptr);
    input.UpdateDevices();
    EXPECT_TRUE(updates.empty());
    EXPECT_EQ(input.GetDevice("kept"), kept);
}

TEST_F(InputSystemTest, UpdatesOpenDevicesInNameOrder)
{
    for (const char* name : {"mouse", "keyboard", "zeta"})
        input.AddDevice(name, Device(name));
    input.GetDevice("zeta");
    input.GetDevice("keyboard");
    input.GetDevice("mouse");
    input.GetDevice("zeta");
    input.UpdateDevices();
    EXPECT_EQ(updates, (std::vector<std::string>{"keyboard", "mouse", "zeta"}));
}

TEST_F(InputSystemTest, ProviderDevicesAreMadeOnceAndSplitAtTheFirstDot)
{
    auto provider = std::make_shared<FakeProvider>(std::vector<std::string>{"pad0", "pad.1"});
    ASSERT_TRUE(input.AddProvider("dinput8", provider));
    EXPECT_FALSE(input.AddProvider("dinput8", std::make_shared<FakeProvider>(std::vector<std::string>{})));

    const auto pad = input.GetDevice("dinput8.pad0");
    ASSERT_NE(pad, nullptr);
    EXPECT_EQ(input.GetDevice("dinput8.pad0"), pad);
    // Two dots: the provider gets everything after the first one.
    EXPECT_NE(input.GetDevice("dinput8.pad.1"), nullptr);
    EXPECT_EQ(input.GetDevice("dinput8.unknown"), nullptr);
    EXPECT_EQ(provider->asked, (std::vector<std::string>{"pad0", "pad.1", "unknown"}));

    // After the provider is gone its devices that were asked for stay, the others cannot be found.
    input.RemoveProvider("dinput8");
    EXPECT_EQ(input.GetDevice("dinput8.pad0"), pad);
    EXPECT_EQ(input.GetDevice("dinput8.unknown"), nullptr);
}

TEST_F(InputSystemTest, DottedNameWithoutProviderIsUnknownEvenIfRegistered)
{
    input.AddDevice("vr.hmd", Device("vr.hmd"));
    input.AddDevice("vr", Device("vr"));
    EXPECT_EQ(input.GetDevice("vr.hmd"), nullptr);
    EXPECT_EQ(input.GetDevice(""), nullptr);
    EXPECT_NE(input.GetDevice("vr"), nullptr);
}

TEST_F(InputSystemTest, NamesListDevicesThenProviderDevicesInOrder)
{
    input.AddDevice("mouse", Device("mouse"));
    input.AddDevice("keyboard", Device("keyboard"));
    input.AddProvider("zpad", std::make_shared<FakeProvider>(std::vector<std::string>{"b", "a"}));
    input.AddProvider("apad", std::make_shared<FakeProvider>(std::vector<std::string>{"x"}));
    EXPECT_EQ(input.GetDeviceNames(), (std::vector<std::string>{"keyboard", "mouse", "apad.x", "zpad.b", "zpad.a"}));
}

}  // namespace
}  // namespace kesta
