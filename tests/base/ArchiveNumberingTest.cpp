// The numbers of classes and objects, against a plain model of them.
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "tests/base/TestRecords.h"
#include "tests/support/ArchiveBytes.h"

namespace {

// A type of its own that bears the class Fixed.
template <int NUMBER>
class Disguised : public Fixed {};

using Objects = std::vector<std::unique_ptr<CObject>>;

template <int... NUMBERS>
void addDisguised(Objects& objects, std::integer_sequence<int, NUMBERS...>) {
    (objects.push_back(std::make_unique<Disguised<NUMBERS>>()), ...);
}

// Writes tags as a reader expects them.
class Model {
  public:
    void null() { word(0); }
    void skip() { ++m_next; }
    void write(CObject* object) {
        if (const auto known = m_numbers.find(object); known != m_numbers.end()) {
            tag(known->second, 0);
            return;
        }
        writeClass(object->GetRuntimeClass());
        m_numbers.emplace(object, m_next++);
        body(object);
    }
    void map(CObject* object) { m_numbers.emplace(object, m_next++); }
    void writeClass(CRuntimeClass* pClass) {
        if (const auto known = m_numbers.find(pClass); known != m_numbers.end()) {
            tag(known->second, 0x80000000);
            return;
        }
        const std::string name = pClass->m_lpszClassName;
        word(0xFFFF);
        word(static_cast<WORD>(pClass->m_wSchema));
        word(static_cast<WORD>(name.size()));
        m_bytes.insert(m_bytes.end(), name.begin(), name.end());
        m_numbers.emplace(pClass, m_next++);
    }
    const Bytes& bytes() const { return m_bytes; }

  private:
    void word(DWORD value) { little(value, 2); }
    void little(DWORD value, int count) {
        for (int i = 0; i < count; ++i) m_bytes.push_back(static_cast<BYTE>(value >> (8 * i)));
    }
    void tag(DWORD number, DWORD flag) {
        if (number < 0x7FFF) return word(number | flag >> 16);
        word(0x7FFF);
        little(number | flag, 4);
    }
    void body(CObject* object) {
        const Bytes fields = stored([&](CArchive& ar) { object->Serialize(ar); });
        m_bytes.insert(m_bytes.end(), fields.begin(), fields.end());
    }

    std::map<const void*, DWORD> m_numbers;
    DWORD m_next = 1;
    Bytes m_bytes;
};

// An archive and what it is to hold.
struct Modelled {
    void expectAsModelled() {
        ar.Close();
        EXPECT_TRUE(contentsOf(file) == model.bytes());
    }
    void write(CObject* object) {
        ar << object;
        model.write(object);
    }

    CMemFile file;
    CArchive ar{&file, CArchive::store};
    Model model;
};

class ArchiveNumbering : public ::testing::Test {
  protected:
    ArchiveNumbering() { addDisguised(m_objects, std::make_integer_sequence<int, 64>()); }

    void makeObjects(size_t count) {
        for (size_t i = 0; i < count; ++i) {
            m_objects.push_back(std::make_unique<Foo>(static_cast<int>(i)));
            if (i % 3 == 0) m_objects.push_back(std::make_unique<SubFoo>());
            if (i % 5 == 0) m_objects.push_back(std::make_unique<Fixed>());
        }
    }
    CObject* anyObject() { return m_objects[m_random() % m_objects.size()].get(); }

    // One operation on both: mostly an object, which may have been written before.
    void step(CArchive& ar, Model& model) {
        const unsigned int choice = m_random() % 100;
        CObject* const object = anyObject();
        if (choice == 0) {
            ar << static_cast<CObject*>(nullptr);
            model.null();
        } else if (choice == 1) {
            ar.MapObject(nullptr);
            model.skip();
        } else if (choice == 2) {
            ar.MapObject(object);
            model.map(object);
        } else if (choice == 3) {
            ar.WriteClass(object->GetRuntimeClass());
            model.writeClass(object->GetRuntimeClass());
        } else {
            ar << object;
            model.write(object);
        }
    }

    void writeAll(Modelled& to) {
        for (const auto& object : m_objects) to.write(object.get());
    }

    void expectAsModelled(int steps) {
        Model model;
        const Bytes written = stored([&](CArchive& ar) {
            for (int i = 0; i < steps; ++i) step(ar, model);
        });
        EXPECT_TRUE(written == model.bytes()) << steps << " steps, seed " << kSeed;
    }

    static constexpr unsigned int kSeed = 20261121;
    std::mt19937 m_random{kSeed};
    Objects m_objects;
};

TEST_F(ArchiveNumbering, OfTypesThatShareAClass) {
    expectAsModelled(1000);
}

TEST_F(ArchiveNumbering, OfFewObjectsWrittenRepeatedly) {
    makeObjects(20);
    expectAsModelled(5000);
}

TEST_F(ArchiveNumbering, OfManyObjectsScatteredOverTheHeap) {
    makeObjects(30'000);
    expectAsModelled(60'000);
}

TEST_F(ArchiveNumbering, OfNeighboursInOneBlock) {
    const std::unique_ptr<Fixed[]> block(new Fixed[3000]);
    Model model;
    const Bytes written = stored([&](CArchive& ar) {
        for (int round = 0; round < 2; ++round) {
            for (int i = 0; i < 3000; ++i) {
                ar << &block[i];
                model.write(&block[i]);
            }
        }
    });
    EXPECT_TRUE(written == model.bytes());
}

TEST_F(ArchiveNumbering, OfAlternatingArchives) {
    Modelled first;
    Modelled second;
    for (int round = 0; round < 2; ++round) {
        for (const auto& object : m_objects) {
            first.write(object.get());
            second.write(object.get());
        }
    }
    first.expectAsModelled();
    second.expectAsModelled();
}

TEST_F(ArchiveNumbering, OfArchiveInsideAnother) {
    Modelled outer;
    writeAll(outer);
    {
        Modelled inner;
        writeAll(inner);
        writeAll(inner);
        inner.expectAsModelled();
    }
    writeAll(outer);
    outer.expectAsModelled();
}

TEST_F(ArchiveNumbering, OfArchiveThatOutlivesTheFirst) {
    auto first = std::make_unique<Modelled>();
    writeAll(*first);
    Modelled second;
    writeAll(second);
    first->expectAsModelled();
    Modelled third;
    writeAll(third);
    writeAll(second);
    writeAll(third);
    second.expectAsModelled();
    third.expectAsModelled();
}

TEST_F(ArchiveNumbering, OfArchivesThatAreCreatedAndDestroyed) {
    makeObjects(40);
    std::vector<std::unique_ptr<Modelled>> open;
    for (int i = 0; i < 20'000; ++i) {
        const unsigned int choice = m_random() % 200;
        if (open.empty() || (choice == 0 && open.size() < 5)) {
            open.push_back(std::make_unique<Modelled>());
        }
        const size_t index = m_random() % open.size();
        step(open[index]->ar, open[index]->model);
        if (choice > 1) continue;
        if (choice == 1) open[index]->expectAsModelled();
        open.erase(open.begin() + static_cast<ptrdiff_t>(index));
    }
    for (const auto& each : open) each->expectAsModelled();
}

TEST_F(ArchiveNumbering, OfArchivesAfterOneThatWasAborted) {
    Modelled aborted;
    writeAll(aborted);
    aborted.ar.Abort();
    Modelled next;
    writeAll(next);
    writeAll(next);
    next.expectAsModelled();
}

// Storing changes nothing that another thread could see.
TEST_F(ArchiveNumbering, OfThreadsThatStoreTheSameObjects) {
    makeObjects(500);
    Modelled expected;
    writeAll(expected);
    writeAll(expected);
    expected.expectAsModelled();
    std::vector<std::thread> threads;
    std::array<int, 4> right{};
    for (int& count : right) {
        threads.emplace_back([this, &count, &expected] {
            for (int i = 0; i < 100; ++i) {
                const Bytes written = stored([this](CArchive& ar) {
                    for (const auto& object : m_objects) ar << object.get();
                    for (const auto& object : m_objects) ar << object.get();
                });
                if (written == expected.model.bytes()) ++count;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const int count : right) EXPECT_EQ(count, 100);
}

TEST_F(ArchiveNumbering, OfCopiesIsTheirOwn) {
    Fixed written;
    Modelled modelled;
    modelled.write(&written);
    Fixed copy(written);
    modelled.write(&copy);
    Fixed assigned;
    assigned = written;
    modelled.write(&assigned);
    written = Fixed();
    modelled.write(&written);
    modelled.expectAsModelled();
}

}  // namespace
