#include "engine/plus.h"

namespace kesta {

Plus* g_plus = nullptr;

}  // namespace kesta
