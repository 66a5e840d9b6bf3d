#include "shell/command_line.h"

#include "core/text/text_parsing.h"

#include <algorithm>
#include <cmath>

namespace loadwarden {

namespace {

std::string wholeNumber(double value) {
    return std::to_string(std::llround(value));
}

} // namespace

OptionParser& OptionParser::help(bool& target) {
    flag("--help", target);
    return flag("-h", target);
}

OptionParser& OptionParser::flag(std::string name, bool& target) {
    options_.push_back({std::move(name), std::nullopt, [&target](const std::string&) {
                            target = true;
                            return std::optional<std::string>();
                        }});
    return *this;
}

OptionParser& OptionParser::secondsInto(std::string name, std::function<void(Seconds)> store,
                                        Seconds longest) {
    return valued(std::move(name), "a number of seconds",
                  [store, longest](const std::string& value) -> std::optional<std::string> {
                      const auto seconds = parseDecimal(value);
                      if (!seconds || !(*seconds > 0.0) || *seconds > longest) {
                          return "takes seconds above 0 and up to " + wholeNumber(longest);
                      }
                      store(*seconds);
                      return std::nullopt;
                  });
}

OptionParser& OptionParser::duration(std::string name, std::optional<Seconds>& target) {
    return valued(
        std::move(name), "a duration",
        [&target](const std::string& value) -> std::optional<std::string> {
            constexpr std::pair<char, double> units[] = {{'s', 1.0}, {'m', 60.0}, {'h', 3600.0}};
            std::string_view number = value;
            double unit = 1.0;
            for (const auto& [suffix, seconds] : units) {
                if (!number.empty() && number.back() == suffix) {
                    number.remove_suffix(1);
                    unit = seconds;
                    break;
                }
            }
            const auto amount = parseDecimal(number);
            if (!amount || !(*amount > 0.0) || !std::isfinite(*amount * unit)) {
                return "takes a duration such as 90, 90s, 5m or 1.5h";
            }
            target = *amount * unit;
            return std::nullopt;
        });
}

OptionParser& OptionParser::count(std::string name, int& target) {
    return valued(std::move(name), "a number",
                  [&target](const std::string& value) -> std::optional<std::string> {
                      const auto count = parseInteger<int>(value);
                      if (!count || *count < 1) {
                          return "takes a whole number of at least 1";
                      }
                      target = *count;
                      return std::nullopt;
                  });
}

OptionParser& OptionParser::text(std::string name, std::string& target, std::string what) {
    return valued(std::move(name), std::move(what), [&target](const std::string& value) {
        target = value;
        return std::optional<std::string>();
    });
}

OptionParser& OptionParser::positional(std::string& target, std::string what) {
    positionals_.push_back({&target, std::move(what)});
    return *this;
}

OptionParser& OptionParser::valued(std::string name, std::string missingValue, Apply apply) {
    options_.push_back({std::move(name), "needs " + std::move(missingValue), std::move(apply)});
    return *this;
}

DeclaredOptions::DeclaredOptions() : outer_(listening()) {
    listening() = this;
}

DeclaredOptions::~DeclaredOptions() {
    listening() = outer_;
}

DeclaredOptions*& DeclaredOptions::listening() {
    thread_local DeclaredOptions* current = nullptr;
    return current;
}

std::optional<std::string> OptionParser::parse(const std::vector<std::string>& arguments) const {
    if (DeclaredOptions* declared = DeclaredOptions::listening()) {
        for (const Option& option : options_) {
            declared->options_.push_back(
                {option.name, option.missingValue.has_value(), option.choices});
        }
    }
    std::size_t filled = 0;
    bool help = false;
    for (std::size_t next = 0; next < arguments.size();) {
        std::string name = arguments[next++];
        help = help || name == "--help" || name == "-h";
        if (name.rfind('-', 0) != 0 && filled < positionals_.size()) {
            *positionals_[filled++].target = name;
            continue;
        }
        std::optional<std::string> attached;
        if (const std::size_t equals = name.find('=');
            name.rfind("--", 0) == 0 && equals != std::string::npos) {
            attached = name.substr(equals + 1);
            name.resize(equals);
        }
        const auto option = std::find_if(options_.begin(), options_.end(),
                                         [&name](const Option& o) { return o.name == name; });
        if (option == options_.end()) {
            return name.rfind('-', 0) == 0 ? "unknown option '" + name + "'"
                                           : "unexpected argument '" + name + "'";
        }
        if (!option->missingValue) {
            if (attached) {
                return name + " takes no value";
            }
            option->apply({});
            continue;
        }
        if (!attached && next == arguments.size()) {
            return name + " " + *option->missingValue;
        }
        const std::string value = attached ? *attached : arguments[next++];
        if (const auto problem = option->apply(value)) {
            return name + " " + *problem + ", not '" + value + "'";
        }
    }
    if (filled < positionals_.size() && !help) {
        return "needs " + positionals_[filled].what;
    }
    return std::nullopt;
}

} // namespace loadwarden
