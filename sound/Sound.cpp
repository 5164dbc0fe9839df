// The sound system over SDL audio: one signed 16-bit stereo stream, filled on SDL's audio thread.
#include "sound/Sound.h"

#include "sound/MusicPlayer.h"
#include "sound/MusicPlayerMOD.h"

#include <SDL/SDL.h>

#include <algorithm>
#include <cstring>

namespace {

const int kStartRate = 44100;
const int kStartChannels = 16;
// The old output mixed ahead by 200 ms; a quarter of that per callback keeps the same slack
// while pause and seek still answer quickly.
const int kBufferMs = 200;
// Frames mixed per pass through the players: small enough to live on the stack.
const size_t kBlockFrames = 512;

void audioCallback(void* user, Uint8* stream, int length)
{
    static_cast<Sound*>(user)->mix(stream, length);
}

// SDL wants a power of two.
Uint16 bufferFrames(int rate)
{
    long wanted = static_cast<long>(rate) * kBufferMs / 1000 / 4;
    Uint16 frames = 256;
    while (frames < 16384 && frames * 2 <= wanted)
        frames = static_cast<Uint16>(frames * 2);
    return frames;
}

int16_t saturate(int64_t value)
{
    if (value > 32767)
        return 32767;
    if (value < -32768)
        return -32768;
    return static_cast<int16_t>(value);
}

}  // namespace

Sound* Sound::getHandle()
{
    // Never destroyed: players deleted late still reach it.
    static Sound* handle = new Sound();
    return handle;
}

Sound::Sound()
    : initialised(false), driver(0), mixRate(kStartRate), channels(kStartChannels), head(nullptr), current(nullptr),
      globalVolume(MAX_GLOBAL_VOLUME), outputOpen(false), startedSubsystem(false)
{
}

bool Sound::initiate(int rate, int channelCount)
{
    if (initialised)
        return false;
    if (rate <= 0 || channelCount <= 0)
        return false;
    // The audio thread mixes at mixRate from its first callback on.
    int previousRate = mixRate;
    mixRate = rate;
    // SDL picks the output itself (SDL_AUDIODRIVER); a negative driver asks for none at all.
    if (driver >= 0 && !openOutput(rate)) {
        mixRate = previousRate;
        return false;
    }
    setGlobalVolume(MAX_GLOBAL_VOLUME);
    channels = channelCount;
    initialised = true;
    setWindow(nullptr);
    return true;
}

bool Sound::openOutput(int rate)
{
    if (!SDL_WasInit(SDL_INIT_AUDIO)) {
        if (SDL_InitSubSystem(SDL_INIT_AUDIO) < 0)
            return false;
        startedSubsystem = true;
    }
    SDL_AudioSpec wanted;
    std::memset(&wanted, 0, sizeof(wanted));
    wanted.freq = rate;
    wanted.format = AUDIO_S16SYS;
    wanted.channels = 2;
    wanted.samples = bufferFrames(rate);
    wanted.callback = audioCallback;
    wanted.userdata = this;
    // No "obtained" format: SDL converts to exactly what we asked for.
    if (SDL_OpenAudio(&wanted, nullptr) < 0) {
        if (startedSubsystem)
            SDL_QuitSubSystem(SDL_INIT_AUDIO);
        startedSubsystem = false;
        return false;
    }
    outputOpen = true;
    SDL_PauseAudio(0);
    return true;
}

void Sound::closeOutput()
{
    if (outputOpen)
        SDL_CloseAudio();
    outputOpen = false;
    if (startedSubsystem)
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
    startedSubsystem = false;
}

void Sound::shutdown()
{
    if (!initialised)
        return;
    if (current)
        current->player->stop();
    deletePlayers();
    current = nullptr;
    closeOutput();
    initialised = false;
    driver = 0;
    mixRate = kStartRate;
    channels = kStartChannels;
}

void Sound::deletePlayers()
{
    while (head) {
        Node* node = head;
        head = node->next;
        // A player added twice has a node for each, and is deleted once: twice would crash.
        for (Node* later = head; later; later = later->next) {
            if (later->player == node->player)
                later->player = nullptr;
        }
        delete node->player;
        delete node;
    }
}

void Sound::update()
{
    if (!initialised)
        return;
    if (current)
        current->player->update();
}

bool Sound::addMusic(MusicPlayer* player)
{
    if (!player)
        return false;
    head = new Node{player, head};
    if (!current)
        current = head;
    return true;
}

bool Sound::removeMusic(MusicPlayer* player)
{
    Node** link = &head;
    while (*link && (*link)->player != player)
        link = &(*link)->next;
    Node* node = *link;
    if (!node)
        return false;
    *link = node->next;
    if (current == node)
        current = nullptr;
    delete node;
    return true;
}

MusicPlayer* Sound::findMusic(const char* filename)
{
    const Sound* self = this;
    return const_cast<MusicPlayer*>(self->findMusic(filename));
}

const MusicPlayer* Sound::findMusic(const char* filename) const
{
    if (!filename)
        return nullptr;
    for (Node* node = head; node; node = node->next) {
        const char* name = node->player->getFilename();
        if (name && std::strcmp(name, filename) == 0)
            return node->player;
    }
    return nullptr;
}

bool Sound::setCurrentMusic(MusicPlayer* player)
{
    Node* node = findNode(player);
    if (!node)
        return false;
    if (node == current)
        return true;
    if (current)
        current->player->stop();
    current = node;
    current->player->play();
    return true;
}

bool Sound::setCurrentMusic(const char* filename)
{
    MusicPlayer* player = findMusic(filename);
    if (!player)
        return false;
    return setCurrentMusic(player);
}

MusicPlayer* Sound::getCurrentMusic() const
{
    return current ? current->player : nullptr;
}

Sound::Node* Sound::findNode(const MusicPlayer* player) const
{
    if (!player)
        return nullptr;
    for (Node* node = head; node; node = node->next) {
        if (node->player == player)
            return node;
    }
    return nullptr;
}

void Sound::setGlobalVolume(int volume)
{
    volume = std::max(0, std::min(volume, MAX_GLOBAL_VOLUME));
    lockAudio();
    globalVolume = volume;
    unlockAudio();
}

int Sound::getGlobalVolume() const
{
    return globalVolume;
}

void Sound::setWindow(void*) {}

void Sound::lockAudio()
{
    if (outputOpen)
        SDL_LockAudio();
}

void Sound::unlockAudio()
{
    if (outputOpen)
        SDL_UnlockAudio();
}

void Sound::attach(MusicPlayerMOD* player)
{
    lockAudio();
    if (std::find(playing.begin(), playing.end(), player) == playing.end())
        playing.push_back(player);
    unlockAudio();
}

void Sound::detach(MusicPlayerMOD* player)
{
    lockAudio();
    playing.erase(std::remove(playing.begin(), playing.end(), player), playing.end());
    unlockAudio();
}

void Sound::mix(uint8_t* stream, int length)
{
    if (!stream || length <= 0)
        return;
    std::memset(stream, 0, static_cast<size_t>(length));
    size_t frames = static_cast<size_t>(length) / (2 * sizeof(int16_t));
    int16_t* out = reinterpret_cast<int16_t*>(stream);
    int32_t sum[kBlockFrames * 2];
    int16_t block[kBlockFrames * 2];
    // Full volumes (256 and 255) pass each sample through unchanged.
    const int64_t divisor = static_cast<int64_t>(MusicPlayerMOD::MAX_VOLUME) * MAX_GLOBAL_VOLUME;
    while (frames > 0) {
        size_t count = std::min(frames, kBlockFrames);
        std::memset(sum, 0, sizeof(sum));
        for (MusicPlayerMOD* player : playing) {
            if (player->paused)
                continue;
            std::memset(block, 0, sizeof(block));
            player->renderLocked(block, count, mixRate);
            for (size_t i = 0; i < count * 2; ++i)
                sum[i] += block[i] * player->volume;
        }
        for (size_t i = 0; i < count * 2; ++i)
            out[i] = saturate(static_cast<int64_t>(sum[i]) * globalVolume / divisor);
        out += count * 2;
        frames -= count;
    }
}
