// loadwarden-serve: what `loadwarden serve` runs, with the command's arguments.

#include "shell/commands.h"

#include <iostream>

int main(int argc, char** argv) {
    return loadwarden::runServeCommand(std::vector<std::string>(argv + 1, argv + argc), std::cout,
                                       std::cerr);
}
