// velmora-data: the content authors' inspector of data files and converter into the CTX1 container.
#include "Inspector.h"

#include <iostream>

int main(int argc, char** argv)
{
    Inspector inspector(std::cout, std::cerr);
    return inspector.run(argc, argv);
}
