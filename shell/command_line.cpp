#include "shell/command_line.h"

#include "core/text_parsing.h"

#include <utility>

namespace loadwarden {

std::string ArgumentList::take() {
    std::string argument = arguments_[next_++];
    attachedValue_.reset();
    const std::size_t equals = argument.find('=');
    if (argument.rfind("--", 0) == 0 && equals != std::string::npos) {
        attachedValue_ = argument.substr(equals + 1);
        argument.resize(equals);
    }
    return argument;
}

std::optional<std::string> ArgumentList::takeValue() {
    if (attachedValue_) {
        return std::exchange(attachedValue_, std::nullopt);
    }
    if (atEnd()) {
        return std::nullopt;
    }
    return arguments_[next_++];
}

std::optional<double> parsePositiveSeconds(std::string_view text) {
    const auto seconds = parseDecimal(text);
    if (!seconds || !(*seconds > 0.0)) {
        return std::nullopt;
    }
    return seconds;
}

std::optional<int> parsePositiveCount(std::string_view text) {
    const auto count = parseInteger<int>(text);
    if (!count || *count < 1) {
        return std::nullopt;
    }
    return count;
}

} // namespace loadwarden
