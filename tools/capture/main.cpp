// Entry point of velmora-capture: parse the options, run the capture, report failure on standard error.
#include "Capture.h"
#include "CaptureOptions.h"

#include <iostream>

int main(int argc, char** argv)
{
    CaptureOptions options;
    std::string error;
    if (!options.parse(argc, argv, error)) {
        std::cerr << "velmora-capture: " << error << '\n' << CaptureOptions::usage();
        return 2;
    }
    if (options.help) {
        std::cout << CaptureOptions::usage();
        return 0;
    }
    if (!options.hasWork()) {
        std::cerr << "velmora-capture: nothing to do: choose --frames, --shot, --video, --sheet, --bench, --memory or "
                     "--list\n"
                  << CaptureOptions::usage();
        return 2;
    }
    Capture capture(options);
    if (!capture.run(argc, argv)) {
        std::cerr << "velmora-capture: " << capture.getError() << '\n';
        return 1;
    }
    return 0;
}
