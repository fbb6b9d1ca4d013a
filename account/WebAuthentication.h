#pragma once

#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

// Result of a sign-in in the browser.
struct GoogleAuthenticationResult {
    enum class Failure { cancelled, other };
    std::optional<QUrl> callbackURL;
    std::optional<Failure> error;
};

// The platform's sign-in sheet over the program's window, with the browser's cookies. Its result
// comes back through a link. Not every platform has one.
class WebAuthentication {
public:
    using Completion = std::function<void(const GoogleAuthenticationResult&)>;
    virtual ~WebAuthentication() = default;

    // Returns whether the sign-in started. Only then `completion` is called, once; another start()
    // cancels the running sign-in, whose completion is then never called.
    virtual bool start(const QUrl& url, const QString& callbackScheme, Completion completion) = 0;
};
