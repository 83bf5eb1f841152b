#include "foundation/assert/assertion.h"

namespace kesta {

AssertionHandler g_assertion_handler = nullptr;

}  // namespace kesta
