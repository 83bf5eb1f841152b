#pragma once

namespace kesta {

// The engine's convenience front end; a plug-in only carries the pointer.
class Plus;

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern Plus* g_plus;

}  // namespace kesta
