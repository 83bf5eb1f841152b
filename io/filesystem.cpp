#include "io/filesystem.h"

namespace kesta {

Filesystem* g_filesystem = nullptr;

}  // namespace kesta
