// A host that chose C++17 is compiled as C++17, whatever the library's own sources need.
static_assert(__cplusplus == 201703L, "the library's target changes the host's language standard");
