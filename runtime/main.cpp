// Entry point: one Velmora on the stack; run's result is the exit status.
#include "runtime/Velmora.h"

#include <iostream>

int main(int argc, char** argv)
{
    Velmora demo;
    bool result = demo.run(argc, argv);
    // The display failed, and its message is out: say how to watch without one.
    if (!result)
        std::cerr << Velmora::NO_DISPLAY_HINT << '\n';
    return result;
}
