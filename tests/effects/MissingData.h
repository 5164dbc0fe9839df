// A scene started where none of its files are: in an empty working directory, with what it printed kept.
#pragma once

#include <gtest/gtest.h>
#include <string>

class MissingData {
public:
    // Makes and enters an empty directory and starts capturing both output streams.
    MissingData();
    // Stops capturing if finish() was not called, goes back and removes the directory.
    ~MissingData();
    MissingData(const MissingData&) = delete;
    MissingData& operator=(const MissingData&) = delete;

    bool entered() const { return previous != nullptr; }
    // Stops capturing.
    void finish();
    const std::string& getErrors() const { return errors; }
    const std::string& getOutput() const { return output; }
    // Whether the scenes' common line for the file went to the error stream, and only once.
    testing::AssertionResult saidOnce(const char* scene, const char* file) const;

private:
    char directory[40];
    char* previous;
    bool capturing;
    std::string errors;
    std::string output;
};
