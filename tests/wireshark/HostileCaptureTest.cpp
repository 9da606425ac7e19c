// Captures that mean harm. Whatever the bytes are, the dissector marks them and goes on.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <random>

#include "tests/wireshark/Tshark.h"
#include "tests/wireshark/Wire.h"

namespace {

size_t occurrences(const std::string& text, const std::string& word) {
    size_t count = 0;
    for (size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1))
        ++count;
    return count;
}

// Each conversation with a port of its own.
class HostileCapture : public ::testing::Test {
  protected:
    void ask(const Bytes& bytes, size_t captured = SIZE_MAX) {
        m_capture.addSegment(m_client++, tshark::kServerPort, bytes, captured);
    }
    void askAndAnswer(const Bytes& question, const Bytes& answer) {
        m_capture.add(m_client, tshark::kServerPort, question);
        m_capture.add(tshark::kServerPort, m_client++, answer);
    }

    void addRandom(int count);

    // What tshark shows. Expects that it came to its end.
    std::string expectSurvives(const std::string& arguments = "-O nyserver") {
        const tshark::Result result = tshark::decode(m_capture, arguments);
        EXPECT_EQ(0, result.status) << result.complaints;
        for (const std::string& text : {result.output, result.complaints}) {
            EXPECT_EQ(0u, occurrences(text, "Lua Error"));
            EXPECT_EQ(0u, occurrences(text, "Dissector bug"));
            EXPECT_EQ(0u, occurrences(text, "infinite loop"));
        }
        return result.output;
    }

    Capture m_capture;
    int m_client = tshark::kFirstClientPort;
};

// Payloads with a bias towards what means something.
class RandomBytes {
  public:
    explicit RandomBytes(unsigned int seed) : m_random(seed) {}

    size_t below(size_t limit) { return m_random() % limit; }

    Bytes next() {
        switch (below(4)) {
            case 0:
                return bytes(1 + below(200));
            case 1:
                return damaged(anyGolden());
            case 2:
                return framed();
            default:
                return cut(anyGolden());
        }
    }

    const Bytes& anyGolden() { return allGolden()[below(allGolden().size())].bytes; }

  private:
    unsigned char byte() {
        static constexpr std::array<unsigned char, 8> kTelling = {0x00, 0x01, 0x02, 0x7F,
                                                                  0x80, 0xFE, 0xFF, 0xFF};
        return below(2) == 0 ? kTelling[below(kTelling.size())]
                             : static_cast<unsigned char>(below(256));
    }
    Bytes bytes(size_t count) {
        Bytes made(count);
        std::generate(made.begin(), made.end(), [this] { return byte(); });
        return made;
    }
    Bytes damaged(Bytes one) {
        for (size_t i = 0; i <= below(4); ++i) one[below(one.size())] = byte();
        return one;
    }
    Bytes cut(Bytes one) {
        one.resize(1 + below(one.size()));
        return one;
    }
    Bytes framed() {
        static constexpr std::array<LONG, 31> kActions = {
            1,  2,  3,  4,  6,  10, 11, 12, 13, 50, 53,  56,  58, 70, 71, 72,
            73, 74, 75, 77, 84, 89, 90, 95, 96, 97, 106, 666, 5,  -1, 701};
        const LONG action = kActions[below(kActions.size())];
        return request(action, below(2) == 0 ? bytes(below(100)) : damaged(payload()));
    }
    Bytes payload() {
        const Bytes& one = anyGolden();
        return one.size() > 8 ? Bytes(one.begin() + 8, one.end()) : one;
    }

    std::mt19937 m_random;
};

void HostileCapture::addRandom(int count) {
    constexpr unsigned int kSeed = 20'240'229;
    std::cout << "seed " << kSeed << std::endl;
    RandomBytes random(kSeed);
    for (int i = 0; i < count; ++i) {
        if (random.below(2) == 0) {
            ask(random.next());
        } else {
            askAndAnswer(random.anyGolden(), random.next());
        }
    }
}

TEST_F(HostileCapture, OfTenThousandRandomPayloads) {
    addRandom(10'000);
    const std::string shown = expectSurvives();
    EXPECT_LT(10'000u, occurrences(shown, "\nNyServer, "));
    EXPECT_LT(1000u, occurrences(shown, "/Malformed)"));
}

TEST_F(HostileCapture, OfRandomPayloadsThatAreNotReassembled) {
    addRandom(1000);
    expectSurvives("-O nyserver -o tcp.desegment_tcp_streams:false");
}

// A payload that ends at every place, in a frame that says so.
TEST_F(HostileCapture, OfPayloadsCutAtEveryByte) {
    size_t cuts = 0;
    for (const char* call : {"sendUserData", "sendConnectionData", "lock", "isLockBy"}) {
        const Bytes whole = goldenRequest(call);
        for (size_t length = 0; length + 8 < whole.size(); ++length, ++cuts) {
            const auto first = whole.begin() + 8;
            LONG action = whole[0];
            ask(request(action, Bytes(first, first + static_cast<std::ptrdiff_t>(length))));
        }
    }
    EXPECT_EQ(cuts, occurrences(expectSurvives(), "(Error/Malformed)"));
}

TEST_F(HostileCapture, OfLengthsOfEveryKind) {
    for (const LONG length : {-2'147'483'647 - 1, -1, 0, 1, 3, 4, 5, 0x7FFF, 0xFFFF, 0x1000000,
                              0x1000001, 0x7FFFFFFF}) {
        for (const LONG action : {1, 10, 11, 50, 74, 97, 5}) {
            ask(wireOf(action) + wireOf(length) + Bytes(4, 0xFF));
            askAndAnswer(goldenRequest("getLock"), wireOf(length) + Bytes(4, 0xFF));
        }
    }
    expectSurvives();
}

// More values than a frame can show: they are read, and the rest of the message with them.
TEST_F(HostileCapture, OfATableThatIsTooLongToBeShown) {
    constexpr LONG kIds = 300'000;
    const Bytes table = fromHex("FF FF DF 07 13 00 'NySeConnectionArray' 00 00 FF FF FF FF FF FF") +
                        wireOf(kIds) + repeated(wireOf<LONG>(3), kIds);
    askAndAnswer(goldenRequest("getConnection"), message(table));
    const std::string shown = expectSurvives();
    EXPECT_EQ(1u, occurrences(shown, "(Note/Undecoded): Too many values"));
    EXPECT_EQ(0u, occurrences(shown, "Malformed"));
}

// Many small frames in one segment.
TEST_F(HostileCapture, OfASegmentFullOfFrames) {
    ask(repeated(request(50), 7000));
    EXPECT_EQ(7000u, occurrences(expectSurvives(), "\nNyServer, notification 50\n"));
}

// A capture that keeps only the first bytes of each packet.
TEST_F(HostileCapture, OfIncompletePackets) {
    const Bytes whole = goldenRequest("sendUserData");
    for (size_t captured = 1; captured < whole.size(); ++captured) ask(whole, captured);
    const std::string shown = expectSurvives();
    EXPECT_EQ(whole.size() - 1,
              occurrences(shown, "(Note/Undecoded): The capture does not have all"));
}

}  // namespace
