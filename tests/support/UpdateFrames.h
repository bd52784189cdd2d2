#pragma once

namespace Vask::Tests {

// The bodies of the four value frames of one update, as corvane-sim sends them. The
// tests and benchmarks measure the cost of a frame with them.
inline constexpr const char* kUpdateFrames[] = {
    R"({"data":{"messageType":{"Product":{"Name":"Corvane","Version":"4.2.1"}}},"from":"Corvane","id":0,"name":"SNMPmessage","op":"broadcast"})",
    R"({"data":{"messageType":{"Streams":{"Count":12,"Errors":1}}},"from":"Corvane","id":0,"name":"SNMPmessage","op":"broadcast"})",
    R"({"data":{"messageType":{"StreamMonitors":{"Count":4,"Errors":0,"Silence":1}}},"from":"Corvane","id":0,"name":"SNMPmessage","op":"broadcast"})",
    R"({"data":{"messageType":{"AudioSources":{"Count":8,"Errors":2,"Silence":1}}},"from":"Corvane","id":0,"name":"SNMPmessage","op":"broadcast"})",
};

}  // namespace Vask::Tests
