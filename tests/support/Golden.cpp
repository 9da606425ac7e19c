#include "tests/support/Golden.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace {

std::vector<Golden> readAll() {
    std::ifstream file(NY_TEST_DATA "/golden.json", std::ios::binary);
    if (!file) throw std::runtime_error("cannot open " NY_TEST_DATA "/golden.json");
    std::vector<Golden> all;
    for (const auto& row : nlohmann::json::parse(file)) {
        all.push_back({row.at("name"), row.at("class"), row.at("form"), row.at("value"),
                       fromHex(row.at("hex").get<std::string>())});
    }
    return all;
}

}  // namespace

const std::vector<Golden>& allGolden() {
    static const std::vector<Golden> all = readAll();
    return all;
}

const Golden& golden(const std::string& name) {
    for (const Golden& one : allGolden()) {
        if (one.name == name) return one;
    }
    throw std::out_of_range("no golden bytes named " + name);
}

std::string testNameOf(const Golden& vector) {
    std::string name = vector.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

std::vector<Golden> goldenNamed(const std::string& start) {
    std::vector<Golden> found;
    for (const Golden& one : allGolden()) {
        if (one.name.compare(0, start.size(), start) == 0) found.push_back(one);
    }
    return found;
}
