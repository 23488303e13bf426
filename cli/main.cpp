// SPDX-License-Identifier: Apache-2.0
#include "Program.h"

int main(int argc, char** argv) {
    using namespace cli::commands;
    static constexpr cli::Row TABLE[] = {
        {"Look", "list", list},
        {"Look", "dirs", dirs},
        {"Look", "show", show},
        {"Look", "info", info},
        {"Look", "files", files},
        {"Judge", "validate", validate},
        {"Judge", "verify", verify},
        {"Judge", "check", check},
        {"Judge", "diff", diff},
        {"Ask", "json", json},
        {"Ask", "get", get},
        {"Ask", "keys", keys},
        {"Ask", "dict", dict},
        {"Ask", "transform", transform},
        {"Ask", "doc", doc},
        {"Make", "pack", pack},
        {"Change", "add", add},
        {"Hand on", "extract", extract},
        {"Hand on", "protect", protect},
        {"Hand on", "unprotect", unprotect},
        {"Shell", "help", help},
        {"Shell", "completion", completion},
        {"Shell", "manual", manual},
    };
    return cli::runProgram(TABLE, argc, argv);
}
