#pragma once

#include <string>
#include <vector>

namespace Messages::Tests {

// The typed operations on one message of the catalogue as plain functions.
struct Message {
  std::string name;
  void (*subscribe)();    // a handler that adds to Handled()
  void (*unsubscribe)();  // that handler
  void (*dispatch)();     // dispatches an empty record with id 3
};

// Every message, in the order of the catalogue.
const std::vector<Message>& AllMessages();

// Returns the calls of the handlers since the last time, each as HandledAs()
// formats it.
std::string Handled();
std::string HandledAs(std::size_t catalogueIndex, int id);

}  // namespace Messages::Tests
