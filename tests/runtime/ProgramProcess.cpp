// Runs the real velmora program as a child process in a scratch directory, for the end-to-end tests.
#include "ProgramProcess.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

double now()
{
    struct timespec clock;
    clock_gettime(CLOCK_MONOTONIC, &clock);
    return clock.tv_sec + clock.tv_nsec * 1e-9;
}

std::string readFile(const std::string& path)
{
    std::stringstream text;
    text << std::ifstream(path.c_str(), std::ios::binary).rdbuf();
    return text.str();
}

}  // namespace

ProgramProcess::ProgramProcess()
{
    char pattern[] = "/tmp/velmora-run-XXXXXX";
    dir = mkdtemp(pattern) ? pattern : "/tmp";
}

ProgramProcess::~ProgramProcess()
{
    if (running()) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    for (const char* name : {"/velmora.cfg", "/stdout.txt", "/stderr.txt"})
        std::remove((dir + name).c_str());
    rmdir(dir.c_str());
}

void ProgramProcess::writeConfig(const std::string& bytes) const
{
    std::ofstream((dir + "/velmora.cfg").c_str(), std::ios::binary) << bytes;
}

void ProgramProcess::start(bool withDisplay)
{
    std::string program = std::string(VELMORA_BINARY_DIR) + "/velmora";
    status = -1;
    pid = fork();
    if (pid != 0)
        return;
    int out = chdir(dir.c_str()) == 0 ? open("stdout.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644) : -1;
    int err = open("stderr.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (out < 0 || err < 0 || dup2(out, STDOUT_FILENO) < 0 || dup2(err, STDERR_FILENO) < 0)
        _exit(120);
    // SDL would otherwise fall back on its offscreen driver when X refuses it, and run windowless.
    if (withDisplay) {
        setenv("SDL_VIDEODRIVER", "x11", 1);
    } else {
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "SDL_VIDEODRIVER"})
            unsetenv(name);
    }
    execl(program.c_str(), "velmora", static_cast<char*>(nullptr));
    _exit(121);
}

void ProgramProcess::startWithoutDisplay()
{
    start(false);
}

bool ProgramProcess::running()
{
    return pid > 0 && status == -1 && waitpid(pid, &status, WNOHANG) == 0;
}

bool ProgramProcess::ended(double seconds)
{
    for (double giveUp = now() + seconds; now() < giveUp && running();)
        sleepMillis(50);
    return status != -1;
}

int ProgramProcess::terminate()
{
    if (!running())
        return -1;
    kill(pid, SIGTERM);
    ended(20.0);
    return exitStatus();
}

int ProgramProcess::exitStatus() const
{
    return status != -1 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string ProgramProcess::output() const
{
    return readFile(dir + "/stdout.txt") + readFile(dir + "/stderr.txt");
}

// Generous: a loaded machine and a sanitizer build start slowly.
std::string ProgramProcess::windowId()
{
    for (double giveUp = now() + 60.0; now() < giveUp && running(); sleepMillis(50)) {
        std::string ids = capture("xdotool search --onlyvisible --pid " + std::to_string(pid) + " 2>/dev/null");
        if (!ids.empty())
            return ids.substr(0, ids.find('\n'));
    }
    return std::string();
}

// Xvfb now and then refuses a connection ("x11 not available"): that start says
// nothing about the program, so it is made again.
std::string ProgramProcess::startAndFindWindow()
{
    for (int attempt = 0; attempt < 3; ++attempt) {
        start();
        std::string id = windowId();
        if (!id.empty()) {
            std::string shell = capture("xdotool getwindowgeometry --shell " + id);
            size_t width = shell.find("WIDTH="), height = shell.find("HEIGHT=");
            if (width == std::string::npos || height == std::string::npos)
                return std::string();
            return shell.substr(width + 6, shell.find('\n', width) - width - 6) + "x" +
                   shell.substr(height + 7, shell.find('\n', height) - height - 7);
        }
        if (running() || output().find("x11 not available") == std::string::npos)
            break;
    }
    return std::string();
}

std::string ProgramProcess::capture(const std::string& command)
{
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    char buffer[256];
    while (pipe && fgets(buffer, sizeof buffer, pipe))
        output += buffer;
    if (pipe)
        pclose(pipe);
    return output;
}

void ProgramProcess::sleepMillis(long millis)
{
    struct timespec pause = {millis / 1000, (millis % 1000) * 1000000L};
    nanosleep(&pause, nullptr);
}
