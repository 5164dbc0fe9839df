// The test frame buffer: made, bound, read back and compared.
#include "support/OffscreenFrame.h"

#include <GL/glext.h>
#include <cstdlib>

OffscreenFrame::OffscreenFrame(int frameWidth, int frameHeight) : width(frameWidth), height(frameHeight)
{
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glGenRenderbuffers(1, &colour);
    glBindRenderbuffer(GL_RENDERBUFFER, colour);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, colour);
    glGenRenderbuffers(1, &depth);
    glBindRenderbuffer(GL_RENDERBUFFER, depth);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, width, height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth);
    complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    glViewport(0, 0, width, height);
}

OffscreenFrame::~OffscreenFrame()
{
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteRenderbuffers(1, &depth);
    glDeleteRenderbuffers(1, &colour);
    glDeleteFramebuffers(1, &framebuffer);
}

std::vector<unsigned char> OffscreenFrame::read() const
{
    std::vector<unsigned char> pixels(static_cast<size_t>(width) * height * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

size_t OffscreenFrame::countDifferences(const std::vector<unsigned char>& a, const std::vector<unsigned char>& b,
                                        int tolerance, int* largest)
{
    if (a.size() != b.size())
        return a.size() > b.size() ? a.size() : b.size();
    size_t count = 0;
    int most = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        const int difference = std::abs(static_cast<int>(a[i]) - static_cast<int>(b[i]));
        most = difference > most ? difference : most;
        count += difference > tolerance;
    }
    if (largest)
        *largest = most;
    return count;
}
