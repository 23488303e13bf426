// SPDX-License-Identifier: Apache-2.0
#include "Completion.h"

#include "Output.h"
#include "mav_platform/HMAVPfmFileTypes.h"

namespace {

using cli::Argument;
using cli::Command;
using cli::text;
using cli::ValueKind;
using Tables = std::vector<Command>;

constexpr const char* LICENCE = "# SPDX-License-Identifier: Apache-2.0\n";

std::string joined(const std::vector<std::string>& words, const char* separator = " ") {
    std::string made;
    for (const std::string& word : words) made += text(made.empty() ? "" : separator, word);
    return made;
}

/// The names of the platform file types, in their order.
std::vector<std::string> fileTypeNames() {
    std::vector<std::string> names;
    names.reserve(HMAVPfmFileTypes::FILE_TYPE_COUNT);
    for (int type = 0; type < HMAVPfmFileTypes::FILE_TYPE_COUNT; ++type)
        names.push_back(HMAVPfmFileTypes::toString(static_cast<HMAVPfmFileTypes::FileType>(type)));
    return names;
}

std::string commandNames(const Tables& tables) {
    std::string names;
    for (auto table = tables.begin() + 1; table != tables.end(); ++table)
        names += text(names.empty() ? "" : " ", table->name);
    return names;
}

/// The text between single quotes, as bash, zsh and fish read it; fish alone reads \' there.
std::string quoted(const std::string& plain, const char* quote = "'\\''") {
    std::string made = "'";
    for (const char c : plain) made += c == '\'' ? std::string(quote) : std::string(1, c);
    return made + "'";
}

/// The words of bash's and fish's tables for a value.
std::string kindWord(const Argument& argument) {
    switch (argument.kind) {
        case ValueKind::FILES:
            return "files";
        case ValueKind::FOLDERS:
            return "folders";
        case ValueKind::TYPES:
            return "types";
        case ValueKind::MEMBERS:
            return "members";
        case ValueKind::KEYS:
            return "keys";
        case ValueKind::DOCS:
            return "docs";
        case ValueKind::CHOICES:
            return joined(argument.choices);
        case ValueKind::NONE:
            break;
    }
    return "none";
}

// --- bash
// ------------------------------------------------------------------------------------------

std::string bashOptions(const Tables& tables) {
    std::string made = "_mav_options() {\n    case \"$1\" in\n";
    for (const Command& table : tables) {
        std::vector<std::string> names;
        for (const Argument& option : table.options)
            names.insert(names.end(), option.names.begin(), option.names.end());
        made += text("        '", table.name, "') echo ", quoted(joined(names)), " ;;\n");
    }
    return made + "    esac\n}\n\n";
}

/// A branch for what follows the word, or stands in the place of that number.
std::string bashValue(const Command& table, const std::string& word, const Argument& value) {
    std::string pattern = quoted(text(table.name, " ", word));
    if (value.names.empty() && value.many) pattern = text(quoted(table.name + " "), "[1-9]*");
    return text("        ", pattern, ") echo ", quoted(kindWord(value)), " ;;\n");
}

std::string bashValues(const Tables& tables) {
    std::string made = "_mav_value() {\n    case \"$1 $2\" in\n";
    for (const Command& table : tables) {
        for (const Argument& option : table.options) {
            if (option.value.empty()) continue;
            for (const std::string& name : option.names) made += bashValue(table, name, option);
        }
        std::size_t place = 0;
        for (const Argument& argument : table.arguments)
            made += bashValue(table, std::to_string(++place), argument);
    }
    return made + "    esac\n}\n\n";
}

constexpr const char* BASH_WORK = R"BASH(_mav_offer() {
    local word
    while IFS= read -r word; do
        if [[ "$word" == "$cur"* ]]; then COMPREPLY+=("$word"); fi
    done
}

# The same for paths: an index stands for every element.
_mav_offer_keys() {
    local word every="$cur"
    while [[ "$every" =~ ^(.*)\[[0-9]+\](.*)$ ]]; do
        every="${BASH_REMATCH[1]}[*]${BASH_REMATCH[2]}"
    done
    while IFS= read -r word; do
        if [[ "$word" == "$every"* ]]; then COMPREPLY+=("$cur${word:${#every}}"); fi
    done
}

_mav_keys() {
    [[ -n "$1" ]] && mav keys "$1" 2>/dev/null |
        sed -n 's/^ *[0-9]*  *//; s/\[\]/[*]/g; p; s/^hardwarePlatforms\.\(hardwarePlatform\)/\1/p'
}

_mav_members() {
    [[ -n "$1" ]] && mav files --names "$1" 2>/dev/null
}

_mav_docs() {
    mav doc 2>/dev/null | sed 's/ .*//; h; s/\..*//p; g' | sort -u
}

# Sets command, option, file and place from the words before the cursor.
_mav_before() {
    local word i
    for ((i = 1; i < COMP_CWORD; ++i)); do
        word="${COMP_WORDS[i]}"
        if [[ "$word" == = ]]; then continue; fi
        if [[ -n "$option" ]]; then
            option=""
        elif [[ "$word" == -* ]]; then
            if [[ -n "$(_mav_value "$command" "$word")" ]]; then option="$word"; fi
        elif [[ -z "$command" ]]; then
            command="$word"
        else
            place=$((place + 1))
            if ((place == 1)); then file="$word"; fi
        fi
    done
}

_mav() {
    local cur="${COMP_WORDS[COMP_CWORD]}" command="" option="" file="" place=0 kind
    COMPREPLY=()
    _mav_before
    if [[ "$cur" == = ]]; then cur=""; fi
    if [[ -z "$option" && "$cur" == -* ]]; then
        _mav_offer < <(_mav_options "$command" | tr ' ' '\n')
        return
    fi
    if [[ -z "$command" ]]; then
        _mav_offer < <(tr ' ' '\n' <<<"$_mav_commands")
        return
    fi
    kind="$(_mav_value "$command" "${option:-$((place + 1))}")"
    case "$kind" in
        files) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -f -- "$cur") ;;
        folders) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -d -- "$cur") ;;
        types) _mav_offer < <(tr ' ' '\n' <<<"$_mav_types") ;;
        members) _mav_offer < <(tr ' ' '\n' <<<"$_mav_types"; _mav_members "${file/#\~/$HOME}") ;;
        keys) _mav_offer_keys < <(_mav_keys "${file/#\~/$HOME}") ;;
        docs) _mav_offer < <(_mav_docs) ;;
        none | '') ;;
        *) _mav_offer < <(tr ' ' '\n' <<<"$kind") ;;
    esac
}
complete -F _mav mav
)BASH";

// --- zsh
// -------------------------------------------------------------------------------------------

/// Text inside an option's brackets or before a colon.
std::string zshText(const std::string& plain) {
    std::string made;
    for (const char c : plain) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') made += '\\';
        made += c;
    }
    return made;
}

std::string zshAction(const Argument& argument) {
    switch (argument.kind) {
        case ValueKind::FILES:
            return "_files";
        case ValueKind::FOLDERS:
            return "_files -/";
        case ValueKind::TYPES:
            return "_mav_types";
        case ValueKind::MEMBERS:
            return "_mav_members";
        case ValueKind::KEYS:
            return "_mav_keys";
        case ValueKind::DOCS:
            return "_mav_docs";
        case ValueKind::CHOICES:
            return text("(", joined(argument.choices), ")");
        case ValueKind::NONE:
            break;
    }
    return " ";
}

std::string zshSpec(const Argument& option) {
    std::string spec = text("[", zshText(option.description), "]");
    if (!option.value.empty()) spec += text(":", zshText(option.value), ":", zshAction(option));
    std::vector<std::string> forms = option.names;
    for (std::string& form : forms)
        if (!option.value.empty() && form.starts_with("--")) form += '=';
    if (forms.size() == 1)
        return text(quoted(text(option.many ? "*" : "", forms.front())), quoted(spec));
    return text(quoted(text("(", joined(option.names), ")")), "{", joined(forms, ","), "}",
                quoted(spec));
}

std::string zshSpecs(const Command& table) {
    std::string made;
    for (const Argument& option : table.options)
        made += text(" \\\n                ", zshSpec(option));
    std::size_t place = 0;
    for (const Argument& argument : table.arguments) {
        const std::string at = argument.many ? "*" : std::to_string(++place);
        made += text(" \\\n                ",
                     quoted(text(at, ":", zshText(argument.value), ":", zshAction(argument))));
    }
    return made;
}

constexpr const char* ZSH_KEYS = R"ZSH(_mav_keys() {
    local file=${(Q)line[1]} typed=${(Q)PREFIX} any='[*]' every found
    found=("${(@f)$(mav keys ${~file} 2>/dev/null | sed -n \
        's/^ *[0-9]*  *//; s/\[\]/[*]/g; p; s/^hardwarePlatforms\.\(hardwarePlatform\)/\1/p')}")
    # An index stands for every element.
    every=${typed//\[<->\]/$any}
    [[ $typed == $every ]] || found=("${(@)found/#$every/$typed}")
    compadd -M 'r:|.=*' -- ${found:#}
}

_mav_members() {
    local file=${(Q)line[1]} found
    found=("${(@f)$(mav files --names ${~file} 2>/dev/null)}")
    _mav_types
    compadd -- ${found:#}
}

_mav_docs() {
    compadd -M 'r:|.=*' -- ${(f)"$(mav doc 2>/dev/null | sed 's/ .*//; h; s/\..*//p; g' | sort -u)"}
}

)ZSH";

// --- fish ---

std::string fishText(const std::string& plain) {
    std::string made;
    for (const char c : plain) made += c == '\\' ? "\\\\" : std::string(1, c);
    return quoted(made, "\\'");
}

std::string fishValues(const Argument& argument) {
    switch (argument.kind) {
        case ValueKind::FILES:
            return " -F";
        case ValueKind::FOLDERS:
            return " -f -a '(__fish_complete_directories)'";
        case ValueKind::TYPES:
            return " -f -a '(__mav_types)'";
        case ValueKind::MEMBERS:
            return " -f -a '(__mav_types; __mav_members)'";
        case ValueKind::KEYS:
            return " -f -a '(__mav_keys)'";
        case ValueKind::DOCS:
            return " -f -a '(__mav_docs)'";
        case ValueKind::CHOICES:
            return text(" -f -a ", fishText(joined(argument.choices)));
        case ValueKind::NONE:
            break;
    }
    return " -f";
}

std::string fishOption(const std::string& condition, const Argument& option) {
    std::string made = text("complete -c mav -n ", fishText(condition));
    for (const std::string& name : option.names)
        made +=
            name.starts_with("--") ? text(" -l ", name.substr(2)) : text(" -s ", name.substr(1));
    if (!option.value.empty()) made += text(" -r", fishValues(option));
    return text(made, " -d ", fishText(option.description), "\n");
}

std::string fishCommand(const Command& table) {
    const std::string inside = "__mav_at " + table.name;
    std::string made;
    for (const Argument& option : table.options) made += fishOption(inside, option);
    std::size_t place = 0;
    for (const Argument& argument : table.arguments) {
        const std::string at =
            text(inside, " ", std::to_string(++place), argument.many ? " more" : "");
        made += text("complete -c mav -n ", fishText(at), fishValues(argument), "\n");
    }
    return made;
}

std::string optionsWithValues(const Tables& tables) {
    std::string names;
    for (const Command& table : tables)
        for (const Argument& option : table.options)
            if (!option.value.empty()) names += text(" ", joined(option.names));
    return names;
}

constexpr const char* FISH_WORK =
    R"FISH(# The words that are no options and no values of options: the command and what stands in its places.
function __mav_words
    set -l value 0
    for word in (commandline -opc)[2..-1]
        if test $value = 1
            set value 0
        else if string match -q -- '-*' $word
            contains -- $word $__mav_valued; and set value 1
        else
            echo $word
        end
    end
end

# True inside the command; with a number, when that place is typed; with "more", also in later ones.
function __mav_at
    set -l words (__mav_words)
    test "$words[1]" = "$argv[1]"; or return 1
    test (count $argv) -lt 2; and return 0
    test (count $words) -eq $argv[2]; and return 0
    test (count $argv) -gt 2 -a (count $words) -gt $argv[2]
end

function __mav_keys
    set -l words (__mav_words)
    set -q words[2]; or return
    # An index stands for every element.
    set -l typed (commandline -ct)
    set -l every (string replace -ar '\[\d+\]' '[*]' -- $typed)
    set -l found (mav keys $words[2] 2>/dev/null | sed -n \
        's/^ *[0-9]*  *//; s/\[\]/[*]/g; p; s/^hardwarePlatforms\.\(hardwarePlatform\)/\1/p')
    if test "$typed" = "$every"
        printf '%s\n' $found
    else
        string replace -- $every $typed $found
    end
end

function __mav_members
    set -l words (__mav_words)
    set -q words[2]; or return
    mav files --names $words[2] 2>/dev/null
end

function __mav_docs
    mav doc 2>/dev/null | string replace -r ' .*' '' | string replace -r '^([^.]*)\..*' '$0\n$1' | sort -u
end

complete -c mav -f
)FISH";

}  // namespace

std::string cli::bashCompletion(const std::vector<Command>& tables) {
    return std::string("# shellcheck shell=bash\n") + LICENCE +
           "_mav_commands=" + quoted(commandNames(tables)) +
           "\n_mav_types=" + quoted(joined(fileTypeNames())) + "\n\n" + bashOptions(tables) +
           bashValues(tables) + BASH_WORK;
}

std::string cli::zshCompletion(const std::vector<Command>& tables) {
    std::string made = std::string("#compdef mav\n") + LICENCE + "_mav_types() {\n    compadd -- " +
                       joined(fileTypeNames()) + "\n}\n\n" + ZSH_KEYS;
    std::string names, cases;
    for (auto table = tables.begin() + 1; table != tables.end(); ++table) {
        names +=
            text("        ", quoted(text(zshText(table->name), ":", table->description)), "\n");
        cases += text("        ", table->name, ")\n            _arguments", zshSpecs(*table),
                      "\n            ;;\n");
    }
    std::string program;
    for (const Argument& option : tables.front().options) program += text(" ", zshSpec(option));
    return made + "_mav() {\n    local context state state_descr line command\n" +
           "    typeset -A opt_args\n    local -a commands=(\n" + names + "    )\n" +
           "    _arguments -C" + program + " '1: :->command' '*:: :->rest'\n" +
           "    case $state in\n    command) _describe command commands ;;\n    rest)\n" +
           "        command=$line[1]\n        case $command in\n" + cases +
           "        esac\n        ;;\n    esac\n}\n\n" +
           "if [[ ${funcstack[1]} == _mav ]]; then _mav \"$@\"; else compdef _mav mav; fi\n";
}

std::string cli::fishCompletion(const std::vector<Command>& tables) {
    std::string made = std::string(LICENCE) + "set -g __mav_valued" + optionsWithValues(tables) +
                       "\n\nfunction __mav_types\n    printf '%s\\n' " + joined(fileTypeNames()) +
                       "\nend\n\n" + FISH_WORK;
    const std::string start = "test -z \"$(__mav_words)\"";
    for (const Argument& option : tables.front().options) made += fishOption(start, option);
    for (auto table = tables.begin() + 1; table != tables.end(); ++table)
        made += text("complete -c mav -n ", fishText(start), " -a ", table->name, " -d ",
                     fishText(table->description), "\n");
    for (auto table = tables.begin() + 1; table != tables.end(); ++table)
        made += fishCommand(*table);
    return made;
}
