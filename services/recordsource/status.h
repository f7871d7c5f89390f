// services/recordsource/status.h: the outcome of a fallible record-source operation.
//
// The record-source layer and its back ends never throw across their public functions;
// every call that can fail returns a Status (or a Result<T>, see result.h). A Status keeps
// our own message, and where an engine was involved, that engine's native code and text,
// so that a control can show the user a sentence of its own while a log keeps the
// engine's words.
#pragma once

#include <QString>

namespace plx {

class [[nodiscard]] Status
{
public:
    enum class Code {
        Ok,
        NotFound, // a table, file or record that is not there
        Locked, // a record or file lock held by someone else; Edit maps to this
        InvalidArgument, // a call made in the wrong state or with a bad argument
        IoError, // the operating system refused a read, write or lock
        Engine, // the database engine reported an error
        NotSupported, // a valid request this source cannot do (read-only table, CDX)
        Syntax, // a malformed SQL text or expression
        UnknownField, // a name that is no field of the source
        UnknownFunction, // a function the dialect does not have
        TypeMismatch, // an operand of the wrong type
        Corrupt, // a file whose contents contradict its own header
        Internal, // a mistake of the library itself (a Result made from an OK Status)
    };

    // Success.
    Status() = default;
    // A failure (or, with Code::Ok, a success) with our own message in English, and where
    // an engine said why, that engine's error code and text unchanged.
    Status(Code code, QString message, int engineCode = 0, QString engineMessage = {})
        : m_code(code), m_message(std::move(message)), m_engineCode(engineCode),
          m_engineMessage(std::move(engineMessage))
    {
    }

    // Success; reads better than Status() in a return statement.
    static Status ok() { return {}; }

    // True for success: code() is Ok and the other accessors are empty.
    bool isOk() const { return m_code == Code::Ok; }
    Code code() const { return m_code; }
    // What failed, in the library's words (names the table, record or position involved).
    const QString &message() const { return m_message; }
    // The engine's own code (SQLITE_BUSY, errno, ...); 0 when no engine was involved.
    int engineCode() const { return m_engineCode; }
    // The engine's own text; empty when no engine was involved.
    const QString &engineMessage() const { return m_engineMessage; }

    // "Locked: record 12 of CUSTOMER is locked by another user" and the like; for logs.
    QString toString() const;

private:
    Code m_code = Code::Ok;
    QString m_message;
    int m_engineCode = 0;
    QString m_engineMessage;
};

// The name of a code as it appears in toString(), e.g. "Locked".
QString codeName(Status::Code code);

} // namespace plx
