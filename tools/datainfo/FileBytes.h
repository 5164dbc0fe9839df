// Reads a whole file into memory for the reports that walk raw bytes, refusing absurd sizes.
#pragma once

#include <string>
#include <vector>

class FileBytes {
public:
    // Fills bytes with the file. On failure sets problem ("cannot be opened",
    // tooLarge when it exceeds maxSize, "cannot be read") and returns false.
    static bool read(const std::string& file, long long maxSize, const char* tooLarge,
                     std::vector<unsigned char>& bytes, std::string& problem);
};
