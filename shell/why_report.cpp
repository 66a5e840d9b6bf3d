#include "shell/why_report.h"

#include "core/diagnosis/cause_text.h"
#include "core/diagnosis/diagnosis_json.h"
#include "core/text/units_format.h"
#include "shell/terminal_text.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <string_view>

namespace loadwarden {

namespace {

using TerminalText::displayWidth;
using TerminalText::fitted;
using TerminalText::padded;

constexpr std::size_t lineWidth = 80;
constexpr std::string_view cardIndent = "   ";

// Words filled into lines of at most lineWidth, each line indented.
std::string wrapped(std::string_view text, std::string_view indent) {
    std::string result;
    std::string line(indent);
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find(' ', start), text.size());
        const std::string_view word = text.substr(start, end - start);
        start = end + 1;
        if (word.empty()) {
            continue;
        }
        const bool lineHasWords = line.size() > indent.size();
        if (lineHasWords && displayWidth(line) + 1 + displayWidth(word) > lineWidth) {
            result += line + '\n';
            line = std::string(indent);
        } else if (lineHasWords) {
            line += ' ';
        }
        line += word;
    }
    return result + line + '\n';
}

std::string wholeScore(double score) {
    return std::to_string(static_cast<int>(std::lround(score)));
}

// What the user can do: the fix, or why nothing is offered for an app.
std::string remedy(const Cause& cause, const WhyReport& report) {
    if (cause.fix) {
        return "Fix: " + CauseText::fixLabel(*cause.fix, cause.appName.value_or(""));
    }
    if (cause.appKey) {
        const auto reason = report.readOnlyReasons.find(*cause.appKey);
        if (reason != report.readOnlyReasons.end()) {
            return reason->second;
        }
    }
    return {};
}

void printCauses(const WhyReport& report, std::ostream& out) {
    for (std::size_t i = 0; i < report.causes.size(); ++i) {
        const Cause& cause = report.causes[i];
        const std::string number = std::to_string(i + 1) + ".";
        out << padded(number, cardIndent.size(), false)
            << wrapped(CauseText::title(cause), cardIndent).substr(cardIndent.size());
        out << wrapped(CauseText::detail(cause), cardIndent);
        const std::string action = remedy(cause, report);
        out << cardIndent << "Score " << wholeScore(cause.score)
            << (action.empty() ? "" : " · " + action) << "\n\n";
    }
}

void printBusiest(const WhyReport& report, std::ostream& out) {
    out << CauseText::busiestHeading() << '\n';
    if (report.busiest.empty()) {
        out << "   No apps are running.\n";
        return;
    }
    out << cardIndent << padded("NAME", 28, false) << "  " << padded("CPU", 7, true) << "  "
        << padded("MEMORY", 9, true) << '\n';
    for (const ExplainerApp& app : report.busiest) {
        const auto reason = report.readOnlyReasons.find(app.key);
        std::string line = std::string(cardIndent) + padded(fitted(app.name, 28), 28, false) +
                           "  " + padded(formatPercent(app.cpuPercent), 7, true) + "  " +
                           padded(formatBytes(app.memoryBytes), 9, true);
        if (reason != report.readOnlyReasons.end()) {
            line += "  " + reason->second;
        }
        out << line << '\n';
    }
}

} // namespace

void printWhyReport(const WhyReport& report, std::ostream& out) {
    out << CauseText::question() << "\n\n";
    if (report.causes.empty()) {
        out << CauseText::allClearTitle() << '\n'
            << wrapped(CauseText::allClearSentence(), "") << '\n';
    } else {
        printCauses(report, out);
    }
    printBusiest(report, out);
}

void printWhyJSON(const WhyReport& report, std::ostream& out) {
    nlohmann::json causes = nlohmann::json::array();
    for (const Cause& cause : report.causes) {
        nlohmann::json j = cause;
        j["title"] = CauseText::title(cause);
        j["detail"] = CauseText::detail(cause);
        j["symbol"] = CauseText::symbol(cause.kind);
        j["fixLabel"] =
            cause.fix ? nlohmann::json(CauseText::fixLabel(*cause.fix, cause.appName.value_or("")))
                      : nlohmann::json();
        causes.push_back(std::move(j));
    }
    const nlohmann::json allClear =
        report.causes.empty() ? nlohmann::json{{"title", CauseText::allClearTitle()},
                                               {"sentence", CauseText::allClearSentence()}}
                              : nlohmann::json();
    const nlohmann::json answer{{"question", CauseText::question()},
                                {"causes", std::move(causes)},
                                {"allClear", allClear},
                                {"busiest", report.busiest}};
    // App names come from the processes themselves and may hold bytes that
    // are not UTF-8; they are replaced rather than fail the output.
    out << answer.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

} // namespace loadwarden
