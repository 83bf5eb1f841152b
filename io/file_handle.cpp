#include "io/file_handle.h"

#include "io/file_driver.h"

namespace kesta {

std::uint64_t FileHandle::GetSize() { return driver ? driver->Size(*this) : 0; }

bool FileHandle::IsEOF() { return driver ? driver->IsEOF(*this) : true; }

std::int64_t FileHandle::Tell() { return driver ? driver->Tell(*this) : -1; }

std::int64_t FileHandle::Seek(std::int64_t offset, int origin)
{
    return driver ? driver->Seek(*this, offset, origin) : -1;
}

std::uint64_t FileHandle::Read(void* buffer, std::uint64_t size)
{
    return driver ? driver->Read(*this, buffer, size) : 0;
}

std::uint64_t FileHandle::Write(const void* buffer, std::uint64_t size)
{
    return driver ? driver->Write(*this, buffer, size) : 0;
}

void FileHandle::CloseThroughDriver()
{
    if (driver)
        driver->Close(*this);
}

}  // namespace kesta
