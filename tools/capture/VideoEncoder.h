// Pipes raw RGB frames into an ffmpeg child that encodes them, muxed with a soundtrack file.
#pragma once

#include <sys/types.h>
#include <string>

class Frame;

class VideoEncoder {
public:
    VideoEncoder();
    // Closes the pipe and waits for the child if finish() was not called.
    ~VideoEncoder();
    VideoEncoder(const VideoEncoder&) = delete;
    VideoEncoder& operator=(const VideoEncoder&) = delete;

    // Finds an executable `name` in the directories of PATH.
    static bool findProgram(const std::string& name, std::string& path);

    // Starts ffmpeg writing `file`; `audioFile` may be empty for a silent video.
    bool start(const std::string& file, int width, int height, int fps, const std::string& audioFile,
               std::string& error);
    // False when ffmpeg stopped reading or the frame's size is not the video's.
    bool write(const Frame& frame, std::string& error);
    // Ends the input and waits; false when ffmpeg failed.
    bool finish(std::string& error);
    // Stops ffmpeg without letting it finish the file, and waits for it.
    void cancel();

    bool isRunning() const { return pid > 0; }

private:
    bool writeAll(const unsigned char* data, size_t size);
    int wait();

    pid_t pid;
    int input;
    int width;
    int height;
};
