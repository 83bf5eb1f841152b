#pragma once

namespace kesta {

// The type serializers installed in the process.
class SerializerList;

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern SerializerList* g_serializer_list;

}  // namespace kesta
