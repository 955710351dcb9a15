#pragma once
// What an operation that can fail with a message returns: its value, or one
// sentence for a person saying why there is none. Decoders may throw inside
// themselves; what crosses from one layer to another is a Result.
//
//   Result<WidgetPosition> parsePosition(std::string_view text);
//   if (const auto position = parsePosition(text)) use(*position);
//   else say(position.error());
//
// A failure is written `return Failure{"why"};`, a success by returning the
// value (or `{}` for Result<void>).

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace mw {

struct Failure {
    std::string message;
    bool operator==(const Failure&) const = default;
};

template <class T>
class [[nodiscard]] Result {
public:
    Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    Result(Failure failure) : state_(std::in_place_index<1>, std::move(failure)) {}

    bool ok() const { return state_.index() == 0; }
    explicit operator bool() const { return ok(); }

    // Reading the value of a failure is a programming error (it throws
    // std::bad_variant_access).
    const T& value() const& { return std::get<0>(state_); }
    T& value() & { return std::get<0>(state_); }
    T&& value() && { return std::get<0>(std::move(state_)); }
    const T& operator*() const& { return value(); }
    T& operator*() & { return value(); }
    T&& operator*() && { return std::move(*this).value(); }
    const T* operator->() const { return &value(); }
    T* operator->() { return &value(); }

    // Why there is no value; empty on success.
    const std::string& error() const {
        static const std::string none;
        return ok() ? none : std::get<1>(state_).message;
    }

    bool operator==(const Result&) const = default;

private:
    std::variant<T, Failure> state_;
};

// An operation with nothing to return beyond whether it worked.
template <>
class [[nodiscard]] Result<void> {
public:
    Result() = default;  // success
    Result(Failure failure) : failure_(std::move(failure)) {}

    bool ok() const { return !failure_; }
    explicit operator bool() const { return ok(); }

    const std::string& error() const {
        static const std::string none;
        return failure_ ? failure_->message : none;
    }

    bool operator==(const Result&) const = default;

private:
    std::optional<Failure> failure_;
};

}  // namespace mw
