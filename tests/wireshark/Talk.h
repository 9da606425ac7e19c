// Conversations that are decoded together: one run of tshark for all tests of the program.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/support/Bytes.h"
#include "tests/wireshark/Capture.h"

// What one side says. The side that asks is the client of a server, or the server of a listener.
struct Said {
    bool asks;
    Bytes bytes;
};
inline Said asks(const Bytes& bytes) {
    return {true, bytes};
}
inline Said answers(const Bytes& bytes) {
    return {false, bytes};
}

// A message as it was decoded: the values of each field by its name, without "nyserver.".
class Decoded {
  public:
    using Values = std::vector<std::string>;

    explicit Decoded(std::map<std::string, Values> fields) : m_fields(std::move(fields)) {}

    bool has(const std::string& field) const { return m_fields.count(field) > 0; }
    Values all(const std::string& field) const;
    // The only value; "(none)" or "(several)" when there is not one.
    std::string operator[](const std::string& field) const;
    // The first value; "(none)" when there is none.
    std::string first(const std::string& field) const;
    const std::map<std::string, Values>& fields() const { return m_fields; }

  private:
    std::map<std::string, Values> m_fields;
};

// Declared before the tests, at namespace scope: all of them go into one capture.
class Talk {
  public:
    // On a port that is known to be a server's, so that it is decoded whatever it is; or on one
    // that nobody knows.
    enum class On { serverPort, anyPort };

    // Everything said is sent in segments of at most `segment` bytes.
    explicit Talk(std::vector<Said> said, On on = On::serverPort, size_t segment = 60'000);
    // What is said is made when it is needed: it may use what other sources set up before main.
    explicit Talk(std::vector<Said> (*say)());
    Talk(const Talk&) = delete;
    Talk& operator=(const Talk&) = delete;
    ~Talk() = default;

    // The messages in their order, found in two passes over the capture.
    std::vector<Decoded> messages() const;
    // The message at `index`; one without fields when there is none.
    Decoded operator[](size_t index) const;
    // What the packet list says of each frame of the conversation, found in one pass.
    std::vector<std::string> lines() const;
    // The line at `index`; "(none)" when there is none.
    std::string line(size_t index) const;

    // Into the capture, with this number as its place among all.
    void addTo(Capture& capture, size_t place) const;

  private:
    const std::vector<Said> m_said;
    std::vector<Said> (*const m_say)();
    const On m_on;
    const size_t m_segment;
    const size_t m_place;
};
