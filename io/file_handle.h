#pragma once
// An open file. What lies behind it (a C stream, a memory block, a slice of an archive) belongs to
// the driver that opened it; the handle keeps that driver alive and forwards to it.

#include <cstdint>
#include <memory>
#include <mutex>

namespace kesta {

class FileDriver;

// Seek origins.
enum SeekOrigin : int { kSeekStart = 0, kSeekCurrent = 1, kSeekEnd = 2 };

class BaseFileHandle {
public:
    virtual ~BaseFileHandle() = default;
    virtual std::uint64_t GetSize() = 0;
    virtual void Rewind() = 0;
    virtual bool IsEOF() = 0;
    virtual std::int64_t Tell() = 0;
    virtual std::int64_t Seek(std::int64_t offset, int origin) = 0;
    virtual std::uint64_t Read(void* buffer, std::uint64_t size) = 0;
    virtual std::uint64_t Write(const void* buffer, std::uint64_t size) = 0;
};

class FileHandle : public BaseFileHandle {
public:
    explicit FileHandle(std::shared_ptr<FileDriver> owner) : driver(std::move(owner)) {}
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    std::uint64_t GetSize() override;
    void Rewind() override { Seek(0, kSeekStart); }
    bool IsEOF() override;
    std::int64_t Tell() override;
    std::int64_t Seek(std::int64_t offset, int origin) override;
    std::uint64_t Read(void* buffer, std::uint64_t size) override;
    std::uint64_t Write(const void* buffer, std::uint64_t size) override;

    // Taken by the driver around every operation on this handle; recursive so that an operation
    // may call another one on the same handle.
    std::recursive_mutex lock;
    std::shared_ptr<FileDriver> driver;

protected:
    // Concrete handles call this from their own destructor, while their state still exists, so
    // that the driver can release it.
    void CloseThroughDriver();
};

}  // namespace kesta
