#include "reflection/serializer_list.h"

namespace kesta {

SerializerList* g_serializer_list = nullptr;

}  // namespace kesta
