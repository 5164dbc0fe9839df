// Walks a FastTracker 2 module to its last byte and asks libopenmpt to open it.
#include "XmReport.h"

#include "FileBytes.h"

#include <libopenmpt/libopenmpt.h>
#include <cstdio>

namespace {

const long long maxFileSize = 256LL * 1024 * 1024;
const size_t headerStart = 60;

}  // namespace

XmReport::XmReport(std::ostream& output) : out(output) {}

bool XmReport::fail(const std::string& what)
{
    problem = what;
    return false;
}

bool XmReport::has(size_t at, size_t length) const
{
    return at <= bytes.size() && length <= bytes.size() - at;
}

unsigned XmReport::word(size_t at) const
{
    return bytes[at] | (bytes[at + 1] << 8);
}

unsigned XmReport::dword(size_t at) const
{
    return word(at) | (word(at + 2) << 16);
}

bool XmReport::inspect(const std::string& file)
{
    if (!FileBytes::read(file, maxFileSize, "is too large for a module", bytes, problem))
        return false;
    if (!has(0, headerStart + 20))
        return fail("XM header cut short");
    size_t headerSize = dword(headerStart);
    if (headerSize < 20 + 256 || !has(headerStart, headerSize))
        return fail("XM header of " + std::to_string(headerSize) + " bytes is cut short or too small");
    unsigned orders = word(64), channels = word(68), patterns = word(70), instruments = word(72);
    std::string title(reinterpret_cast<const char*>(&bytes[17]), 20);
    title = title.substr(0, title.find_last_not_of(std::string(" \0", 2)) + 1);
    out << "XM \"" << title << "\", " << channels << " channels, " << orders << " orders, " << patterns << " patterns, "
        << instruments << " instruments, speed " << word(76) << ", " << word(78) << " BPM\n";
    if (channels == 0 || channels > 64 || patterns > 256 || instruments > 256 || orders > 256)
        return fail("XM header counts out of range");
    size_t at = headerStart + headerSize;
    unsigned samples = 0;
    if (!walkPatterns(at, patterns) || !walkInstruments(at, instruments, samples))
        return false;
    out << "  " << samples << " samples; the layout ends at byte " << at << " of " << bytes.size() << "\n";
    if (at != bytes.size())
        return fail(std::to_string(bytes.size() - at) + " bytes follow the last instrument");
    return askPlayer();
}

bool XmReport::walkPatterns(size_t& at, unsigned count)
{
    for (unsigned i = 0; i < count; ++i) {
        if (!has(at, 9))
            return fail("XM pattern " + std::to_string(i) + " header cut short");
        size_t length = dword(at);
        unsigned rows = word(at + 5), packed = word(at + 7);
        if (length < 9 || rows == 0 || rows > 256)
            return fail("XM pattern " + std::to_string(i) + " header is damaged");
        if (!has(at, length + packed))
            return fail("XM pattern " + std::to_string(i) + " cut short");
        at += length + packed;
    }
    return true;
}

bool XmReport::walkInstruments(size_t& at, unsigned count, unsigned& samples)
{
    for (unsigned i = 0; i < count; ++i) {
        std::string which = "XM instrument " + std::to_string(i + 1);
        if (!has(at, 29))
            return fail(which + " header cut short");
        size_t size = dword(at);
        unsigned sampleCount = word(at + 27);
        size_t sampleHeader = sampleCount > 0 && has(at, 33) ? dword(at + 29) : 0;
        if (size < 29 || !has(at, size) || (sampleCount > 0 && size < 33))
            return fail(which + " header cut short");
        at += size;
        size_t dataLength = 0;
        for (unsigned s = 0; s < sampleCount; ++s) {
            if (sampleHeader < 4 || !has(at, sampleHeader))
                return fail(which + " sample headers cut short");
            dataLength += dword(at);
            at += sampleHeader;
        }
        if (!has(at, dataLength))
            return fail(which + " sample data cut short");
        at += dataLength;
        samples += sampleCount;
    }
    return true;
}

bool XmReport::askPlayer()
{
    int error = 0;
    const char* message = nullptr;
    openmpt_module* module =
        openmpt_module_create_from_memory2(bytes.data(), bytes.size(), openmpt_log_func_silent, nullptr,
                                           openmpt_error_func_ignore, nullptr, &error, &message, nullptr);
    std::string text = message ? message : "";
    openmpt_free_string(message);
    if (!module)
        return fail("libopenmpt cannot open it" + (text.empty() ? std::string() : ": " + text));
    char duration[32];
    std::snprintf(duration, sizeof duration, "%.1f", openmpt_module_get_duration_seconds(module));
    out << "libopenmpt: " << openmpt_module_get_num_orders(module) << " orders, " << duration << " seconds\n";
    openmpt_module_destroy(module);
    return true;
}
