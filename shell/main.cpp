#include "app/control/shared_ledger.h"
#include "shell/commands.h"

#include <iostream>

int main(int argc, char** argv) {
    // Whatever ended a copy of the program, this one continues what it left stopped.
    loadwarden::SharedLedger(loadwarden::DefaultsStore()).releaseOrphans();
    return loadwarden::runProgram(std::vector<std::string>(argv + 1, argv + argc), std::cout,
                                  std::cerr);
}
