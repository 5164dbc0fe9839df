// Entry point: one Velmora on the stack; run's result is the exit status.
#include "runtime/Velmora.h"

int main(int argc, char** argv)
{
    Velmora demo;
    bool result = demo.run(argc, argv);
    return result;
}
