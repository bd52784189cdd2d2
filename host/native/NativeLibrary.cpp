#include "host/ModuleLibrary.h"
#include "platform/SharedLibrary.h"
#include "platform/Threading.h"
#include "platform/linux/EventDescriptor.h"

namespace Host {
namespace {

using Vask::Platform::NativeHandle;
using Vask::Platform::SystemThreading;

// A shared object. Its trap event is an eventfd, which a select loop can wait
// for as it is.
class NativeLibrary final : public ModuleLibrary {
 public:
  explicit NativeLibrary(Vask::Platform::NativeHandle library) : m_library(library) {}
  ~NativeLibrary() override { Vask::Platform::CloseSharedLibrary(m_library); }

  void* Find(const char* name) const override {
    return Vask::Platform::FindInSharedLibrary(m_library, name);
  }

  int Watch(void* event) override {
    m_event = event;
    return Vask::Platform::EventDescriptor(event);
  }

  void TakeSignal() override {
    if (m_event != nullptr) static_cast<void>(SystemThreading().WaitEvent(m_event, 0));
  }

 private:
  NativeHandle m_library;
  NativeHandle m_event = nullptr;
};

}  // namespace

std::unique_ptr<ModuleLibrary> ModuleLibrary::Open(const std::string& path, std::string& error) {
  const NativeHandle library = Vask::Platform::OpenSharedLibrary(path, error);
  if (library == nullptr) return nullptr;
  return std::make_unique<NativeLibrary>(library);
}

}  // namespace Host
