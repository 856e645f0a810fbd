#include <iostream>

#include "CommandLine.h"

int main(int argc, char** argv) {
    return static_cast<int>(RunCommandLine(argc, argv, std::cin, std::cout, std::cerr));
}
