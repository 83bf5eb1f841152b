#include "engine/picture/picture_format_list.h"

namespace kesta {

PictureFormatList* g_picture_format_list = nullptr;

}  // namespace kesta
