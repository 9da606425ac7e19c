// The operations that the library needs of the record base; see QoSort.h.
#pragma once

class QoWaitCursor {
  public:
    QoWaitCursor();
    ~QoWaitCursor();
};
