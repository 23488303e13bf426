// SPDX-License-Identifier: Apache-2.0
#include "Program.h"

int main(int argc, char** argv) {
    using namespace cli::commands;
    static constexpr cli::Row TABLE[] = {
        {"list", list},         {"dirs", dirs},           {"show", show},
        {"validate", validate}, {"diff", diff},           {"json", json},
        {"pack", pack},         {"files", files},         {"extract", extract},
        {"add", add},           {"verify", verify},       {"get", get},
        {"keys", keys},         {"dict", dict},           {"transform", transform},
        {"doc", doc},           {"info", info},           {"check", check},
        {"protect", protect},   {"unprotect", unprotect}, {"completion", completion},
        {"manual", manual},
    };
    return cli::runProgram(TABLE, argc, argv);
}
