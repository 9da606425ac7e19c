// The results of comparisons.
#pragma once

namespace QoSort {

// The result of comparing one object with another under a key. Hosts test these numbers: do not
// change them.
enum CompareResult : int {
    noOrder = -2,  // the object does not have that key
    before = -1,
    equal = 0,
    after = 1
};

}  // namespace QoSort
