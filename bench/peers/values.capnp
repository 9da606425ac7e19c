# The values of bench/Values.h; texts are their bytes, 2 for a character.
@0xb5e1f0a2c3d49687;

using Cxx = import "/capnp/c++.capnp";
$Cxx.namespace("capnproto_values");

struct Holder {
  state @0 :UInt32;
  session @1 :Int32;
}

struct Lock {
  name @0 :Data;
  holders @1 :List(Holder);
}

struct Locks {
  locks @0 :List(Lock);
}

struct User {
  port @0 :Int32;
  host @1 :Data;
  user @2 :Data;
  computer @3 :Data;
  session @4 :Int32;
  schema @5 :Int32;
  softType @6 :Int32;
}

struct Users {
  users @0 :List(User);
}

struct Request {
  action @0 :Int32;
  payloadLength @1 :Int32;
  name @2 :Data;
  mode @3 :UInt32;
}
