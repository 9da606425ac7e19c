// The fields of each record class, and how its records compare. Their bytes are golden ones.
#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "tests/records/RecordSamples.h"
#include "tests/support/CStringPrinter.h"

namespace {

template <class Record, class Got, class Given>
void expectField(Got (Record::*get)() const, void (Record::*set)(Given),
                 const std::decay_t<Got>& initial, const std::decay_t<Got>& value) {
    Record record;
    EXPECT_EQ(initial, (record.*get)());
    (record.*set)(value);
    EXPECT_EQ(value, (record.*get)());
    EXPECT_EQ(value, (Record(record).*get)());
}

TEST(RecordFields, BeginWithTheirDefaultsAndAreKeptAndCopied) {
    expectField(&NySeUser::getStrHostName, &NySeUser::setStrHostName, CString(), _T("host"));
    expectField(&NySeUser::getStrUserName, &NySeUser::setStrUserName, CString(), _T("user"));
    expectField(&NySeUser::getStrComputerName, &NySeUser::setStrComputerName, CString(), _T("ws"));
    expectField(&NySeUser::getPort, &NySeUser::setPort, -1, 1);
    expectField(&NySeUser::getSessionNumber, &NySeUser::setSessionNumber, -1, 2);
    expectField(&NySeUser::getSchema, &NySeUser::setSchema, 0, 3);
    expectField(&NySeUser::getSoftType, &NySeUser::setSoftType, 0, 4);
    expectField(&NySeConnection::getStrConnection, &NySeConnection::setStrConnection, CString(),
                _T("A"));
    expectField(&NySeConnection::getId, &NySeConnection::setId, 0, 1);
    expectField(&NySeConnection::getRefCount, &NySeConnection::setRefCount, 0, 2);
    expectField(&NySeSessionLock::getSessionNumber, &NySeSessionLock::setSessionNumber, 0, -7);
    expectField(&NySeSessionLock::getLockState, &NySeSessionLock::setLockState, 0, 0xFFFFFFFF);
    expectField(&NySeLock::getStrLockName, &NySeLock::setStrLockName, CString(), _T("part"));
    expectField(&NySeMessage::getStrMessage, &NySeMessage::setStrMessage, CString(), _T("saved"));
}

template <class Record>
std::shared_ptr<QoObject2> own(const Record& record) {
    return std::shared_ptr<QoObject2>(record.clone());
}
auto user(const CString& name, LONG session) {
    return own(makeUser(name, session));
}
auto connection(const CString& text, LONG id) {
    return own(makeConnection(text, id));
}
auto sessionLock(LONG session, unsigned int state) {
    return own(makeSessionLock(session, state));
}
auto lock(const CString& name) {
    return own(makeLock(name));
}
auto message(const CString& text) {
    return own(makeMessage(text));
}

struct Comparison {
    short key;
    std::shared_ptr<QoObject2> left;
    QoSort::CompareResult result;
    std::shared_ptr<QoObject2> right;
};

void expectAll(const std::vector<Comparison>& comparisons) {
    for (const Comparison& row : comparisons) {
        EXPECT_EQ(row.result, row.left->vCompareTo(*row.right, row.key))
            << "row " << &row - comparisons.data();
    }
}

using QoSort::after;
using QoSort::before;
using QoSort::equal;
using QoSort::noOrder;

TEST(RecordOrder, OfUsersIsByNameBySessionOrByBoth) {
    expectAll({{1, user(_T("ANNA"), 1), equal, user(_T("anna"), 2)},
               {1, user(_T("anna"), 0), before, user(_T("Bob"), 0)},
               {1, user(_T("bob"), 0), after, user(_T("Anna"), 0)},
               {1, user(_T(""), 0), before, user(_T("a"), 0)},
               {2, user(_T("a"), 5), equal, user(_T("b"), 5)},
               {2, user(_T("b"), -5), before, user(_T("a"), 5)},
               {2, user(_T("a"), 6), after, user(_T("b"), 5)},
               {3, user(_T("ANNA"), 1), before, user(_T("anna"), 2)},
               {3, user(_T("anna"), 3), after, user(_T("Anna"), 2)},
               {3, user(_T("anna"), 2), equal, user(_T("Anna"), 2)},
               {3, user(_T("anna"), 9), before, user(_T("bob"), 1)},
               {3, user(_T("bob"), 1), after, user(_T("anna"), 9)}});
}

TEST(RecordOrder, OfNamesFoldsAToZToLowerCase) {
    expectAll({{1, user(_T("a_b"), 0), before, user(_T("aZb"), 0)},
               {1, user(_T("\u00C4"), 0), before, user(_T("\u00E4"), 0)}});
}

TEST(RecordOrder, OfNumbersIsTheSignOfTheir32BitDifference) {
    expectAll({{2, user(_T(""), INT32_MIN), after, user(_T(""), INT32_MAX)},
               {2, user(_T(""), INT32_MAX), before, user(_T(""), INT32_MIN)},
               {2, user(_T(""), INT32_MIN), before, user(_T(""), 0)}});
}

TEST(RecordOrder, OfConnectionsIsByIdOrByText) {
    expectAll({{1, connection(_T("a"), 1), equal, connection(_T("b"), 1)},
               {1, connection(_T("b"), -1), before, connection(_T("a"), 1)},
               {1, connection(_T("a"), 2), after, connection(_T("b"), 1)},
               {2, connection(_T("a"), 1), equal, connection(_T("A"), 2)},
               {2, connection(_T("a"), 2), before, connection(_T("B"), 1)},
               {2, connection(_T("b"), 1), after, connection(_T("A"), 2)},
               {3, connection(_T("a"), 1), noOrder, connection(_T("a"), 1)}});
}

TEST(RecordOrder, OfSessionLocksIsBySessionWhateverTheirStates) {
    expectAll({{1, sessionLock(7, 1), equal, sessionLock(7, 2)},
               {1, sessionLock(-7, 1), before, sessionLock(7, 1)},
               {1, sessionLock(8, 1), after, sessionLock(7, 1)},
               {2, sessionLock(7, 1), noOrder, sessionLock(7, 1)}});
}

TEST(RecordOrder, OfLocksIsByName) {
    expectAll({{1, lock(_T("part/A")), equal, lock(_T("PART/a"))},
               {1, lock(_T("a")), before, lock(_T("B"))},
               {1, lock(_T("b")), after, lock(_T("A"))},
               {2, lock(_T("a")), noOrder, lock(_T("a"))}});
}

TEST(RecordOrder, OfMessagesIsNoneWhateverTheirTexts) {
    for (const short key : {-1, 0, 1, 2, 3, 99}) {
        expectAll({{key, message(_T("a")), noOrder, message(_T("a"))},
                   {key, message(_T("a")), noOrder, message(_T("b"))}});
    }
}

}  // namespace
