// Overlays, faders and text all draw in their own flat coordinates and must hand the scene's matrices back.
#include "gl/OrthoView.h"

#include <GL/gl.h>

void OrthoView::push(double right, double top)
{
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0.0, right, 0.0, top, -1.0, 1.0);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
}

void OrthoView::pop()
{
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
}
