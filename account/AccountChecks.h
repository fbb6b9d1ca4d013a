#pragma once

#include <QString>

#include <optional>

// The functions below check a form before it is sent to the service. Each returns the first field
// that is missing or wrong, with a Spanish sentence about it; nothing if all are right.
enum class CheckedField { email, password, repeatedPassword, currentPassword, name, amount };
struct CheckFailure {
    CheckedField field;
    QString sentence;
};
using CheckResult = std::optional<CheckFailure>;

CheckResult checkLogin(const QString& email, const QString& password);
CheckResult checkRegistration(const QString& email, const QString& password,
                              const QString& repeated);
CheckResult checkPasswordReset(const QString& email);
CheckResult checkPasswordChange(const QString& current, const QString& password,
                                const QString& repeated);
CheckResult checkName(const QString& fullName);
