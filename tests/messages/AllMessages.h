#pragma once

#include <string>
#include <vector>

namespace Messages::Tests {

// The typed operations of one message of the catalogue, behind one signature.
struct Message {
  std::string name;
  void (*subscribe)();    // a handler that adds to Handled()
  void (*unsubscribe)();  // that handler
  void (*dispatch)();     // an empty record, with id 3
};

// Every message, in the order of the catalogue.
const std::vector<Message>& AllMessages();

// What the handlers were called with since the last question, each call as
// HandledAs() gives it.
std::string Handled();
std::string HandledAs(std::size_t catalogueIndex, int id);

}  // namespace Messages::Tests
