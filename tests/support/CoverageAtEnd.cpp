// A build that counts executed lines links this into all programs. A process writes its
// counts when it exits, but not if it ends by abort or _Exit. These wrappers write them.

extern "C" {

void __gcov_dump();
[[noreturn]] void __real_abort();
[[noreturn]] void __real__Exit(int status);

[[noreturn]] void __wrap_abort() {
  __gcov_dump();
  __real_abort();
}

[[noreturn]] void __wrap__Exit(int status) {
  __gcov_dump();
  __real__Exit(status);
}

}  // extern "C"
