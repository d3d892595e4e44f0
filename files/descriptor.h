// An open file descriptor with one owner.
#pragma once

#include <unistd.h>

#include <string_view>
#include <utility>

#include "base/result.h"

namespace quorvel::files {

class Descriptor {
  public:
    explicit Descriptor(int number = -1) : number_(number) {}
    ~Descriptor() { reset(); }
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            reset();
            number_ = std::exchange(other.number_, -1);
        }
        return *this;
    }

    int get() const { return number_; }
    bool isOpen() const { return number_ >= 0; }
    // False when the system reports an error that an earlier write has left (a full disk on a network file system).
    bool close() { return ::close(std::exchange(number_, -1)) == 0; }
    void reset() {
        if (number_ >= 0) ::close(std::exchange(number_, -1));
    }

  private:
    int number_;
};

// All bytes, however many calls it takes.
[[nodiscard]] Status writeAll(int descriptor, std::string_view bytes);

}  // namespace quorvel::files
