// The size is taken from the end position first, so nothing is allocated for a file we refuse.
#include "FileBytes.h"

#include <fstream>

bool FileBytes::read(const std::string& file, long long maxSize, const char* tooLarge,
                     std::vector<unsigned char>& bytes, std::string& problem)
{
    std::ifstream in(file, std::ios::binary | std::ios::ate);
    if (!in) {
        problem = "cannot be opened";
        return false;
    }
    long long size = static_cast<long long>(in.tellg());
    if (size < 0 || size > maxSize) {
        problem = tooLarge;
        return false;
    }
    bytes.resize(static_cast<size_t>(size));
    in.seekg(0);
    if (size > 0)
        in.read(reinterpret_cast<char*>(bytes.data()), size);
    if (!in) {
        problem = "cannot be read";
        return false;
    }
    return true;
}
