// Reading, writing and comparing of transcripts.
#include "transcript.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace {

void readOption(Transcript& transcript, const std::string& line) {
    const std::size_t blank = line.find(' ');
    const std::string name = line.substr(1, blank - 1);
    const std::string value = blank == std::string::npos ? "" : line.substr(blank + 1);
    if (name == "drawing") {
        transcript.drawing = value;
    } else if (name == "module") {
        transcript.modules.push_back(value);
    } else {
        throw std::runtime_error("unknown option: " + line);
    }
}

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

} // namespace

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return lines;
}

std::string Transcript::script() const {
    std::string answers;
    for (const std::string& line : linesOf(dialogue)) {
        if (line == ">") {
            answers += "\n";
        } else if (line.starts_with("> ")) {
            answers += line.substr(2) + "\n";
        }
    }
    return answers;
}

std::string Transcript::text() const {
    return joined(heading) + dialogue + "===\n" + changes;
}

Transcript readTranscript(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw std::runtime_error("cannot read " + file.string());
    }
    const std::string content{std::istreambuf_iterator<char>(stream), {}};
    Transcript transcript;
    enum { heading, dialogue, changes } part = heading;
    for (const std::string& line : linesOf(content)) {
        const bool isHeading = line.starts_with(';') || line.starts_with('@');
        if (part == heading && !isHeading) {
            part = dialogue;
        }
        if (part == heading) {
            transcript.heading.push_back(line);
            if (line.starts_with('@')) {
                readOption(transcript, line);
            }
        } else if (part == dialogue && line == "===") {
            part = changes;
        } else {
            (part == dialogue ? transcript.dialogue : transcript.changes) += line + "\n";
        }
    }
    return transcript;
}

std::string firstDifference(const std::string& expected, const std::string& actual) {
    constexpr std::size_t context = 4;
    const std::vector<std::string> wanted = linesOf(expected);
    const std::vector<std::string> found = linesOf(actual);
    const auto [want, got] = std::ranges::mismatch(wanted, found);
    if (want == wanted.end() && got == found.end()) {
        return {};
    }
    const std::size_t place = static_cast<std::size_t>(want - wanted.begin());
    std::ostringstream text;
    for (std::size_t i = place - std::min(place, context); i < place; ++i) {
        text << "      " << wanted[i] << '\n';
    }
    text << " want " << (want == wanted.end() ? "(end)" : *want) << '\n';
    text << " got  " << (got == found.end() ? "(end)" : *got) << '\n';
    return text.str();
}

std::string changesBetween(std::vector<std::string> before, std::vector<std::string> after) {
    std::ranges::sort(before);
    std::ranges::sort(after);
    std::vector<std::string> changes;
    std::vector<std::string> side;
    std::ranges::set_difference(before, after, std::back_inserter(side));
    std::ranges::transform(side, std::back_inserter(changes),
                           [](const std::string& line) { return "- " + line; });
    side.clear();
    std::ranges::set_difference(after, before, std::back_inserter(side));
    std::ranges::transform(side, std::back_inserter(changes),
                           [](const std::string& line) { return "+ " + line; });
    return joined(changes);
}
