// SPDX-License-Identifier: Apache-2.0
#include <CLI/CLI.hpp>
#include <iostream>

#include "Command.h"
#include "Output.h"
#include "Suggest.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/Host.h"

namespace {

using cli::UsageError;

constexpr const char* EXIT_CODES =
    "Exit codes:\n"
    "  0  done\n"
    "  1  the question was answered with no\n"
    "  2  wrong use\n"
    "  3  the platform cannot be loaded, or the result cannot be written\n";

constexpr const char* JSON_NOTES =
    "A FILE ending in .pka or .dsa is read as a hardware archive, one ending in .spfm as a\n"
    "software platform, any other as a platform description (.qpfm).\n"
    "Standard output carries the JSON text alone; messages go to standard error.\n";

constexpr const char* PACK_NOTES =
    "Every regular file below DIR becomes a member, named by its path inside DIR: the metadata\n"
    "members first, the others sorted by name. The archive carries a digest; the same files give\n"
    "the same bytes. An archive that exists is replaced only when the new one is complete.\n"
    "Files and folders whose name begins with a dot are left out. Links and devices are refused.\n"
    "ARCHIVE ends in .pka or .dsa and lies outside DIR. The top of DIR holds pka.json or\n"
    "alt_pka.json for a .pka archive, dsa.json or alt_dsa.json for a .dsa archive.\n";

constexpr const char* EXTRACT_NOTES =
    "A type is looked for first, in the metadata of the platform and of its merged emulation\n"
    "platform and in the index vma.json; then a member or a folder of that name. Members keep\n"
    "their path inside the archive below DIR; the path made is printed.\n";

constexpr const char* ADD_NOTES =
    "The file becomes the member that TYPE is listed with; when TYPE is not listed, one of the\n"
    "file's own name, which is then listed. An archive with platform metadata lists it there,\n"
    "any other in its index vma.json. The archive gets a new digest and is replaced in one step.\n";

constexpr const char* PATH_NOTES =
    "PATH is made of member names joined by '.', with the index of an element in brackets, as in\n"
    "hardwarePlatforms.hardwarePlatform.systemClocks[0].name. '[*]' and '..' stand for every\n"
    "element. A path that begins with hardwarePlatform finds the hardware platform wherever the\n"
    "description holds it.\n";

constexpr const char* TRANSFORM_NOTES =
    "SPEC is a JSON object. Each member makes one of the same name: its value is a path, or\n"
    "{\"each\": PATH, \"select\": {...}}, which makes an object for every element at PATH, with\n"
    "paths that begin at the element.\n";

constexpr const char* SHOW_NOTES =
    "Sections: identity, device, targets, support, clocks, memories, banks, interfaces, "
    "partitions,\n"
    "array, software, emulation, files. Without --section all are shown and long lists are cut; "
    "the\n"
    "sections that are asked for are shown whole, in this order.\n";

constexpr const char* DIFF_NOTES =
    "Compares by meaning: items of a list are matched by their name or id, whatever their place,\n"
    "and where the two platforms lie does not count. What is inside the files that a platform\n"
    "names is not compared, only what its description tells. Lines begin with ~ for a change,\n"
    "+ for what only B has, - for what only A has. The code is 1 when they differ.\n";

constexpr const char* CHECK_NOTES =
    "One line for each FILE tells whether the tool release supports the platform, and why. The\n"
    "support list ROOT/platforms/achromatic is asked too, ROOT being the application root.\n"
    "Answers with 1 when a platform is not supported, with 3 when one does not load.\n";

constexpr const char* PROTECT_NOTES =
    "The variable MAV_KEY_FILE names the file with the key. A file that exists at the target is\n"
    "replaced only when the new one is complete.\n";

constexpr const char* LIST_NOTES =
    "Descriptions (.qpfm) are found in each DIR and three levels below, bare archives (.pka, "
    ".dsa)\n"
    "at any depth. Without a DIR the default directories are searched; 'mav dirs' shows them.\n"
    "Vendor and board are compared exactly, part and type in any letter case; of those that fit,\n"
    "--latest keeps the greatest version of each vendor, board and name.\n";

constexpr const char* VALIDATE_NOTES =
    "Looks at the platform file and all that it refers to, and prints every finding as\n"
    "FILE:LINE:COLUMN: SEVERITY: SENTENCE [RULE]. The code is 1 when one of them is an error.\n";

constexpr const char* COMPLETION_NOTES =
    "To have it in one shell:\n"
    "  source <(mav completion bash)\n"
    "  source <(mav completion zsh)     after compinit\n"
    "  mav completion fish | source\n"
    "The packages install it for all three.\n";

/// What the command line sets.
struct Options {
    cli::JsonOptions json;
    cli::PackOptions pack;
    cli::FilesOptions files;
    cli::VerifyOptions verify;
    cli::ExtractOptions extract;
    cli::AddOptions add;
    cli::GetOptions get;
    cli::ShowOptions show;
    cli::CompletionOptions completion;
    cli::ManualOptions manual;
    cli::DiffOptions diff;
    cli::KeysOptions keys;
    cli::DictOptions dict;
    cli::TransformOptions transform;
    cli::DocOptions doc;
    cli::ValidateOptions validate;
    cli::InfoOptions info;
    cli::CheckOptions check;
    cli::ListOptions list;
    cli::DirsOptions dirs;
    cli::ProtectOptions protect;
    cli::ProtectOptions unprotect;
};

std::string pointer(const std::string& command) {
    return " Try 'mav " + (command.empty() ? "" : command + " ") + "--help'.";
}

/// Names of the commands and options that could have been meant inside `app`.
std::vector<std::string> candidates(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    return names;
}

/// The sentence about the first argument that nobody took.
UsageError strayArgument(const CLI::App& app, const std::string& command, std::string word) {
    const bool option = word.size() > 1 && word.front() == '-';
    if (option) word.resize(std::min(word.find('='), word.size()));
    const char* kind = option            ? "unknown option '"
                       : command.empty() ? "unknown command '"
                                         : "unexpected argument '";
    std::string text = kind + cli::printable(word) + "'.";
    const std::string meant = cli::nearest(word, candidates(app));
    if (!meant.empty()) text += " Did you mean '" + meant + "'?";
    return UsageError(text, command);
}

UsageError explain(const CLI::App& app, const CLI::ParseError& error) {
    const auto chosen = app.get_subcommands();
    if (const auto stray = app.remaining(); !stray.empty())
        return strayArgument(app, "", stray.front());
    if (chosen.empty()) return UsageError("a command is missing.", "");
    const CLI::App& command = *chosen.front();
    if (const auto stray = command.remaining(); !stray.empty())
        return strayArgument(command, command.get_name(), stray.front());
    return UsageError(cli::clause(error.what()) + ".", command.get_name());
}

void describePacking(CLI::App& app, cli::JsonOptions& json, cli::PackOptions& pack) {
    CLI::App* toJson = app.add_subcommand("json", "Print the description of a platform as JSON");
    toJson->add_option("FILE", json.file, "Platform file")->required();
    toJson->add_flag("--short", json.shortForm, "Only uniqueName, file and description");
    toJson
        ->add_option("--metadata", json.metadata,
                     "Metadata of hardware archives: auto (JSON, else XML), json (JSON when the "
                     "primary member is there, else XML), xml")
        ->type_name("auto|json|xml");
    toJson->footer(JSON_NOTES);
    CLI::App* toArchive = app.add_subcommand("pack", "Pack a folder into a platform archive");
    toArchive->add_option("DIR", pack.directory, "Folder with the files")->required();
    toArchive->add_option("ARCHIVE", pack.archive, "Archive to write")->required();
    toArchive->add_flag("--force", pack.force, "Pack also without a metadata member");
    toArchive->footer(PACK_NOTES);
}

void describeArchives(CLI::App& app, Options& options) {
    CLI::App* files = app.add_subcommand("files", "List the members of an archive");
    files->add_option("ARCHIVE", options.files.archive, "Archive to list")->required();
    CLI::Option* filesJson = files->add_flag("--json", options.files.json, "Print JSON");
    files
        ->add_flag("--names", options.files.names,
                   "Print the members' names alone, without reading them for the digest")
        ->excludes(filesJson);
    CLI::App* extract = app.add_subcommand("extract", "Extract a member of an archive");
    extract->add_option("ARCHIVE", options.extract.archive, "Archive to read")->required();
    extract->add_option("WHAT", options.extract.what, "Type, member or folder")->required();
    extract
        ->add_option("-o,--output", options.extract.directory,
                     "Folder to extract into, made when it is missing; without it the present one")
        ->type_name("DIR");
    extract->footer(EXTRACT_NOTES);
    CLI::App* add = app.add_subcommand("add", "Add a file to an archive");
    add->add_option("ARCHIVE", options.add.archive, "Archive to change")->required();
    add->add_option("TYPE", options.add.type, "File type")->required();
    add->add_option("FILE", options.add.file, "File to add")->required();
    add->add_option("--as", options.add.member, "Path inside the archive")->type_name("NAME");
    add->footer(ADD_NOTES);
    CLI::App* verify = app.add_subcommand("verify", "Check members and digest of an archive");
    verify->add_option("ARCHIVE", options.verify.archive, "Archive to check")->required();
}

void describeQueries(CLI::App& app, Options& options) {
    CLI::App* get = app.add_subcommand("get", "Print what is at a path of the description");
    get->add_option("FILE", options.get.file, "Platform file")->required();
    get->add_option("PATH", options.get.path, "Path into the description")->required();
    get->add_flag("--json", options.get.json, "Print single values as JSON too");
    get->footer(PATH_NOTES);
    CLI::App* keys = app.add_subcommand("keys", "List the paths of the description");
    keys->add_option("FILE", options.keys.file, "Platform file")->required();
    keys->add_flag("--json", options.keys.json, "Print JSON");
    CLI::App* dict =
        app.add_subcommand("dict", "Print a part of the description as names and values");
    dict->add_option("FILE", options.dict.file, "Platform file")->required();
    dict->add_option("PATH", options.dict.path, "Path into the description")->required();
    dict->add_option("--name", options.dict.names, "Only this name; may be repeated")
        ->allow_extra_args(false)
        ->type_name("NAME");
    dict->add_flag("--json", options.dict.json, "Print JSON");
    dict->footer(PATH_NOTES);
    CLI::App* transform = app.add_subcommand("transform", "Make another document from a platform");
    transform->add_option("FILE", options.transform.file, "Platform file")->required();
    transform->add_option("SPEC", options.transform.spec, "Specification, or a file with it")
        ->required();
    transform->footer(TRANSFORM_NOTES);
    CLI::App* doc = app.add_subcommand("doc", "Explain the keys of the description");
    doc->add_option("KEY", options.doc.key,
                    "Class, CLASS.MEMBER or path; without it every key is listed");
    doc->add_flag("--json", options.doc.json, "Print JSON");
}

void describeViews(CLI::App& app, Options& options) {
    CLI::App* show = app.add_subcommand("show", "Show a platform on one screen");
    show->add_option("FILE", options.show.file, "Platform file")->required();
    show->add_option("--section", options.show.sections, "Only this section; may be repeated")
        ->allow_extra_args(false)
        ->type_name("SECTION");
    show->add_option("--color", options.show.color,
                     "auto (on a terminal, without NO_COLOR), always or never")
        ->type_name("auto|always|never");
    show->footer(SHOW_NOTES);
    CLI::App* validate = app.add_subcommand("validate", "Find all that is wrong with platforms");
    validate->add_option("FILE", options.validate.files, "Platform files");
    validate->add_flag("--json", options.validate.json, "Print JSON");
    validate->add_flag("--sarif", options.validate.sarif, "Print SARIF 2.1.0");
    validate->add_option("--explain", options.validate.rule, "Print the page about a rule")
        ->type_name("RULE");
    validate->add_option("--color", options.validate.color, "When to colour")
        ->type_name("auto|always|never");
    validate->footer(VALIDATE_NOTES);
    CLI::App* diff = app.add_subcommand("diff", "Tell what differs between two platforms");
    diff->add_option("A", options.diff.first, "Platform file")->required();
    diff->add_option("B", options.diff.second, "Platform file")->required();
    diff->add_flag("--json", options.diff.json, "Print JSON");
    diff->add_option("--color", options.diff.color, "When to colour")
        ->type_name("auto|always|never");
    diff->footer(DIFF_NOTES);
}

void describeSearch(CLI::App& app, Options& options) {
    CLI::App* list = app.add_subcommand("list", "List the platforms of search directories");
    list->add_option("DIR", options.list.dirs, "Directories to search");
    list->add_option("--part", options.list.part, "Only platforms of this part")->type_name("PART");
    list->add_option("--board", options.list.board, "Only platforms of this board")
        ->type_name("BOARD");
    list->add_option("--vendor", options.list.vendor, "Only platforms of this vendor")
        ->type_name("VENDOR");
    list->add_option("--type", options.list.type, "Only platforms of this type")
        ->type_name("pellux|quorin|acceleration|undefined");
    list->add_flag("--latest", options.list.latest, "Only the latest versions");
    list->add_flag("--all", options.list.all, "Also what was left out, and why");
    list->add_flag("--json", options.list.json, "Print JSON");
    list->footer(LIST_NOTES);
    CLI::App* dirs = app.add_subcommand("dirs", "Show where platforms are looked for");
    dirs->add_flag("--json", options.dirs.json, "Print JSON");
}

void describePolicy(CLI::App& app, Options& options) {
    CLI::App* info = app.add_subcommand("info", "Sum a platform up");
    info->add_option("FILE", options.info.file, "Platform file")->required();
    info->add_flag("--json", options.info.json, "Print JSON");
    info->add_flag("--partitions", options.info.partitions, "With reconfigurable partitions");
    CLI::App* check = app.add_subcommand("check", "Tell whether platforms are supported");
    check->add_option("FILE", options.check.files, "Platform files")->required();
    check->add_flag("--presynth", options.check.preSynth, "As pre-synthesis platforms");
    check->add_flag("--archive", options.check.archive, "As device support archives");
    check
        ->add_option("--tool-release", options.check.toolRelease,
                     "Judge for this release, such as 2026.1, in place of the present one")
        ->type_name("RELEASE");
    check->add_option("--product", options.check.product, "Product that the support list is for")
        ->type_name("PRODUCT");
    check->add_flag("--json", options.check.json, "Print JSON");
    check->footer(CHECK_NOTES);
    CLI::App* protect = app.add_subcommand("protect", "Encipher a support list");
    protect->add_option("IN", options.protect.source, "File in the clear")->required();
    protect->add_option("OUT", options.protect.target, "Protected file to write")->required();
    protect->footer(PROTECT_NOTES);
    CLI::App* unprotect = app.add_subcommand("unprotect", "Decipher a support list");
    unprotect->add_option("IN", options.unprotect.source, "Protected file")->required();
    unprotect->add_option("OUT", options.unprotect.target,
                          "File to write; without it standard output");
    unprotect->footer(PROTECT_NOTES);
}

void describeHelp(CLI::App& app, Options& options) {
    CLI::App* completion = app.add_subcommand("completion", "Print the completion of a shell");
    completion->add_option("SHELL", options.completion.shell, "bash, zsh or fish")->required();
    completion->footer(COMPLETION_NOTES);
    CLI::App* manual = app.add_subcommand("manual", "Write the manual pages into a folder");
    manual->add_option("DIR", options.manual.directory, "Folder to write into")->required();
}

void describe(CLI::App& app, Options& options) {
    app.set_version_flag("--version", "mav " MAV_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.footer(EXIT_CODES);
    describeSearch(app, options);
    describeViews(app, options);
    describePacking(app, options.json, options.pack);
    describeArchives(app, options);
    describeQueries(app, options);
    describePolicy(app, options);
    describeHelp(app, options);
}

/// Runs the chosen command; false when it answers the question with no.
bool answer(const CLI::App& app, const Options& options) {
    const std::string command = app.get_subcommands().front()->get_name();
    if (command == "verify") return cli::runVerify(options.verify);
    if (command == "diff") return cli::runDiff(options.diff);
    if (command == "dict") return cli::runDict(options.dict);
    if (command == "doc") return cli::runDoc(options.doc);
    if (command == "validate") return cli::runValidate(options.validate);
    if (command == "get") return cli::runGet(options.get);
    if (command == "check") return cli::runCheck(options.check);
    if (command == "completion") cli::runCompletion(options.completion, app);
    if (command == "manual") cli::runManual(options.manual, app);
    if (command == "json") cli::runJson(options.json);
    if (command == "pack") cli::runPack(options.pack);
    if (command == "files") cli::runFiles(options.files);
    if (command == "extract") cli::runExtract(options.extract);
    if (command == "add") cli::runAdd(options.add);
    if (command == "show") cli::runShow(options.show);
    if (command == "keys") cli::runKeys(options.keys);
    if (command == "transform") cli::runTransform(options.transform);
    if (command == "info") cli::runInfo(options.info);
    if (command == "list") cli::runList(options.list);
    if (command == "dirs") cli::runDirs(options.dirs);
    if (command == "protect") cli::runProtect(options.protect);
    if (command == "unprotect") cli::runUnprotect(options.unprotect);
    return true;
}

int run(int argc, char** argv) {
    CLI::App app("Reads and makes platforms of the accelerated-application toolchain.", "mav");
    Options options;
    describe(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        cli::writeAnswer(app.help());
        return cli::DONE;
    } catch (const CLI::CallForVersion& version) {
        cli::writeAnswer(std::string(version.what()) + "\n");
        return cli::DONE;
    } catch (const CLI::ParseError& error) {
        throw explain(app, error);
    }
    return answer(app, options) ? cli::DONE : cli::NEGATIVE;
}

}  // namespace

int main(int argc, char** argv) {
    cli::holdStandardStreams();
    HUTEnv::pinTimeZone();
    mav_host::setConsole(&std::cerr);
    try {
        return run(argc, argv);
    } catch (const cli::NoReader&) {
        return cli::NO_READER;
    } catch (const cli::Interrupted& interrupted) {
        return cli::KILLED_BY + interrupted.signal;
    } catch (const UsageError& error) {
        cli::complain(error.what() + pointer(error.command()));
        return cli::WRONG_USE;
    } catch (const cli::Failure& error) {
        cli::complain(error.what());
    } catch (const std::bad_alloc&) {
        cli::complain("out of memory. Free some memory or raise its limit, then try again.");
    } catch (const std::exception& error) {
        cli::complain(cli::clause(error.what()) + ". Correct the cause and try again.");
    }
    return cli::FAILED;
}
