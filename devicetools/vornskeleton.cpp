#include "commandline/commandline.h"
#include "devicetools/skeleton.h"

#include <CLI/CLI.hpp>

#include <iostream>

int main(int argc, char **argv)
{
    CLI::App app{"Prints a device library in C to begin with: it keeps the contract and supports "
                 "nothing.",
        "vornskeleton"};
    app.footer("Exit codes: 0 done, 1 refused by the system, 2 wrong usage.\n\n"
               "Examples:\n"
               "  vornskeleton > unit.c\n"
               "  cc -std=c99 -shared -fPIC -o libVornAux2.so unit.c\n"
               "  vorncheck ./libVornAux2.so");
    app.final_callback([] { std::cout << devicetools::skeleton(); });
    return commandline::run(app, argc, argv);
}
