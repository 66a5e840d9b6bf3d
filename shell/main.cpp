#include "shell/commands.h"

#include <iostream>

int main(int argc, char** argv) {
    return loadwarden::runProgram(std::vector<std::string>(argv + 1, argv + argc), std::cout,
                                  std::cerr);
}
