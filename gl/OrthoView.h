// Flat drawing over the scene: a 2D projection pushed on top of whatever the scene set up.
#pragma once

class OrthoView {
public:
    // Saves both matrices, then projects (0, 0)-(right, top) onto the viewport
    // with depth -1 to 1 and an identity modelview. Leaves GL_MODELVIEW current.
    static void push(double right, double top);
    // Restores both matrices saved by push. Leaves GL_MODELVIEW current.
    static void pop();
};
