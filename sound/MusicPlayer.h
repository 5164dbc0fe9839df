// The abstract music player: file name, loop points and play state shared by every kind of song.
#pragma once

class MusicPlayer {
public:
    MusicPlayer();
    virtual ~MusicPlayer();

    MusicPlayer(const MusicPlayer&) = delete;
    MusicPlayer& operator=(const MusicPlayer&) = delete;

    virtual void initiate() = 0;
    virtual void shutdown() = 0;
    virtual void update() = 0;
    virtual bool load(const char* file) = 0;
    virtual bool play() = 0;
    virtual bool stop() = 0;
    virtual bool pause() = 0;
    virtual bool forward(float seconds) = 0;
    virtual bool backward(float seconds) = 0;
    // Play position in milliseconds.
    virtual float getCurrentLocation() = 0;
    virtual void setLoop(float start, float end);
    virtual void unsetLoop();
    virtual bool setVolume(int volume) = 0;
    virtual int getVolume() const = 0;

    bool isLooping() const { return looping; }
    bool isPlaying() const { return !stopped; }
    bool isStopped() const { return stopped; }
    float getLoopStart() const { return loopStart; }
    float getLoopEnd() const { return loopEnd; }
    // Null until a load has succeeded.
    const char* getFilename() const { return filename; }
    // Keeps its own copy; null clears the name.
    void setFilename(const char* name);

protected:
    char* filename;
    bool looping;
    bool stopped;
    float loopStart;
    float loopEnd;
    float location;
};
