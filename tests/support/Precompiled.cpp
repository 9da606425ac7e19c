// A library needs a source; the headers are what it is for.
