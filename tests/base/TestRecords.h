// Small archivable classes for the tests, each with one trait.
#pragma once

#include <afxcoll.h>

// Versionable; one int. Counts its living objects.
class Foo : public CObject {
    DECLARE_SERIAL(Foo)
  public:
    explicit Foo(int value = 0) : m_value(value) { ++alive; }
    Foo(const Foo&) = delete;
    Foo& operator=(const Foo&) = delete;
    ~Foo() override { --alive; }
    void Serialize(CArchive& ar) override;

    int m_value;
    UINT m_schema = 0;  // what the archive gave for it
    static int alive;
};

// A kind of Foo with a schema of its own and one more byte.
class SubFoo : public Foo {
    DECLARE_SERIAL(SubFoo)
  public:
    void Serialize(CArchive& ar) override;

    BYTE m_extra = 0;
};

// Not versionable; one WORD.
class Fixed : public CObject {
    DECLARE_SERIAL(Fixed)
  public:
    Fixed() = default;
    Fixed(const Fixed& other) : Fixed() { *this = other; }
    Fixed& operator=(const Fixed& other) {
        m_value = other.m_value;
        return *this;
    }
    void Serialize(CArchive& ar) override;

    WORD m_value = 0;
};

// Refers to another object, which is not its own; asks for its schema before and after it.
class Link : public CObject {
    DECLARE_SERIAL(Link)
  public:
    void Serialize(CArchive& ar) override;

    CObject* m_other = nullptr;
    UINT m_schemaAfter = 0;
};

// Owns the object it refers to, so that a chain of them is deleted from its head.
class Chain : public CObject {
    DECLARE_SERIAL(Chain)
  public:
    Chain() { ++alive; }
    Chain(const Chain&) = delete;
    Chain& operator=(const Chain&) = delete;
    ~Chain() override;
    void Serialize(CArchive& ar) override;

    CObject* m_next = nullptr;
    static int alive;
};

// Owns its elements.
class OwningArray : public CObArray {
    DECLARE_SERIAL(OwningArray)
  public:
    OwningArray() = default;
    OwningArray(const OwningArray&) = delete;
    OwningArray& operator=(const OwningArray&) = delete;
    ~OwningArray() override;
};

// Known by class, but not archivable.
class DynamicOnly : public CObject {
    DECLARE_DYNAMIC(DynamicOnly)
};
class CreatableOnly : public CObject {
    DECLARE_DYNCREATE(CreatableOnly)
};

// Archivable by declaration, but no object of it can be made.
class Unmakeable : public CObject {
    DECLARE_DYNAMIC(Unmakeable)
};

// Names of 63 and 64 characters.
class Name63xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx : public CObject {
    DECLARE_SERIAL(Name63xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx)
};
class Name64xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx : public CObject {
    DECLARE_SERIAL(Name64xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx)
};
