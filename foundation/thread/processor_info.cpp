#include "foundation/thread/processor_info.h"

#include <sched.h>

#include <fstream>
#include <set>
#include <string>
#include <utility>

namespace kesta {

namespace {

bool read_topology_value(int cpu, const char* key, long& value)
{
    std::string path = "/sys/devices/system/cpu/cpu";
    path += std::to_string(cpu);
    path += "/topology/";
    path += key;
    std::ifstream file(path);
    return static_cast<bool>(file >> value);
}

ProcessorCounts query_processor_counts()
{
    ProcessorCounts counts;
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    if (sched_getaffinity(0, sizeof allowed, &allowed) != 0)
        return counts;
    const int logical = CPU_COUNT(&allowed);
    if (logical < 1)
        return counts;

    // A core is a (package, core) pair; hardware threads of one core share it.
    std::set<std::pair<long, long>> cores;
    for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
        if (!CPU_ISSET(cpu, &allowed))
            continue;
        long package = 0;
        long core = 0;
        if (!read_topology_value(cpu, "physical_package_id", package) || !read_topology_value(cpu, "core_id", core))
            return counts;
        cores.emplace(package, core);
    }
    counts.logical = static_cast<std::uint64_t>(logical);
    counts.cores = cores.size();
    return counts;
}

}  // namespace

const ProcessorCounts& processor_counts()
{
    static const ProcessorCounts counts = query_processor_counts();
    return counts;
}

}  // namespace kesta
