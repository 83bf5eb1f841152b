#pragma once
// A signal is a mutex and a list of slots; each slot has a 64-bit connection handle.
// Slots run on a snapshot of the list, with no lock held, so a slot may connect or disconnect.

#include <cstdint>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace kesta {

using SignalConnection = std::uint64_t;

template <typename... Args>
class Signal {
public:
    using Slot = std::function<void(Args...)>;

    SignalConnection Connect(Slot slot)
    {
        std::lock_guard lock(mutex_);
        const SignalConnection id = ++last_id_;
        slots_.emplace_back(id, std::move(slot));
        return id;
    }

    bool Disconnect(SignalConnection id)
    {
        std::lock_guard lock(mutex_);
        for (auto it = slots_.begin(); it != slots_.end(); ++it) {
            if (it->first == id) {
                slots_.erase(it);
                return true;
            }
        }
        return false;
    }

    void Emit(Args... args) const
    {
        std::vector<std::pair<SignalConnection, Slot>> snapshot;
        {
            std::lock_guard lock(mutex_);
            snapshot = slots_;
        }
        for (auto& [id, slot] : snapshot)
            slot(args...);
    }

    std::size_t SlotCount() const
    {
        std::lock_guard lock(mutex_);
        return slots_.size();
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::pair<SignalConnection, Slot>> slots_;
    SignalConnection last_id_ = 0;
};

}  // namespace kesta
