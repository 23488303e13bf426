// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace cli {

/// What the process answers with.
enum ExitCode {
    DONE = 0,
    NEGATIVE = 1,    ///< the question was answered with no
    WRONG_USE = 2,   ///< the command line is wrong
    FAILED = 3,      ///< the platform cannot be loaded, or the result cannot be written
    NO_READER = 141  ///< nobody reads standard output any more; the shells' code for that
};

/// A mistake in the command line: `what()` is the sentence for the user, `command` the one whose
/// help is worth a look (empty: that of the program).
class UsageError : public std::runtime_error {
  public:
    UsageError(const std::string& text, std::string command)
        : std::runtime_error(text), command_(std::move(command)) {}
    const std::string& command() const { return command_; }

  private:
    std::string command_;
};

/// Work that could not be done: `what()` is the sentence with what to try next.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct JsonOptions {
    std::string file;
    std::string metadata = "auto";  ///< auto, json or xml
    bool shortForm = false;
};
/// Writes the platform's description to standard output. Throws UsageError, Failure.
void runJson(const JsonOptions& options);

struct PackOptions {
    std::string directory;
    std::string archive;
    bool force = false;  ///< pack also without a metadata member
};
/// Packs the directory's files into a new archive. Throws UsageError, Failure.
void runPack(const PackOptions& options);

struct FilesOptions {
    std::string archive;
    bool json = false;
    bool names = false;
};
/// Lists the archive's members with type and size, and the state of its digest, or their names
/// alone. Throws Failure.
void runFiles(const FilesOptions& options);

struct VerifyOptions {
    std::string archive;
};
/// Reads every member and compares the digest; false when something is not as it should be.
/// Throws Failure.
bool runVerify(const VerifyOptions& options);

struct ExtractOptions {
    std::string archive;
    std::string what;  ///< type, member or folder
    std::string directory;
};
/// Extracts below the directory and prints the path. Throws UsageError, Failure.
void runExtract(const ExtractOptions& options);

struct AddOptions {
    std::string archive;
    std::string type;
    std::string file;
    std::string member;  ///< empty: chosen by type and file
};
/// Adds the file to the archive and lists it. Throws UsageError, Failure.
void runAdd(const AddOptions& options);

struct GetOptions {
    std::string file;
    std::string path;
    bool json = false;
};
/// Prints what is at the path; false when nothing is. Throws UsageError, Failure.
bool runGet(const GetOptions& options);

struct ShowOptions {
    std::string file;
    std::vector<std::string> sections;  ///< empty: the whole platform, long lists cut
    std::string color = "auto";         ///< auto, always or never
};
/// Prints the platform for people. Throws UsageError, Failure.
void runShow(const ShowOptions& options);
/// What `--section` takes, in the order of the screen.
std::vector<std::string> sectionNames();

struct CompletionOptions {
    std::string shell;  ///< bash, zsh or fish
};
/// Prints the completion script, made from the options of `app`. Throws UsageError, Failure.
void runCompletion(const CompletionOptions& options, const CLI::App& app);

struct ManualOptions {
    std::string directory;
};
/// Writes mav.1 and a page for each command into the folder, which is made when it is missing.
/// Throws Failure.
void runManual(const ManualOptions& options, const CLI::App& app);

struct ValidateOptions {
    std::vector<std::string> files;
    bool json = false;
    bool sarif = false;
    std::string rule;  ///< to explain; nothing is validated then
    std::string color = "auto";
};
/// Prints every finding; false when one is an error. Throws UsageError.
bool runValidate(const ValidateOptions& options);

struct DiffOptions {
    std::string first;
    std::string second;
    bool json = false;
    std::string color = "auto";
};
/// Prints what differs between two platforms; true when nothing does. Throws UsageError, Failure.
bool runDiff(const DiffOptions& options);

struct InfoOptions {
    std::string file;
    bool json = false;
    bool partitions = false;
};
/// Prints the platform's summary. Throws UsageError, Failure.
void runInfo(const InfoOptions& options);

struct CheckOptions {
    std::vector<std::string> files;
    bool preSynth = false;
    bool archive = false;
    bool json = false;
    std::string toolRelease;  ///< empty: that of the host
    std::string product;      ///< empty: that of the host
};
/// Tells of each platform whether it is supported, and why; false when one is not. Throws
/// UsageError, and Failure behind the last platform when one does not load.
bool runCheck(const CheckOptions& options);

struct ListOptions {
    std::vector<std::string> dirs;  ///< empty: the default search directories
    std::string part, board, vendor, type;
    bool latest = false;
    bool all = false;  ///< also those that were left out, and why
    bool json = false;
};
/// Lists the platforms of the directories. Throws Failure.
void runList(const ListOptions& options);

struct DirsOptions {
    bool json = false;
};
/// Lists the default search directories and tells which exist. Throws Failure.
void runDirs(const DirsOptions& options);

struct ProtectOptions {
    std::string source;
    std::string target;  ///< of unprotecting: empty for standard output
};
/// Puts a file into a protected container, and takes it out. Throw UsageError, Failure.
void runProtect(const ProtectOptions& options);
void runUnprotect(const ProtectOptions& options);

struct KeysOptions {
    std::string file;
    bool json = false;
};
/// Lists the paths of the platform's description and how often each occurs. Throws UsageError,
/// Failure.
void runKeys(const KeysOptions& options);

struct DictOptions {
    std::string file;
    std::string path;
    std::vector<std::string> names;  ///< empty: all
    bool json = false;
};
/// Prints what is below the path as names and values; false when nothing is. Throws UsageError,
/// Failure.
bool runDict(const DictOptions& options);

struct TransformOptions {
    std::string file;
    std::string spec;  ///< JSON text, else the name of a file with it
};
/// Prints what SPEC makes of the platform's description. Throws UsageError, Failure.
void runTransform(const TransformOptions& options);

struct DocOptions {
    std::string key = "list_keys";
    bool json = false;
};
/// Explains keys of the description; false for one that does not exist. Throws Failure.
bool runDoc(const DocOptions& options);

}  // namespace cli
