#pragma once

namespace Agent {

// Each thread's list of exceptions under way, which the C++ library asks for
// when one is thrown. The library's own takes memory, and ends the process when
// there is none; and it leaves handles behind for every thread that outlives the
// module. This one takes a record of a fixed table at a thread's first exception.
//
// To be called when a thread ends: its record is free again.
void ForgetThreadExceptions() noexcept;

}  // namespace Agent
