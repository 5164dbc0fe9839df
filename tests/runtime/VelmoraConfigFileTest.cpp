// The real velmora program started with damaged velmora.cfg files: it opens the window it could read and runs on.
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
#include <vector>

namespace {

const std::string header = "Settings Registry v0.1\n(c) Quorvex Co - settings for Velmora Deep\n";

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
    std::ifstream in(path.c_str(), std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// Bytes of every value, NUL and newline included, the same on every run.
std::string garbage(size_t size)
{
    std::string bytes(size, '\0');
    unsigned state = 12345u;
    for (char& c : bytes) {
        state = state * 1103515245u + 12345u;
        c = static_cast<char>(state >> 16);
    }
    return bytes;
}

struct ConfigCase {
    const char* label;
    bool present;
    std::string content;
    const char* window;  // the size the program must open
};

std::string describe(const ::testing::TestParamInfo<ConfigCase>& info)
{
    return info.param.label;
}

class ConfigFileRun : public ::testing::TestWithParam<ConfigCase> {
protected:
    std::string dir;
    pid_t pid = -1;
    int status = -1;

    void SetUp() override
    {
        ASSERT_NE(getenv("DISPLAY"), nullptr) << "needs an X server: run under xvfb-run";
        char pattern[] = "/tmp/velmora-cfg-XXXXXX";
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

    void writeConfig(const std::string& content)
    {
        std::ofstream out((dir + "/velmora.cfg").c_str(), std::ios::binary);
        out.write(content.data(), static_cast<std::streamsize>(content.size()));
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
        // SDL would otherwise fall back on its offscreen driver when X refuses it, and run windowless.
        setenv("SDL_VIDEODRIVER", "x11", 1);
        execl(program.c_str(), "velmora", static_cast<char*>(nullptr));
        _exit(121);
    }

    bool running() { return status == -1 && waitpid(pid, &status, WNOHANG) == 0; }

    std::string output() { return readFile(dir + "/stdout.txt") + readFile(dir + "/stderr.txt"); }

    std::string windowSize()
    {
        // Generous: a loaded machine and a sanitizer build start slowly.
        for (double giveUp = now() + 60.0; now() < giveUp && running(); sleepMillis(50)) {
            std::string ids = capture("xdotool search --onlyvisible --pid " + std::to_string(pid) + " 2>/dev/null");
            if (ids.empty())
                continue;
            std::istringstream lines(capture("xdotool getwindowgeometry --shell " + ids.substr(0, ids.find('\n'))));
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

    // The window's size. Xvfb now and then refuses a connection ("x11 not
    // available"): that start says nothing about the configuration, so it is
    // made again.
    std::string startAndFindWindow()
    {
        std::string size;
        for (int attempt = 0; attempt < 3; ++attempt) {
            start();
            size = windowSize();
            bool refused = size.empty() && !running() && output().find("x11 not available") != std::string::npos;
            if (!refused)
                break;
            status = -1;
        }
        return size;
    }

    // Still running after a while, then a normal end on SIGTERM.
    void expectItRunsOnAndQuits()
    {
        sleepMillis(1500);
        ASSERT_TRUE(running()) << "velmora ended on its own: " << output();
        kill(pid, SIGTERM);
        for (double giveUp = now() + 20.0; now() < giveUp && running();)
            sleepMillis(50);
        ASSERT_NE(status, -1) << "velmora ignored SIGTERM";
        ASSERT_TRUE(WIFEXITED(status)) << "velmora did not exit normally: " << output();
        // run's true comes back as exit status 1: kept inverted.
        EXPECT_EQ(WEXITSTATUS(status), 1) << output();
    }
};

std::vector<ConfigCase> cases()
{
    std::string tenKilobytes(10 * 1024, 'x');
    return {
        {"Missing", false, "", "640x480"},
        {"Empty", true, "", "640x480"},
        {"HeaderOnly", true, header, "640x480"},
        // A carriage return spoils the identification line: nothing is read.
        {"CrlfEverywhere", true,
         "Settings Registry v0.1\r\nnotice\r\nWidth = 800\r\nHeight = 600\r\n", "640x480"},
        // After the header it only trails the values, and a number stops before it.
        {"CrlfRecords", true, header + "Width = 800\r\nHeight = 600\r\n", "800x600"},
        // Reading stops at the record too long to hold: what came before it stays.
        {"TenKilobyteValue", true, header + "Width = 800\nSong = " + tenKilobytes + "\nHeight = 600\n", "800x480"},
        {"TenKilobyteName", true, header + "Height = 600\n" + tenKilobytes + " = 1\nWidth = 800\n", "640x600"},
        {"BinaryGarbage", true, garbage(4096), "640x480"},
        {"GarbageAfterRecords", true, header + "Width = 720\n" + garbage(4096), "720x480"},
    };
}

} // namespace

TEST_P(ConfigFileRun, OpensTheWindowItCouldReadAndRunsOn)
{
    const ConfigCase& config = GetParam();
    if (config.present)
        writeConfig(config.content);
    EXPECT_EQ(startAndFindWindow(), config.window) << output();
    ASSERT_GT(pid, 0);
    expectItRunsOnAndQuits();
}

INSTANTIATE_TEST_SUITE_P(DamagedConfig, ConfigFileRun, ::testing::ValuesIn(cases()), describe);
