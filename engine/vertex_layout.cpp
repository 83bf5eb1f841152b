#include "engine/vertex_layout.h"

#include "foundation/assert/assertion.h"

namespace kesta {

void VertexLayout::Clear()
{
    stride_ = 0;
    attributes_.fill(Attribute{kEnd, 0});
}

bool VertexLayout::AddAttribute(std::uint8_t semantic, std::uint8_t count, ComponentType type, bool normalised)
{
    int free_slot = -1;
    for (int i = 0; i < kMaxAttributes; ++i) {
        if (attributes_[i].semantic == semantic)
            return false;
        if (attributes_[i].semantic == kEnd) {
            free_slot = i;
            break;
        }
    }
    if (free_slot < 0)
        return false;
    // Every attribute starts on an even offset.
    const int attr_size = (ComponentSize(type) * count + 1) & ~1;
    KESTA_ASSERT((stride_ + attr_size) < std::numeric_limits<VertexLayout::Stride>::max());
    attributes_[free_slot] =
        Attribute{semantic, static_cast<std::uint8_t>((count & 0x0f) | ((type & 0x07) << 4) | (normalised ? 0x80 : 0))};
    stride_ = static_cast<Stride>(stride_ + attr_size);
    return true;
}

void VertexLayout::End() { stride_ = static_cast<Stride>((stride_ + 3) & ~3); }

}  // namespace kesta
