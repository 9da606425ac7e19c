// Output: what the commands find, as a table for people or as JSON for programs.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "apps/nyctl/Options.h"

namespace apps::nyctl {

using Record = nlohmann::ordered_json;

class Output {
  public:
    // The options are read when something is printed; they must outlive this object.
    explicit Output(const Options& options) : m_options(options) {}

    // One thing: "name: value" lines, or one object.
    void record(const Record& record) const;
    // Many things of one kind: a row each under `columns`, or an object each.
    void table(const std::vector<std::string>& columns, const std::vector<Record>& rows) const;
    // Lines of text: as they are, or one object {name: line} each.
    void lines(const char* name, const std::vector<std::string>& lines) const;
    // The next thing of a series that goes on: `lines`, or one object. Nothing is held back.
    void next(const std::vector<std::string>& lines, const Record& record) const;
    // What was said before the command.
    const Options& options() const { return m_options; }
    // The lines of a text, without their ends.
    static std::vector<std::string> split(const std::string& text);
    // What is no result, on standard error.
    static void note(const std::string& text);
    // Why a command failed.
    static void complain(const std::string& text) { note(text); }

  private:
    const Options& m_options;
};

}  // namespace apps::nyctl
