#include "apps/nyctl/ShareModeOption.h"

namespace apps::nyctl {

namespace {

struct ModeWord {
    std::string word;
    unsigned mode;
};

const std::vector<ModeWord>& modeWords() {
    static const std::vector<ModeWord> words = [] {
        std::vector<ModeWord> all;
        for (const auto& [bit, word] : NySe::kShareModeBits) all.push_back({word, bit});
        all.push_back({"exclusive", kExclusive});
        all.push_back({NySe::shareModeWords(0), 0});
        return all;
    }();
    return words;
}

// As "0x01 access1, 0x02 access2".
std::string modeList() {
    std::string list;
    for (const auto& [word, mode] : modeWords())
        list += (list.empty() ? "" : ", ") + shareModeDigits(mode) + ' ' + word;
    return list;
}

std::optional<unsigned> modeOf(const std::string& word) {
    for (const ModeWord& known : modeWords())
        if (known.word == word) return known.mode;
    return std::nullopt;
}

}  // namespace

std::optional<unsigned> parseShareMode(const std::string& text) {
    unsigned mode = 0;
    if (CLI::detail::lexical_cast(text, mode)) return mode;
    mode = 0;
    for (size_t begin = 0, end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find('+', begin);
        const auto bits = modeOf(text.substr(begin, end - begin));
        if (!bits) return std::nullopt;
        mode |= *bits;
    }
    return mode;
}

std::shared_ptr<unsigned> shareModeOption(CLI::App& command, unsigned standard) {
    auto mode = std::make_shared<unsigned>(standard);
    command
        .add_option_function<std::string>(
            "--mode", [mode](const std::string& text) { *mode = *parseShareMode(text); },
            "Share mode, a number or words joined by +: " + modeList())
        ->check([](const std::string& text) {
            return parseShareMode(text) ? std::string()
                                        : text + " is not a share mode: " + modeList();
        })
        ->type_name("MODE")
        ->default_str(shareModeDigits(*mode));
    return mode;
}

}  // namespace apps::nyctl
