#include "tests/wireshark/Talk.h"

#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

#include "tests/wireshark/Tshark.h"

namespace {

using Json = nlohmann::ordered_json;
using Fields = std::map<std::string, Decoded::Values>;

constexpr int kFirstUnknownPort = 30000;

std::vector<const Talk*>& allTalks() {
    static std::vector<const Talk*> talks;
    return talks;
}

// The values below `tree`, whatever their depth.
void collect(const Json& tree, const std::string& name, Fields& fields) {
    if (tree.is_object()) {
        for (const auto& [key, value] : tree.items()) collect(value, key, fields);
    } else if (tree.is_array()) {
        for (const auto& value : tree) collect(value, name, fields);
    } else {
        constexpr std::string_view kOurs = "nyserver.";
        const bool isOurs = name.rfind(kOurs, 0) == 0;
        fields[isOurs ? name.substr(kOurs.size()) : name].push_back(tree.get<std::string>());
    }
}

struct Everything {
    std::map<size_t, std::vector<Decoded>> messages;  // by the talk's place
    std::map<size_t, std::vector<std::string>> lines;
};

void addMessages(const Json& frame, Everything& everything) {
    const Json& layers = frame.at("_source").at("layers");
    if (!layers.contains("nyserver")) return;
    const size_t place = std::stoul(layers.at("tcp").at("tcp.stream").get<std::string>());
    const Json& ours = layers.at("nyserver");
    const auto add = [&](const Json& message) {
        Fields fields;
        collect(message, "", fields);
        everything.messages[place].emplace_back(fields);
    };
    if (!ours.is_array()) return add(ours);
    for (const Json& message : ours) add(message);
}

void addLine(const std::string& line, Everything& everything) {
    std::istringstream words(line);
    std::string stream;
    std::string protocol;
    std::string info;
    std::getline(words, stream, '\t');
    std::getline(words, protocol, '\t');
    std::getline(words, info);
    if (protocol == "NyServer") everything.lines[std::stoul(stream)].push_back(info);
}

std::string run(const Capture& capture, const std::string& arguments) {
    const tshark::Result result = tshark::decode(capture, arguments);
    if (result.status != 0) throw std::runtime_error("tshark failed: " + result.complaints);
    return result.output;
}

Everything decodeAll() {
    Capture capture;
    const std::vector<const Talk*>& talks = allTalks();
    for (size_t place = 0; place < talks.size(); ++place) talks[place]->addTo(capture, place);

    Everything everything;
    const auto frames =
        Json::parse(run(capture, "-2 -Y nyserver -T json --no-duplicate-keys -J 'tcp nyserver'"));
    for (const Json& frame : frames) addMessages(frame, everything);
    std::istringstream lines(
        run(capture, "-T fields -e tcp.stream -e _ws.col.Protocol -e _ws.col.Info"));
    for (std::string line; std::getline(lines, line);) addLine(line, everything);
    return everything;
}

Everything& everything() {
    static Everything all = decodeAll();
    return all;
}

}  // namespace

Decoded::Values Decoded::all(const std::string& field) const {
    const auto found = m_fields.find(field);
    return found != m_fields.end() ? found->second : Values();
}

std::string Decoded::operator[](const std::string& field) const {
    return all(field).size() > 1 ? "(several)" : first(field);
}

std::string Decoded::first(const std::string& field) const {
    const Values values = all(field);
    return values.empty() ? "(none)" : values.front();
}

Talk::Talk(std::vector<Said> said, On on, size_t segment)
    : m_said(std::move(said)),
      m_say(nullptr),
      m_on(on),
      m_segment(segment),
      m_place(allTalks().size()) {
    allTalks().push_back(this);
}

Talk::Talk(std::vector<Said> (*say)())
    : m_say(say), m_on(On::serverPort), m_segment(60'000), m_place(allTalks().size()) {
    allTalks().push_back(this);
}

void Talk::addTo(Capture& capture, size_t place) const {
    const int client = tshark::kFirstClientPort + static_cast<int>(place);
    const int server =
        m_on == On::serverPort ? tshark::kServerPort : kFirstUnknownPort + static_cast<int>(place);
    for (const Said& said : m_say != nullptr ? m_say() : m_said) {
        const int from = said.asks ? client : server;
        const int to = said.asks ? server : client;
        capture.add(from, to, said.bytes, m_segment);
    }
}

std::vector<Decoded> Talk::messages() const {
    return everything().messages[m_place];
}

Decoded Talk::operator[](size_t index) const {
    const std::vector<Decoded> all = messages();
    return index < all.size() ? all[index] : Decoded({});
}

std::vector<std::string> Talk::lines() const {
    return everything().lines[m_place];
}

std::string Talk::line(size_t index) const {
    const std::vector<std::string> all = lines();
    return index < all.size() ? all[index] : "(none)";
}
