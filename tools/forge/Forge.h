// The output side of the content forge: where files go, and what was written.
#pragma once

#include <functional>
#include <string>

class Image;

class Forge {
public:
    // root is the demo's working directory; content lands in root/data/.
    explicit Forge(const std::string& root);

    // Full path of a file given relative to the data folder ("img/logo.png").
    std::string path(const std::string& relative) const;
    // Writes a PNG with 3 or 4 channels, making folders as needed. A failure
    // prints the path on standard error and is counted.
    bool savePng(const std::string& relative, const Image& image, int channels);

    // Writes any other kind of file through `writer`, given the full path.
    bool saveFile(const std::string& relative, const std::function<bool(const std::string&)>& writer);

    int files() const { return fileCount; }
    long long bytes() const { return byteCount; }
    int failures() const { return failureCount; }

private:
    bool prepare(const std::string& fullPath);
    void record(const std::string& fullPath, bool ok);

    std::string dataRoot;
    int fileCount;
    long long byteCount;
    int failureCount;
};
