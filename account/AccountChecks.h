#pragma once

#include <QString>

#include <optional>

// What can be seen to be missing before the service is asked, and in which field.
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
