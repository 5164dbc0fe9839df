// The abstract music player: owned file name and loop points.
#include "sound/MusicPlayer.h"

#include <cstring>

MusicPlayer::MusicPlayer()
    : filename(nullptr), looping(false), stopped(true), loopStart(0.0f), loopEnd(0.0f), location(0.0f)
{
}

MusicPlayer::~MusicPlayer()
{
    delete[] filename;
}

void MusicPlayer::setLoop(float start, float end)
{
    loopStart = start;
    loopEnd = end;
    looping = true;
}

void MusicPlayer::unsetLoop()
{
    loopStart = 0.0f;
    loopEnd = 0.0f;
    looping = false;
}

void MusicPlayer::setFilename(const char* name)
{
    // Copy first: the new name may be the old one.
    char* copy = nullptr;
    if (name) {
        size_t length = std::strlen(name);
        copy = new char[length + 1];
        std::memcpy(copy, name, length + 1);
    }
    delete[] filename;
    filename = copy;
}
