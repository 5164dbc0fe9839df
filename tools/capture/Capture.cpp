// The offline capture loop over the demo's own timeline.
#include "Capture.h"

#include "ContactSheet.h"
#include "Frame.h"
#include "MemoryProbe.h"
#include "MemoryReport.h"
#include "PngWriter.h"
#include "ProcessClock.h"
#include "SoundtrackRenderer.h"
#include "VideoEncoder.h"
#include "config/VariableMgr.h"
#include "gl/GLF_checkError.h"
#include "runtime/EffectMgr.h"
#include "runtime/FixedStepTimer.h"
#include "sound/SongMeter.h"
#include "text/Fonter.h"

#include <GL/gl.h>
#include <SDL/SDL.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>

namespace {

// GL keeps a flag per error kind; more than this many in a row means it is stuck.
const int MAX_ERRORS_PER_FRAME = 8;
const int BASELINE_FRAMES = 200;
// The label text's height as a share of its strip.
const float LABEL_TEXT_SHARE = 0.6f;
const float LABEL_MARGIN = 4.0f;

// The signal that asked the run to stop (Ctrl-C, kill, a closed terminal); 0 while none did.
volatile std::sig_atomic_t stopSignal = 0;

void noteStop(int signal)
{
    stopSignal = signal;
}

// Outputs must be cleaned up before the program ends, so these signals only ask the loop to stop; a second
// one ends the program at once. Signals ignored on entry stay ignored. SDL leaves handlers set here alone.
void catchStopSignals()
{
    for (int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction current;
        if (sigaction(signal, nullptr, &current) == 0 && current.sa_handler == SIG_IGN)
            continue;
        struct sigaction wanted = {};
        wanted.sa_handler = noteStop;
        wanted.sa_flags = SA_RESTART | SA_RESETHAND;
        sigemptyset(&wanted.sa_mask);
        sigaction(signal, &wanted, nullptr);
    }
}

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

}  // namespace

Capture::Capture(const CaptureOptions& chosen) : options(chosen), clock(nullptr), quitDone(false), firstFrameShown(-1.0)
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

std::string Capture::partialName(const std::string& file)
{
    // The extension stays last, so ffmpeg still picks the container from it.
    const size_t slash = file.rfind('/');
    const size_t dot = file.rfind('.');
    const bool hasExtension = dot != std::string::npos && dot > (slash == std::string::npos ? 0 : slash + 1);
    if (!hasExtension)
        return file + ".part";
    return file.substr(0, dot) + ".part" + file.substr(dot);
}

std::string Capture::sheetLabel(const ScheduleEntry& entry)
{
    char text[160];
    std::snprintf(text, sizeof text, "%d %s %.2f s", entry.number, entry.name.c_str(), Schedule::stillTime(entry));
    return text;
}

bool Capture::fail(const std::string& message)
{
    // An interruption also makes ffmpeg stop (Ctrl-C reaches it too): name the cause, not the symptom.
    if (error.empty())
        error = stopSignal ? std::string("interrupted (") + strsignal(stopSignal) + ")" : message;
    return false;
}

void Capture::onMouseButton(int, int, int) {}

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
    catchStopSignals();
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
    if (!options.sheetFile.empty() && !writableFile(options.sheetFile, error))
        return false;
    if (!options.csvFile.empty() && !writableFile(options.csvFile, error))
        return false;
    if (options.videoFile.empty())
        return true;
    if (getInfo().width % 2 || getInfo().height % 2)
        return fail("--video needs an even width and height");
    std::string program;
    if (!VideoEncoder::findProgram("ffmpeg", program))
        return fail("ffmpeg was not found on PATH; --video needs it");
    return writableFile(options.videoFile, error) && writableFile(partialName(options.videoFile), error);
}

bool Capture::work()
{
    onInit();
    // With no sound of its own, the displays that follow the music read the song by the scene clock.
    const Variable* song = VariableMgr::getHandle()->find("Song");
    if (song)
        SongMeter::getHandle()->initiate(song->getString());
    // Before the first update every effect is still pending: the whole schedule.
    if (getEffects())
        schedule.read(*getEffects());
    onResize(getInfo().width, getInfo().height);
    SDL_Surface* screen = SDL_GetVideoSurface();
    if (screen && (screen->w != getInfo().width || screen->h != getInfo().height))
        return fail("the window came out " + std::to_string(screen->w) + "x" + std::to_string(screen->h) +
                    " instead of the requested size");
    timer->setup();
    if (!options.sheetFile.empty())
        return renderSheet();
    if (!options.shots.empty())
        return renderShots();
    return renderRange();
}

double Capture::now() const
{
    return clock->getTotalTime();
}

std::string Capture::whereNow() const
{
    char time[32];
    std::snprintf(time, sizeof time, "%.1f s ", now());
    return time + schedule.scenesAt(now());
}

void Capture::step(double seconds)
{
    clock->setStep(seconds);
    clock->update();
    onUpdate(static_cast<float>(clock->getDeltaTime()));
    progress.tick();
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
    progress.advance();
    for (int i = 0; i < MAX_ERRORS_PER_FRAME && GLF_checkError("velmora-capture frame"); ++i) {
    }
}

bool Capture::keepRunning()
{
    swapBuffersGL();
    if (stopSignal)
        return fail("interrupted");
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
    if (!encoder.start(partialName(options.videoFile), getInfo().width, getInfo().height, options.fps, audio, why))
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
    progress.start(label, count, [this] { return whereNow(); });
    for (size_t k = 0; ok && k < count; ++k) {
        const double target = from + static_cast<double>(k) / options.fps;
        skipTo(target);
        auto started = std::chrono::steady_clock::now();
        BenchReport::Split split{};
        stepTo(target);
        split.update = millisecondsSince(started);
        draw();
        split.draw = millisecondsSince(started) - split.update;
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
            const double total = millisecondsSince(started);
            split.present = total - split.update - split.draw;
            // The timeline's own clock: a scene starts on the first frame it reaches the scene's start.
            report.addFrame(getEffects() ? getEffects()->getTimer().current : target, total, split);
        }
        if (sampling)
            memory.addFrame(target, MemoryProbe::residentKilobytes(), k + 1 == count, std::cout);
        if (k == 0)
            firstFrameShown = ProcessClock::secondsSinceStart();
    }
    progress.finish();
    if (ok && sampling) {
        memory.printSummary(std::cout);
        printPeakMemory();
    }
    if (!options.videoFile.empty())
        ok = finishVideo(encoder, ok);
    if (!audio.empty())
        unlink(audio.c_str());
    if (ok && timing)
        ok = runBaseline();
    return ok;
}

bool Capture::finishVideo(VideoEncoder& encoder, bool ok)
{
    const std::string partial = partialName(options.videoFile);
    std::string why;
    if (!ok) {
        encoder.cancel();
    } else if (!encoder.finish(why)) {
        ok = fail(why);
    } else if (std::rename(partial.c_str(), options.videoFile.c_str()) != 0) {
        ok = fail("cannot rename " + partial + " to " + options.videoFile + ": " + std::strerror(errno));
    }
    if (!ok)
        unlink(partial.c_str());
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
    report.print(std::cout, schedule, renderer ? renderer : "unknown", getInfo().width, getInfo().height, options.fps);
    char line[200];
    std::snprintf(line, sizeof line,
                  "start-up: %.3f s from the process start to the first frame shown (at %.3f s of scene time)\n",
                  firstFrameShown, options.from);
    std::cout << line;
    printPeakMemory();
    if (options.csvFile.empty())
        return true;
    std::ofstream csv(options.csvFile);
    report.writeCsv(csv, schedule, getInfo().width, getInfo().height);
    csv.close();
    if (!csv)
        return fail("cannot write " + options.csvFile);
    return true;
}

void Capture::printPeakMemory() const
{
    char line[120];
    std::snprintf(line, sizeof line, "peak resident memory of the run: %.1f MB (VmHWM)\n",
                  MemoryProbe::peakKilobytes() / 1024.0);
    std::cout << line << std::flush;
}

bool Capture::renderShots()
{
    std::vector<double> times(options.shots);
    std::sort(times.begin(), times.end());
    progress.start("stills", times.size(), [this] { return whereNow(); });
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

bool Capture::renderSheet()
{
    const std::vector<ScheduleEntry>& entries = schedule.getEntries();
    if (entries.empty())
        return fail("the schedule is empty: no stills to put on a sheet");
    const int width = getInfo().width;
    const int height = getInfo().height;
    const int labelHeight = ContactSheet::labelHeightFor(height);
    ContactSheet sheet(width, height, labelHeight, entries.size());
    std::vector<Frame> labels;
    if (!drawLabels(width, labelHeight, labels))
        return false;

    // Every frame up to the last still is drawn, so that scenes which build on earlier frames (trails,
    // feedback) show in their stills as they do in the demo. A still falling on a frame's time is that frame,
    // and entries sharing a moment share its picture.
    std::map<double, std::vector<size_t>> moments;
    for (size_t i = 0; i < entries.size(); ++i)
        moments[Schedule::stillTime(entries[i])].push_back(i);
    const double last = moments.rbegin()->first;
    for (size_t k = 0, count = frameCount(0.0, last, options.fps); k < count; ++k)
        moments[static_cast<double>(k) / options.fps];
    progress.start("sheet", moments.size(), [this] { return whereNow(); });
    Frame frame;
    bool ok = true;
    for (auto moment = moments.begin(); ok && moment != moments.end(); ++moment) {
        stepTo(moment->first);
        draw();
        if (!moment->second.empty())
            frame.read(width, height);
        for (size_t entry : moment->second)
            sheet.place(entry, frame, labels[entry]);
        ok = keepRunning();
    }
    progress.finish();
    std::string why;
    if (ok && !PngWriter::write(options.sheetFile, sheet.getPicture(), why))
        ok = fail("cannot write " + options.sheetFile + ": " + why);
    return ok;
}

bool Capture::drawLabels(int width, int height, std::vector<Frame>& labels)
{
    Fonter font;
    if (!font.loadTTF(LABEL_FONT, Fonter::PIXMAP, static_cast<float>(height) * LABEL_TEXT_SHARE, 0.0f))
        return fail(std::string("cannot load the label font ") + LABEL_FONT);
    // Flat, unlit, untextured text in pixel units; everything is put back for the scenes.
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0.0, width, 0.0, height, -1.0, 1.0);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glViewport(0, 0, width, height);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    const float grey = ContactSheet::GREY / 255.0f;
    glClearColor(grey, grey, grey, 1.0f);
    for (const ScheduleEntry& entry : schedule.getEntries()) {
        labels.emplace_back();
        drawLabel(font, sheetLabel(entry), width, height, labels.back());
    }
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glPopAttrib();
    return true;
}

void Capture::drawLabel(Fonter& font, const std::string& text, int width, int height, Frame& label)
{
    glClear(GL_COLOR_BUFFER_BIT);
    glColor3f(1.0f, 1.0f, 1.0f);
    // The text's box centred on the strip: the descender lies below the baseline.
    const float baseline = (static_cast<float>(height) - font.getAscender() - font.getDescender()) / 2.0f;
    glRasterPos2f(LABEL_MARGIN, baseline);
    font.draw(text.c_str());
    label.read(width, height);
}
