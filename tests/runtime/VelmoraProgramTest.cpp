// The real velmora program under an X server: its window size, and a clean end on SIGTERM.
#include <gtest/gtest.h>
#include <cerrno>
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

const char* const HEADER = "Settings Registry v0.1\n(c) Quorvex Co - settings for Velmora Deep\n";

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
        for (const char* name : {"velmora.cfg", "stdout.txt", "stderr.txt"})
            std::remove((dir + "/" + name).c_str());
        rmdir(dir.c_str());
    }

    void writeConfig(const std::string& records)
    {
        std::ofstream((dir + "/velmora.cfg").c_str()) << HEADER << records;
    }

    void start()
    {
        std::string program = std::string(VELMORA_BINARY_DIR) + "/velmora";
        pid = fork();
        if (pid != 0)
            return;
        // The child: run in the test's directory with its streams in files.
        if (chdir(dir.c_str()) != 0)
            _exit(120);
        int out = open("stdout.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644);
        int err = open("stderr.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (out < 0 || err < 0)
            _exit(121);
        dup2(out, STDOUT_FILENO);
        dup2(err, STDERR_FILENO);
        execl(program.c_str(), "velmora", static_cast<char*>(nullptr));
        _exit(122);
    }

    bool stillRunning()
    {
        if (status != -1)
            return false;
        pid_t done = waitpid(pid, &status, WNOHANG);
        if (done == pid)
            return false;
        status = -1;
        return true;
    }

    // The program's top-level window, found by its process id; empty when none is up.
    std::string window()
    {
        std::string ids = capture("xdotool search --onlyvisible --pid " + std::to_string(pid) + " 2>/dev/null");
        return ids.substr(0, ids.find('\n'));
    }

    static double now()
    {
        struct timespec clock;
        clock_gettime(CLOCK_MONOTONIC, &clock);
        return clock.tv_sec + clock.tv_nsec * 1e-9;
    }

    // Generous: a loaded machine and a sanitizer build start slowly.
    std::string waitForWindow()
    {
        double giveUp = now() + 60.0;
        while (now() < giveUp && stillRunning()) {
            std::string id = window();
            if (!id.empty())
                return id;
            sleepMillis(50);
        }
        return std::string();
    }

    std::string geometry(const std::string& id)
    {
        std::string shell = capture("xdotool getwindowgeometry --shell " + id);
        std::string width, height;
        std::istringstream lines(shell);
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("WIDTH=", 0) == 0)
                width = line.substr(6);
            if (line.rfind("HEIGHT=", 0) == 0)
                height = line.substr(7);
        }
        return width + "x" + height;
    }

    // Sends SIGTERM and waits (bounded) for the exit status.
    bool terminate()
    {
        kill(pid, SIGTERM);
        for (int i = 0; i < 400; ++i) {
            if (waitpid(pid, &status, WNOHANG) == pid)
                return true;
            sleepMillis(50);
        }
        return false;
    }

    void expectCleanQuit()
    {
        ASSERT_TRUE(stillRunning()) << "velmora ended on its own: " << readFile(dir + "/stderr.txt");
        ASSERT_TRUE(terminate()) << "velmora ignored SIGTERM";
        ASSERT_TRUE(WIFEXITED(status)) << "velmora did not exit normally";
        // A normal end returns run's true as the exit status.
        EXPECT_EQ(WEXITSTATUS(status), 1);
        std::string output = readFile(dir + "/stdout.txt") + readFile(dir + "/stderr.txt");
        EXPECT_EQ(output.find("ERROR!"), std::string::npos) << output;
    }
};

}

TEST_F(ProgramRun, ConfiguredSizeAndCleanQuitOnSigterm)
{
    writeConfig("Cursor = yes\nFullscreen = no\nWidth = 800\nHeight = 600\nShowFPS = no\nSound = no\n");
    start();
    ASSERT_GT(pid, 0);
    std::string id = waitForWindow();
    ASSERT_FALSE(id.empty()) << "no window appeared: " << readFile(dir + "/stderr.txt");
    EXPECT_EQ(geometry(id), "800x600");
    // Left running a while: the timeline runs its first frames and nothing fails.
    sleepMillis(2000);
    expectCleanQuit();
}

TEST_F(ProgramRun, NoConfigurationOpensTheDefaultWindow)
{
    start();
    ASSERT_GT(pid, 0);
    std::string id = waitForWindow();
    ASSERT_FALSE(id.empty()) << "no window appeared: " << readFile(dir + "/stderr.txt");
    EXPECT_EQ(geometry(id), "640x480");
    sleepMillis(2000);
    expectCleanQuit();
}
