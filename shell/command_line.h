#pragma once

// Reading a command's options: each command declares its options once, and
// the parser fills them or says in one line what was wrong.

#include "core/foundation/date.h"
#include "core/foundation/raw_value.h"

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace loadwarden {

constexpr int exitSuccess = 0;
constexpr int exitFailure = 1;
constexpr int exitUsage = 2;
constexpr int exitRefused = 3; // the policy does not allow the action

class OptionParser {
public:
    // "--help" and "-h".
    OptionParser& help(bool& target);
    OptionParser& flag(std::string name, bool& target);
    // Seconds above 0 and up to `longest`, such as "2" or "0.5".
    template <typename Target> // Seconds, or an optional of them
    OptionParser& seconds(std::string name, Target& target, Seconds longest) {
        return secondsInto(
            std::move(name), [&target](Seconds seconds) { target = seconds; }, longest);
    }
    // A span such as "90", "90s", "5m" or "1.5h", above 0.
    OptionParser& duration(std::string name, std::optional<Seconds>& target);
    // A whole number of at least 1.
    OptionParser& count(std::string name, int& target);
    // Free text; `what` completes "--name needs …".
    OptionParser& text(std::string name, std::string& target, std::string what);
    // The next argument that is not an option, required; `what` completes
    // "needs …". Positionals are filled in the order they are declared.
    OptionParser& positional(std::string& target, std::string what);

    // One of an enumeration's raw values; `what` completes "--name needs …: a, b or c".
    template <HasRawValues Enum>
    OptionParser& choice(std::string name, Enum& target, std::string what) {
        std::string names;
        std::vector<std::string> values;
        const auto cases = allCases<Enum>();
        for (std::size_t i = 0; i < cases.size(); ++i) {
            names += (i == 0 ? "" : i + 1 == cases.size() ? " or " : ", ");
            names += rawValue(cases[i]);
            values.emplace_back(rawValue(cases[i]));
        }
        valued(std::move(name), what + ": " + names,
               [&target, names](const std::string& value) -> std::optional<std::string> {
                   const auto parsed = fromRawValue<Enum>(value);
                   if (!parsed) {
                       return "takes " + names;
                   }
                   target = *parsed;
                   return std::nullopt;
               });
        options_.back().choices = std::move(values);
        return *this;
    }

    // Options as "--name value" or "--name=value". The message for the first
    // bad argument, or nothing when every argument was good.
    std::optional<std::string> parse(const std::vector<std::string>& arguments) const;

    // The same for a command's options struct, whose fields are the targets.
    template <typename Options>
    std::variant<Options, std::string> parse(const std::vector<std::string>& arguments,
                                             const Options& filled) const {
        if (auto message = parse(arguments)) {
            return *message;
        }
        return filled;
    }

private:
    // Stores a value, or says what the option takes ("takes …").
    using Apply = std::function<std::optional<std::string>(const std::string& value)>;

    struct Option {
        std::string name;
        std::optional<std::string> missingValue; // "needs …"; absent for a flag
        Apply apply;
        std::vector<std::string> choices; // a choice's values
    };

    OptionParser& valued(std::string name, std::string missingValue, Apply apply);
    OptionParser& secondsInto(std::string name, std::function<void(Seconds)> store,
                              Seconds longest);

    struct Positional {
        std::string* target;
        std::string what;
    };

    std::vector<Option> options_;
    std::vector<Positional> positionals_;
};

// An option as a command declares it.
struct DeclaredOption {
    std::string name; // "--sort", "-h"
    bool takesValue = false;
    std::vector<std::string> choices; // the values of a choice, in order

    bool operator==(const DeclaredOption&) const = default;
};

// While one is alive, every parser that reads a command line on its thread
// adds the options it declares: how the manual and the completions are held
// to what each command of the table really accepts.
class DeclaredOptions {
public:
    DeclaredOptions();
    ~DeclaredOptions();
    DeclaredOptions(const DeclaredOptions&) = delete;
    DeclaredOptions& operator=(const DeclaredOptions&) = delete;

    const std::vector<DeclaredOption>& options() const { return options_; }

private:
    friend class OptionParser;
    static DeclaredOptions*& listening();

    std::vector<DeclaredOption> options_;
    DeclaredOptions* outer_;
};

// Runs one command on its parsed options: reports a bad command line on
// `err` with the usage, answers --help, and otherwise calls run(options),
// whose exit status it returns where run gives one.
template <typename Options, typename Run>
int runCommand(std::string_view command, std::string_view usage,
               const std::variant<Options, std::string>& parsed, std::ostream& out,
               std::ostream& err, Run&& run) {
    if (const auto* message = std::get_if<std::string>(&parsed)) {
        err << "loadwarden " << command << ": " << *message << '\n' << usage;
        return exitUsage;
    }
    const auto& options = std::get<Options>(parsed);
    if (options.help) {
        out << usage;
        return exitSuccess;
    }
    if constexpr (std::is_same_v<decltype(run(options)), int>) {
        return run(options);
    } else {
        run(options);
        return out ? exitSuccess : exitFailure;
    }
}

} // namespace loadwarden
