#include "sandbox/tds/attention_watch.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <cerrno>
#include <system_error>

#include "sandbox/tds/packet_stream.h"

namespace sandbox::tds {

namespace {

FileDescriptor Checked(int descriptor) {
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "attention watch");
  return FileDescriptor(descriptor);
}

void Add(int epoll, int descriptor, std::uint32_t events) {
  epoll_event event{};
  event.events = events;
  event.data.fd = descriptor;
  epoll_ctl(epoll, EPOLL_CTL_ADD, descriptor, &event);
}

}  // namespace

AttentionWatch::AttentionWatch()
    : epoll_(Checked(epoll_create1(EPOLL_CLOEXEC))), stop_(Checked(eventfd(0, EFD_CLOEXEC))) {
  Add(epoll_.get(), stop_.get(), EPOLLIN);
  thread_ = std::thread([this] { Run(); });
}

AttentionWatch::~AttentionWatch() {
  eventfd_write(stop_.get(), 1);
  thread_.join();
}

void AttentionWatch::Run() {
  epoll_event event;
  while (true) {
    int count = epoll_wait(epoll_.get(), &event, 1, -1);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 || event.data.fd == stop_.get()) return;
    Look(event.data.fd);
  }
}

void AttentionWatch::Look(int socket) {
  std::lock_guard lock(mutex_);
  auto found = watched_.find(socket);
  if (found == watched_.end()) return;
  char first = 0;
  ssize_t got = recv(socket, &first, 1, MSG_PEEK | MSG_DONTWAIT);
  bool gone = got == 0 || (got < 0 && errno != EAGAIN && errno != EINTR);
  bool attention = got == 1 && first == static_cast<char>(MessageType::Attention);
  if (gone || attention) *found->second = true;
}

AttentionWatch::Guard::Guard(AttentionWatch& watch, int socket, std::atomic<bool>& cancel)
    : watch_(watch), socket_(socket) {
  std::lock_guard lock(watch_.mutex_);
  watch_.watched_[socket] = &cancel;
  Add(watch_.epoll_.get(), socket, EPOLLIN | EPOLLRDHUP | EPOLLONESHOT);
}

AttentionWatch::Guard::~Guard() {
  std::lock_guard lock(watch_.mutex_);
  epoll_ctl(watch_.epoll_.get(), EPOLL_CTL_DEL, socket_, nullptr);
  watch_.watched_.erase(socket_);
}

}  // namespace sandbox::tds
