#include "foundation/thread/thread_name.h"

#include <pthread.h>

#include <mutex>
#include <unordered_map>

namespace kesta {

namespace {

// Linux refuses names longer than 15 bytes plus the terminator.
constexpr std::size_t kKernelNameLength = 15;

struct ThreadNames {
    std::mutex lock;
    std::unordered_map<std::thread::id, std::string> names;
};

ThreadNames& thread_names()
{
    static ThreadNames names;
    return names;
}

// Removes the thread's entry when it ends: thread ids are reused by later threads.
struct NameEntryOwner {
    bool registered = false;
    ~NameEntryOwner()
    {
        if (!registered)
            return;
        ThreadNames& names = thread_names();
        std::lock_guard lock(names.lock);
        names.names.erase(std::this_thread::get_id());
    }
};

thread_local NameEntryOwner t_name_entry;

}  // namespace

void set_current_thread_name(std::string_view name)
{
    const std::string kernel_name(name.substr(0, kKernelNameLength));
    pthread_setname_np(pthread_self(), kernel_name.c_str());
    ThreadNames& names = thread_names();
    std::lock_guard lock(names.lock);
    names.names[std::this_thread::get_id()] = std::string(name);
    t_name_entry.registered = true;
}

std::string get_thread_name(std::thread::id id)
{
    ThreadNames& names = thread_names();
    std::lock_guard lock(names.lock);
    const auto found = names.names.find(id);
    return found == names.names.end() ? std::string() : found->second;
}

}  // namespace kesta
