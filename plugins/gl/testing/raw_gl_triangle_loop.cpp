#include "plugins/gl/testing/raw_gl_triangle_loop.h"

#include <epoxy/gl.h>

namespace kesta::testing {

namespace {

constexpr const char* kVertexText = R"(#version 330 core
layout(location = 0) in vec3 vPosition;
layout(location = 6) in vec4 vColor0;
uniform mat4 vModelViewProjectionMatrix;
out vec4 v_color;
void main() { v_color = vColor0; gl_Position = vModelViewProjectionMatrix * vec4(vPosition, 1.0); }
)";

constexpr const char* kPixelText = R"(#version 330 core
in vec4 v_color;
layout(location = 0) out vec4 color;
void main() { color = v_color; }
)";

GLuint compile(GLenum kind, const char* text)
{
    const GLuint stage = glCreateShader(kind);
    glShaderSource(stage, 1, &text, nullptr);
    glCompileShader(stage);
    return stage;
}

}  // namespace

RawGLTriangleLoop::RawGLTriangleLoop()
{
    const GLuint vertex = compile(GL_VERTEX_SHADER, kVertexText);
    const GLuint pixel = compile(GL_FRAGMENT_SHADER, kPixelText);
    const GLuint program = glCreateProgram();
    glAttachShader(program, vertex);
    glAttachShader(program, pixel);
    glLinkProgram(program);
    glDeleteShader(vertex);
    glDeleteShader(pixel);
    GLint linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked != GL_TRUE) {
        glDeleteProgram(program);
        return;
    }
    program_ = program;
    matrix_location_ = glGetUniformLocation(program, "vModelViewProjectionMatrix");

    glGenVertexArrays(1, &vertex_array_);
    glBindVertexArray(vertex_array_);
    glGenBuffers(1, &vertex_buffer_);
    glBindBuffer(GL_ARRAY_BUFFER, vertex_buffer_);
    glBufferData(GL_ARRAY_BUFFER, kTriangleBytes, nullptr, GL_DYNAMIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 16, nullptr);
    glEnableVertexAttribArray(6);
    glVertexAttribPointer(6, 4, GL_UNSIGNED_BYTE, GL_TRUE, 16, reinterpret_cast<const void*>(12));
    const GLushort indices[3] = {0, 1, 2};
    glGenBuffers(1, &index_buffer_);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, index_buffer_);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices, GL_STATIC_DRAW);
    glBindVertexArray(0);
}

RawGLTriangleLoop::~RawGLTriangleLoop()
{
    glDeleteBuffers(1, &vertex_buffer_);
    glDeleteBuffers(1, &index_buffer_);
    glDeleteVertexArrays(1, &vertex_array_);
    glDeleteProgram(program_);
}

void RawGLTriangleLoop::Begin()
{
    static constexpr float kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    glUseProgram(program_);
    glUniformMatrix4fv(matrix_location_, 1, GL_TRUE, kIdentity);
    glBindVertexArray(vertex_array_);
    glBindBuffer(GL_ARRAY_BUFFER, vertex_buffer_);
}

void RawGLTriangleLoop::Draw(const void* triangle)
{
    glBufferSubData(GL_ARRAY_BUFFER, 0, kTriangleBytes, triangle);
    glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_SHORT, nullptr);
}

}  // namespace kesta::testing
