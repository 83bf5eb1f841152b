#pragma once

namespace kesta {

// Virtual paths resolved through mounted file drivers.
class Filesystem;

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern Filesystem* g_filesystem;

}  // namespace kesta
