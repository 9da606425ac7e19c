#include "apps/nyctl/Output.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace apps::nyctl {

namespace {

// Control characters are U+0000 to U+001F except the tab, U+007F, and U+0080 to U+009F in two
// bytes.
bool isControl(const std::string& utf8, size_t at) {
    const auto byte = [&utf8](size_t i) { return static_cast<unsigned char>(utf8[i]); };
    if (byte(at) == 0xC2 && at + 1 < utf8.size()) return byte(at + 1) < 0xA0;
    return (byte(at) < ' ' && byte(at) != '\t') || byte(at) == 0x7F;
}

// Names chosen by other users must not control the terminal.
std::string printable(const std::string& utf8) {
    std::string text;
    for (size_t i = 0; i < utf8.size(); ++i) {
        const bool control = isControl(utf8, i);
        text += control ? '?' : utf8[i];
        if (control && static_cast<unsigned char>(utf8[i]) == 0xC2) ++i;
    }
    return text;
}

std::string cell(const Record& value) {
    return value.is_string() ? printable(value.get<std::string>()) : value.dump();
}

// Characters, not bytes: the bytes that continue a character do not count.
size_t width(const std::string& utf8) {
    return static_cast<size_t>(std::count_if(utf8.begin(), utf8.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
    }));
}

void printRow(const std::vector<std::string>& cells, const std::vector<size_t>& widths) {
    std::string line;
    for (size_t i = 0; i < cells.size(); ++i) {
        line += cells[i];
        if (i + 1 < cells.size()) line.append(widths[i] - width(cells[i]) + 2, ' ');
    }
    std::printf("%s\n", line.c_str());
}

void printJson(const Record& record) {
    std::printf("%s\n", record.dump(-1, ' ', false, Record::error_handler_t::replace).c_str());
}

}  // namespace

void Output::record(const Record& record) const {
    if (m_options.json) {
        printJson(record);
    } else {
        for (const auto& [name, value] : record.items()) {
            std::printf("%s: %s\n", name.c_str(), cell(value).c_str());
        }
    }
    std::fflush(stdout);
}

void Output::table(const std::vector<std::string>& columns, const std::vector<Record>& rows) const {
    if (m_options.json) {
        for (const Record& row : rows) printJson(row);
    } else {
        std::vector<std::vector<std::string>> lines{columns};
        for (const Record& row : rows) {
            std::vector<std::string>& line = lines.emplace_back();
            for (const std::string& column : columns) line.push_back(cell(row.at(column)));
        }
        std::vector<size_t> widths(columns.size());
        for (const auto& line : lines) {
            for (size_t i = 0; i < line.size(); ++i)
                widths[i] = std::max(widths[i], width(line[i]));
        }
        for (const auto& line : lines) printRow(line, widths);
    }
    std::fflush(stdout);
}

void Output::lines(const char* name, const std::vector<std::string>& lines) const {
    for (const std::string& line : lines) {
        if (m_options.json) {
            printJson({{name, line}});
        } else {
            std::printf("%s\n", printable(line).c_str());
        }
    }
    std::fflush(stdout);
}

void Output::next(const std::vector<std::string>& lines, const Record& record) const {
    if (m_options.json) {
        printJson(record);
    } else {
        for (const std::string& line : lines) std::printf("%s\n", printable(line).c_str());
    }
    std::fflush(stdout);
}

std::vector<std::string> Output::split(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

void Output::note(const std::string& text) {
    std::fprintf(stderr, "nyctl: %s\n", text.c_str());
}

}  // namespace apps::nyctl
