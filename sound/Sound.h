// The process-wide sound system: opens the audio output, owns the registered music players and mixes what plays.
#pragma once

#include <cstdint>
#include <vector>

class MusicPlayer;
class MusicPlayerMOD;

class Sound {
public:
    static constexpr int MAX_GLOBAL_VOLUME = 255;

    static Sound* getHandle();

    // Opens the output (none when the driver is negative); false if already up or no device opens.
    bool initiate(int mixRate, int channels);
    // Stops the current player, deletes every registered one, closes the output.
    void shutdown();
    // Once a frame: lets the current player read its position.
    void update();

    // The list owns what it holds; the first player added becomes current without being played.
    // Only null is refused: a player added twice is held twice.
    bool addMusic(MusicPlayer* player);
    // Unlinks without deleting.
    bool removeMusic(MusicPlayer* player);
    MusicPlayer* findMusic(const char* filename);
    const MusicPlayer* findMusic(const char* filename) const;
    // Stops the old current player and plays the new one, unless it is current already.
    bool setCurrentMusic(MusicPlayer* player);
    bool setCurrentMusic(const char* filename);
    MusicPlayer* getCurrentMusic() const;

    void setGlobalVolume(int volume);
    int getGlobalVolume() const;
    void setWindow(void* window);

    // A negative driver selects silent output; takes effect at the next initiate.
    void setDriver(int index) { driver = index; }
    int getDriver() const { return driver; }
    bool isInitialised() const { return initialised; }
    int getMixRate() const { return mixRate; }
    int getChannels() const { return channels; }
    // True while an audio device is open and its thread pulls sound.
    bool isOutputOpen() const { return outputOpen; }

    // Fills interleaved signed 16-bit stereo at the mixing rate with every playing module;
    // the body of the audio callback, the caller holding the audio lock.
    void mix(uint8_t* stream, int length);

    // Guards anything the audio thread reads; does nothing while no output is open.
    void lockAudio();
    void unlockAudio();

private:
    friend class MusicPlayerMOD;

    struct Node {
        MusicPlayer* player;
        Node* next;
    };

    Sound();
    ~Sound() = default;
    Sound(const Sound&) = delete;
    Sound& operator=(const Sound&) = delete;

    bool openOutput(int rate);
    void closeOutput();
    Node* findNode(const MusicPlayer* player) const;
    void deletePlayers();
    // Modules that are playing join the mix here, registered or not.
    void attach(MusicPlayerMOD* player);
    void detach(MusicPlayerMOD* player);

    bool initialised;
    int driver;
    int mixRate;
    int channels;
    Node* head;
    Node* current;
    int globalVolume;
    bool outputOpen;
    bool startedSubsystem;
    std::vector<MusicPlayerMOD*> playing;
};
