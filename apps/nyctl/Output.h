// Output: prints results as tables or as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "apps/common/Session.h"

namespace apps::nyctl {

// The options before the command.
struct Options : Account {
    bool json = false;
    bool isShell = false;       // commands are read from standard input
    bool isUserChosen = false;  // given, not the login name
};

using Record = nlohmann::ordered_json;

class Output {
  public:
    // The options are read when something is printed; they must outlive this object.
    explicit Output(const Options& options) : m_options(options) {}

    // Prints one record: "name: value" lines, or one object.
    void record(const Record& record) const;
    // Prints records of one kind: a row each under `columns`, or an object each.
    void table(const std::vector<std::string>& columns, const std::vector<Record>& rows) const;
    // Prints lines of text: as they are, or one object {name: line} each.
    void lines(const char* name, const std::vector<std::string>& lines) const;
    // Prints the next item of a series: `lines`, or one object.
    void next(const std::vector<std::string>& lines, const Record& record) const;
    // The options before the command.
    const Options& options() const { return m_options; }
    // Returns the lines of a text without line ends.
    static std::vector<std::string> split(const std::string& text);
    // Prints to standard error what is not a result.
    static void note(const std::string& text);
    // Reports why a command failed.
    static void complain(const std::string& text) { note(text); }

  private:
    const Options& m_options;
};

}  // namespace apps::nyctl
