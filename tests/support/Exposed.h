// Access to private members, for what a test cannot reach otherwise.
#pragma once

// The arguments of an explicit instantiation may name private members: that of Exposed defines the
// function that its tag declares.
template <class Tag, auto Member>
struct Exposed {
    friend constexpr auto memberOf(Tag) { return Member; }
};

// Makes memberOf(Of_MEMBER()) the pointer to the member of the class.
#define NY_EXPOSE(type, member)                      \
    struct Of_##member {                             \
        friend constexpr auto memberOf(Of_##member); \
    };                                               \
    template struct Exposed<Of_##member, &type::member>
