// Runs the real velmora program as a child process in a scratch directory, for the end-to-end tests.
#pragma once

#include <sys/types.h>
#include <string>

class ProgramProcess {
public:
    ProgramProcess();
    ~ProgramProcess();

    // Writes the bytes to velmora.cfg in the program's directory.
    void writeConfig(const std::string& bytes) const;
    // Starts the program and returns its window's size ("800x600"), or "" when no window came up.
    std::string startAndFindWindow();
    // Starts the program as on a machine with no display: no DISPLAY, WAYLAND_DISPLAY or SDL_VIDEODRIVER.
    void startWithoutDisplay();
    // The program's window id, waited for; "" when none came up.
    std::string windowId();
    bool running();
    // Waits for the end; false when it is still running after the wait.
    bool ended(double seconds);
    // Sends SIGTERM (SDL turns it into a quit event); the exit status, or -1 without a normal exit.
    int terminate();
    // The status of an ended program, or -1 while it runs or when it did not exit normally.
    int exitStatus() const;
    // Everything the program printed on both streams.
    std::string output() const;

    static std::string capture(const std::string& command);
    static void sleepMillis(long millis);

private:
    void start(bool withDisplay = true);
    std::string dir;
    pid_t pid = -1;
    int status = -1;
};
