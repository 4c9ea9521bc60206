#pragma once

#include <sys/types.h>

#include <string>

#include "platform/files/descriptor.h"

namespace dorvane::process {

/// Throws RunTimeError 53: the program could not be started for that errno.
[[noreturn]] void ThrowNotStarted(const std::string& program, int error);

/// Both ends are closed in programs that are started. Throws RunTimeError 53.
struct Pipe {
  Pipe();
  files::Descriptor read;
  files::Descriptor write;
};

/// Appends what is there, after poll. Closes the pipe at its end, and when it cannot be read: then
/// false.
bool ReadSome(files::Descriptor& pipe, std::string& text);

/// Waits for a child to end: its exit status, or 128 + the signal that ended it.
int Reap(pid_t id);

}  // namespace dorvane::process
