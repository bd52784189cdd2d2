#include "platform/SharedLibrary.h"

#include <dlfcn.h>

namespace Vask::Platform {

NativeHandle OpenSharedLibrary(const std::string& path, std::string& error) {
  // A bare name would be looked for in the system's folders only.
  const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
  void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    const char* const reason = dlerror();
    error = reason == nullptr ? "unknown error" : reason;
  }
  return library;
}

void* FindInSharedLibrary(NativeHandle library, const char* name) noexcept {
  return dlsym(library, name);
}

void CloseSharedLibrary(NativeHandle library) noexcept {
  dlclose(library);
}

}  // namespace Vask::Platform
