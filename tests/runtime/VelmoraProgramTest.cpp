// The real velmora program under an X server: its window size, and a clean end on SIGTERM.
#include <gtest/gtest.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

namespace {

double now()
{
    struct timespec clock;
    clock_gettime(CLOCK_MONOTONIC, &clock);
    return clock.tv_sec + clock.tv_nsec * 1e-9;
}

void sleepMillis(long millis)
{
    struct timespec pause = {millis / 1000, (millis % 1000) * 1000000L};
    nanosleep(&pause, nullptr);
}

std::string capture(const std::string& command)
{
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return output;
    char buffer[256];
    while (fgets(buffer, sizeof buffer, pipe))
        output += buffer;
    pclose(pipe);
    return output;
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path.c_str());
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// One run of the program in a fresh working directory, its output kept in files there.
class ProgramRun : public ::testing::Test {
protected:
    std::string dir;
    pid_t pid = -1;
    int status = -1;

    void SetUp() override
    {
        ASSERT_NE(getenv("DISPLAY"), nullptr) << "needs an X server: run under xvfb-run";
        char pattern[] = "/tmp/velmora-run-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
    }

    void TearDown() override
    {
        if (pid > 0 && status == -1) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
        for (const char* name : {"/velmora.cfg", "/stdout.txt", "/stderr.txt"})
            std::remove((dir + name).c_str());
        rmdir(dir.c_str());
    }

    void start()
    {
        std::string program = std::string(VELMORA_BINARY_DIR) + "/velmora";
        pid = fork();
        if (pid != 0)
            return;
        int out = chdir(dir.c_str()) == 0 ? open("stdout.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644) : -1;
        int err = open("stderr.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (out < 0 || err < 0)
            _exit(120);
        dup2(out, STDOUT_FILENO);
        dup2(err, STDERR_FILENO);
        execl(program.c_str(), "velmora", static_cast<char*>(nullptr));
        _exit(121);
    }

    bool running() { return status == -1 && waitpid(pid, &status, WNOHANG) == 0; }

    std::string output() { return readFile(dir + "/stdout.txt") + readFile(dir + "/stderr.txt"); }

    // The program's window, found by its process id; empty when no window came up.
    std::string windowId()
    {
        // Generous: a loaded machine and a sanitizer build start slowly.
        for (double giveUp = now() + 60.0; now() < giveUp && running(); sleepMillis(50)) {
            std::string ids = capture("xdotool search --onlyvisible --pid " + std::to_string(pid) + " 2>/dev/null");
            if (!ids.empty())
                return ids.substr(0, ids.find('\n'));
        }
        return std::string();
    }

    std::string windowSize()
    {
        const std::string id = windowId();
        if (!id.empty()) {
            std::istringstream lines(capture("xdotool getwindowgeometry --shell " + id));
            std::string width, height;
            for (std::string line; std::getline(lines, line);) {
                if (line.rfind("WIDTH=", 0) == 0)
                    width = line.substr(6);
                if (line.rfind("HEIGHT=", 0) == 0)
                    height = line.substr(7);
            }
            return width + "x" + height;
        }
        return std::string();
    }

    // Waits for the program to end; false when it is still running after the wait.
    bool ended(double seconds)
    {
        for (double giveUp = now() + seconds; now() < giveUp && running();)
            sleepMillis(50);
        return status != -1;
    }

    // Left running a while, then SIGTERM: SDL turns it into a quit event.
    void expectCleanQuitAfterTwoSeconds()
    {
        sleepMillis(2000);
        ASSERT_TRUE(running()) << "velmora ended on its own: " << output();
        kill(pid, SIGTERM);
        ASSERT_TRUE(ended(20.0)) << "velmora ignored SIGTERM";
        ASSERT_TRUE(WIFEXITED(status)) << "velmora did not exit normally";
        // A normal end returns run's true as the exit status: kept inverted.
        EXPECT_EQ(WEXITSTATUS(status), 1);
        EXPECT_EQ(output().find("ERROR!"), std::string::npos) << output();
    }
};

}

TEST_F(ProgramRun, ConfiguredSizeAndCleanQuitOnSigterm)
{
    std::ofstream((dir + "/velmora.cfg").c_str())
        << "Settings Registry v0.1\n(c) Quorvex Co - settings for Velmora Deep\n"
        << "Cursor = yes\nFullscreen = no\nWidth = 800\nHeight = 600\nShowFPS = no\nSound = no\n";
    start();
    ASSERT_GT(pid, 0);
    EXPECT_EQ(windowSize(), "800x600") << output();
    expectCleanQuitAfterTwoSeconds();
}

TEST_F(ProgramRun, NoConfigurationOpensTheDefaultWindow)
{
    start();
    ASSERT_GT(pid, 0);
    EXPECT_EQ(windowSize(), "640x480") << output();
    expectCleanQuitAfterTwoSeconds();
}

TEST_F(ProgramRun, EscapeQuitsWithStatusOne)
{
    start();
    ASSERT_GT(pid, 0);
    const std::string id = windowId();
    ASSERT_FALSE(id.empty()) << output();
    // Other keys are ignored; Escape ends the program.
    capture("xdotool windowfocus --sync " + id + " key --window " + id + " space q Return 2>&1");
    sleepMillis(500);
    ASSERT_TRUE(running()) << "a key other than Escape ended velmora: " << output();
    for (double giveUp = now() + 20.0; now() < giveUp && running(); sleepMillis(250))
        capture("xdotool key --window " + id + " Escape 2>&1");
    ASSERT_TRUE(ended(20.0)) << "Escape did not end velmora";
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
}
