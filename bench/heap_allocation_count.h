#pragma once
// Counts the heap allocations that the calling thread makes between start and stop, for benchmarks
// that must not allocate in steady state. A program linked with heap_allocation_count.cpp has its
// allocation operators replaced; shared objects it loads bind to them too. Other threads (the
// engine's timer, for one) are not counted.

namespace kesta::bench {

void StartCountingHeapAllocations();
// The allocations of this thread since the start.
long StopCountingHeapAllocations();

}  // namespace kesta::bench
