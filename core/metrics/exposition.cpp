#include "core/metrics/exposition.h"

#include "core/text/case_folding.h"
#include "core/text/text_parsing.h"
#include "core/text/utf8_repair.h"

#include <charconv>
#include <cmath>
#include <optional>

namespace loadwarden {

namespace {

struct MediaRange {
    std::string type;
    std::optional<std::string> version;
    double quality = 1.0;
};

MediaRange parseMediaRange(std::string_view range) {
    const auto parts = splitKeepingEmpty(range, ';');
    MediaRange parsed{.type = lowercased(trimWhitespace(parts.front()))};
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const std::size_t equals = parts[i].find('=');
        if (equals == std::string_view::npos) {
            continue;
        }
        const std::string name = lowercased(trimWhitespace(parts[i].substr(0, equals)));
        std::string_view value = trimWhitespace(parts[i].substr(equals + 1));
        if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
            value = value.substr(1, value.size() - 2);
        }
        if (name == "q") {
            parsed.quality = parseDecimal(value).value_or(0.0);
        } else if (name == "version") {
            parsed.version = std::string(value);
        }
    }
    return parsed;
}

std::optional<ExpositionFormat> formatOf(const MediaRange& range) {
    const auto versionIs = [&range](std::string_view version) {
        return !range.version || *range.version == version;
    };
    if (range.type == "application/openmetrics-text" || range.type == "application/*") {
        return versionIs("1.0.0") ? std::optional(ExpositionFormat::openMetrics) : std::nullopt;
    }
    if (range.type == "text/plain" || range.type == "text/*" || range.type == "*/*") {
        return versionIs("0.0.4") ? std::optional(ExpositionFormat::text) : std::nullopt;
    }
    return std::nullopt;
}

void appendNumber(std::string& out, double value) {
    if (std::isnan(value)) {
        out += "NaN";
        return;
    }
    if (std::isinf(value)) {
        out += value > 0 ? "+Inf" : "-Inf";
        return;
    }
    char buffer[64];
    // Whole numbers as integers: byte counts read better without an exponent.
    const bool whole = std::abs(value) < 1e15 && value == std::trunc(value);
    const auto result = whole ? std::to_chars(buffer, buffer + sizeof buffer, value,
                                              std::chars_format::fixed, 0)
                              : std::to_chars(buffer, buffer + sizeof buffer, value);
    out.append(buffer, result.ptr);
}

// Backslash and newline always; the double quote in label values, and in
// help texts of the newer format.
void appendEscaped(std::string& out, std::string_view text, bool quote) {
    for (const char c : repairUTF8(text)) {
        if (c == '\\') {
            out += "\\\\";
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '"' && quote) {
            out += "\\\"";
        } else {
            out += c;
        }
    }
}

void appendSample(std::string& out, const std::string& name, const MetricSample& sample) {
    out += name;
    if (!sample.labels.empty()) {
        out += '{';
        for (std::size_t i = 0; i < sample.labels.size(); ++i) {
            out += i == 0 ? "" : ",";
            out += sample.labels[i].first;
            out += "=\"";
            appendEscaped(out, sample.labels[i].second, true);
            out += '"';
        }
        out += '}';
    }
    out += ' ';
    appendNumber(out, sample.value);
    out += '\n';
}

void appendFamily(std::string& out, const MetricFamily& family, ExpositionFormat format) {
    const bool counter = family.type == MetricType::counter;
    const std::string sampleName = counter ? family.name + "_total" : family.name;
    const bool open = format == ExpositionFormat::openMetrics;
    // The older format names a counter's family by its samples.
    const std::string& familyName = open ? family.name : sampleName;
    const std::string_view type = counter ? "counter" : "gauge";
    out += "# TYPE " + familyName + " ";
    out += type;
    out += '\n';
    if (open && !family.unit.empty()) {
        out += "# UNIT " + familyName + " " + family.unit + "\n";
    }
    out += "# HELP " + familyName + " ";
    appendEscaped(out, family.help, open);
    out += '\n';
    for (const MetricSample& sample : family.samples) {
        appendSample(out, sampleName, sample);
    }
}

} // namespace

ExpositionFormat negotiateFormat(std::string_view accept) {
    std::optional<ExpositionFormat> best;
    double bestQuality = 0.0;
    for (const std::string_view range : splitKeepingEmpty(accept, ',')) {
        const MediaRange parsed = parseMediaRange(range);
        const auto format = formatOf(parsed);
        if (format && parsed.quality > bestQuality) {
            best = format;
            bestQuality = parsed.quality;
        }
    }
    return best.value_or(ExpositionFormat::text);
}

std::string_view contentType(ExpositionFormat format) {
    return format == ExpositionFormat::openMetrics
               ? "application/openmetrics-text; version=1.0.0; charset=utf-8"
               : "text/plain; version=0.0.4; charset=utf-8";
}

std::string expose(const std::vector<MetricFamily>& families, ExpositionFormat format) {
    std::string out;
    for (const MetricFamily& family : families) {
        if (!family.samples.empty()) {
            appendFamily(out, family, format);
        }
    }
    if (format == ExpositionFormat::openMetrics) {
        out += "# EOF\n";
    }
    return out;
}

} // namespace loadwarden
