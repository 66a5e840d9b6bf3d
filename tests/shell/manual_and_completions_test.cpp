// The manual and the completions for bash, zsh and fish name exactly the
// commands and options that the program accepts: each command's options as
// its parser declares them, against the manual's roff and against what each
// shell offers when asked as a user's Tab asks it.
#include "app/runner/spawn.h"
#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/control_options.h"
#include "tests/support/program_runs.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace loadwarden {
namespace {

using Words = std::set<std::string>;

const Words helpOptions{"-h", "--help"};
const Words programOptions{"-h", "--help", "--version"};
const std::string resources = LOADWARDEN_SOURCE_DIR "/shell/resources";

struct CommandOptions {
    std::string name;
    std::vector<DeclaredOption> options;
};

// Every command of the table with the options its parser declares, as
// `loadwarden <command> --help` reads them.
std::vector<CommandOptions> programCommands() {
    std::vector<CommandOptions> found;
    for (const Command& command : commands()) {
        DeclaredOptions declared;
        std::ostringstream out;
        std::ostringstream err;
        command.run({"--help"}, out, err);
        found.push_back({std::string(command.name), declared.options()});
    }
    return found;
}

Words commandNames() {
    Words names;
    for (const Command& command : commands()) {
        names.emplace(command.name);
    }
    return names;
}

Words namesOf(const std::vector<DeclaredOption>& options) {
    Words names;
    for (const DeclaredOption& option : options) {
        names.insert(option.name);
    }
    return names;
}

Words without(Words words, const Words& left_out) {
    for (const auto& word : left_out) {
        words.erase(word);
    }
    return words;
}

std::string fileText(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

// The manual as its roff source lays it out: the options in the .TP tags of
// OPTIONS, and those of each command's .SS in COMMANDS with the paragraph
// that follows each tag.
struct Manual {
    Words options;
    std::map<std::string, std::map<std::string, std::string>> commands;
};

Manual readManual(const std::string& path) {
    static const std::regex option(R"((^|[\s"])(--?[a-z][a-z-]*))");
    Manual manual;
    std::string section;
    std::string command;
    bool tag = false;
    std::string* paragraph = nullptr;
    for (std::string line : linesOf(fileText(path))) {
        for (std::size_t at; (at = line.find("\\-")) != std::string::npos;) {
            line.replace(at, 2, "-");
        }
        if (line.starts_with(".SH ") || line.starts_with(".SS ") || line.starts_with(".PP")) {
            paragraph = nullptr;
            if (line.starts_with(".SH ")) {
                section = line.substr(4);
            } else if (line.starts_with(".SS ") && section == "COMMANDS") {
                command = line.substr(4);
                manual.commands[command];
            }
        } else if (line == ".TP") {
            tag = true;
            paragraph = nullptr;
        } else if (tag) {
            tag = false;
            for (std::sregex_iterator match(line.begin(), line.end(), option), end; match != end;
                 ++match) {
                const std::string name = (*match)[2];
                if (section == "OPTIONS") {
                    manual.options.insert(name);
                } else if (section == "COMMANDS") {
                    paragraph = paragraph ? paragraph : &manual.commands[command][name];
                }
            }
        } else if (paragraph) {
            *paragraph += line + '\n';
        }
    }
    return manual;
}

TEST(Manual, NamesEveryCommandWithExactlyTheOptionsItTakes) {
    const Manual manual = readManual(resources + "/loadwarden.1.in");
    EXPECT_EQ(manual.options, programOptions);
    Words documented;
    for (const auto& [name, options] : manual.commands) {
        documented.insert(name);
    }
    EXPECT_EQ(documented, commandNames());

    for (const auto& [command, options] : programCommands()) {
        SCOPED_TRACE(command);
        const auto& section = manual.commands.find(command);
        if (section == manual.commands.end()) {
            continue;
        }
        Words described;
        for (const auto& [name, paragraph] : section->second) {
            described.insert(name);
        }
        // That every command takes -h and --help is said once, for the program.
        const Words taken = namesOf(options);
        EXPECT_TRUE(
            std::includes(taken.begin(), taken.end(), helpOptions.begin(), helpOptions.end()));
        EXPECT_EQ(described, without(taken, helpOptions));
        for (const DeclaredOption& option : options) {
            const auto paragraph = section->second.find(option.name);
            for (const std::string& value : option.choices) {
                EXPECT_TRUE(paragraph != section->second.end() &&
                            paragraph->second.find("\\fB" + value + "\\fR") != std::string::npos)
                    << option.name << " does not name its value " << value;
            }
        }
    }
}

// What a shell's completion offers after the command, and after the program
// alone.
struct Offered {
    Words options;
    std::map<std::string, Words> values; // after each option that takes one
    Words next;                          // for the next word that is not an option
};

struct ProgramOffered {
    Words commands;
    Words options;
};

// A shell with the program's completion loaded, and `loadwarden` answering
// `apps --json` as the real program did a moment ago, with a process of the
// test's own among the apps.
class CompletionTest : public testing::Test {
protected:
    static constexpr const char* probeName = "tab-probe";

    void SetUp() override {
        scratch_ = std::filesystem::temp_directory_path() /
                   ("loadwarden-completion-" + std::to_string(getpid()));
        std::filesystem::remove_all(scratch_); // what a killed run left
        std::filesystem::create_directories(scratch_ / "bin");
        std::filesystem::create_symlink("/bin/sleep", scratch_ / probeName);
        probe_ = support::spawn({(scratch_ / probeName).string(), "60"});
        // Until the probe has started under its name, however busy the machine.
        std::optional<Spawn::Result> apps;
        for (int tries = 0; tries < 50; ++tries) {
            apps = Spawn::run(LOADWARDEN_PROGRAM, {"apps", "--json", "--interval", "0.1"},
                              Spawn::shortToolTimeout, std::nullopt);
            if (!apps || apps->output.find(probeName) != std::string::npos) {
                break;
            }
        }
        ASSERT_TRUE(apps && apps->exitCode == 0);
        ASSERT_NE(apps->output.find(probeName), std::string::npos);
        std::ofstream(scratch_ / "apps.json") << apps->output;
        const auto program = scratch_ / "bin/loadwarden";
        std::ofstream(program) << "#!/bin/sh\n[ \"$1 $2\" = 'apps --json' ] && exec cat '"
                               << (scratch_ / "apps.json").string() << "'\n";
        std::filesystem::permissions(program, std::filesystem::perms::owner_exec,
                                     std::filesystem::perm_options::add);
    }

    void TearDown() override {
        if (probe_ > 0) {
            kill(probe_, SIGKILL);
            support::exitStatusOf(probe_);
        }
        std::filesystem::remove_all(scratch_);
    }

    // The lines a shell script prints, with the stand-in program first on
    // PATH; the shell reads no start-up file of the user's.
    std::vector<std::string> shellLines(const std::string& shell, const std::string& noStartupFiles,
                                        const std::string& script) {
        const char* path = std::getenv("PATH");
        const auto result =
            Spawn::run("/usr/bin/env",
                       {"PATH=" + (scratch_ / "bin").string() + ":" + (path ? path : ""), shell,
                        noStartupFiles, "-c", script},
                       Spawn::shortToolTimeout, std::nullopt);
        EXPECT_TRUE(result && result->exitCode == 0) << shell << " failed on:\n" << script;
        return result ? linesOf(result->output) : std::vector<std::string>{};
    }

    static std::optional<std::string> shellPath(const std::string& name) {
        return Spawn::firstExecutableFile({"/bin/" + name, "/usr/bin/" + name});
    }

    // Each command offers its options, the values of a choice and nothing
    // for any other value, and the control commands offer the running apps.
    template <typename OfferedFor, typename ProgramOfferedFn>
    void expectTrueToTheProgram(OfferedFor offeredFor, ProgramOfferedFn programOffered) {
        const ProgramOffered program = programOffered();
        EXPECT_EQ(program.commands, commandNames());
        EXPECT_EQ(program.options, programOptions);
        for (const auto& [command, options] : programCommands()) {
            SCOPED_TRACE(command);
            const Offered offered = offeredFor(command, options);
            EXPECT_EQ(offered.options, namesOf(options));
            for (const DeclaredOption& option : options) {
                const auto values = offered.values.find(option.name);
                EXPECT_EQ(values != offered.values.end(), option.takesValue) << option.name;
                if (values != offered.values.end()) {
                    EXPECT_EQ(values->second, Words(option.choices.begin(), option.choices.end()))
                        << option.name;
                }
            }
        }
        for (const ControlVerb verb :
             {ControlVerb::quit, ControlVerb::end, ControlVerb::forceQuit, ControlVerb::pause,
              ControlVerb::resume, ControlVerb::limit}) {
            const std::string command(controlCommandName(verb));
            EXPECT_TRUE(offeredFor(command, {}).next.contains(probeName)) << command;
        }
    }

    std::filesystem::path scratch_;
    pid_t probe_ = -1;
};

// bash and fish are asked word by word, as Tab asks them.
template <typename Ask>
Offered offeredWordByWord(Ask ask, const std::string& command,
                          const std::vector<DeclaredOption>& options) {
    Offered offered;
    offered.options = ask({command, "-"});
    for (const DeclaredOption& option : options) {
        if (option.takesValue) {
            offered.values[option.name] = ask({command, option.name, ""});
        }
    }
    offered.next = ask({command, ""});
    return offered;
}

template <typename Ask>
ProgramOffered programOfferedWordByWord(Ask ask) {
    ProgramOffered offered;
    for (const std::string& word : ask({""})) {
        if (!word.starts_with('-')) {
            offered.commands.insert(word);
        }
    }
    offered.options = ask({"-"});
    return offered;
}

std::string quoted(const std::vector<std::string>& words) {
    std::string line;
    for (const auto& word : words) {
        line += " '" + word + "'";
    }
    return line;
}

TEST_F(CompletionTest, BashOffersWhatTheProgramTakes) {
    const auto bash = shellPath("bash");
    ASSERT_TRUE(bash);
    const auto ask = [&](const std::vector<std::string>& words) {
        const auto lines = shellLines(*bash, "--norc",
                                      "source '" + resources + "/completions/loadwarden.bash'\n" +
                                          "COMP_WORDS=(loadwarden" + quoted(words) + ")\n" +
                                          "COMP_CWORD=" + std::to_string(words.size()) + "\n" +
                                          "_loadwarden\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n");
        Words offered(lines.begin(), lines.end());
        offered.erase("");
        return offered;
    };
    expectTrueToTheProgram(
        [&](const std::string& command, const std::vector<DeclaredOption>& options) {
            return offeredWordByWord(ask, command, options);
        },
        [&] { return programOfferedWordByWord(ask); });
}

TEST_F(CompletionTest, FishOffersWhatTheProgramTakes) {
    const auto fish = shellPath("fish");
    if (!fish) {
        GTEST_SKIP() << "fish is not installed";
    }
    const auto ask = [&](const std::vector<std::string>& words) {
        std::string line = "loadwarden";
        for (const auto& word : words) {
            line += ' ' + word;
        }
        Words offered;
        for (const std::string& found :
             shellLines(*fish, "--no-config",
                        "source '" + resources + "/completions/loadwarden.fish'\n" +
                            "complete -C'" + line + "'\n")) {
            offered.insert(found.substr(0, found.find('\t')));
        }
        return offered;
    };
    expectTrueToTheProgram(
        [&](const std::string& command, const std::vector<DeclaredOption>& options) {
            return offeredWordByWord(ask, command, options);
        },
        [&] { return programOfferedWordByWord(ask); });
}

// zsh's completion system needs a terminal, so its functions are stood in
// for: _arguments prints its option declarations and runs the actions of
// its positional ones, whose words _describe and compadd print.
TEST_F(CompletionTest, ZshOffersWhatTheProgramTakes) {
    const auto zsh = shellPath("zsh");
    if (!zsh) {
        GTEST_SKIP() << "zsh is not installed";
    }
    const std::string standIns = R"(
_describe() { print -rl -- "word "${^${(P)2}%%:*} }
compadd() { print -rl -- "word "${^${(P)2}} }
_pids() {}
_arguments() {
    local declared
    for declared in "$@"; do
        if [[ $declared == :* ]]; then
            if [[ ${declared#:*:} == _* ]]; then eval ${declared#:*:}; fi
        else
            print -r -- "option $declared"
        fi
    done
}
)";
    static const std::regex optionDeclared(R"(option (-[-a-z]*)\[[^\]]*\](:[^:]*(:\((.*)\))?)?)");
    const auto ask = [&](const std::vector<std::string>& words) {
        Offered offered;
        for (const std::string& line :
             shellLines(*zsh, "--no-rcs",
                        standIns + "words=(loadwarden" + quoted(words) +
                            ")\nCURRENT=" + std::to_string(words.size() + 1) + "\nsource '" +
                            resources + "/completions/_loadwarden'\n")) {
            std::smatch option;
            if (line.starts_with("word ")) {
                offered.next.insert(line.substr(5));
            } else if (std::regex_match(line, option, optionDeclared)) {
                offered.options.insert(option[1]);
                if (option[2].matched) {
                    std::istringstream values(option[4]);
                    offered.values[option[1]] = {std::istream_iterator<std::string>(values), {}};
                }
            } else {
                ADD_FAILURE() << "not a declaration of _arguments: " << line;
            }
        }
        return offered;
    };
    expectTrueToTheProgram(
        [&](const std::string& command, const std::vector<DeclaredOption>&) {
            return ask({command, ""});
        },
        [&] {
            const Offered offered = ask({""});
            return ProgramOffered{offered.next, offered.options};
        });
}

} // namespace
} // namespace loadwarden
