#include "tests/messages/AllMessages.h"

#include <utility>

#include "messages/GlobalOptions.h"
#include "messages/GlobalOptions2.h"
#include "messages/Processes.h"
#include "messages/Registrar.h"
#include "messages/SNMPmessage.h"
#include "messages/SNMPtrap.h"

namespace Messages::Tests {

namespace {

std::string s_handled;

template <class M>
void Note(const M&, std::int32_t id, void*) {
  s_handled += HandledAs(kCatalogueIndex<M>, id);
}

template <class M>
Message MakeMessage(const char* name) {
  return {name, [] { Registrar::Instance().Subscribe<M>(Note<M>); },
          [] { Registrar::Instance().Unsubscribe<M>(Note<M>); },
          [] { Registrar::Instance().Dispatch<M>(M(), 3); }};
}

}  // namespace

const std::vector<Message>& AllMessages() {
  static const std::vector<Message> messages = {
#define MESSAGES_TEST(name, body, role) MakeMessage<name>(#name),
      MESSAGES_CATALOGUE(MESSAGES_TEST)
#undef MESSAGES_TEST
  };
  return messages;
}

std::string Handled() {
  return std::exchange(s_handled, "");
}

std::string HandledAs(std::size_t catalogueIndex, int id) {
  return std::to_string(catalogueIndex) + ":" + std::to_string(id) + " ";
}

}  // namespace Messages::Tests
