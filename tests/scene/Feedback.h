// Captures what a draw call hands to OpenGL, through feedback mode: one vertex list per point or polygon.
#pragma once

#include "math/Vector3.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <vector>

// Vertices come back in normalised device coordinates, so with identity matrices they are object space.
template <class Draw>
std::vector<std::vector<Vector3>> feedback(Draw draw)
{
    static GLfloat buffer[8192];
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    glFeedbackBuffer(8192, GL_3D, buffer);
    glRenderMode(GL_FEEDBACK);
    draw();
    const GLint size = glRenderMode(GL_RENDER);
    std::vector<std::vector<Vector3>> prims;
    for (GLint i = 0; i < size;) {
        const GLint token = static_cast<GLint>(buffer[i]);
        if (token == GL_PASS_THROUGH_TOKEN) {
            i += 2;
            continue;
        }
        if (token != GL_POLYGON_TOKEN && token != GL_POINT_TOKEN) {
            ADD_FAILURE() << "token " << token;
            break;
        }
        const GLint n = token == GL_POLYGON_TOKEN ? static_cast<GLint>(buffer[i + 1]) : 1;
        i += token == GL_POLYGON_TOKEN ? 2 : 1;
        std::vector<Vector3> prim;
        for (GLint k = 0; k < n; ++k, i += 3)
            prim.push_back(Vector3(buffer[i] / viewport[2] * 2.0f - 1.0f, buffer[i + 1] / viewport[3] * 2.0f - 1.0f,
                                   buffer[i + 2] * 2.0f - 1.0f));
        prims.push_back(prim);
    }
    return prims;
}
