// nycentral: the reference central server as a program.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

#include "apps/central/CentralServer.h"
#include "apps/common/CommandLine.h"
#include "apps/common/StopRequest.h"
#include "apps/common/Utf8.h"

using namespace apps;

namespace {

constexpr int kLongestProbeSeconds = 86'400;

// The whole number at once: who waits for the file reads it as soon as it is there.
bool writePortFile(const std::string& path, unsigned int port) {
    if (path.empty()) return true;
    const std::string unfinished = path + ".new";
    {
        std::ofstream file(std::filesystem::path(fromUtf8(unfinished).GetString()));
        file << port << '\n';
        if (!file.flush()) return false;
    }
    return ::MoveFileExW(fromUtf8(unfinished), fromUtf8(path), MOVEFILE_REPLACE_EXISTING) != 0;
}

struct Options {
    std::string address = "127.0.0.1";
    unsigned short port = 0;
    std::string ports = "42100-42999";
    std::string portFile;
    int probeSeconds = 10;
    int maxSessions = kMostSessions;
};

CentralSettings settingsOf(const Options& options) {
    CentralSettings settings;
    settings.ports = *parsePortRange(options.ports);
    settings.push.probeInterval = std::chrono::seconds(options.probeSeconds);
    settings.maxSessions = options.maxSessions;
    settings.onShutDownRequest = [] { StopRequest::request(); };
    return settings;
}

// False, with a word about it, when it cannot serve.
bool open(CentralServer& server, const Options& options) {
    const char* const address = options.address.c_str();
    if (const int code = server.start(::inet_addr(address), options.port); code != 0) {
        std::fprintf(stderr, "cannot listen on %s:%u (code %d)\n", address, options.port, code);
        return false;
    }
    if (!writePortFile(options.portFile, server.GetPort())) {
        std::fprintf(stderr, "cannot write %s\n", options.portFile.c_str());
        return false;
    }
    std::printf("listening on %s:%u\n", address, server.GetPort());
    std::fflush(stdout);
    return true;
}

int serve(const Options& options) {
    CentralServer server(settingsOf(options));
    if (!open(server, options)) return 1;
    while (!StopRequest::wait(60'000)) {
    }
    std::printf("stopping\n");
    server.stop();  // what is queued until then counts as dropped
    if (const size_t dropped = server.pusher().dropped(); dropped != 0)
        std::printf("%s dropped\n", notificationCount(dropped).c_str());
    return 0;
}

std::string checkPortRange(const std::string& text) {
    return parsePortRange(text) ? "" : "not a range FIRST-LAST of ports: " + text;
}

void addOptions(CLI::App& app, Options& options) {
    app.add_option("--bind", options.address, "The IPv4 address to listen on")
        ->capture_default_str()
        ->check(CLI::ValidIPV4);
    app.add_option("--port", options.port, "The port to listen on; 0 takes a free one")
        ->capture_default_str();
    app.add_option("--ports", options.ports, "The range of notification ports to hand out to users")
        ->capture_default_str()
        ->check(checkPortRange, "FIRST-LAST");
    app.add_option("--probe-seconds", options.probeSeconds,
                   "How often each listener is asked for a sign of life, in seconds; 0: never")
        ->capture_default_str()
        ->check(CLI::Range(0, kLongestProbeSeconds));
    app.add_option("--max-sessions", options.maxSessions, "How many clients are served at once")
        ->capture_default_str()
        ->check(CLI::Range(1, kMostSessions));
    app.add_option("--port-file", options.portFile, "A file to write the port to once it is open");
}

int run(int count, const char* const* words) {
    CLI::App app("The reference central server: who is connected, and who holds what.",
                 "nycentral");
    Options options;
    addOptions(app, options);
    try {
        parseCommandLine(app, count, words);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    const StopRequest stopRequest;
    return serve(options);
}

}  // namespace

int main(int count, char** words) {
    try {
        return run(count, words);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "nycentral: %s\n", error.what());
        return 1;
    }
}
