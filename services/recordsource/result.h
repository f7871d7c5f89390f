// services/recordsource/result.h: a value or the Status that explains why there is none.
//
// C++20 has no std::expected; this is the small subset the project needs. A Result built
// from a value is OK; one built from a Status carries an error. One built from an OK Status
// (a mistake of the code that made it) carries an Internal error instead, in every build
// type, so that no caller reads a value that is not there. value() on an error is a
// programming mistake and asserts.
#pragma once

#include "services/recordsource/status.h"

#include <optional>
#include <utility>

namespace plx {

template<typename T> class [[nodiscard]] Result
{
public:
    // Both constructors are implicit on purpose, so that a function returning Result<T>
    // can `return value;` and `return status;`.
    // Success with `value`.
    Result(T value) : m_value(std::move(value)) { } // NOLINT(google-explicit-constructor)
    // Failure with `error`; an OK `error` becomes Internal (see above).
    Result(Status error) : m_status(std::move(error)) // NOLINT(google-explicit-constructor)
    {
        if (m_status.isOk())
            m_status = Status(Status::Code::Internal,
                              QStringLiteral("a result was made from a success without a value"));
    }

    // True when there is a value.
    bool isOk() const { return m_status.isOk(); }
    // Why there is no value; an OK Status when there is one.
    const Status &status() const { return m_status; }

    // The value; only after isOk() said there is one. The operators are shorthands.
    const T &value() const &
    {
        Q_ASSERT(isOk());
        return *m_value;
    }
    T &value() &
    {
        Q_ASSERT(isOk());
        return *m_value;
    }
    T &&value() &&
    {
        Q_ASSERT(isOk());
        return std::move(*m_value);
    }
    const T &operator*() const & { return value(); }
    T &operator*() & { return value(); }
    const T *operator->() const { return &value(); }
    T *operator->() { return &value(); }

private:
    Status m_status;
    std::optional<T> m_value;
};

} // namespace plx
