#pragma once
// Making a system call again for as long as a signal interrupts it.
#include <cerrno>

// Calls call until it gives anything but -1 with errno EINTR; returns that.
template <typename Call>
auto retried(Call call) {
  decltype(call()) result;
  do
    result = call();
  while (result == -1 && errno == EINTR);
  return result;
}
