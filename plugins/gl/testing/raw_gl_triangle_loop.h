#pragma once
// The hand-written OpenGL baseline of the draw-overhead benchmark: one buffer update and one
// indexed draw per triangle, with nothing between the loop and GL. Uses the context current on
// the calling thread and draws into whatever framebuffer is bound.

#include <cstdint>

namespace kesta::testing {

class RawGLTriangleLoop {
public:
    // A triangle's three vertices: position (3 floats) and an 8-bit RGBA colour each.
    static constexpr std::uint32_t kTriangleBytes = 3 * 16;

    RawGLTriangleLoop();
    ~RawGLTriangleLoop();
    RawGLTriangleLoop(const RawGLTriangleLoop&) = delete;
    RawGLTriangleLoop& operator=(const RawGLTriangleLoop&) = delete;

    bool IsReady() const { return program_ != 0; }
    // Binds the program, the vertex array and the identity transform: the state of every draw.
    void Begin();
    void Draw(const void* triangle);

private:
    unsigned program_ = 0, vertex_array_ = 0, vertex_buffer_ = 0, index_buffer_ = 0;
    int matrix_location_ = -1;
};

}  // namespace kesta::testing
