// Unseen drawing: the software renderer builds its code for a way of drawing when a draw call first meets it, pixels
// or not, so a draw clipped by an empty scissor box costs that once and leaves the frame alone.
#include "gl/UnseenDrawing.h"

#include <GL/gl.h>

UnseenDrawing::UnseenDrawing()
{
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, 0, 0);
}

UnseenDrawing::~UnseenDrawing()
{
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glPopClientAttrib();
    glPopAttrib();
}
