// The offline capture loop over the demo's own timeline.
#include "Capture.h"

#include "Frame.h"
#include "MemoryProbe.h"
#include "MemoryReport.h"
#include "PngWriter.h"
#include "SoundtrackRenderer.h"
#include "VideoEncoder.h"
#include "config/VariableMgr.h"
#include "gl/GLF_checkError.h"
#include "runtime/EffectMgr.h"
#include "runtime/FixedStepTimer.h"

#include <GL/gl.h>
#include <SDL/SDL.h>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <iostream>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// GL keeps a flag per error kind; more than this many in a row means it is stuck.
const int MAX_ERRORS_PER_FRAME = 8;
const int BASELINE_FRAMES = 200;

double millisecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// Makes `dir` if it is missing (its parent must exist) and checks that files can be made in it.
bool writableDirectory(const std::string& dir, std::string& error)
{
    struct stat info;
    if (stat(dir.c_str(), &info) != 0) {
        if (mkdir(dir.c_str(), 0777) != 0) {
            error = "cannot create the directory " + dir;
            return false;
        }
    } else if (!S_ISDIR(info.st_mode)) {
        error = dir + " is not a directory";
        return false;
    }
    if (access(dir.c_str(), W_OK | X_OK) != 0) {
        error = "cannot write into " + dir;
        return false;
    }
    return true;
}

// Opens the file for writing once, so a bad path fails before any frame is drawn.
bool writableFile(const std::string& file, std::string& error)
{
    struct stat info;
    bool existed = stat(file.c_str(), &info) == 0;
    if (existed && S_ISDIR(info.st_mode)) {
        error = file + " is a directory";
        return false;
    }
    int fd = open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0) {
        error = "cannot write " + file;
        return false;
    }
    close(fd);
    if (!existed)
        unlink(file.c_str());
    return true;
}

// Keeps every library loaded so far mapped until the process ends. SDL_Quit lets the GL driver unload its
// modules; a leak checker running at exit could then no longer name what they left behind.
void pinLoadedLibraries()
{
    dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void*) {
            if (info->dlpi_name && info->dlpi_name[0] == '/')
                dlopen(info->dlpi_name, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
            return 0;
        },
        nullptr);
}

}

Capture::Capture(const CaptureOptions& chosen)
    : options(chosen), clock(nullptr), quitDone(false)
{
    AppInfo info = getInfo();
    if (options.hasSize) {
        info.width = options.width;
        info.height = options.height;
    }
    // A full-screen mode would take the desktop's size instead of the capture's.
    info.fullscreen = false;
    setInfo(info);
    // Frames are read back, so no window is needed: SDL's offscreen driver will do.
    allowWindowless(true);
    // The soundtrack is rendered separately; no audio device is opened.
    setSoundEnabled(false);
    clock = new FixedStepTimer(1.0 / options.fps);
    setTimer(clock);
    srand(SEED);
}

size_t Capture::frameCount(double from, double to, int fps)
{
    if (!(to > from) || fps <= 0)
        return 0;
    // A tiny allowance keeps 1 s at 10 fps at 10 frames despite rounding.
    return static_cast<size_t>(std::ceil((to - from) * fps - 1e-6));
}

std::string Capture::shotName(double seconds)
{
    char name[64];
    std::snprintf(name, sizeof name, "shot-%.3f.png", seconds);
    return name;
}

std::string Capture::frameName(size_t index)
{
    char name[64];
    std::snprintf(name, sizeof name, "frame-%06zu.png", index);
    return name;
}

bool Capture::fail(const std::string& message)
{
    if (error.empty())
        error = message;
    return false;
}

void Capture::onMouseButton(int, int, int)
{
}

void Capture::onResize(int, int)
{
    Velmora::onResize(getInfo().width, getInfo().height);
}

void Capture::onQuit()
{
    if (quitDone)
        return;
    quitDone = true;
    Velmora::onQuit();
}

bool Capture::run(int, char**)
{
    if (options.list)
        return listSchedule();
    if (!checkOutputs())
        return false;
    if (!setupGL())
        return fail("cannot open a GL window");
    pinLoadedLibraries();
    bool ok = work();
    onQuit();
    shutdownGL();
    glReady = false;
    return ok;
}

bool Capture::listSchedule()
{
    // Scenes load their content only when started, so no window is needed.
    setupScenes();
    schedule.read(*getEffects());
    schedule.print(std::cout);
    return true;
}

bool Capture::checkOutputs()
{
    if (!options.framesDir.empty() && !writableDirectory(options.framesDir, error))
        return false;
    if (!options.shots.empty() && !writableDirectory(options.shotDir, error))
        return false;
    if (options.videoFile.empty())
        return true;
    if (getInfo().width % 2 || getInfo().height % 2)
        return fail("--video needs an even width and height");
    std::string program;
    if (!VideoEncoder::findProgram("ffmpeg", program))
        return fail("ffmpeg was not found on PATH; --video needs it");
    return writableFile(options.videoFile, error);
}

bool Capture::work()
{
    onInit();
    // Before the first update every effect is still pending: the whole schedule.
    if (getEffects())
        schedule.read(*getEffects());
    onResize(getInfo().width, getInfo().height);
    SDL_Surface* screen = SDL_GetVideoSurface();
    if (screen && (screen->w != getInfo().width || screen->h != getInfo().height))
        return fail("the window came out " + std::to_string(screen->w) + "x" + std::to_string(screen->h) +
                    " instead of the requested size");
    timer->setup();
    if (!options.shots.empty())
        return renderShots();
    return renderRange();
}

double Capture::now() const
{
    return clock->getTotalTime();
}

void Capture::step(double seconds)
{
    clock->setStep(seconds);
    clock->update();
    onUpdate(static_cast<float>(clock->getDeltaTime()));
    progress.advance();
}

void Capture::skipTo(double time)
{
    const double frame = 1.0 / options.fps;
    while (time - now() > frame * (1.0 + 1e-9))
        step(frame);
}

void Capture::stepTo(double time)
{
    step(std::max(0.0, time - now()));
}

void Capture::draw()
{
    onDisplay();
    for (int i = 0; i < MAX_ERRORS_PER_FRAME && GLF_checkError("velmora-capture frame"); ++i) {
    }
}

bool Capture::keepRunning()
{
    swapBuffersGL();
    if (handleEvents())
        return true;
    return fail("stopped: the window was closed");
}

bool Capture::startVideo(VideoEncoder& encoder, double from, double seconds, std::string& audio)
{
    const Variable* song = VariableMgr::getHandle()->find("Song");
    const char* songFile = song ? song->getString() : nullptr;
    SoundtrackRenderer soundtrack;
    std::string why;
    if (!songFile || !*songFile) {
        std::cerr << "velmora-capture: velmora.cfg names no Song; the video is silent\n";
    } else if (!soundtrack.load(songFile, why)) {
        std::cerr << "velmora-capture: " << why << "; the video is silent\n";
    } else {
        char pattern[] = "/tmp/velmora-capture-XXXXXX.wav";
        int fd = mkstemps(pattern, 4);
        if (fd < 0)
            return fail("cannot make a temporary file for the soundtrack");
        close(fd);
        audio = pattern;
        // The song starts with the scene clock, so --from is also the song's start.
        if (!soundtrack.renderToWav(audio, from, seconds, why))
            return fail(why);
    }
    if (!encoder.start(options.videoFile, getInfo().width, getInfo().height, options.fps, audio, why))
        return fail(why);
    return true;
}

bool Capture::renderRange()
{
    const double from = options.from;
    const double to = options.hasTo ? options.to : schedule.getEnd();
    const size_t count = frameCount(from, to, options.fps);
    if (count == 0)
        return fail("nothing to draw: the schedule ends at " + std::to_string(schedule.getEnd()) +
                    " s, not after --from");
    const bool timing = options.bench;
    const bool readBack = !options.framesDir.empty() || !options.videoFile.empty();

    VideoEncoder encoder;
    std::string audio;
    bool ok = options.videoFile.empty() || startVideo(encoder, from, static_cast<double>(count) / options.fps, audio);

    Frame frame;
    std::string why;
    const char* label = timing ? "bench" : !options.videoFile.empty() ? "video" : readBack ? "frames" : "memory";
    const bool sampling = options.memoryEvery > 0.0;
    MemoryReport memory(options.memoryEvery, schedule.getLastStart());
    progress.start(label, static_cast<size_t>(std::llround(from * options.fps)) + count);
    for (size_t k = 0; ok && k < count; ++k) {
        const double target = from + static_cast<double>(k) / options.fps;
        skipTo(target);
        auto started = std::chrono::steady_clock::now();
        stepTo(target);
        draw();
        if (readBack) {
            frame.read(getInfo().width, getInfo().height);
            std::string png = options.framesDir + "/" + frameName(k);
            if (!options.framesDir.empty() && !PngWriter::write(png, frame, why))
                ok = fail("cannot write " + png + ": " + why);
            if (ok && !options.videoFile.empty() && !encoder.write(frame, why))
                ok = fail(why);
        }
        if (!ok)
            break;
        ok = keepRunning();
        if (timing) {
            // The offscreen driver flushes nothing at the swap: wait for the drawing itself.
            glFinish();
            report.addFrame(target, millisecondsSince(started));
        }
        if (sampling)
            memory.addFrame(target, MemoryProbe::residentKilobytes(), k + 1 == count, std::cout);
    }
    progress.finish();
    if (ok && sampling)
        memory.printSummary(std::cout);
    if (encoder.isRunning()) {
        bool encoded = encoder.finish(why);
        if (ok && !encoded)
            ok = fail(why);
    }
    if (!audio.empty())
        unlink(audio.c_str());
    if (ok && timing)
        ok = runBaseline();
    return ok;
}

bool Capture::runBaseline()
{
    // Clear and swap only, at the same size: what any frame costs before a scene draws.
    for (int i = 0; i < BASELINE_FRAMES; ++i) {
        auto started = std::chrono::steady_clock::now();
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        if (!keepRunning())
            return false;
        glFinish();
        report.addBaseline(millisecondsSince(started));
    }
    const char* renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    report.print(std::cout, schedule, renderer ? renderer : "unknown", getInfo().width, getInfo().height,
                 options.fps);
    return true;
}

bool Capture::renderShots()
{
    std::vector<double> times(options.shots);
    std::sort(times.begin(), times.end());
    progress.start("stills", static_cast<size_t>(std::llround(times.back() * options.fps)) + times.size());
    Frame frame;
    std::string why;
    bool ok = true;
    for (double time : times) {
        skipTo(time);
        stepTo(time);
        draw();
        frame.read(getInfo().width, getInfo().height);
        std::string png = options.shotDir + "/" + shotName(time);
        if (!PngWriter::write(png, frame, why)) {
            ok = fail("cannot write " + png + ": " + why);
            break;
        }
        if (!keepRunning()) {
            ok = false;
            break;
        }
    }
    progress.finish();
    return ok;
}
