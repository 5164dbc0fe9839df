// A stretch of drawing that reaches no pixel, for meeting a scene's ways of drawing before it is shown.
#pragma once

class UnseenDrawing {
public:
    // Saves every server and client attribute and the projection and modelview matrices, and closes the
    // scissor box to nothing.
    UnseenDrawing();
    // Puts them all back.
    ~UnseenDrawing();
    UnseenDrawing(const UnseenDrawing&) = delete;
    UnseenDrawing& operator=(const UnseenDrawing&) = delete;
};
