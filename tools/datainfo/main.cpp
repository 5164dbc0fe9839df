// velmora-data: the content authors' reader of data files and converter into the CTX1 container.
#include "DataInfo.h"

#include <iostream>

int main(int argc, char** argv)
{
    DataInfo tool(std::cout, std::cerr);
    return tool.run(argc, argv);
}
