// The exception family of the component framework, as the library raises and catches it.
//
// `Exception` carries a message in the system's own words. `EAbort` is the silent abort: loaders raise
// it through `Abort()` to leave a body without a message, and the Qt boundary swallows it quietly.
// Everything else that reaches the boundary goes to the one error service.
#pragma once

#include <QString>

#include <exception>
#include <string>

namespace vl {

class Exception : public std::exception {
public:
    explicit Exception(QString message);
    const QString& Message() const noexcept { return FMessage; }
    const char* what() const noexcept override { return FUtf8.c_str(); }

private:
    QString FMessage;
    std::string FUtf8;
};

// The silent abort: ends an operation without a message to the user.
class EAbort : public Exception {
public:
    EAbort();
};

// A call of an operation that a descendant class must provide and does not.
class EAbstractError : public Exception {
    using Exception::Exception;
};

// List index, capacity and count errors of the pointer, string and record lists.
class EListError : public Exception {
    using Exception::Exception;
};

// Stream errors: a short read or write, and the failure to open or create a file.
class EStreamError : public Exception {
    using Exception::Exception;
};
class EReadError : public EStreamError {
    using EStreamError::EStreamError;
};
class EWriteError : public EStreamError {
    using EStreamError::EStreamError;
};
class EFOpenError : public EStreamError {
    using EStreamError::EStreamError;
};
class EFCreateError : public EStreamError {
    using EStreamError::EStreamError;
};

// Conversion errors, among them an unsupported `Assign`.
class EConvertError : public Exception {
    using Exception::Exception;
};

// Component errors: duplicate or invalid names, bad ownership operations.
class EComponentError : public Exception {
    using Exception::Exception;
};

// Integer division by zero, and floating division by zero where the library's arithmetic would
// otherwise produce an infinity.
class EDivByZero : public Exception {
    using Exception::Exception;
};
class EZeroDivide : public Exception {
    using Exception::Exception;
};

// An invalid floating operation, as converting a value that does not fit an integer.
class EInvalidOp : public Exception {
    using Exception::Exception;
};

// Raises the silent abort.
[[noreturn]] void Abort();

// The framework's message texts, with the offending value where they take one.
namespace msg {
QString ListIndexError(long long index);
QString ListCapacityError(long long value);
QString ListCountError(long long value);
inline constexpr const char* ReadError = "Stream read error";
inline constexpr const char* WriteError = "Stream write error";
inline constexpr const char* DivByZero = "Division by zero";
inline constexpr const char* ZeroDivide = "Floating point division by zero";
inline constexpr const char* InvalidOp = "Invalid floating point operation";
inline constexpr const char* AbstractError = "Abstract Error";
} // namespace msg

} // namespace vl
