// The ffmpeg child: start, feed and reap.
#include "VideoEncoder.h"

#include "Frame.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <vector>

extern char** environ;

VideoEncoder::VideoEncoder() : pid(-1), input(-1), width(0), height(0) {}

VideoEncoder::~VideoEncoder()
{
    if (input >= 0)
        close(input);
    input = -1;
    if (pid > 0)
        wait();
}

bool VideoEncoder::findProgram(const std::string& name, std::string& path)
{
    const char* list = std::getenv("PATH");
    std::string dirs = list ? list : "";
    size_t begin = 0;
    while (begin <= dirs.size()) {
        size_t colon = dirs.find(':', begin);
        std::string dir = dirs.substr(begin, colon == std::string::npos ? std::string::npos : colon - begin);
        std::string candidate = (dir.empty() ? "." : dir) + "/" + name;
        struct stat info;
        if (stat(candidate.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(candidate.c_str(), X_OK) == 0) {
            path = candidate;
            return true;
        }
        if (colon == std::string::npos)
            break;
        begin = colon + 1;
    }
    return false;
}

bool VideoEncoder::start(const std::string& file, int w, int h, int fps, const std::string& audioFile,
                         std::string& error)
{
    std::string program;
    if (!findProgram("ffmpeg", program)) {
        error = "ffmpeg was not found on PATH; --video needs it";
        return false;
    }
    width = w;
    height = h;
    std::vector<std::string> args = {program,      "-hide_banner",
                                     "-loglevel",  "error",
                                     "-nostdin",   "-y",
                                     "-f",         "rawvideo",
                                     "-pix_fmt",   "rgb24",
                                     "-s",         std::to_string(w) + "x" + std::to_string(h),
                                     "-framerate", std::to_string(fps),
                                     "-i",         "pipe:0"};
    if (!audioFile.empty()) {
        args.push_back("-i");
        args.push_back(audioFile);
    }
    for (const char* arg :
         {"-map", "0:v", "-c:v", "libx264", "-preset", "veryfast", "-crf", "18", "-pix_fmt", "yuv420p"})
        args.push_back(arg);
    if (!audioFile.empty()) {
        for (const char* arg : {"-map", "1:a", "-c:a", "aac", "-b:a", "192k"})
            args.push_back(arg);
    }
    // The index goes before the media, so browsers and phones start playing while the file still loads.
    for (const char* arg : {"-movflags", "+faststart"})
        args.push_back(arg);
    args.push_back(file);

    std::vector<char*> argv;
    for (std::string& arg : args)
        argv.push_back(&arg[0]);
    argv.push_back(nullptr);

    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        error = "cannot make a pipe to ffmpeg";
        return false;
    }
    // A dead encoder must show up as a failed write, not kill the program.
    std::signal(SIGPIPE, SIG_IGN);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], 0);
    // A group of its own: Ctrl-C reaches only velmora-capture, which then stops the encoder itself, once.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setpgroup(&attributes, 0);
    pid_t child = -1;
    int failed = posix_spawn(&child, program.c_str(), &actions, &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[0]);
    if (failed != 0) {
        close(ends[1]);
        error = "cannot start " + program;
        return false;
    }
    pid = child;
    input = ends[1];
    return true;
}

bool VideoEncoder::writeAll(const unsigned char* data, size_t size)
{
    while (size > 0) {
        ssize_t wrote = ::write(input, data, size);
        if (wrote < 0 && errno == EINTR)
            continue;
        if (wrote <= 0)
            return false;
        data += wrote;
        size -= static_cast<size_t>(wrote);
    }
    return true;
}

bool VideoEncoder::write(const Frame& frame, std::string& error)
{
    if (input < 0) {
        error = "the encoder is not running";
        return false;
    }
    if (frame.getWidth() != width || frame.getHeight() != height) {
        error = "a frame of another size than the video's";
        return false;
    }
    if (!writeAll(frame.getPixels(), frame.getByteCount())) {
        error = "ffmpeg stopped taking frames";
        return false;
    }
    return true;
}

int VideoEncoder::wait()
{
    int status = 0;
    pid_t done;
    do {
        done = waitpid(pid, &status, 0);
    } while (done < 0 && errno == EINTR);
    pid = -1;
    if (done < 0)
        return -1;
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    return 128 + (WIFSIGNALED(status) ? WTERMSIG(status) : 0);
}

bool VideoEncoder::finish(std::string& error)
{
    if (input >= 0)
        close(input);
    input = -1;
    if (pid <= 0) {
        error = "the encoder is not running";
        return false;
    }
    int code = wait();
    if (code != 0) {
        error = "ffmpeg failed (exit status " + std::to_string(code) + ")";
        return false;
    }
    return true;
}

void VideoEncoder::cancel()
{
    if (pid > 0)
        kill(pid, SIGTERM);
    std::string ignored;
    finish(ignored);
}
