#include "account/AccountChecks.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int shortestPassword = 8;

CheckResult checkEmail(const QString& email)
{
    if (email.trimmed().isEmpty())
        return CheckFailure{CheckedField::email, u"Escribe tu email."_s};
    return std::nullopt;
}

// Requires text on both sides of the "@"; the service judges the rest of the address.
CheckResult checkNewEmail(const QString& email)
{
    if (CheckResult failure = checkEmail(email))
        return failure;
    const qsizetype at = email.trimmed().indexOf(u'@');
    if (at < 1 || at == email.trimmed().size() - 1)
        return CheckFailure{CheckedField::email, u"Escribe un email válido."_s};
    return std::nullopt;
}

CheckResult checkNewPassword(const QString& password, const QString& repeated)
{
    if (password.size() < shortestPassword)
        return CheckFailure{
            CheckedField::password,
            u"La contraseña necesita al menos %1 caracteres."_s.arg(shortestPassword)};
    if (password != repeated)
        return CheckFailure{CheckedField::repeatedPassword, u"Las dos contraseñas no coinciden."_s};
    return std::nullopt;
}

}    // namespace

CheckResult checkLogin(const QString& email, const QString& password)
{
    if (CheckResult failure = checkEmail(email))
        return failure;
    if (password.isEmpty())
        return CheckFailure{CheckedField::password, u"Escribe tu contraseña."_s};
    return std::nullopt;
}

CheckResult checkRegistration(const QString& email, const QString& password,
                              const QString& repeated)
{
    if (CheckResult failure = checkNewEmail(email))
        return failure;
    if (password.isEmpty())
        return CheckFailure{CheckedField::password, u"Escribe una contraseña."_s};
    return checkNewPassword(password, repeated);
}

CheckResult checkPasswordReset(const QString& email)
{
    return checkEmail(email);
}

CheckResult checkPasswordChange(const QString& current, const QString& password,
                                const QString& repeated)
{
    if (current.isEmpty())
        return CheckFailure{CheckedField::currentPassword, u"Escribe tu contraseña actual."_s};
    if (password.isEmpty())
        return CheckFailure{CheckedField::password, u"Escribe la contraseña nueva."_s};
    return checkNewPassword(password, repeated);
}

CheckResult checkName(const QString& fullName)
{
    if (fullName.trimmed().isEmpty())
        return CheckFailure{CheckedField::name, u"Escribe tu nombre."_s};
    return std::nullopt;
}
