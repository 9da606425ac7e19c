#include "apps/nyctl/UnknownCommand.h"

#include <algorithm>
#include <numeric>

namespace apps::nyctl {

namespace {

// Returns the command that was parsed last; `app` if there is none.
const CLI::App& lastCommand(const CLI::App& app) {
    const auto parsed = app.get_subcommands();
    return parsed.empty() ? app : lastCommand(*parsed.back());
}

// Returns the first word that is not an option; empty if there is none.
std::string firstWord(const std::vector<std::string>& words) {
    const auto found = std::find_if(words.begin(), words.end(), [](const std::string& word) {
        return !word.empty() && word.front() != '-';
    });
    return found == words.end() ? std::string() : *found;
}

// Returns the name of the command of `group` that is nearest to `word`, if at most half of the word
// differs; else an empty text.
std::string nearestCommand(const CLI::App& group, const std::string& word) {
    std::string nearest;
    size_t least = word.size() / 2 + 1;
    for (const CLI::App* command : group.get_subcommands({})) {
        const size_t distance = editDistance(word, command->get_name());
        if (distance >= least) continue;
        least = distance;
        nearest = command->get_name();
    }
    return nearest;
}

}  // namespace

ExitStatus reportUsage(const CLI::App& app, const CLI::ParseError& error) {
    const CLI::App& group = lastCommand(app);
    const std::string word = firstWord(group.remaining());
    const bool isUnknown = !word.empty() && !group.get_subcommands({}).empty();
    if (error.get_exit_code() == 0 || !isUnknown) return app.exit(error) == 0 ? exitYes : exitUsage;
    const std::string prefix = &group == &app ? "" : group.get_name() + ' ';
    const std::string nearest = nearestCommand(group, word);
    Output::complain("there is no command " + prefix + word +
                     (nearest.empty() ? "" : "; the nearest is " + prefix + nearest) +
                     "; --help lists the commands");
    return exitUsage;
}

// Row by row of the table of distances between the beginnings of both.
size_t editDistance(const std::string& left, const std::string& right) {
    std::vector<size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const char letter : left) {
        size_t diagonal = row[0]++;
        for (size_t j = 0; j < right.size(); ++j) {
            const size_t replaced = diagonal + (letter != right[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, diagonal + 1, replaced});
        }
    }
    return row.back();
}

}  // namespace apps::nyctl
