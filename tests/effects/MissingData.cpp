// Running a scene with no data: the empty directory, the captured streams, the scenes' one line per missing file.
#include "MissingData.h"

#include <unistd.h>
#include <cstdlib>
#include <cstring>

MissingData::MissingData() : directory(), previous(nullptr), capturing(false)
{
    std::strcpy(directory, "/tmp/velmora-nodata-XXXXXX");
    if (!mkdtemp(directory))
        return;
    previous = getcwd(nullptr, 0);
    if (!previous || chdir(directory) != 0) {
        std::free(previous);
        previous = nullptr;
        rmdir(directory);
        return;
    }
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    capturing = true;
}

MissingData::~MissingData()
{
    finish();
    if (!previous)
        return;
    if (chdir(previous) != 0)
        ADD_FAILURE() << "cannot go back to " << previous;
    std::free(previous);
    rmdir(directory);
}

void MissingData::finish()
{
    if (!capturing)
        return;
    output = testing::internal::GetCapturedStdout();
    errors = testing::internal::GetCapturedStderr();
    capturing = false;
}

testing::AssertionResult MissingData::saidOnce(const char* scene, const char* file) const
{
    const std::string line = std::string(scene) + ": couldn't load '" + file + "'\n";
    const size_t first = errors.find(line);
    if (first == std::string::npos)
        return testing::AssertionFailure() << "never said: " << line << "in:\n" << errors;
    if (errors.find(line, first + 1) != std::string::npos)
        return testing::AssertionFailure() << "said more than once: " << line;
    return testing::AssertionSuccess();
}
