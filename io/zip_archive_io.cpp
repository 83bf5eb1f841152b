#include "io/zip_archive_io.h"

#include "io/file_handle.h"

namespace kesta {

namespace {

FileHandle* handle_of(voidpf stream) { return static_cast<FileHandle*>(stream); }

voidpf ZCALLBACK open_archive(voidpf opaque, const void*, int) { return opaque; }

uLong ZCALLBACK read_archive(voidpf, voidpf stream, void* buffer, uLong size)
{
    return static_cast<uLong>(handle_of(stream)->Read(buffer, size));
}

uLong ZCALLBACK write_archive(voidpf, voidpf, const void*, uLong) { return 0; }

ZPOS64_T ZCALLBACK tell_archive(voidpf, voidpf stream)
{
    const std::int64_t position = handle_of(stream)->Tell();
    return position < 0 ? static_cast<ZPOS64_T>(-1) : static_cast<ZPOS64_T>(position);
}

long ZCALLBACK seek_archive(voidpf, voidpf stream, ZPOS64_T offset, int origin)
{
    int from = kSeekStart;
    if (origin == ZLIB_FILEFUNC_SEEK_CUR)
        from = kSeekCurrent;
    else if (origin == ZLIB_FILEFUNC_SEEK_END)
        from = kSeekEnd;
    // minizip seeks from the end only to the very end (offset 0), where the drivers' differing
    // conventions for the sign of an end-relative offset do not matter.
    const auto amount = static_cast<std::int64_t>(offset);
    return handle_of(stream)->Seek(amount, from) == 0 ? 0 : -1;
}

int ZCALLBACK close_archive(voidpf, voidpf) { return 0; }

int ZCALLBACK error_archive(voidpf, voidpf) { return 0; }

}  // namespace

zlib_filefunc64_def MakeArchiveIO(FileHandle* archive)
{
    zlib_filefunc64_def table{};
    table.zopen64_file = &open_archive;
    table.zread_file = &read_archive;
    table.zwrite_file = &write_archive;
    table.ztell64_file = &tell_archive;
    table.zseek64_file = &seek_archive;
    table.zclose_file = &close_archive;
    table.zerror_file = &error_archive;
    table.opaque = archive;
    return table;
}

}  // namespace kesta
