#include "tests/listener/ListenerTest.h"

#include "tests/support/Exposed.h"

NY_EXPOSE(NyServerApp, m_postMsgLimit);

void ProbeListener::setPostMessageLimit(long limit) {
    const ThreadListLock lock(*this);
    this->*memberOf(Of_m_postMsgLimit()) = limit;
}
