// GL error reporting with fixed texts, one pending error per call.
#include "gl/GLF_checkError.h"

#include <GL/gl.h>
#include <cstdio>

namespace {

const char* errorText(GLenum code)
{
    switch (code) {
        case GL_INVALID_ENUM:
            return "GLenum argument  out of range\n";
        case GL_INVALID_VALUE:
            return "Numeric argument out of range\n";
        case GL_INVALID_OPERATION:
            return "Operation illegal in current state\n";
        case GL_STACK_OVERFLOW:
            return "Command would cause a stack overflow\n";
        case GL_STACK_UNDERFLOW:
            return "Command would cause a stack underflow\n";
        case GL_OUT_OF_MEMORY:
            return "Not enough memory left to execute command\n";
        default:
            return nullptr;
    }
}

}  // namespace

bool GLF_checkError(const char* where)
{
    GLenum code = glGetError();
    if (code == GL_NO_ERROR)
        return false;
    std::printf("OpenGL ERROR detected in %s\n", where ? where : "");
    const char* text = errorText(code);
    if (text)
        std::fputs(text, stdout);
    else
        std::printf("Unknown OpenGL error (number is %u)\n", static_cast<unsigned>(code));
    std::fflush(stdout);
    return true;
}
