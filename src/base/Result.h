// A value or an error message: what the workbench returns from anything that reads files or input.
// Marked [[nodiscard]], and the build makes an ignored one an error: a failure nobody looked at
// is a bug.
#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

namespace veltarn {

// An error for a person to read: lowercase, with its context first ("roads.dxf:12: ...").
struct Error {
    std::string message;
};

template <class T>
class [[nodiscard]] Result {
public:
    Result(T value) : state_(std::move(value)) {}
    Result(Error error) : state_(std::move(error)) {}

    bool ok() const { return state_.index() == 0; }
    explicit operator bool() const { return ok(); }

    T& value() & { assert(ok() && "value() of a failed Result"); return std::get<0>(state_); }
    const T& value() const& { assert(ok() && "value() of a failed Result"); return std::get<0>(state_); }
    T&& value() && { assert(ok() && "value() of a failed Result"); return std::get<0>(std::move(state_)); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }

    const Error& error() const { assert(!ok() && "error() of a good Result"); return std::get<1>(state_); }
    const std::string& message() const { return error().message; }

private:
    std::variant<T, Error> state_;
};

template <>
class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Error error) : error_(std::move(error)), failed_(true) {}

    bool ok() const { return !failed_; }
    explicit operator bool() const { return ok(); }
    const Error& error() const { assert(failed_ && "error() of a good Result"); return error_; }
    const std::string& message() const { return error().message; }

private:
    Error error_;
    bool failed_ = false;
};

inline Error makeError(std::string message) { return Error{std::move(message)}; }

}  // namespace veltarn
