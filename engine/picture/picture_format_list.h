#pragma once

namespace kesta {

// The picture file formats the process can read and write.
class PictureFormatList;

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern PictureFormatList* g_picture_format_list;

}  // namespace kesta
