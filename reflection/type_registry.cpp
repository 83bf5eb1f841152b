#include "reflection/type_registry.h"

namespace kesta {

TypeRegistry* g_type_registry = nullptr;

}  // namespace kesta
