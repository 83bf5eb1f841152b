#pragma once

namespace kesta {

// Every reflected type of the process, by name.
class TypeRegistry;

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern TypeRegistry* g_type_registry;

}  // namespace kesta
