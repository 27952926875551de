#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cstddef>
#include <string>

namespace simulator {

/// An address in the abstract namespace: nothing of it is left when its process has ended, however that ends.
class AbstractAddress {
public:
    explicit AbstractAddress(const std::string& name) {
        address_.sun_family = AF_UNIX;
        std::copy(name.begin(), name.end(), address_.sun_path + 1);  // after a leading zero
        size_ = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    }

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address_); }
    socklen_t size() const { return size_; }

private:
    sockaddr_un address_{};
    socklen_t size_;
};

}  // namespace simulator
