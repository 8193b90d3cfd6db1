// Calls into other libraries that tests count or let fail. The definitions in library_calls.cpp
// stand before the libraries' own in the test program and pass the calls on to them.
#pragma once

#include <atomic>
#include <functional>

namespace calls {

// Made so far by the whole program.
inline std::atomic<int> hidExits = 0;
inline std::atomic<int> failedHidReads = 0;

// While set, this thread cannot start threads with attributes, as rkb::thread_t does. hidapi and
// libusb start theirs without.
inline thread_local bool refuseThreads = false;

// Called before each request for a report descriptor.
inline std::function<void()> beforeDescriptorRequest = [] {};

} // namespace calls
