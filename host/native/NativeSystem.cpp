// The native side of the host: it loads shared objects, and there is no registry.

#include <dlfcn.h>

#include "host/ModuleLibrary.h"
#include "host/Registration.h"
#include "platform/Threading.h"
#include "platform/UniqueHandle.h"
#include "platform/linux/EventDescriptor.h"

namespace Host {
namespace {

struct SharedObjectPolicy {
  using Type = void*;
  static constexpr Type None() noexcept { return nullptr; }
  static void Close(Type object) noexcept { dlclose(object); }
};
using SharedObject = Vask::Platform::UniqueHandle<SharedObjectPolicy>;

// The trap event of a shared object is an eventfd, which a select loop can wait
// for directly.
class NativeLibrary final : public ModuleLibrary {
 public:
  explicit NativeLibrary(SharedObject object) : m_object(std::move(object)) {}

  void* Find(const char* name) const override { return dlsym(m_object.Get(), name); }

  int Watch(void* event) override {
    m_event = event;
    return Vask::Platform::EventDescriptor(event);
  }

  void TakeSignal() override {
    if (m_event == nullptr) return;
    static_cast<void>(Vask::Platform::SystemThreading().WaitEvent(m_event, 0));
  }

 private:
  SharedObject m_object;
  Vask::Platform::NativeHandle m_event = nullptr;
};

}  // namespace

std::unique_ptr<ModuleLibrary> ModuleLibrary::Open(const std::string& path, std::string& error) {
  // The loader searches for a bare name in the system's folders only.
  const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
  SharedObject object(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL));
  if (!object.Valid()) {
    const char* const reason = dlerror();
    error = reason == nullptr ? "unknown error" : reason;
    return nullptr;
  }
  return std::make_unique<NativeLibrary>(std::move(object));
}

const Registry* SystemRegistry() {
  return nullptr;
}

}  // namespace Host
