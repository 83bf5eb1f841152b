#pragma once
// minizip reads archives through a table of callbacks; this table forwards them to a FileHandle,
// so an archive can live anywhere a driver can open a file (on disk, in memory, inside another
// archive).

#include <minizip/ioapi.h>

namespace kesta {

class FileHandle;

// The handle must outlive every use of the table; closing the archive does not close the handle.
zlib_filefunc64_def MakeArchiveIO(FileHandle* archive);

}  // namespace kesta
