#include "bench/heap_allocation_count.h"

#include <cstdlib>
#include <new>

namespace {

thread_local bool t_counting = false;
thread_local long t_allocations = 0;

void* Allocate(std::size_t size)
{
    if (t_counting)
        ++t_allocations;
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void* AllocateAligned(std::size_t size, std::align_val_t alignment)
{
    if (t_counting)
        ++t_allocations;
    const auto align = static_cast<std::size_t>(alignment);
    if (void* memory = std::aligned_alloc(align, (size + align - 1) / align * align))
        return memory;
    throw std::bad_alloc();
}

}  // namespace

namespace kesta::bench {

void StartCountingHeapAllocations()
{
    t_allocations = 0;
    t_counting = true;
}

long StopCountingHeapAllocations()
{
    t_counting = false;
    return t_allocations;
}

}  // namespace kesta::bench

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return std::malloc(size ? size : 1); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return std::malloc(size ? size : 1); }
void* operator new(std::size_t size, std::align_val_t alignment) { return AllocateAligned(size, alignment); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return AllocateAligned(size, alignment); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
