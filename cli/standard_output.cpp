#include "cli/standard_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <streambuf>
#include <string>

#include "files/descriptor.h"

namespace quorvel::cli {

void secureStandardStreams() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);  // a limit on the size of files
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0)
            static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
}

class StandardOutput::Buffer : public std::streambuf {
  public:
    Status write() {
        if (Status written = files::writeAll(STDOUT_FILENO, pending_); !written && lost_)
            lost_ = makeError(ErrorCode::kOutputLost, written.error().arguments);
        pending_.clear();
        return lost_;
    }

  protected:
    int_type overflow(int_type character) override {
        if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
        const char byte = traits_type::to_char_type(character);
        return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
    }
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        pending_.append(bytes, static_cast<std::size_t>(count));
        constexpr std::size_t kMostPending = std::size_t{64} << 10;
        return pending_.size() < kMostPending || write() ? count : 0;
    }
    int sync() override { return write() ? 0 : -1; }

  private:
    std::string pending_;
    Status lost_;
};

StandardOutput::StandardOutput() : buffer_(std::make_unique<Buffer>()), former_(std::cout.rdbuf(buffer_.get())) {}

StandardOutput::~StandardOutput() { std::cout.rdbuf(former_); }

Status StandardOutput::finish() { return buffer_->write(); }

}  // namespace quorvel::cli
