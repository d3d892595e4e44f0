// A value or the error in its place.
#pragma once

#include <cassert>
#include <optional>
#include <utility>
#include <variant>

#include "base/error.h"

namespace quorvel {

template <class Value>
class [[nodiscard]] Result {
  public:
    Result(Value value) : content_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : content_(std::in_place_index<1>, std::move(error)) {}

    explicit operator bool() const { return content_.index() == 0; }
    // Only of a value.
    Value& value() {
        assert(*this);
        return *std::get_if<0>(&content_);
    }
    const Value& value() const {
        assert(*this);
        return *std::get_if<0>(&content_);
    }
    Value& operator*() { return value(); }
    const Value& operator*() const { return value(); }
    Value* operator->() { return &value(); }
    const Value* operator->() const { return &value(); }
    // Only of an error.
    Error& error() {
        assert(!*this);
        return *std::get_if<1>(&content_);
    }
    const Error& error() const {
        assert(!*this);
        return *std::get_if<1>(&content_);
    }

  private:
    std::variant<Value, Error> content_;
};

// Success, or an error.
template <>
class [[nodiscard]] Result<void> {
  public:
    Result() = default;
    Result(Error error) : error_(std::move(error)) {}

    explicit operator bool() const { return !error_; }
    const Error& error() const {
        assert(error_);
        return *error_;
    }

  private:
    std::optional<Error> error_;
};

using Status = Result<void>;

}  // namespace quorvel
